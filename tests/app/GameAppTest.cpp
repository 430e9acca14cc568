#include "app/GameWnd.h"
#include "support/BitmapFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using qvtest::TestApp;
using qvtest::TraceRecorder;

TEST(RandomGenerator, FollowsTheLinearCongruentialSequence)
{
    CRandom r;
    r.Seed(0);
    // s = 2531011 -> 38; s = 2531011 * 214013 + 2531011 (mod 2^32) -> 7719
    EXPECT_EQ(r.Rand(), 38);
    EXPECT_EQ(r.Rand(), 7719);
    EXPECT_EQ(r.Rand(), 21238);
    CRandom same;
    same.Seed(0);
    for (int i = 0; i < 3; ++i)
        same.Rand();
    EXPECT_EQ(same.GetState(), r.GetState());
}

TEST(RandomGenerator, DrawsStayInRange)
{
    CRandom r;
    r.Seed(777);
    int low = 32767;
    int high = 0;
    for (int i = 0; i < 100000; ++i) {
        const int v = r.Rand();
        low = std::min(low, v);
        high = std::max(high, v);
    }
    EXPECT_EQ(low, 0);
    EXPECT_EQ(high, 32767);
    for (int i = 0; i < 10000; ++i) {
        const double d = r.Draw(5.0);
        ASSERT_GE(d, 0.0);
        ASSERT_LE(d, 5.0);
    }
    CRandom a;
    a.Seed(9);
    CRandom b;
    b.Seed(9);
    EXPECT_DOUBLE_EQ(a.Draw(100.0), b.Rand() * 100.0 / 32767);
}

TEST(GameAppConstruction, DefaultsAndTraceLinesInOrder)
{
    qvtest::ScopedWorkDir dir;
    TraceRecorder trace;
    CGameApp app;
    EXPECT_EQ(trace.Texts(), (std::vector<std::string>{" ", "******************************************",
                                                       "            Initialisation",
                                                       "******************************************", " ",
                                                       "Application Constructor"}));
    EXPECT_EQ(app.screenWidth, 1024);
    EXPECT_EQ(app.screenHeight, 768);
    EXPECT_EQ(app.bitsPerPixel, 16);
    EXPECT_EQ(app.musicDevice, 0xFFFFFFFFu);
    EXPECT_EQ(app.gameState, StateMenu);
    EXPECT_EQ(app.ready, 0);
    EXPECT_EQ(&TheApp(), &app);
    EXPECT_EQ(app.GetMainWindowHandle(), nullptr);
}

TEST(GameAppConstruction, ComponentSerialsCountFromOne)
{
    TestApp t;
    EXPECT_EQ(t->NextComponentSerial(), 1);
    EXPECT_EQ(t->NextComponentSerial(), 2);
    EXPECT_EQ(t->NextComponentSerial(), 3);
}

TEST(GameAppDisplayErrors, TextsByCode)
{
    EXPECT_EQ(CGameApp::DisplayErrorText(0x80004001), "Unsupported\n");
    EXPECT_EQ(CGameApp::DisplayErrorText(0x88760122), "No rotation hardware\n");
    EXPECT_EQ(CGameApp::DisplayErrorText(2), "Direct Draw Init Failed (00000002)\n");
    EXPECT_EQ(CGameApp::DisplayErrorText(0x887601c2), "Direct Draw Init Failed (887601c2)\n");
}

TEST(GameAppDisplayErrors, ReportShowsTheBoxAndTracesOnlyForFailures)
{
    TestApp t;
    std::vector<std::pair<std::string, std::string>> boxes;
    Platform::SetMessageBoxHandler([&](HWND, const std::string& text, const std::string& caption, UINT flags) {
        EXPECT_EQ(flags, MB_OK);
        boxes.emplace_back(text, caption);
        return IDOK;
    });
    TraceRecorder trace;
    t->ReportDisplayError(0);
    EXPECT_TRUE(boxes.empty());
    EXPECT_TRUE(trace.lines.empty());
    t->ReportDisplayError(0x80004001);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].first, "Unsupported\n");
    EXPECT_EQ(boxes[0].second, "ERROR");
    ASSERT_FALSE(trace.lines.empty());
    EXPECT_EQ(trace.lines[0].kind, TraceLine::Code);
    EXPECT_EQ(trace.lines[0].number, 0x80004001);
    Platform::SetMessageBoxHandler(nullptr);
}

class FrameLoopTest : public ::testing::Test {
protected:
    void MakeReady()
    {
        t->ready = 1;
        t->active = 1;
        t->lastFrameTime = t.clock.Now();
    }
    // Runs one idle call as the message loop would.
    bool Idle() { return static_cast<CPlatformApp&>(*t).PumpMessages(), CallIdle(); }
    bool CallIdle()
    {
        struct Access : CGameApp {
            using CGameApp::OnIdle;
        };
        return static_cast<Access&>(*t).OnIdle(0);
    }
    TestApp t;
};

TEST_F(FrameLoopTest, NoFrameBeforeReadyOrWhileInactive)
{
    t.clock.Set(5000);
    EXPECT_FALSE(CallIdle());
    EXPECT_EQ(t->lastFrameTime, 0u);
    MakeReady();
    t->active = 0;
    t.clock.Advance(100);
    EXPECT_FALSE(CallIdle());
    EXPECT_EQ(t->lastFrameTime, 5000u);
    EXPECT_DOUBLE_EQ(t->elapsedMs, 0.0);
}

