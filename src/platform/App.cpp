#include "platform/App.h"

#include "platform/AudioDevice.h"
#include "platform/ComfortKeys.h"
#include "platform/DisplayDevice.h"
#include "platform/Ending.h"
#include "platform/Keys.h"
#include "platform/Scaling.h"
#include "platform/MessageQueue.h"
#include "platform/Window.h"

#include <SDL.h>
#include <SDL_syswm.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <dlfcn.h>
#include <sstream>

namespace {

// How long the loop sleeps at most while idle, so a signal is noticed soon.
constexpr int IdleWaitMs = 100;
// The name desktops know the game's windows by, its desktop file's: on
// Wayland the application id, on X11 the window class. Without it SDL takes
// the program file's name, which an installation may choose otherwise.
constexpr const char* DesktopAppId = "quelvarion";

std::string& noVideoReason()
{
    static std::string reason;
    return reason;
}

std::string Lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

bool HasEnvironment(const char* name)
{
    const char* value = std::getenv(name);
    return value && *value;
}

// Video up, and on a driver that shows something or was asked for; otherwise
// the reason why not.
std::string StartVideo()
{
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return std::string("SDL found no display (") + SDL_GetError() + ")";
    const std::string driver = SDL_GetCurrentVideoDriver() ? SDL_GetCurrentVideoDriver() : "";
    const char* asked = SDL_GetHint(SDL_HINT_VIDEODRIVER);
    if (Platform::ShowsNothing(driver) && !Platform::NamedInDriverList(driver, asked ? asked : "")) {
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        return "SDL found no display, only its '" + driver + "' video, which shows nothing";
    }
    if (driver == "x11")
        Platform::WatchDisplayConnection();
    return "";
}

// SDL answers a Wayland compositor that went away with a quit request, as if
// the player had asked; the connection itself tells the two apart.
bool WaylandConnectionBroken([[maybe_unused]] SDL_Window* window)
{
#if defined(SDL_VIDEO_DRIVER_WAYLAND)
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!window || !SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_WAYLAND)
        return false;
    void* client = ::dlopen("libwayland-client.so.0", RTLD_LAZY | RTLD_NOLOAD);
    if (!client)
        return false;
    using GetError = int (*)(wl_display*);
    const auto getError = reinterpret_cast<GetError>(::dlsym(client, "wl_display_get_error"));
    const bool broken = getError && getError(info.info.wl.display) != 0;
    ::dlclose(client);
    return broken;
#else
    return false;
#endif
}

} // namespace

namespace Platform {

void InstallCloseSignals()
{
    HearEndingSignals();
}

void StartSdl()
{
    SDL_SetHint(SDL_HINT_VIDEO_MINIMIZE_ON_FOCUS_LOSS, "0");
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    // The game never uses the mouse. On Wayland SDL would make the warp of the
    // hidden pointer it does on leaving full screen by locking the desktop's
    // pointer to the window: the player's pointer is theirs.
    SDL_SetHint(SDL_HINT_VIDEO_WAYLAND_EMULATE_MOUSE_WARP, "0");
    for (const char* name : {"SDL_VIDEO_WAYLAND_WMCLASS", "SDL_VIDEO_X11_WMCLASS"})
        ::setenv(name, DesktopAppId, 0); // a player's own choice stays
    if (SDL_WasInit(SDL_INIT_EVENTS) == 0)
        SDL_InitSubSystem(SDL_INIT_EVENTS | SDL_INIT_TIMER);
    if (SDL_WasInit(SDL_INIT_VIDEO) == 0)
        noVideoReason() = StartVideo();
}

std::string LastSdlError()
{
    const char* error = SDL_GetError();
    return error && *error ? error : "no reason given";
}

std::string WhyNoWindow()
{
    std::string reason = noVideoReason();
    if (reason.empty())
        reason = LastSdlError();
    if (!HasEnvironment("DISPLAY") && !HasEnvironment("WAYLAND_DISPLAY"))
        return reason + "; neither DISPLAY nor WAYLAND_DISPLAY is set: start the game from a desktop session";
    return reason + "; check that DISPLAY or WAYLAND_DISPLAY names a display you may use";
}

bool ShowsNothing(const std::string& driver)
{
    const std::string name = Lowered(driver);
    return name == "offscreen" || name == "dummy";
}

bool NamedInDriverList(const std::string& driver, const std::string& list)
{
    std::istringstream names(Lowered(list));
    for (std::string name; std::getline(names, name, ',');)
        if (name == Lowered(driver))
            return true;
    return false;
}

} // namespace Platform

CPlatformApp::CPlatformApp()
{
    // Registered while the application object is being built, so before its
    // destructor is: SDL goes down only after the application has let go of it.
    static const bool quitRegistered = (std::atexit(SDL_Quit), true);
    (void)quitRegistered;
}

// The application's own destructor has run by now and closed its music, so
// whatever still sounds can go.
CPlatformApp::~CPlatformApp()
{
    Platform::CloseAudio();
}

bool CPlatformApp::OnIdle(long /*count*/)
{
    return false;
}

int CPlatformApp::Run()
{
    Platform::StartSdl();
    Platform::InstallCloseSignals();
    if (!InitInstance()) {
        Platform::SetPhase(Platform::Phase::Ending);
        if (mainWindow)
            mainWindow->DestroyWindow();
        ExitInstance();
        return StartFailedStatus;
    }
    // Only now, so that looking for pads never delays the title screen.
    StartGamepads();
    long idleCount = 0;
    Platform::SetPhase(Platform::Phase::Looping);
    for (;;) {
        if (!PumpMessages())
            break;
        if (OnIdle(idleCount++))
            continue;
        idleCount = 0;
        SDL_WaitEventTimeout(nullptr, IdleWaitMs); // sleep until input, a posted message or a signal
    }
    Platform::SetPhase(Platform::Phase::Ending);
    return ExitInstance();
}

