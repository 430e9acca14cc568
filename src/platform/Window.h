#pragma once
#include "platform/Types.h"

#include <cstdint>
#include <functional>
#include <string>

struct SDL_Window;

namespace Platform {

// Registers a window class name; creating a window of an unregistered class fails.
bool RegisterClass(const std::string& className, std::uint32_t style);
void UnregisterAllClasses();

enum SystemMetric { SM_CXSCREEN = 0, SM_CYSCREEN = 1 };
// The desktop's size in pixels, as the display reports it now.
int GetSystemMetrics(SystemMetric metric);

// Shows or hides the mouse pointer while it is over the program's windows.
void ShowCursor(bool show);

// How the game's window shows its picture: over the whole desktop, or in a
// window of the game's own size. Alt+Enter switches between the two.
enum class WindowMode { FullScreen, Windowed };
void SetWindowMode(WindowMode mode);
WindowMode GetWindowMode();
// Hears of every switch the player makes.
using WindowModeListener = std::function<void(WindowMode)>;
void SetWindowModeListener(WindowModeListener listener);

// The picture the program's windows carry as their icon: size x size pixels,
// four bytes each (red, green, blue, alpha), rows from the top.
void SetApplicationIcon(int size, const std::uint8_t* rgba);

} // namespace Platform

// The framework's window: an SDL window with a replaceable window procedure.
// Messages reach WindowProc from the application's message loop.
class CPlatformWnd {
public:
    CPlatformWnd() = default;
    CPlatformWnd(const CPlatformWnd&) = delete;
    CPlatformWnd& operator=(const CPlatformWnd&) = delete;
    virtual ~CPlatformWnd();

    bool CreateEx(std::uint32_t exStyle, const std::string& className, const std::string& title,
                  std::uint32_t style, int x, int y, int width, int height);
    void ShowWindow(int command);
    void UpdateWindow() {}
    // Sends WM_DESTROY and closes the window. Safe to call more than once.
    void DestroyWindow();

    bool PostMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT SendMessage(UINT message, WPARAM wParam, LPARAM lParam) { return WindowProc(message, wParam, lParam); }

    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // What the window class does with a message the window procedure passes on.
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);

    HWND GetSafeHwnd() { return sdlWindow ? this : nullptr; }
    SDL_Window* GetSdlWindow() const { return sdlWindow; }

    // Alt+Enter: between the full-screen window and a window of the game's size.
    void ToggleFullscreen();
    // Takes the window mode the player chose.
    void ApplyWindowMode();
    void SetWindowedSize(int width, int height) { windowedWidth = width; windowedHeight = height; }

    // The live window whose SDL id this is, or null.
    static CPlatformWnd* FromSdlId(std::uint32_t id);
    // Any live window (the first created), or null: where application-wide events go.
    static CPlatformWnd* AnyWindow();

private:
    SDL_Window* sdlWindow = nullptr;
    int windowedWidth = 0;
    int windowedHeight = 0;
};