TEST_F(FrameLoopTest, ElapsedTimeBetweenFramesAndAcrossTheClockWrap)
{
    t.clock.Set(4294967000u);
    MakeReady();
    t.clock.Advance(250);
    EXPECT_TRUE(CallIdle());
    EXPECT_DOUBLE_EQ(t->elapsedMs, 250.0);
    t.clock.Set(40); // the 32-bit counter wrapped
    EXPECT_TRUE(CallIdle());
    EXPECT_DOUBLE_EQ(t->elapsedMs, 40.0);
    EXPECT_EQ(t->lastFrameTime, 40u);
}

TEST(GameStates, PauseOnlyBetweenPlayingAndPaused)
{
    TestApp t;
    t->SetPause(true); // state 0: nothing
    EXPECT_EQ(t->GetGameState(), StateMenu);
    t->SetGameState(StatePlaying);
    EXPECT_FALSE(t->world.IsPaused());
    t->SetPause(false); // already playing: nothing
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    t->SetPause(true);
    EXPECT_EQ(t->GetGameState(), StatePaused);
    EXPECT_TRUE(t->world.IsPaused());
    t->SetPause(true); // already paused: nothing
    EXPECT_EQ(t->GetGameState(), StatePaused);
    t->SetPause(false);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    EXPECT_FALSE(t->world.IsPaused());
    t->SetGameState(StateDesign);
    t->SetPause(true);
    EXPECT_EQ(t->GetGameState(), StateDesign);
}

TEST(GameStates, OnlyLeavingPlayResetsTheDesignScreen)
{
    TestApp t;
    t->world.NewGame(1);
    t->world.BeginNextLevel(); // the design screen, with an offer
    ASSERT_GT(t->world.GetStock().size(), 1u);
    t->OnKey(VK_DOWN, true);
    ASSERT_EQ(t->designer.GetOfferSelection(), 1);
    t->SetGameState(StatePlaying);
    t->SetPause(true);
    t->SetPause(false);
    EXPECT_EQ(t->designer.GetOfferSelection(), 1);
    t->SetGameState(StateDesign);
    EXPECT_EQ(t->designer.GetOfferSelection(), 0);
    EXPECT_TRUE(t->world.IsPaused());
    t->designer.OnKey(VK_DOWN, true);
    t->SetGameState(StateMenu);
    EXPECT_EQ(t->designer.GetOfferSelection(), 0);
}

TEST(GameStates, NewGamePlaysAndGameOverReturnsToTheMenu)
{
    TestApp t;
    t->NewGame();
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    t->GameOver();
    EXPECT_EQ(t->GetGameState(), StateMenu);
    EXPECT_TRUE(t->world.IsPaused());
}

TEST(KeyRouting, EscapeDuringPlayPausesAndItsReleaseGoesOn)
{
    TestApp t;
    t->SetGameState(StatePlaying);
    t->OnKey(VK_ESCAPE, true);
    EXPECT_EQ(t->GetGameState(), StatePaused);
    t->OnKey(VK_ESCAPE, false); // reaches the menus in state 2, changes no state by itself
    EXPECT_EQ(t->GetGameState(), StatePaused);
    // high bits of the key code do not hide Escape
    t->SetPause(false);
    t->OnKey(0x1100 | VK_ESCAPE, true);
    EXPECT_EQ(t->GetGameState(), StatePaused);
}

TEST(Activation, BeforeStartUpOnlyRecordsTheFlag)
{
    TestApp t;
    t->gameState = StatePlaying;
    t->OnActivate(true);
    EXPECT_EQ(t->active, 1);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    t->OnActivate(false);
    EXPECT_EQ(t->active, 0);
}

TEST(Activation, RegainingItPausesOnlyAGameInPlay)
{
    TestApp t;
    t->ready = 1;
    for (std::int32_t state : {StateMenu, StatePaused, StateDesign}) {
        t->gameState = state;
        t->OnActivate(true);
        EXPECT_EQ(t->GetGameState(), state);
    }
    t->SetGameState(StatePlaying);
    t->OnActivate(false);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    t->OnActivate(true);
    EXPECT_EQ(t->GetGameState(), StatePaused);
}

TEST(StartUp, InitInstanceRunsItsStepsInOrderAndWaitsTheTitlePause)
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
    auto at = [&](const std::string& s) { return std::find(texts.begin(), texts.end(), s) - texts.begin(); };
    EXPECT_LT(at("display title screen"), at("Restore all direct draw buffers"));
    EXPECT_LT(at("Restore all direct draw buffers"), at("Playing initialisation sound"));
    EXPECT_LT(at("Playing initialisation sound"), at("Creating background stars"));
    EXPECT_EQ(texts[texts.size() - 2], "********* Initialisation Complete ********");
    EXPECT_EQ(texts.back(), " ");
    EXPECT_EQ(t.clock.SleptMs(), 6000u);
    EXPECT_EQ(t->ready, 1);
    EXPECT_EQ(t->active, 1); // showing the window activated it
    EXPECT_EQ(t->stars.size(), 600u);
    EXPECT_EQ(t->lastFrameTime, t.clock.Now());
    EXPECT_TRUE(t->textFont.HasHandle());
    EXPECT_EQ(t->titleFont.GetRequest().lfHeight, 48);
    EXPECT_EQ(t->titleFont.GetRequest().lfWeight, 900);
    EXPECT_EQ(t->smallFont.GetRequest().lfWidth, 7);
    ASSERT_NE(t->GetMainWindowHandle(), nullptr);
}

TEST(StartUp, ClosingTheWindowEndsTheMessageLoop)
{
    TestApp t;
    qvtest::WriteBlankArt();
    Platform::StartSdl();
    ASSERT_TRUE(t->InitInstance());
    t->mainWnd->PostMessage(WM_CLOSE, 0, 0);
    EXPECT_FALSE(static_cast<CPlatformApp&>(*t).PumpMessages());
    EXPECT_EQ(t->GetMainWindowHandle(), nullptr);
}

} // namespace
