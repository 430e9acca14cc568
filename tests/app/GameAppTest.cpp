#include "app/Comforts.h"
#include "app/GameWnd.h"
#include "platform/Keys.h"
#include "ship/Ship.h"
#include "support/DisplayApp.h"
#include "support/Parts.h"

#include <SDL.h>
#include <gtest/gtest.h>

namespace {

using namespace qvtest;

TEST(GameAppDisplayErrors, TextsByCodeAndATraceOnlyForFailures)
{
    const std::pair<Result, const char*> lines[] = {
        {0x88760122, "cannot start the display: No rotation hardware: the graphics system refused ("},
        {0x80004001, "cannot start the display: Unsupported: the graphics system refused ("},
        {13, "cannot start the display: Direct Draw Init Failed (0000000d): art/blank.bmp is missing or unreadable; "},
    };
    for (const auto& [code, start] : lines)
        EXPECT_EQ(CGameApp::DisplayFailureLine(code).rfind(start, 0), 0u) << CGameApp::DisplayFailureLine(code);
    EXPECT_EQ(CGameApp::DisplayErrorText(2), "Direct Draw Init Failed (00000002)\n"); // the box's text
    TestApp t;
    Platform::SetMessageBoxHandler([](HWND, const std::string&, const std::string&, UINT) { return IDOK; });
    TraceRecorder trace;
    t->ReportDisplayError(0);
    EXPECT_TRUE(trace.lines.empty());
    t->ReportDisplayError(0x80004001);
    ASSERT_FALSE(trace.lines.empty());
    EXPECT_EQ(trace.lines[0].number, 0x80004001);
    Platform::SetMessageBoxHandler(nullptr);
}

// One idle call as the message loop makes it.
bool CallIdle(CGameApp& app)
{
    struct Access : CGameApp {
        using CGameApp::OnIdle;
    };
    return static_cast<Access&>(app).OnIdle(0);
}

bool Pump(CGameApp& app) { return static_cast<CPlatformApp&>(app).PumpMessages(); }

// No frame before the game is ready or while it is inactive; the time since
// the last frame is counted across the 32-bit clock's wrap. A frame long after
// the last (the program was stopped, the clock jumped) finds the level paused,
// as after the window lost its activation and found it again, and the
// recording keeps both; a slow frame plays on.
TEST(FrameLoop, NoFrameBeforeReadyOrWhileInactiveAndAStopOfMoreThanASecondPauses)
{
    TestApp t;
    t.clock.Set(4294967000u);
    t->active = 1;
    EXPECT_FALSE(CallIdle(*t));
    t->ready = 1;
    t->active = 0;
    EXPECT_FALSE(CallIdle(*t));
    EXPECT_EQ(t->lastFrameTime, 0u);
    t->active = 1;
    t->lastFrameTime = t.clock.Now();
    t.clock.Advance(250);
    EXPECT_TRUE(CallIdle(*t));
    EXPECT_DOUBLE_EQ(t->elapsedMs, 250.0);
    t.clock.Set(40); // the 32-bit counter wrapped
    EXPECT_TRUE(CallIdle(*t));
    EXPECT_DOUBLE_EQ(t->elapsedMs, 40.0);

    for (const std::uint32_t gapMs : {900u, 120000u}) {
        t->NewGame();
        t->lastFrameTime = t.clock.Now();
        const std::size_t inputs = t->recorder.GetReplay().inputs.size();
        t.clock.Advance(gapMs);
        CallIdle(*t);
        const bool stopped = gapMs > 1000;
        EXPECT_EQ(t->GetGameState() == StatePaused, stopped) << gapMs;
        EXPECT_EQ(t->recorder.GetReplay().inputs.size(), inputs + (stopped ? 2u : 0u)) << gapMs;
    }
}

TEST(GameStates, PauseOnlyBetweenPlayingAndPausedAndOnlyLeavingPlayResetsTheDesignScreen)
{
    TestApp t;
    struct Step {
        std::int32_t setState; // -1: leave the state alone
        bool pause;
        std::int32_t want;
    };
    const Step steps[] = {
        {-1, true, StateMenu},  {StatePlaying, false, StatePlaying}, {-1, true, StatePaused},
        {-1, true, StatePaused}, {-1, false, StatePlaying},          {StateDesign, false, StateDesign},
    };
    for (const Step& step : steps) {
        if (step.setState >= 0)
            t->SetGameState(step.setState);
        t->SetPause(step.pause);
        EXPECT_EQ(t->GetGameState(), step.want) << &step - steps;
        EXPECT_EQ(t->world.IsPaused(), step.want != StatePlaying) << &step - steps;
    }
    t->world.NewGame(1);
    t->world.BeginNextLevel(); // the design screen, with an offer
    t->OnKey(VK_DOWN, true);
    ASSERT_EQ(t->designer.GetOfferSelection(), 1);
    t->SetGameState(StatePlaying);
    t->SetPause(true);
    t->SetPause(false);
    EXPECT_EQ(t->designer.GetOfferSelection(), 1);
    t->SetGameState(StateDesign);
    EXPECT_EQ(t->designer.GetOfferSelection(), 0);
}

TEST(KeyRouting, EachStateSendsKeysToItsReceiver)
{
    struct Case {
        std::int32_t state;
        UINT key;
        bool pressed;
        bool hasPlayer;
        KeyRoute route;
    };
    const Case cases[] = {
        {StatePaused, VK_ESCAPE, false, true, KeyRoute::Menus}, // the release of the Escape that paused
        {StateDesign, VK_ESCAPE, true, true, KeyRoute::Designer},
        {StatePlaying, VK_ESCAPE, true, false, KeyRoute::Pause},
        {StatePlaying, 0x2200 | VK_ESCAPE, true, true, KeyRoute::Pause}, // only the low byte counts
        {StatePlaying, VK_ESCAPE, false, true, KeyRoute::Ship},
        {StatePlaying, VK_LEFT, true, false, KeyRoute::Dropped},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CGameApp::RouteKey(c.state, c.key, c.pressed, c.hasPlayer), c.route) << &c - cases;
}

// A key of the player's own sends the game's key it stands for, except where
// the game reads characters or the key is a laser's: there it is itself.
TEST(KeyBindings, BoundLettersGiveWayToTypingAndToFireKeys)
{
    TestApp t;
    CComforts comforts;
    comforts.Parse("key-up = W\nkey-escape = Tab\n");
    t->keyBindings.Load(comforts);
    t->NewGame();
    const struct {
        std::int32_t state;
        const char* key;
        UINT typed, sent;
    } cases[] = {
        {StateMenu, "W", 'W', VK_UP},      {StateMenu, "Tab", 0, VK_ESCAPE}, {StateMenu, "E", 'E', 'E'},
        {StateDesign, "W", 'W', 'W'}, // fire keys are chosen by letter here
        {StateDesign, "Tab", 0, VK_ESCAPE}, {StatePlaying, "W", 'W', VK_UP},
    };
    for (const auto& c : cases) {
        t->gameState = c.state;
        EXPECT_EQ(t->TranslateKey(Platform::KeyCodeNamed(c.key), c.typed), c.sent) << c.state << " " << c.key;
    }
    CLaser laser = Laser({});
    t->world.GetPlayer()->AddComponent(&laser);
    std::vector<CComponent*> fitted;
    t->world.GetPlayer()->ListComponents(fitted);
    for (CComponent* c : fitted) // the player chose W to fire it
        if (c->GetKind() == KindLaser)
            static_cast<CLaser*>(c)->SetFireKey('W');
    EXPECT_EQ(t->TranslateKey(Platform::KeyCodeNamed("W"), 'W'), static_cast<UINT>('W'));
}

// Start-up waits out the title's pause and shows the window, which activates
// the game. Regaining the focus restores and reloads what was lost and pauses
// a game in play; a flip that finds its surfaces lost restores them once
// within the frame. The window hides the pointer and hands on its activation,
// and closing it ends the loop.
TEST(Activation, LostSurfacesAreRestoredOnRegainingTheFocusOrOnceWithinAFrame)
{
    DisplayApp t;
    WriteFile("sprite.ini", std::string("ship1 8 8\n"));
    ASSERT_TRUE(t.Start());
    EXPECT_EQ(t.clock.SleptMs(), 6000u);
    EXPECT_EQ(t->active, 1);
    auto names = [&] { return t->sprites.GetEntries().size(); };
    ASSERT_EQ(names(), 1u);
    t->SetGameState(StatePlaying);
    t->OnActivate(false);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    Platform::NotifySurfacesLost();
    t->OnActivate(true);
    EXPECT_EQ(t->GetGameState(), StatePaused);
    EXPECT_EQ(names(), 2u);
    EXPECT_EQ(t->display.GetBack()->IsLost(), DD_OK);
    t->SetGameState(StateDesign); // only a game in play is paused
    t->OnActivate(true);
    EXPECT_EQ(t->GetGameState(), StateDesign);

    // What the window's start brought is handled first: newer SDLs report the
    // focus a window gets on opening, which restores and reloads as above.
    Pump(*t);
    t.clock.Advance(16);
    CallIdle(*t);
    const std::size_t before = names();
    SDL_Event reset{};
    reset.type = SDL_RENDER_TARGETS_RESET; // the renderer lost what it drew on
    SDL_PushEvent(&reset);
    Pump(*t);
    EXPECT_EQ(t->display.GetPrimary()->IsLost(), DDERR_SURFACELOST);
    for (int frame = 0; frame < 2; ++frame) {
        t.clock.Advance(16);
        EXPECT_TRUE(CallIdle(*t));
        EXPECT_EQ(names(), before + 1);
    }
    EXPECT_EQ(t->display.GetPrimary()->IsLost(), DD_OK);

    CGameWnd& window = *t->mainWnd;
    EXPECT_EQ(window.WindowProc(WM_SETCURSOR, 0, 0), 1);
    window.WindowProc(WM_ACTIVATEAPP, 0, 0);
    EXPECT_EQ(t->active, 0);
    window.WindowProc(WM_ACTIVATEAPP, 7, 0);
    EXPECT_EQ(t->active, 1);
    window.PostMessage(WM_CLOSE, 0, 0);
    EXPECT_FALSE(Pump(*t)); // the quit message was posted
    EXPECT_EQ(t->GetMainWindowHandle(), nullptr);
    EXPECT_EQ(t->display.Flip(), DDERR_GENERIC); // nothing left to show on, and nothing breaks
}

} // namespace
