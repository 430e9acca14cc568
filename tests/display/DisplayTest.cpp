#include "support/DisplayApp.h"

#include "display/Bitmaps.h"
#include "platform/Console.h"

#include <gtest/gtest.h>

namespace {

using qvtest::DisplayApp;
using qvtest::TraceRecorder;

// The start traces each step; without video memory for the flipping chain it
// tries once more without it, and a second refusal ends it.
TEST(DisplayInit, TracesEachStepAndRetriesTheFlippingChainOnceWithoutVideoMemory)
{
    for (int failures : {0, 1, 2}) {
        DisplayApp t;
        qvtest::WriteBlankArt();
        HWND window = t.OpenWindow();
        if (failures > 0)
            Platform::InjectDisplayFault(DisplayOp::CreateSurface, DDERR_OUTOFVIDEOMEMORY, 0, failures);
        TraceRecorder trace;
        EXPECT_EQ(t->display.Init(window), failures < 2 ? 0u : DDERR_OUTOFVIDEOMEMORY) << failures;
        std::vector<std::string> steps = {"Creating direct draw object", "Finding DD v3 interface",
                                          "Setting Cooperative Level, exclusive, fullscreen", "Set Resolution",
                                          "Screen Width"};
        if (failures > 0)
            steps.push_back("Insuficient video memory");
        EXPECT_EQ(trace.Texts(), steps) << failures;
        EXPECT_EQ(trace.lines.at(4).number, 1024) << failures;
        EXPECT_TRUE(failures == 2 || bool(t->display.GetPrimary()->GetCaps() & DDSCAPS_VIDEOMEMORY) == (failures == 0));
    }
}

// A step that fails ends the start with its code, after its own trace, and
// the display holds nothing afterwards.
TEST(DisplayInit, StopsAtTheFailingStepWithItsCode)
{
    const struct {
        DisplayOp op;
        int skip;
        const char* lastTrace;
    } steps[] = {{DisplayOp::Create, 0, "Creating direct draw object"},
                 {DisplayOp::QueryDevice2, 0, "Finding DD v3 interface"},
                 {DisplayOp::SetCooperativeLevel, 0, "Setting Cooperative Level, exclusive, fullscreen"},
                 {DisplayOp::SetDisplayMode, 0, "Screen Width"},
                 {DisplayOp::CreateSurface, 0, "Screen Width"},
                 {DisplayOp::GetAttachedSurface, 0, "Screen Width"},
                 {DisplayOp::QuerySurface2, 0, "Error getting DirectDraw2 Surface!"},
                 {DisplayOp::QuerySurface2, 1, "Error getting DirectDraw2 Surface!"}};
    for (const auto& step : steps) {
        DisplayApp t;
        qvtest::WriteBlankArt();
        HWND window = t.OpenWindow();
        constexpr Result code = 0x88761234;
        Platform::InjectDisplayFault(step.op, code, step.skip);
        TraceRecorder trace;
        EXPECT_EQ(t->display.Init(window), code) << &step - steps;
        ASSERT_FALSE(trace.lines.empty()) << &step - steps;
        EXPECT_EQ(trace.lines.back().text, step.lastTrace) << &step - steps;
        EXPECT_EQ(t->display.GetBack(), nullptr) << &step - steps;
        t->Shutdown(); // gives up what was held; a second time does nothing
        t->Shutdown();
        EXPECT_FALSE(t->display.HasDevice()) << &step - steps;
    }
}

// A failed start shows the error and ends start-up.
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

class BitmapsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(CDisplayDevice::Create(device), DD_OK);
        SurfaceDesc desc{DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT, 32, 24, 0, DDSCAPS_OFFSCREENPLAIN};
        ASSERT_EQ(device->CreateSurface(desc, surface), DD_OK);
    }
    std::uint16_t Pixel(int x, int y) { return DisplayApp::PixelAt(*surface, x, y); }
    // An entry of the palette loaded from "art/palette.bmp", as red, green, blue and flags.
    static std::vector<int> Entry(const PalettePtr& palette, int i)
    {
        const PALETTEENTRY& e = palette->GetEntries()[static_cast<std::size_t>(i)];
        return {e.peRed, e.peGreen, e.peBlue, e.peFlags};
    }

    qvtest::ScopedWorkDir dir;
    DisplayDevicePtr device;
    SurfacePtr surface;
};

