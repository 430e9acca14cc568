#pragma once
#include "app/FrameObserver.h"
#include "app/GameControl.h"
#include "app/Recorder.h"
#include "app/KeyBindings.h"
#include "app/PadBindings.h"
#include "app/Screenshots.h"
#include "core/Random.h"
#include "core/Trace.h"
#include "display/Display.h"
#include "display/SpriteList.h"
#include "display/SpriteSet.h"
#include "display/Star.h"
#include "frontend/MenuSystem.h"
#include "frontend/ShipDesigner.h"
#include "platform/App.h"
#include "platform/Font.h"
#include "world/World.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class CGameWnd;
class CReplayShow;
class CShip;
class CSpriteInstance;
class CSurface;
class CTextPen;

// Where a key goes, by the game state it arrives in.
enum class KeyRoute {
    Pause,    // Escape pressed during play
    Ship,     // the player's ship
    Menus,    // the menu system
    Designer, // the ship design screen
    Dropped,  // nobody: play with no ship of the player's
};

// The application object: it owns every long-lived part of the game, starts
// it up, makes one frame per idle call and shuts it down. Its trace calls
// (Trace, TraceValue, TraceCode) are the program's own, shared with every layer.
class CGameApp : public CPlatformApp, public CTrace {
public:
    static constexpr std::uint32_t NoMusicDevice = 0xFFFFFFFF;
    static constexpr int StartupStarCount = 600;
    static constexpr std::uint32_t TitlePauseMs = 6000;
    // A frame this much later than the last one means the program was stopped
    // (a suspend, a debugger, Ctrl+Z) or the clock jumped: no player was there.
    static constexpr std::uint32_t StalledFrameMs = 1000;
    // Exit statuses of a replay checked or shown.
    static constexpr int ReplayDiffersStatus = 1;
    static constexpr int ReplayUnreadableStatus = 3;
    // The check could not be set up (no scratch folder): nothing was played.
    static constexpr int ReplaySetupFailedStatus = 4;

    CGameApp();
    ~CGameApp() override;

    // Start-up and shut-down.
    bool InitInstance() override;
    int ExitInstance() override;
    void Shutdown();
    // What an ending at once keeps: the game in play and the settings, as at
    // a normal end, through files alone.
    void SaveForEnding();
    void ReportDisplayError(Result code);
    static std::string DisplayErrorText(Result code);
    // The line on stderr for a failed display start: what failed, what to do.
    static std::string DisplayFailureLine(Result code);

    // Frame loop and game states.
    bool OnIdle(long count) override;
    void SetGameState(std::int32_t state);
    void SetPause(bool pause);
    std::int32_t GetGameState() const { return gameState; }
    void NewGame();
    // A new game whose level counter starts one below startLevel.
    void StartGameAt(std::int32_t startLevel);
    void GameOver();
    // The rules' part of one frame: the world advances while a level is played.
    // A frame is never longer than MaxFrameMs: a clock that jumps (a machine
    // woken from sleep) or a hostile replay gives the rules no time they
    // cannot count in whole milliseconds.
    static constexpr double MaxFrameMs = 3600000.0;
    void AdvanceFrame(double frameMs);

    // Replays: --replay shows one in the window; --verify plays one without
    // a window or sound and says whether it ends as recorded (0) or not.
    // The show, owned by whoever asked for it, outlives the application.
    void SetReplayShow(CReplayShow* show);
    int VerifyReplayFile(const std::string& file);
    int VerifyReplay(CReplay replay, const std::string& name);
    // Neither a replay shown nor one checked touches the player's files.
    void KeepPlayersFiles();
    // Says on stderr what a replay from another build does not share with
    // this one; false when it was recorded under other rules.
    static bool PlaysByOurRules(const CReplay::Header& header, const std::string& file);
    // What a replay starts from, how the game stands after a frame, and how
    // it stands at the end of a recording.
    CReplay::Header ReplayHeader(std::int32_t startLevel) const;
    // withRandom: the random generator's state too, as replays from format 2 on keep it.
    std::uint32_t FrameHash(bool withRandom = true) const;
    CReplay::Summary ReplaySummary(std::uint32_t frameCount) const;
    // Ends the game's recording as the game stands now, and saves it.
    void EndRecording();

