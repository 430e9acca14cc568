#pragma once
#include "platform/Types.h"

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