TEST_F(BitmapsTest, MatchColourGivesTheSurfaceValueAndLeavesTheTopLeftPixel)
{
    surface->ColourFill(nullptr, 0x1234);
    EXPECT_EQ(MatchColour(surface.get(), RGB(0, 0, 0)), 0u);
    EXPECT_EQ(MatchColour(surface.get(), RGB(255, 255, 255)), 0xFFFFu);
    EXPECT_EQ(MatchColour(surface.get(), CLR_INVALID), 0x1234u); // the value already there

    ASSERT_EQ(SetColourKey(surface.get(), RGB(255, 255, 255)), DD_OK);
    EXPECT_EQ(surface->GetColorKey(), 0xFFFFu);
    EXPECT_EQ(Pixel(0, 0), 0x1234);
}

TEST_F(BitmapsTest, DrawBitmapFileChangesOnlyItsRectangle)
{
    surface->ColourFill(nullptr, 0x07E0);
    qvtest::WriteBitmap("art/red.bmp", 3, 3, [](int, int) { return RGB(255, 0, 0); });
    ASSERT_EQ(DrawBitmapFile(surface.get(), "art/red.bmp", 10, 6, 4, 5), 0);
    EXPECT_EQ(Pixel(13, 10), 0xF800); // the fuzzed frames check that nothing outside it changes

    EXPECT_EQ(DrawBitmapFile(surface.get(), "art/missing.bmp", 4, 4, 0, 0), 2u);
    qvtest::WriteFile("art/text.bmp", std::string("not a picture"));
    EXPECT_EQ(DrawBitmapFile(surface.get(), "art/text.bmp", 4, 4, 0, 0), 13u);
    EXPECT_EQ(DrawBitmapFile(nullptr, "art/red.bmp", 4, 4, 0, 0), 0u); // loaded, drawn nowhere
}

// An eight-bit bitmap gives its colour table, swapped to red, green, blue,
// and the bytes after it; a true-colour one its bytes as they are. Once the
// file has ended the rest is the default cube.
TEST_F(BitmapsTest, PaletteFromEightBitAndTrueColourBitmaps)
{
    std::vector<COLORREF> colours;
    for (int i = 0; i < 16; ++i)
        colours.push_back(RGB(static_cast<std::uint8_t>(i * 16), static_cast<std::uint8_t>(i), 200));
    auto bytes = qvtest::Bitmap8(4, 2, colours);
    for (std::size_t i = 14 + 40 + 64; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i); // pixel data that follows the table
    qvtest::WriteFile("art/palette.bmp", bytes);
    PalettePtr palette = LoadPalette(device.get(), "art/palette.bmp");
    ASSERT_TRUE(palette);
    EXPECT_EQ(Entry(palette, 5), (std::vector<int>{80, 5, 200, 0}));
    // Entry 16 holds the first four bytes after the table, unswapped.
    EXPECT_EQ(Entry(palette, 16), (std::vector<int>{118, 119, 120, 121}));
    // The file ends after 8 pixel bytes (entry 255 of the cube is white).
    EXPECT_EQ(Entry(palette, 18), (std::vector<int>{0, 145, 170, 0}));
    EXPECT_EQ(Entry(palette, 255)[0], 255);

    qvtest::WriteBitmap("art/palette.bmp", 2, 1, [](int x, int) { return x ? RGB(1, 2, 3) : RGB(4, 5, 6); });
    palette = LoadPalette(device.get(), "art/palette.bmp");
    ASSERT_TRUE(palette);
    // Pixel bytes are blue, green, red: 6 5 4 3 2 1, then row padding 0 0.
    EXPECT_EQ(Entry(palette, 0), (std::vector<int>{6, 5, 4, 3}));
    EXPECT_EQ(Entry(palette, 1), (std::vector<int>{2, 1, 0, 0}));
    EXPECT_EQ(Entry(palette, 2)[2], 170); // cube entry 2 is red 0, green 0, blue 170
}

} // namespace
