#pragma once
#include "platform/Gamepads.h"
#include "platform/Types.h"

#include <map>
#include <memory>
#include <string>

union SDL_Event;

// The framework's application: initialisation once, then a message loop that
// hands window messages to their windows and calls the idle handler whenever
// no message waits. The loop ends when the quit message arrives.
class CPlatformApp {
public:
    CPlatformApp();
    CPlatformApp(const CPlatformApp&) = delete;
    CPlatformApp& operator=(const CPlatformApp&) = delete;
    virtual ~CPlatformApp();

    // The exit status of a program whose InitInstance failed.
    static constexpr int StartFailedStatus = 1;

    // Starts SDL, runs InitInstance and, if it succeeds, the message loop.
    // Returns the quit message's exit code, or StartFailedStatus.
    int Run();

    // Handles every message that waits now, without idling or blocking.
    // Returns false once the quit message has been taken.
    bool PumpMessages();

    CPlatformWnd* GetMainWnd() const { return mainWindow; }

    // Starts listening to gamepads, which then press keys in the main window.
    // Run does it once the application has started. False when SDL cannot.
    bool StartGamepads();
    CGamepads* GetGamepads() const { return gamepads.get(); }

protected:
    virtual bool InitInstance() { return true; }
    // Called while no message waits; true asks to be called again at once.
    virtual bool OnIdle(long count);
    virtual int ExitInstance() { return exitCode; }
    // What a gamepad control means now, in keys; by default nothing.
    virtual PadKeys BindPadControl(PadControl /*control*/) { return {}; }
    // The key a keyboard key (the platform's code) sends when pressed now,
    // given the key of the game's it is itself (0 for none); by default that.
    virtual UINT TranslateKey(int /*keyCode*/, UINT ownKey) { return ownKey; }

    void SetMainWnd(CPlatformWnd* window) { mainWindow = window; }

private:
    void TranslateSdlEvent(const SDL_Event& event);
    // Hands every posted message to its window; false once the quit message is taken.
    bool DispatchPosted();
    void Dispatch(UINT message, HWND window, WPARAM wParam, LPARAM lParam);
    CPlatformWnd* InputWindow() const;
    // The key a keyboard key's press or release sends: a release the same as its press.
    UINT SentKey(int keyCode, bool down);

    CPlatformWnd* mainWindow = nullptr;
    std::unique_ptr<CGamepads> gamepads;
    std::map<int, UINT> keysDown; // what each keyboard key held down sent
    int exitCode = 0;
    bool quitTaken = false;
};

namespace Platform {
// SIGINT, SIGTERM and SIGHUP become a close request to the main window, so an
// interrupted or logged-out game still shuts down normally and saves; where
// no message loop runs they end the program at once (see Ending.h).
void InstallCloseSignals();
// Starts the SDL subsystems the program uses. Without a display the video
// part fails quietly: windows then cannot be created. SDL's stand-in video
// drivers, which show nothing, count as no display unless SDL_VIDEODRIVER
// names them. Safe to call again.
void StartSdl();
// What SDL last said went wrong.
std::string LastSdlError();
// Why windows cannot be created, and what the player can do about it.
std::string WhyNoWindow();
// Whether a video driver is one of SDL's stand-ins that show nothing, and
// whether the SDL_VIDEODRIVER list asks for it by name.
bool ShowsNothing(const std::string& driver);
bool NamedInDriverList(const std::string& driver, const std::string& list);
} // namespace Platform
