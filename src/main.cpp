#include "app/GameMain.h"

int main()
{
    return RunGame(nullptr);
}
