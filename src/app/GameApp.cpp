#include "app/GameApp.h"

#include "app/ComfortNotice.h"
#include "app/GameWnd.h"
#include "display/SpriteInstance.h"
#include "platform/Clock.h"
#include "platform/ComfortKeys.h"
#include "platform/Console.h"
#include "platform/Ending.h"
#include "platform/Keys.h"
#include "platform/MessageBox.h"
#include "ship/Ship.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr const char* WindowClassName = "QVclientWinType";
constexpr const char* WindowTitle = "Quelvarion";
constexpr std::int16_t DisplayWidth = 1024;
constexpr std::int16_t DisplayHeight = 768;
constexpr std::int16_t DisplayBitsPerPixel = 16;

LOGFONT FontRequest(std::int32_t height, std::int32_t width, std::int32_t weight)
{
    LOGFONT request;
    request.lfHeight = height;
    request.lfWidth = width;
    request.lfWeight = weight;
    request.lfCharSet = ANSI_CHARSET;
    request.lfOutPrecision = OUT_TT_PRECIS;
    request.lfPitchAndFamily = FF_MODERN;
    return request;
}

} // namespace

CGameApp::CGameApp()
{
    Trace(" ", 0);
    Trace("******************************************", 0);
    Trace("            Initialisation", 0);
    Trace("******************************************", 0);
    Trace(" ", 0);
    Trace("Application Constructor", 0);
    ready = 0;
    gameState = StateMenu;
    componentSerial = 0;
    screenWidth = DisplayWidth;
    screenHeight = DisplayHeight;
    bitsPerPixel = DisplayBitsPerPixel;
    musicDevice = NoMusicDevice;
}

CGameApp::~CGameApp()
{
    // A game still in play when the program ends is kept as it stood.
    EndRecording();
    ready = 0;
    Shutdown();
    // The settings are saved as the menus go, after the display has: a display
    // lost while it shuts down still finds them to save until then.
    Platform::SetLastWords(nullptr);
}

void CGameApp::SaveForEnding()
{
    EndRecording();
    menus.SaveIfAsked();
    // The program ends the moment this returns: the replay's own save must be done.
    recorder.WaitForSaves();
}

bool CGameApp::InitInstance()
{
    Trace("Beginning Initialisation", 0);
    Trace("Registering window class QVclientWinType", 0);
    random.Seed(static_cast<std::uint32_t>(Platform::CalendarSeconds()));
    mainWnd = std::make_unique<CGameWnd>();
    Platform::RegisterClass(WindowClassName, CS_HREDRAW | CS_VREDRAW);

    Trace("Creating Window \"Quelvarion\" ", 0);
    const int desktopWidth = Platform::GetSystemMetrics(Platform::SM_CXSCREEN);
    const int desktopHeight = Platform::GetSystemMetrics(Platform::SM_CYSCREEN);
    if (!mainWnd->CreateEx(WS_EX_TOPMOST, WindowClassName, WindowTitle, WS_POPUP, 0, 0, desktopWidth,
                           desktopHeight)) {
        Trace("Error, Unable to create window!", 0);
        Platform::PrintError("cannot open the game's window: " + Platform::WhyNoWindow());
        return false;
    }
    mainWnd->SetWindowedSize(screenWidth, screenHeight);
    SetMainWnd(mainWnd.get());

    Trace("Creating game fonts", 0);
    CreateFonts();

    Trace("Displaying main window", 0);
    mainWnd->ShowWindow(SW_SHOW);
    mainWnd->UpdateWindow();

    const Result displayResult = display.Init(GetMainWindowHandle());
    ReportDisplayError(displayResult);
    if (displayResult != 0)
        return false;

    // A replay opens on its game at once: the title belongs to a start of the game.
    if (!replayShow) {
        Trace("display title screen", 0);
        display.DrawTitleScreen();
    }

    Trace("Restore all direct draw buffers", 0);
    display.Restore();

    if (!replayShow) {
        Trace("Playing initialisation sound", 0);
        PlayStartupSound();
    }

    Trace("Creating background stars", 0);
    for (int i = 0; i < StartupStarCount; ++i)
        stars.push_back(CStar());

    if (!replayShow)
        Platform::Sleep(TitlePauseMs);

    lastFrameTime = Platform::TimeGetTime();
    ready = 1;
    Trace("********* Initialisation Complete ********", 0);
    Trace(" ", 0);
    BeginReplayShow();
    return true;
}

void CGameApp::CreateFonts()
{
    textFont.CreateFontIndirect(FontRequest(14, 8, FW_NORMAL));
    smallFont.CreateFontIndirect(FontRequest(10, 7, FW_NORMAL));
    menuFont.CreateFontIndirect(FontRequest(20, 12, FW_NORMAL));
    titleFont.CreateFontIndirect(FontRequest(48, 20, FW_HEAVY));
}