bool CPlatformApp::PumpMessages()
{
    if (quitTaken)
        return false;
    if (Platform::TakeCloseRequest()) {
        if (mainWindow)
            mainWindow->PostMessage(WM_CLOSE, 0, 0);
        else
            Platform::PostQuitMessage(0);
    }
    if (!DispatchPosted())
        return false;
    // What one event posts is handled before the next is translated, so a
    // gamepad button is read against the game as the keys before it left it.
    SDL_Event event;
    while (SDL_PollEvent(&event)) {
        TranslateSdlEvent(event);
        if (!DispatchPosted())
            return false;
    }
    if (gamepads)
        gamepads->Repeat(InputWindow());
    return DispatchPosted();
}

bool CPlatformApp::DispatchPosted()
{
    auto& queue = CMessageQueue::Instance();
    while (auto msg = queue.Take()) {
        if (msg->message == WM_QUIT) {
            exitCode = static_cast<int>(msg->wParam);
            quitTaken = true;
            return false;
        }
        Dispatch(msg->message, msg->window, msg->wParam, msg->lParam);
    }
    return true;
}

bool CPlatformApp::StartGamepads()
{
    if (!gamepads)
        gamepads = std::make_unique<CGamepads>([this](PadControl control) { return BindPadControl(control); });
    return gamepads->Start();
}

// Where input without a window of its own goes: the main window.
CPlatformWnd* CPlatformApp::InputWindow() const
{
    return mainWindow ? mainWindow : CPlatformWnd::AnyWindow();
}

void CPlatformApp::Dispatch(UINT message, HWND window, WPARAM wParam, LPARAM lParam)
{
    // A window destroyed after the message was posted no longer takes it.
    if (window && window->GetSdlWindow())
        window->WindowProc(message, wParam, lParam);
}

UINT CPlatformApp::SentKey(int keyCode, bool down)
{
    const auto held = keysDown.find(keyCode);
    if (!down) {
        if (held == keysDown.end())
            return Platform::VirtualKeyFor(keyCode);
        const UINT sent = held->second;
        keysDown.erase(held);
        return sent;
    }
    if (held != keysDown.end())
        return held->second; // a repeat
    const UINT sent = TranslateKey(keyCode, Platform::VirtualKeyFor(keyCode));
    if (sent)
        keysDown[keyCode] = sent;
    return sent;
}

void CPlatformApp::TranslateSdlEvent(const SDL_Event& event)
{
    auto& queue = CMessageQueue::Instance();
    switch (event.type) {
    case SDL_QUIT:
        if (mainWindow && WaylandConnectionBroken(mainWindow->GetSdlWindow()))
            Platform::EndAtOnce(Platform::DisplayLostStatus, Platform::DisplayLostLine);
        if (CPlatformWnd* w = InputWindow())
            queue.Post({w, WM_CLOSE, 0, 0});
        break;
    case SDL_KEYDOWN:
    case SDL_KEYUP: {
        CPlatformWnd* w = CPlatformWnd::FromSdlId(event.key.windowID);
        if (!w)
            w = mainWindow;
        if (!w)
            break;
        const bool down = event.type == SDL_KEYDOWN;
        const SDL_Keycode sym = event.key.keysym.sym;
        if ((sym == SDLK_RETURN || sym == SDLK_KP_ENTER) && (event.key.keysym.mod & KMOD_ALT)) {
            if (down && !event.key.repeat)
                w->ToggleFullscreen();
            break; // a window-manager key: the game never sees it
        }
        if (Platform::TakeComfortKey(sym, down, event.key.repeat))
            break;
        if (UINT vk = SentKey(sym, down))
            queue.Post({w, down ? WM_KEYDOWN : WM_KEYUP, vk, 0});
        break;
    }
    case SDL_MOUSEMOTION:
        if (CPlatformWnd* w = CPlatformWnd::FromSdlId(event.motion.windowID))
            queue.Post({w, WM_SETCURSOR, 0, 0});
        break;
    case SDL_WINDOWEVENT: {
        CPlatformWnd* w = CPlatformWnd::FromSdlId(event.window.windowID);
        if (!w)
            break;
        switch (event.window.event) {
        case SDL_WINDOWEVENT_FOCUS_GAINED: queue.Post({w, WM_ACTIVATEAPP, 1, 0}); break;
        case SDL_WINDOWEVENT_FOCUS_LOST: queue.Post({w, WM_ACTIVATEAPP, 0, 0}); break;
        case SDL_WINDOWEVENT_ENTER: queue.Post({w, WM_SETCURSOR, 0, 0}); break;
        case SDL_WINDOWEVENT_CLOSE: queue.Post({w, WM_CLOSE, 0, 0}); break;
        case SDL_WINDOWEVENT_EXPOSED:
        case SDL_WINDOWEVENT_SIZE_CHANGED: Platform::NotifyWindowExposed(); break;
        case SDL_WINDOWEVENT_MINIMIZED:
        case SDL_WINDOWEVENT_HIDDEN: Platform::NotifySurfacesLost(); break;
        default: break;
        }
        break;
    }
    case SDL_RENDER_TARGETS_RESET:
    case SDL_RENDER_DEVICE_RESET:
        Platform::NotifySurfacesLost();
        break;
    default:
        if (gamepads)
            gamepads->HandleEvent(event, InputWindow());
        break;
    }
}
