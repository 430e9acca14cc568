#include "support/DisplayApp.h"

#include "platform/Console.h"

#include <gtest/gtest.h>

namespace {

using qvtest::DisplayApp;
using qvtest::TraceRecorder;

TEST(DisplayInit, TracesEachStepAndSucceedsWithTheBlankBitmap)
{
    DisplayApp t;
    qvtest::WriteBlankArt();
    HWND window = t.OpenWindow();
    TraceRecorder trace;
    ASSERT_EQ(t->display.Init(window), 0u);
    EXPECT_EQ(trace.Texts(), (std::vector<std::string>{"Creating direct draw object", "Finding DD v3 interface",
                                                       "Setting Cooperative Level, exclusive, fullscreen",
                                                       "Set Resolution", "Screen Width"}));
    EXPECT_EQ(trace.lines[4].number, 1024);
    EXPECT_TRUE(t->display.GetPrimary()->GetCaps() & DDSCAPS_VIDEOMEMORY);
}

TEST(DisplayInit, RetriesTheFlippingChainOnceWithoutVideoMemory)
{
    for (int failures : {1, 2}) {
        DisplayApp t;
        qvtest::WriteBlankArt();
        HWND window = t.OpenWindow();
        Platform::InjectDisplayFault(DisplayOp::CreateSurface, DDERR_OUTOFVIDEOMEMORY, 0, failures);
        qvtest::TraceRecorder trace;
        EXPECT_EQ(t->display.Init(window), failures == 1 ? 0u : DDERR_OUTOFVIDEOMEMORY); // the retry decides
        EXPECT_EQ(trace.lines.back().text, "Insuficient video memory");
        EXPECT_TRUE(failures == 2 || !(t->display.GetPrimary()->GetCaps() & DDSCAPS_VIDEOMEMORY));
    }
}

struct FailingStep {
    DisplayOp op;
    int skip;
    const char* lastTrace;
};

class DisplayInitFailure : public ::testing::TestWithParam<FailingStep> {};

TEST_P(DisplayInitFailure, StopsAtTheFailingStepWithItsCode)
{
    const FailingStep step = GetParam();
    DisplayApp t;
    qvtest::WriteBlankArt();
    HWND window = t.OpenWindow();
    constexpr Result code = 0x88761234;
    Platform::InjectDisplayFault(step.op, code, step.skip);
    TraceRecorder trace;
    EXPECT_EQ(t->display.Init(window), code);
    ASSERT_FALSE(trace.lines.empty());
    EXPECT_EQ(trace.lines.back().text, step.lastTrace);
    EXPECT_EQ(t->display.GetBack(), nullptr);
    t->Shutdown(); // gives up what was held; a second time does nothing
    t->Shutdown();
    EXPECT_FALSE(t->display.HasDevice());
}

INSTANTIATE_TEST_SUITE_P(
    EachStep, DisplayInitFailure,
    ::testing::Values(FailingStep{DisplayOp::Create, 0, "Creating direct draw object"},
                      FailingStep{DisplayOp::QueryDevice2, 0, "Finding DD v3 interface"},
                      FailingStep{DisplayOp::SetCooperativeLevel, 0, "Setting Cooperative Level, exclusive, fullscreen"},
                      FailingStep{DisplayOp::SetDisplayMode, 0, "Screen Width"},
                      FailingStep{DisplayOp::CreateSurface, 0, "Screen Width"},
                      FailingStep{DisplayOp::GetAttachedSurface, 0, "Screen Width"},
                      FailingStep{DisplayOp::QuerySurface2, 0, "Error getting DirectDraw2 Surface!"},
                      FailingStep{DisplayOp::QuerySurface2, 1, "Error getting DirectDraw2 Surface!"}));

TEST(DisplayInit, AMissingBlankBitmapFailsTheStart) // a missing art folder: see the next test
{
    DisplayApp noFile;
    qvtest::WriteBitmap("art/title_screen.bmp", 2, 2, [](int, int) { return RGB(9, 9, 9); });
    EXPECT_EQ(noFile->display.Init(noFile.OpenWindow()), ERROR_FILE_NOT_FOUND);
}

TEST(DisplayInit, AFailedStartShowsTheErrorAndEndsStartUp)
{
    DisplayApp t;
    std::vector<std::string> boxes;
    Platform::SetMessageBoxHandler([&](HWND, const std::string& text, const std::string& caption, UINT) {
        boxes.push_back(caption + ":" + text);
        return IDOK;
    });
    std::vector<std::string> said;
    Platform::SetErrorLineHandler([&](const std::string& line) { said.push_back(line); });
    EXPECT_EQ(t->Run(), CPlatformApp::StartFailedStatus); // no art folder at all
    Platform::SetMessageBoxHandler(nullptr);
    Platform::SetErrorLineHandler(nullptr);
    EXPECT_EQ(boxes, std::vector<std::string>{"ERROR:Direct Draw Init Failed (00000003)\n"});
    ASSERT_EQ(said.size(), 1u);
    EXPECT_EQ(said[0], CGameApp::DisplayFailureLine(3));
    EXPECT_EQ(t->GetMainWindowHandle(), nullptr);
}

TEST(DisplaySurfaces, PagesAreClearedFromTheBlankStretchedToTheScreen)
{
    DisplayApp t;
    qvtest::WriteBitmap("art/blank.bmp", 4, 4, [](int, int) { return RGB(0, 0, 255); });
    ASSERT_TRUE(t.Start());
    SurfacePtr page = t->display.CreateOffscreenSurface();
    ASSERT_TRUE(page);
    EXPECT_EQ(DisplayApp::PixelAt(*page, 1023, 767), 0x001F);
    EXPECT_EQ(DisplayApp::PixelAt(*page, 0, 0), 0x001F); // matching the black key left the corner as it was
}

} // namespace