void CGameApp::Shutdown()
{
    sprites.ReleaseSurfaces();
    display.Release();
    world.Clear();
    DeleteLiveSprites();
    if (musicDevice != NoMusicDevice)
        CloseMusic();
}

void CGameApp::DeleteLiveSprites()
{
    liveSprites.DeleteAll();
}

std::string CGameApp::DisplayErrorText(Result code)
{
    switch (code) {
    case E_NOTIMPL: return "Unsupported\n";
    case DDERR_NOROTATIONHW: return "No rotation hardware\n";
    default: {
        char text[64];
        std::snprintf(text, sizeof text, "Direct Draw Init Failed (%08lx)\n", static_cast<unsigned long>(code));
        return text;
    }
    }
}

std::string CGameApp::DisplayFailureLine(Result code)
{
    std::string line = "cannot start the display: " + DisplayErrorText(code);
    line.pop_back(); // the box's text ends in a line feed; this line ends with its advice
    switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DATA:
    case ERROR_READ_FAULT:
        return line + ": " + CDisplay::BlankFile + " is missing or unreadable; start the game with its launcher, "
                      "or from the folder that holds its data, or reinstall it";
    default:
        return line + ": the graphics system refused (" + Platform::LastSdlError() +
               "); check the graphics driver and the display";
    }
}

void CGameApp::ReportDisplayError(Result code)
{
    if (code == 0)
        return;
    const std::string text = DisplayErrorText(code);
    TraceCode(code, text, 0);
    Platform::PrintError(DisplayFailureLine(code));
    Platform::MessageBox(GetMainWindowHandle(), text, "ERROR", MB_OK);
    Shutdown();
    if (mainWnd)
        mainWnd->DestroyWindow();
}

HWND CGameApp::GetMainWindowHandle() const
{
    return mainWnd ? mainWnd->GetSafeHwnd() : nullptr;
}

bool CGameApp::OnIdle(long count)
{
    const bool frameworkResult = CPlatformApp::OnIdle(count);
    // A replay goes on through the focus changes it recorded, to its end.
    if (ready && replayShow)
        return ShowReplayFrame();
    if (!ready || !active)
        return frameworkResult;

    const std::uint32_t now = Platform::TimeGetTime();
    if (now < lastFrameTime)
        lastFrameTime = 0; // the millisecond clock wrapped
    elapsedMs = static_cast<double>(now) - static_cast<double>(lastFrameTime);
    lastFrameTime = now;
    if (elapsedMs > StalledFrameMs) {
        // As if the window had lost its activation and found it again: the
        // level pauses before the world sees the gap, and a replay keeps both.
        OnActivateMessage(false);
        OnActivateMessage(true);
    }

    AdvanceFrame(elapsedMs);
    DrawFrame(elapsedMs);
    if (recordedFrame >= 0 && display.GetBack())
        LookAtFrame(static_cast<std::size_t>(recordedFrame), *display.GetBack());
    DrawComfortNotice();
    if (display.Flip() == DDERR_SURFACELOST)
        display.Restore();
    return true;
}

void CGameApp::SetGameState(std::int32_t state)
{
    gameState = state;
    if (state != StatePlaying) {
        world.SetPaused(true);
        designer.Reset();
    } else {
        world.SetPaused(false);
    }
}

void CGameApp::SetPause(bool pause)
{
    if (gameState == StatePlaying && pause) {
        world.SetPaused(true);
        gameState = StatePaused;
    } else if (gameState == StatePaused && !pause) {
        world.SetPaused(false);
        gameState = StatePlaying;
    }
}

void CGameApp::AdvanceFrame(double frameMs)
{
    elapsedMs = frameMs >= 0.0 ? std::min(frameMs, MaxFrameMs) : 0.0;
    // The rules take no time from a frame in which no level is played.
    const bool idle = gameState != StatePlaying;
    if (!idle)
        world.Update(elapsedMs);
    recordedFrame = -1;
    if (recorder.IsRecording()) {
        recorder.Frame(elapsedMs, FrameHash(), idle);
        recordedFrame = static_cast<std::int64_t>(recorder.GetReplay().FrameCount()) - 1;
        EndRecordingIfOver();
    }
}

void CGameApp::NewGame()
{
    StartGameAt(menus.GetStartLevel());
}

void CGameApp::StartGameAt(std::int32_t startLevel)
{
    if (recorder.IsRecording()) {
        // The game is abandoned for this one, by the key being handled now.
        if (dispatchingInput)
            recorder.DropLastInput();
        EndRecording();
    }
    recorder.Begin(ReplayHeader(startLevel));
    DeleteLiveSprites();
    world.NewGame(startLevel);
    SetGameState(StatePlaying);
    PlayMusic(false);
}

void CGameApp::EndRecordingIfOver()
{
    if (recorder.IsRecording() && gameState == StateMenu && !menus.IsEnteringName())
        EndRecording();
}

