#include "support/DisplayApp.h"

#include "display/Bitmaps.h"

#include <gtest/gtest.h>

namespace {

using qvtest::DisplayApp;

class BitmapsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(CDisplayDevice::Create(device), DD_OK);
        SurfaceDesc desc{DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT, 32, 24, 0, DDSCAPS_OFFSCREENPLAIN};
        ASSERT_EQ(device->CreateSurface(desc, surface), DD_OK);
    }
    void TearDown() override { Platform::ClearDisplayFaults(); }
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

TEST_F(BitmapsTest, PaletteFromAnEightBitBitmapSwapsItsColoursAndKeepsTheBytesAfterThem)
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
    // The file ends after 8 pixel bytes: the rest is the default cube (entry 255 is white).
    EXPECT_EQ(Entry(palette, 18), (std::vector<int>{0, 145, 170, 0}));
    EXPECT_EQ(Entry(palette, 255)[0], 255);
}

TEST_F(BitmapsTest, PaletteFromATrueColourBitmapTakesItsBytesAsTheyAre)
{
    qvtest::WriteBitmap("art/palette.bmp", 2, 1, [](int x, int) { return x ? RGB(1, 2, 3) : RGB(4, 5, 6); });
    PalettePtr palette = LoadPalette(device.get(), "art/palette.bmp");
    ASSERT_TRUE(palette);
    // Pixel bytes are blue, green, red: 6 5 4 3 2 1, then row padding 0 0.
    EXPECT_EQ(Entry(palette, 0), (std::vector<int>{6, 5, 4, 3}));
    EXPECT_EQ(Entry(palette, 1), (std::vector<int>{2, 1, 0, 0}));
    EXPECT_EQ(Entry(palette, 2)[2], 170); // the file has ended: cube entry 2 is red 0, green 0, blue 170
}

} // namespace
