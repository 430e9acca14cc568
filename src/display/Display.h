#pragma once
#include "platform/Types.h"

// The full-screen display: primary and back surfaces and the palette.
class CDisplay {
public:
    Result Init(HWND window);
    Result Flip();
    Result Restore();
    void Release();
    Result DrawTitleScreen();
};
