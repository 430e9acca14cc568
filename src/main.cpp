#include "app/GameApp.h"

// The one application object of the program. It exists before main runs and
// is destroyed after the message loop has ended, saving the player's settings.
CGameApp theApp;

int main()
{
    return theApp.Run();
}
