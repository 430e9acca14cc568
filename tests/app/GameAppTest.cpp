#include "app/Comforts.h"
#include "app/GameWnd.h"
#include "platform/Keys.h"
#include "ship/Ship.h"
#include "support/BitmapFiles.h"
#include "support/Parts.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using qvtest::TestApp;
using qvtest::TraceRecorder;

TEST(RandomGenerator, FollowsTheLinearCongruentialSequenceInFifteenBits)
{
    CRandom r;
    r.Seed(0);
    // s = 2531011 -> 38; s = 2531011 * 214013 + 2531011 (mod 2^32) -> 7719
    EXPECT_EQ(r.Rand(), 38);
    EXPECT_EQ(r.Rand(), 7719);
    EXPECT_EQ(r.Rand(), 21238);
    r.Seed(9);
    const double drawn = r.Draw(32767.0); // a draw over the whole range is the raw value itself
    r.Seed(9);
    EXPECT_DOUBLE_EQ(drawn, r.Rand());
}

TEST(GameAppConstruction, TraceLinesInOrder)
{
    qvtest::ScopedWorkDir dir;
    TraceRecorder trace;
    CGameApp app;
    EXPECT_EQ(trace.Texts(), (std::vector<std::string>{" ", "******************************************",
                                                       "            Initialisation",
                                                       "******************************************", " ",
                                                       "Application Constructor"}));
}

TEST(GameAppDisplayErrors, TextsByCodeAndATraceOnlyForFailures)
{
    EXPECT_EQ(CGameApp::DisplayErrorText(0x88760122), "No rotation hardware\n");
    EXPECT_EQ(CGameApp::DisplayErrorText(0x80004001), "Unsupported\n");
    EXPECT_EQ(CGameApp::DisplayErrorText(2), "Direct Draw Init Failed (00000002)\n");
    EXPECT_EQ(CGameApp::DisplayFailureLine(13).find("cannot start the display: Direct Draw Init Failed (0000000d): "
                                                    "art/blank.bmp is missing or unreadable; "),
              0u);
    EXPECT_EQ(CGameApp::DisplayFailureLine(0x88760122).find("cannot start the display: No rotation hardware: the "
                                                            "graphics system refused ("),
              0u);
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

TEST(FrameLoop, NoFrameBeforeReadyOrWhileInactiveAndElapsedTimeAcrossTheClockWrap)
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
}

// A frame long after the last (the program was stopped, the clock jumped)
// finds the level paused, as after the window lost its activation and found
// it again, and the recording keeps both; a slow frame plays on.
TEST(FrameLoop, AStopOfMoreThanASecondPausesTheLevelBeforeTheWorldMoves)
{
    for (const std::uint32_t gapMs : {900u, 120000u}) {
        TestApp t;
        t->ready = 1;
        t->active = 1;
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
        {-1, true, StatePaused}, {-1, false, StatePlaying},          {StateDesign, true, StateDesign},
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

TEST(StartUp, InitInstanceRunsItsStepsInOrderWaitsTheTitlePauseAndClosingEndsTheLoop)
{
    TestApp t;
    qvtest::WriteBlankArt();
    Platform::StartSdl();
    TraceRecorder trace;
    ASSERT_TRUE(t->InitInstance());
    const std::vector<std::string> expected{
        "Beginning Initialisation", "Registering window class QVclientWinType", "Creating Window \"Quelvarion\" ",
        "Creating game fonts", "Displaying main window"};
    auto texts = trace.Texts();
    ASSERT_GE(texts.size(), expected.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), texts.begin()));
    EXPECT_EQ(texts[texts.size() - 2], "********* Initialisation Complete ********");
    EXPECT_EQ(t.clock.SleptMs(), 6000u);
    EXPECT_EQ(t->active, 1); // showing the window activated it
    ASSERT_NE(t->GetMainWindowHandle(), nullptr);

    t->mainWnd->PostMessage(WM_CLOSE, 0, 0);
    EXPECT_FALSE(static_cast<CPlatformApp&>(*t).PumpMessages());
    EXPECT_EQ(t->GetMainWindowHandle(), nullptr);
}

} // namespace

// A key of the player's own sends the game's key it stands for, except where
// the game reads characters or the key is a laser's: there it is itself.
TEST(KeyBindings, BoundLettersGiveWayToTypingAndToFireKeys)
{
    TestApp t;
    CComforts comforts;
    comforts.Parse("key-up = W\nkey-escape = Tab\n");
    t->keyBindings.Load(comforts);
    const int w = Platform::KeyCodeNamed("W");
    const int tab = Platform::KeyCodeNamed("Tab");
    t->gameState = StateMenu;
    EXPECT_EQ(t->TranslateKey(w, 'W'), static_cast<UINT>(VK_UP));
    EXPECT_EQ(t->TranslateKey(tab, 0), static_cast<UINT>(VK_ESCAPE));
    EXPECT_EQ(t->TranslateKey(Platform::KeyCodeNamed("E"), 'E'), static_cast<UINT>('E'));
    t->gameState = StateDesign; // fire keys are chosen by letter here
    EXPECT_EQ(t->TranslateKey(w, 'W'), static_cast<UINT>('W'));
    EXPECT_EQ(t->TranslateKey(tab, 0), static_cast<UINT>(VK_ESCAPE));
    t->NewGame();
    t->gameState = StatePlaying;
    EXPECT_EQ(t->TranslateKey(w, 'W'), static_cast<UINT>(VK_UP));
    CLaser laser = qvtest::Laser({});
    t->world.GetPlayer()->AddComponent(&laser);
    std::vector<CComponent*> fitted;
    t->world.GetPlayer()->ListComponents(fitted);
    for (CComponent* c : fitted) // the player chose W to fire it
        if (c->GetKind() == KindLaser)
            static_cast<CLaser*>(c)->SetFireKey('W');
    EXPECT_EQ(t->TranslateKey(w, 'W'), static_cast<UINT>('W'));
}
