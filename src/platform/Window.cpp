#include "platform/Window.h"

#include "platform/DisplayDevice.h"
#include "platform/MessageQueue.h"
#include "platform/RenderChoice.h"
#include "platform/Sequencer.h"

#include <SDL.h>

#include <algorithm>
#include <set>
#include <vector>

namespace {

std::set<std::string>& registeredClasses()
{
    static std::set<std::string> classes;
    return classes;
}

struct WindowModeState {
    Platform::WindowMode mode = Platform::WindowMode::FullScreen;
    Platform::WindowModeListener listener;
};

WindowModeState& windowMode()
{
    static WindowModeState state;
    return state;
}

struct ApplicationIcon {
    int size = 0;
    std::vector<std::uint8_t> rgba;
};

ApplicationIcon& applicationIcon()
{
    static ApplicationIcon icon;
    return icon;
}

void GiveIcon(SDL_Window* window)
{
    const ApplicationIcon& icon = applicationIcon();
    if (icon.size <= 0)
        return;
    SDL_Surface* picture = SDL_CreateRGBSurfaceWithFormatFrom(const_cast<std::uint8_t*>(icon.rgba.data()), icon.size,
                                                              icon.size, 32, icon.size * 4, SDL_PIXELFORMAT_RGBA32);
    if (!picture)
        return;
    SDL_SetWindowIcon(window, picture);
    SDL_FreeSurface(picture);
}

std::vector<CPlatformWnd*>& liveWindows()
{
    // Never destroyed: the application object, a global made before this list,
    // destroys its main window from its own destructor.
    static std::vector<CPlatformWnd*>& windows = *new std::vector<CPlatformWnd*>;
    return windows;
}

} // namespace

namespace Platform {

bool RegisterClass(const std::string& className, std::uint32_t /*style*/)
{
    if (className.empty())
        return false;
    return registeredClasses().insert(className).second;
}

void UnregisterAllClasses() { registeredClasses().clear(); }

int GetSystemMetrics(SystemMetric metric)
{
    SDL_DisplayMode mode{};
    if (SDL_WasInit(SDL_INIT_VIDEO) == 0 || SDL_GetDesktopDisplayMode(0, &mode) != 0)
        return 0;
    return metric == SM_CXSCREEN ? mode.w : mode.h;
}

void ShowCursor(bool show)
{
    SDL_ShowCursor(show ? SDL_ENABLE : SDL_DISABLE);
}

void SetWindowMode(WindowMode mode) { windowMode().mode = mode; }
WindowMode GetWindowMode() { return windowMode().mode; }
void SetWindowModeListener(WindowModeListener listener) { windowMode().listener = std::move(listener); }

void SetApplicationIcon(int size, const std::uint8_t* rgba)
{
    ApplicationIcon& icon = applicationIcon();
    icon.size = rgba ? size : 0;
    icon.rgba.assign(rgba, rgba + (rgba ? 4 * size * size : 0));
}

} // namespace Platform

CPlatformWnd::~CPlatformWnd()
{
    if (sdlWindow) {
        Platform::ForgetDisplayWindow(this);
        SDL_DestroyWindow(sdlWindow);
        sdlWindow = nullptr;
    }
    std::erase(liveWindows(), this);
    // The music's end may be noticed at any moment on the audio thread: it
    // must never be posted to a window that no longer exists.
    CSequencer::Instance().ForgetWindow(this);
    CMessageQueue::Instance().ForgetWindow(this);
}

bool CPlatformWnd::CreateEx(std::uint32_t exStyle, const std::string& className, const std::string& title,
                            std::uint32_t style, int x, int y, int width, int height)
{
    if (sdlWindow || registeredClasses().count(className) == 0)
        return false;
    if (SDL_WasInit(SDL_INIT_VIDEO) == 0 || width <= 0 || height <= 0)
        return false;
    // On a HiDPI screen the picture is scaled to the window's pixels, not to
    // its points enlarged again by the desktop (which would blur the sharp modes).
    Uint32 flags = SDL_WINDOW_HIDDEN | SDL_WINDOW_ALLOW_HIGHDPI;
    if (style & WS_POPUP)
        flags |= SDL_WINDOW_BORDERLESS;
    if (exStyle & WS_EX_TOPMOST)
        flags |= SDL_WINDOW_ALWAYS_ON_TOP;
    // Made the way its renderer will draw on it: an OpenGL renderer given a
    // window without the flag destroys and remakes the window, which costs a
    // third of a second at start-up and shows the player a second window.
    if (Platform::RendererForThisRun().openGlWindow)
        flags |= SDL_WINDOW_OPENGL;
    sdlWindow = SDL_CreateWindow(title.c_str(), x, y, width, height, flags);
    if (!sdlWindow)
        return false;
    GiveIcon(sdlWindow);
    liveWindows().push_back(this);
    return true;
}