void CGameApp::GameOver()
{
    menus.AddHighScore(world.GetScore());
    SetGameState(StateMenu);
}

void CGameApp::OnActivateMessage(bool isActive)
{
    if (replayShow) {
        // The replay holds its own recorded activations and goes on through
        // the live window's; coming back, the window's pictures are restored.
        active = isActive ? 1 : 0;
        if (isActive && ready == 1)
            display.Restore();
        return;
    }
    recorder.Input(WM_ACTIVATEAPP, isActive ? 1 : 0);
    OnActivate(isActive);
}

void CGameApp::OnKeyMessage(UINT key, bool pressed)
{
    if (replayShow) {
        OnReplayLiveKey(key, pressed);
        return;
    }
    if (Platform::IsWatchingKey(key))
        return; // the game as played knows nothing of them
    recorder.Input(pressed ? WM_KEYDOWN : WM_KEYUP, key);
    dispatchingInput = true;
    OnKey(key, pressed);
    dispatchingInput = false;
    EndRecordingIfOver();
}

void CGameApp::OnActivate(bool isActive)
{
    active = isActive ? 1 : 0;
    if (isActive && ready == 1) {
        display.Restore();
        SetPause(true);
    }
}

KeyRoute CGameApp::RouteKey(std::int32_t state, UINT key, bool pressed, bool hasPlayer)
{
    // The receivers read only the key code's low byte.
    if (state == StatePlaying && (key & 0xFF) == VK_ESCAPE && pressed)
        return KeyRoute::Pause;
    if (state == StatePlaying)
        return hasPlayer ? KeyRoute::Ship : KeyRoute::Dropped;
    if (state == StateMenu || state == StatePaused)
        return KeyRoute::Menus;
    if (state == StateDesign)
        return KeyRoute::Designer;
    return KeyRoute::Dropped;
}

void CGameApp::OnKey(UINT key, bool pressed)
{
    CShip* player = world.GetPlayer();
    switch (RouteKey(gameState, key, pressed, player != nullptr)) {
    case KeyRoute::Pause: SetPause(true); break;
    case KeyRoute::Ship: player->PlayerKey(key, pressed); break;
    case KeyRoute::Menus: menus.OnKey(key, pressed); break;
    case KeyRoute::Designer: designer.OnKey(key, pressed); break;
    case KeyRoute::Dropped: break;
    }
}

CPadBindings::Context CGameApp::InputContext() const
{
    using Context = CPadBindings::Context;
    switch (RouteKey(gameState, 0, true, world.GetPlayer() != nullptr)) { // where any key but Escape goes now
    case KeyRoute::Menus: return menus.IsEnteringName() ? Context::NameEntry : Context::Menus;
    case KeyRoute::Designer: return Context::Designer;
    default: return Context::Flight;
    }
}

PadKeys CGameApp::BindPadControl(PadControl control)
{
    if (replayShow)
        return ReplayPadKeys(control);
    CPadBindings::Facts facts;
    facts.context = InputContext();
    if (facts.context == CPadBindings::Context::NameEntry) {
        const CHighScoreTable& scores = menus.GetHighScores();
        facts.name = scores.GetName(scores.GetEditIndex());
    }
    if (const CShip* player = world.GetPlayer())
        for (const CLaser& laser : player->GetLasers())
            facts.fireKeys.push_back(laser.GetFireKey());
    return padBindings.Bind(control, facts);
}

// A letter or digit stands for another key only where the game reads no
// character (a name being typed, a fire key being chosen), and a key a
// laser fires on stays the laser's.
UINT CGameApp::TranslateKey(int keyCode, UINT ownKey)
{
    const UINT bound = keyBindings.BoundTo(keyCode);
    const bool character = (ownKey >= '0' && ownKey <= '9') || (ownKey >= 'A' && ownKey <= 'Z');
    if (!bound || !character)
        return bound ? bound : ownKey;
    const CPadBindings::Context context = InputContext();
    if (context == CPadBindings::Context::NameEntry || context == CPadBindings::Context::Designer)
        return ownKey;
    if (const CShip* player = world.GetPlayer())
        for (const CLaser& laser : player->GetLasers())
            if (static_cast<unsigned char>(laser.GetFireKey()) == ownKey)
                return ownKey;
    return bound;
}

void CGameApp::DrawComfortNotice()
{
    CSurface* back = display.GetBack();
    if (!back)
        return;
    const std::uint32_t now = Platform::TimeGetTime();
    if (Platform::TakeScreenshotRequest())
        screenshots.Take(*back);
    for (const std::string& outcome : screenshots.TakeOutcomes())
        CComfortNotice::Instance().Show(outcome, now);
    CComfortNotice::Instance().Draw(*back, smallFont, screenWidth, screenHeight, now);
}
