#pragma once
#include "platform/DisplayDevice.h"

// The full-screen display: the device, the visible primary surface with its
// one back buffer that every frame is composed on, and the palette. It also
// makes the screen-sized pages the sprite catalogue keeps its frames in.
class CDisplay {
public:
    // The picture every surface is cleared from; the display cannot start without it.
    static constexpr const char* BlankFile = "art/blank.bmp";

    CDisplay() = default;
    CDisplay(const CDisplay&) = delete;
    CDisplay& operator=(const CDisplay&) = delete;
    ~CDisplay() { Release(); }

    // 0, or the code of the step that failed.
    Result Init(HWND window);
    Result Flip();
    Result Restore();
    void Release();
    // A screen-sized page keyed on black and cleared from the blank bitmap; null when none can be made.
    SurfacePtr CreateOffscreenSurface();
    Result DrawTitleScreen();

    CSurface* GetPrimary() const { return primary.get(); }
    CSurface* GetBack() const { return back.get(); }
    CPalette* GetPalette() const { return palette.get(); }
    bool HasDevice() const { return ddraw != nullptr || ddraw2 != nullptr; }

private:
    Result CreateFlippingChain(SurfacePtr& first);
    Result DrawScreenBitmap(CSurface* surface, const char* path);

    DisplayDevicePtr ddraw;  // only while the newer interface is asked for
    DisplayDevicePtr ddraw2;
    SurfacePtr primary;
    SurfacePtr back;
    PalettePtr palette;
};
