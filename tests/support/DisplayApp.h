#pragma once
#include "support/BitmapFiles.h"
#include "support/TestApp.h"

#include "platform/DC.h"
#include "platform/DisplayDevice.h"

#include <string>

namespace qvtest {

// A test application started as the game starts, on the dummy video driver,
// in a scratch folder holding whatever art and "sprite.ini" the test wrote
// before: window, fonts, display, first sprite load. Injected display faults
// are cleared when it goes.
struct DisplayApp : TestApp {
    DisplayApp() = default;
    ~DisplayApp() { Platform::ClearDisplayFaults(); }
    // Writes a black blank bitmap unless the test wrote one, then starts; false when start-up failed.
    bool Start();
    // The main window alone, for tests that start the display themselves.
    HWND OpenWindow();

    CSurface& Back() { return *app->display.GetBack(); }
    // The 5-6-5 value of a pixel of a surface.
    static std::uint16_t PixelAt(CSurface& surface, int x, int y);
};

// Reads a surface through a drawing context, the way the game reads it.
struct ScopedDC {
    explicit ScopedDC(CSurface& s) : surface(s) { surface.GetDC(dc); }
    ~ScopedDC() { if (dc) surface.ReleaseDC(dc); }
    CDC* operator->() { return dc; }
    CSurface& surface;
    CDC* dc = nullptr;
};

} // namespace qvtest
