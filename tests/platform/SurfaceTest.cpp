#include "support/DisplayApp.h"

#include "platform/Bitmap.h"
#include "platform/Font.h"

#include <gtest/gtest.h>

namespace {

using qvtest::ScopedDC;

constexpr std::uint16_t Blue = 0x001F;
constexpr std::uint16_t Green = 0x07E0;

class SurfaceTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(CDisplayDevice::Create(device), DD_OK); }
    void TearDown() override
    {
        Platform::ClearDisplayFaults();
        CDisplayDevice::SetRunLengthPages(false);
    }
    SurfacePtr Page(int w, int h)
    {
        SurfaceDesc desc{DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT, w, h, 0, DDSCAPS_OFFSCREENPLAIN};
        SurfacePtr s;
        EXPECT_EQ(device->CreateSurface(desc, s), DD_OK);
        return s;
    }
    static std::uint16_t Pixel(CSurface& s, int x, int y) { return qvtest::DisplayApp::PixelAt(s, x, y); }
    DisplayDevicePtr device;
};

TEST_F(SurfaceTest, CopiesRefuseWhatTheyCannotDoWithTheirCodes)
{
    SurfacePtr page = Page(32, 32);
    SurfacePtr back = Page(64, 64);
    const RECT inside{0, 0, 16, 16};
    const RECT overSource{20, 20, 40, 40};
    EXPECT_EQ(back->BltFast(0, 0, page.get(), &overSource, 0), DDERR_INVALIDRECT);
    EXPECT_EQ(back->BltFast(50, 0, page.get(), &inside, 0), DDERR_INVALIDRECT); // would reach x 66
    EXPECT_EQ(back->BltFast(0, 0, page.get(), &inside, DDBLTFAST_SRCCOLORKEY), DDERR_NOCOLORKEY);
    EXPECT_EQ(back->BltFast(48, 48, page.get(), &inside, DDBLTFAST_NOCOLORKEY), DD_OK); // exactly at the edge

    CDC* dc = nullptr;
    ASSERT_EQ(page->GetDC(dc), DD_OK);
    EXPECT_EQ(back->BltFast(0, 0, page.get(), &inside, 0), DDERR_SURFACEBUSY);
    EXPECT_EQ(page->ReleaseDC(dc), DD_OK);

    page->MarkLost();
    EXPECT_EQ(back->BltFast(0, 0, page.get(), &inside, 0), DDERR_SURFACELOST);
    back->ColourFill(nullptr, Blue);
    back->MarkLost();
    EXPECT_EQ(page->Restore(), DD_OK);
    EXPECT_EQ(back->Restore(), DD_OK);
    EXPECT_EQ(Pixel(*back, 3, 3), 0); // a restored surface has lost its picture
    EXPECT_EQ(back->BltFast(0, 0, page.get(), &inside, 0), DD_OK);
}

// A page with a blue frame on a black (keyed) square, copied keyed onto green.
TEST_F(SurfaceTest, KeyedCopiesSkipTheKeyWithOrWithoutRunLengthEncoding)
{
    for (bool runLength : {false, true}) {
        SCOPED_TRACE(runLength ? "run-length encoded" : "plain");
        CDisplayDevice::SetRunLengthPages(runLength);
        SurfacePtr page = Page(16, 16);
        SurfacePtr back = Page(16, 16);
        const RECT ring[] = {{2, 2, 14, 4}, {2, 12, 14, 14}, {2, 2, 4, 14}, {12, 2, 14, 14}};
        for (const RECT& r : ring)
            page->ColourFill(&r, Blue);
        ASSERT_EQ(page->SetColorKey(DDCKEY_SRCBLT, 0, 0), DD_OK);
        for (int round = 0; round < 2; ++round) { // the second copy uses whatever encoding the first built
            back->ColourFill(nullptr, Green);
            ASSERT_EQ(back->BltFast(0, 0, page.get(), nullptr, DDBLTFAST_SRCCOLORKEY), DD_OK);
            EXPECT_EQ(Pixel(*back, 0, 0), Green);
            EXPECT_EQ(Pixel(*back, 8, 8), Green);
            EXPECT_EQ(Pixel(*back, 2, 2), Blue);
            EXPECT_EQ(Pixel(*back, 13, 8), Blue);
        }
        // Its memory still reads as it was drawn, first pixel included.
        page->ColourFill(&ring[0], Green);
        LockedSurface memory;
        ASSERT_EQ(page->Lock(memory), DD_OK);
        const auto* bits = static_cast<const std::uint16_t*>(memory.pixels);
        EXPECT_EQ(bits[0], 0);
        EXPECT_EQ(bits[2 * memory.pitch / 2 + 2], Green); // (2, 2)
        page->Unlock();
        ASSERT_EQ(back->BltFast(0, 0, page.get(), nullptr, DDBLTFAST_NOCOLORKEY), DD_OK);
        EXPECT_EQ(Pixel(*back, 8, 8), 0); // unkeyed: black is copied too
        EXPECT_EQ(Pixel(*back, 3, 3), Green);
    }
}