    // Window messages as the main window receives them: recorded while a
    // game is played, and kept from the rules while a replay is shown.
    void OnActivateMessage(bool isActive);
    void OnKeyMessage(UINT key, bool pressed);
    // What the rules do with them.
    void OnActivate(bool isActive);
    void OnKey(UINT key, bool pressed);
    static KeyRoute RouteKey(std::int32_t state, UINT key, bool pressed, bool hasPlayer);
    // A gamepad control pressed: the keys it stands for where the keys go now.
    PadKeys BindPadControl(PadControl control) override;
    UINT TranslateKey(int keyCode, UINT ownKey) override;
    // Where the keys go now, as the pad's and the keyboard's bindings see it.
    CPadBindings::Context InputContext() const;
    HWND GetMainWindowHandle() const;

    // Frame composition.
    void DrawFrame(double elapsedMs);
    // Over the frame kept, before it is shown: a comfort just changed. A
    // screenshot asked for is taken first, of the frame as the game made it.
    void DrawComfortNotice();
    // The hull and energy numbers beside one ship.
    void DrawShipStats(const CShip& ship, CTextPen& pen);

    // Sound effects and music.
    void PlayStartupSound();
    void PlaySoundEffect(std::int16_t priority, const std::string& file);
    Result PlayMusic(bool restart);
    void ApplyMusicOption();
    Result OpenMusic(HWND window, const std::string& file);
    void CloseMusic();

    // Components are numbered 1, 2, 3, ... through the run.
    std::int32_t NextComponentSerial() { return ++componentSerial; }

    // The shared random generator.
    std::int32_t Rand() { return random.Rand(); }
    double Draw(double m) { return random.Draw(m); }
    void SeedRandom(std::uint32_t seed) { random.Seed(seed); }

    std::int16_t GetScreenWidth() const { return screenWidth; }
    std::int16_t GetScreenHeight() const { return screenHeight; }
    std::int16_t GetBitsPerPixel() const { return bitsPerPixel; }

    // The application object of this run (null when there is none).
    static CGameApp* Current() { return current; }

private:
    // Registers the object as the current application for as long as any of
    // its members lives, so members' destructors can still reach it.
    // An application made while another lives (a replay checked beside a
    // game) stands in for it until it goes.
    struct CurrentRegistration {
        explicit CurrentRegistration(CGameApp* app) : owner(app), previous(current) { current = app; }
        ~CurrentRegistration() { if (current == owner) current = previous; }
        CGameApp* owner;
        CGameApp* previous;
    };
    CurrentRegistration registration{this};

public:
    // Fields, in the order they are built.
    CSpriteList liveSprites;
    CSpriteSet sprites;
    CDisplay display;
    CWorld world;
    CFont titleFont;
    CFont menuFont;
    CFont textFont;
    CFont smallFont;
    std::int16_t screenWidth = 0;
    std::int16_t screenHeight = 0;
    std::int16_t bitsPerPixel = 0;
    std::unique_ptr<CGameWnd> mainWnd;
    std::vector<CStar> stars;
    std::int32_t ready = 0;
    std::int32_t active = 0;
    CMenuSystem menus;
    CShipDesigner designer;
    double elapsedMs = 0.0;
    std::uint32_t lastFrameTime = 0;
    std::int32_t gameState = StateMenu;
    std::int32_t componentSerial = 0;
    std::int16_t lastSoundPriority = 0;
    std::uint32_t musicDevice = NoMusicDevice;
    CRandom random;
    CRecorder recorder;
    // Shown the recorded frames' pictures, where something outside the game
    // asks for them.
    CFrameObserver* frameObserver = nullptr;
    bool IsFrameWanted(std::size_t frame) const { return frameObserver && frameObserver->IsWanted(frame); }
    void LookAtFrame(std::size_t frame, CSurface& picture)
    {
        if (IsFrameWanted(frame))
            frameObserver->Look(frame, picture);
    }
    CPadBindings padBindings;
    CKeyBindings keyBindings;
    CScreenshots screenshots;

private:
    void CreateFonts();
    void DrawStars(CSurface& back);
    void DrawHeadsUp(CTextPen& pen);
    void DeleteLiveSprites();
    // After the ship was lost and its score, if any, has a name.
    void EndRecordingIfOver();

    void BeginReplayShow();
    bool ShowReplayFrame();
    void OnReplayLiveKey(UINT key, bool pressed);
    static PadKeys ReplayPadKeys(PadControl control);

    CReplayShow* replayShow = nullptr;
    bool dispatchingInput = false;
    // The recorded frame the last AdvanceFrame made, or -1 when none was recorded.
    std::int64_t recordedFrame = -1;

    static inline CGameApp* current = nullptr;
};

// The one application object; library code reaches it only through here.
inline CGameApp& TheApp()
{
    return *CGameApp::Current();
}