void CPlatformWnd::ShowWindow(int command)
{
    if (!sdlWindow || command != SW_SHOW)
        return;
    // A window the player wants small appears so, without first covering the desktop.
    if (Platform::GetWindowMode() == Platform::WindowMode::Windowed)
        ApplyWindowMode();
    SDL_ShowWindow(sdlWindow);
    SDL_RaiseWindow(sdlWindow);
    // A newly shown popup becomes the active window at once; the application
    // hears about it before ShowWindow returns, as on the desktop it was made for.
    SendMessage(WM_ACTIVATEAPP, 1, 0);
    // The pointer may already rest where the window appeared: the window
    // chooses its cursor now rather than on the first move.
    PostMessage(WM_SETCURSOR, 0, 0);
}

void CPlatformWnd::DestroyWindow()
{
    if (!sdlWindow)
        return;
    WindowProc(WM_DESTROY, 0, 0);
    Platform::ForgetDisplayWindow(this);
    SDL_DestroyWindow(sdlWindow);
    sdlWindow = nullptr;
    std::erase(liveWindows(), this);
    CMessageQueue::Instance().ForgetWindow(this);
}

bool CPlatformWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!sdlWindow)
        return false;
    CMessageQueue::Instance().Post({this, message, wParam, lParam});
    return true;
}

LRESULT CPlatformWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProc(message, wParam, lParam);
}

LRESULT CPlatformWnd::DefWindowProc(UINT message, WPARAM /*wParam*/, LPARAM /*lParam*/)
{
    switch (message) {
    case WM_CLOSE:
        DestroyWindow();
        return 0;
    case WM_SETCURSOR:
        Platform::ShowCursor(true);
        return 1;
    default:
        return 0;
    }
}

void CPlatformWnd::ToggleFullscreen()
{
    if (!sdlWindow)
        return;
    // The choice is the player's, whatever the desktop makes of it: each press
    // turns the last choice over, not the window's state, which a compositor
    // may overrule (a kiosk shell keeps every window full screen and may say
    // so after the game's own request), and the choice is remembered before
    // the desktop is asked. On Wayland asking waits for the compositor's
    // answer, and one that is slow to answer, or never does, must not keep
    // the choice from being saved.
    const Platform::WindowMode chosen = Platform::GetWindowMode() == Platform::WindowMode::FullScreen
                                            ? Platform::WindowMode::Windowed
                                            : Platform::WindowMode::FullScreen;
    Platform::SetWindowMode(chosen);
    if (auto& listener = windowMode().listener)
        listener(chosen);
    ApplyWindowMode();
}

void CPlatformWnd::ApplyWindowMode()
{
    if (!sdlWindow)
        return;
    // The picture is scaled to whatever size the window has, so either way the
    // whole playing field shows.
    if (Platform::GetWindowMode() == Platform::WindowMode::Windowed) {
        SDL_SetWindowFullscreen(sdlWindow, 0);
        SDL_SetWindowAlwaysOnTop(sdlWindow, SDL_FALSE);
        SDL_SetWindowBordered(sdlWindow, SDL_TRUE);
        if (windowedWidth > 0)
            SDL_SetWindowSize(sdlWindow, windowedWidth, windowedHeight);
        SDL_SetWindowPosition(sdlWindow, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
    } else {
        // Back over the whole desktop it came from, also where no window
        // manager moves and sizes it.
        SDL_Rect desktop{};
        if (SDL_GetDisplayBounds(std::max(SDL_GetWindowDisplayIndex(sdlWindow), 0), &desktop) == 0) {
            SDL_SetWindowPosition(sdlWindow, desktop.x, desktop.y);
            SDL_SetWindowSize(sdlWindow, desktop.w, desktop.h);
        }
        SDL_SetWindowAlwaysOnTop(sdlWindow, SDL_TRUE);
        SDL_SetWindowFullscreen(sdlWindow, SDL_WINDOW_FULLSCREEN_DESKTOP);
    }
}

CPlatformWnd* CPlatformWnd::FromSdlId(std::uint32_t id)
{
    for (CPlatformWnd* w : liveWindows())
        if (w->sdlWindow && SDL_GetWindowID(w->sdlWindow) == id)
            return w;
    return nullptr;
}

CPlatformWnd* CPlatformWnd::AnyWindow()
{
    return liveWindows().empty() ? nullptr : liveWindows().front();
}