TEST_F(SurfaceTest, TextOfTheGameFontsFitsItsNominalWidthAndIsTransparentWhenAsked)
{
    SurfacePtr page = Page(1024, 64);
    struct FontCase {
        int height, width, weight;
    };
    for (FontCase fc : {FontCase{10, 7, FW_NORMAL}, {48, 20, FW_HEAVY}}) {
        SCOPED_TRACE(fc.height);
        LOGFONT request{fc.height, fc.width, 0, 0, fc.weight};
        request.lfOutPrecision = OUT_TT_PRECIS;
        request.lfPitchAndFamily = FF_MODERN;
        CFont font;
        ASSERT_TRUE(font.CreateFontIndirect(request));
        page->ColourFill(nullptr, Green);
        ScopedDC dc(*page);
        dc->SelectObject(&font);
        const std::string text = "Score: 123456789 Level";
        const SIZE extent = dc->GetTextExtent(text);
        const int nominal = static_cast<int>(text.size()) * fc.width;
        // The game's fonts are proportional: a line of text is a little
        // narrower than its count of nominal widths, so long lines fit the screens' boxes.
        EXPECT_LE(extent.cx, nominal);
        EXPECT_GE(extent.cx, nominal * 3 / 4);
        EXPECT_NEAR(extent.cy, fc.height, 2);

        dc->SetBkMode(TRANSPARENT);
        dc->SetTextColor(RGB(200, 0, 0));
        ASSERT_TRUE(dc->TextOut(0, 0, text));
        int inked = 0;
        int untouched = 0;
        for (int y = 0; y < extent.cy; ++y) {
            for (int x = 0; x < extent.cx; ++x) {
                const COLORREF c = dc->GetPixel(x, y);
                inked += c == RGB(200, 0, 0);
                untouched += c == Platform::UnpackRgb565(Green);
            }
        }
        EXPECT_GT(inked, 0);
        EXPECT_GT(untouched, extent.cx * extent.cy / 3); // the background shows between the letters
    }
}

TEST(BitmapLoading, MissingFileMissingFolderAndJunkHaveTheirCodes)
{
    qvtest::ScopedWorkDir dir;
    // A small picture whose header claims the given height: rows beyond the
    // end of the file are refused, and a negative height means top-down rows.
    auto claims = [](std::int32_t height) {
        auto bytes = qvtest::Bitmap24(2, 2, [](int, int) { return RGB(1, 2, 3); });
        for (int i = 0; i < 4; ++i)
            bytes[22 + i] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(height) >> (8 * i));
        return bytes;
    };
    auto truncated = claims(2);
    truncated.resize(40); // cut inside the header
    qvtest::WriteFile("art/short.bmp", truncated);
    qvtest::WriteFile("art/long.bmp", claims(3000));
    qvtest::WriteFile("art/fine.bmp", claims(-2));
    const std::pair<const char*, Result> cases[] = {
        {"art/none.bmp", ERROR_FILE_NOT_FOUND}, {"nowhere/none.bmp", ERROR_PATH_NOT_FOUND},
        {"art/short.bmp", ERROR_INVALID_DATA},  {"art/long.bmp", ERROR_INVALID_DATA},
        {"art/fine.bmp", 0},
    };
    CBitmap image;
    for (const auto& [file, expected] : cases)
        EXPECT_EQ(Platform::LoadImageFile(file, 4, 4, image), expected) << file;
}

} // namespace
