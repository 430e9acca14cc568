#include "app/GameApp.h"

void CGameApp::DrawFrame(double /*elapsedMs*/)
{
}
