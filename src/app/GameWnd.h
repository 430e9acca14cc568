#pragma once
#include "platform/Window.h"

// The game's only window. It draws nothing itself: it receives the keys,
// activation changes and the music's completion notices.
class CGameWnd : public CPlatformWnd {
public:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
};
