#include "app/GameWnd.h"

#include "app/GameControl.h"
#include "platform/MessageQueue.h"

LRESULT CGameWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_DESTROY:
        Platform::PostQuitMessage(0);
        break;
    case WM_ACTIVATEAPP:
        Game::OnActivate(wParam != 0);
        break;
    case WM_SETCURSOR:
        Platform::ShowCursor(false); // the pointer never shows over the game
        return 1;
    case WM_KEYDOWN:
        Game::OnKey(static_cast<UINT>(wParam), true);
        break;
    case WM_KEYUP:
        Game::OnKey(static_cast<UINT>(wParam), false);
        break;
    case MM_MCINOTIFY:
        if (wParam == MCI_NOTIFY_SUCCESSFUL)
            Game::PlayMusic(true);
        break;
    default:
        break;
    }
    return DefWindowProc(message, wParam, lParam);
}
