#include "app/GameWnd.h"
#include "support/BitmapFiles.h"
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
    int low = 32767, high = 0;
    for (int i = 0; i < 100000; ++i) {
        const int v = r.Rand();
        low = std::min(low, v);
        high = std::max(high, v);
    }
    EXPECT_EQ(low, 0);
    EXPECT_EQ(high, 32767);
    // A draw over the whole range is the raw value itself.
    CRandom a, b;
    a.Seed(9);
    b.Seed(9);
    EXPECT_DOUBLE_EQ(a.Draw(32767.0), b.Rand());
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
    EXPECT_EQ(&TheApp(), &app);
}

TEST(GameAppDisplayErrors, ReportShowsTheTextInABoxAndTracesOnlyForFailures)
{
    EXPECT_EQ(CGameApp::DisplayErrorText(0x88760122), "No rotation hardware\n");
    EXPECT_EQ(CGameApp::DisplayErrorText(2), "Direct Draw Init Failed (00000002)\n");
    EXPECT_EQ(CGameApp::DisplayErrorText(0x887601c2), "Direct Draw Init Failed (887601c2)\n");
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

// One idle call as the message loop makes it.
bool CallIdle(CGameApp& app)
{
    struct Access : CGameApp {
        using CGameApp::OnIdle;
    };
    return static_cast<Access&>(app).OnIdle(0);
}

TEST(FrameLoop, NoFrameBeforeReadyOrWhileInactive)
{
    TestApp t;
    t.clock.Set(5000);
    t->active = 1;
    EXPECT_FALSE(CallIdle(*t));
    EXPECT_EQ(t->lastFrameTime, 0u);
    t->ready = 1;
    t->active = 0;
    t->lastFrameTime = 5000;
    t.clock.Advance(100);
    EXPECT_FALSE(CallIdle(*t));
    EXPECT_EQ(t->lastFrameTime, 5000u);
    EXPECT_DOUBLE_EQ(t->elapsedMs, 0.0);
}

TEST(FrameLoop, ElapsedTimeBetweenFramesAndAcrossTheClockWrap)
{
    TestApp t;
    t.clock.Set(4294967000u);
    t->ready = t->active = 1;
    t->lastFrameTime = t.clock.Now();
    t.clock.Advance(250);
    EXPECT_TRUE(CallIdle(*t));
    EXPECT_DOUBLE_EQ(t->elapsedMs, 250.0);
    t.clock.Set(40); // the 32-bit counter wrapped
    EXPECT_TRUE(CallIdle(*t));
    EXPECT_DOUBLE_EQ(t->elapsedMs, 40.0);
    EXPECT_EQ(t->lastFrameTime, 40u);
}

TEST(GameStates, PauseOnlyBetweenPlayingAndPaused)
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

    t->NewGame();
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    t->GameOver();
    EXPECT_EQ(t->GetGameState(), StateMenu);
    EXPECT_TRUE(t->world.IsPaused());
}

TEST(Activation, BeforeStartUpOnlyTheFlagIsKept)
{
    TestApp t;
    t->gameState = StatePlaying;
    t->OnActivate(true);
    EXPECT_EQ(t->active, 1);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
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
    auto at = [&](const std::string& s) { return std::find(texts.begin(), texts.end(), s) - texts.begin(); };
    const char* later[] = {"display title screen", "Restore all direct draw buffers", "Playing initialisation sound",
                           "Creating background stars"};
    for (int i = 0; i < 3; ++i)
        EXPECT_LT(at(later[i]), at(later[i + 1])) << later[i];
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

    t->mainWnd->PostMessage(WM_CLOSE, 0, 0);
    EXPECT_FALSE(static_cast<CPlatformApp&>(*t).PumpMessages());
    EXPECT_EQ(t->GetMainWindowHandle(), nullptr);
}

} // namespace
