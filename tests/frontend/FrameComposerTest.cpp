#include "support/DisplayApp.h"
#include "support/TextLog.h"

#include "app/ComfortNotice.h"
#include "app/Screenshots.h"
#include "platform/Clock.h"
#include "platform/ComfortKeys.h"
#include "platform/Surface.h"
#include "ship/Ship.h"
#include "support/AudioFiles.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace qvtest;
namespace fs = std::filesystem;

std::uint32_t BigAt(const std::string& bytes, std::size_t at)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<std::uint8_t>(bytes[at + i]);
    return value;
}

// The pixels of an 8-bit RGB PNG file whose rows are unfiltered, as the
// game writes them, as 5-6-5 values; empty for anything else or a damaged file.
std::vector<std::uint16_t> DecodedPng(const std::string& file, int& width, int& height)
{
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    std::string packed;
    if (bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") != 0)
        return {};
    for (std::size_t at = 8; at + 12 <= bytes.size();) {
        const std::uint32_t length = BigAt(bytes, at);
        const std::string typed = bytes.substr(at + 4, 4 + length);
        if (crc32(0, reinterpret_cast<const Bytef*>(typed.data()), static_cast<uInt>(typed.size())) !=
            BigAt(bytes, at + 8 + length))
            return {};
        const std::string type = typed.substr(0, 4);
        if (type == "IHDR") {
            width = static_cast<int>(BigAt(typed, 4));
            height = static_cast<int>(BigAt(typed, 8));
            if (typed.substr(12, 5) != std::string("\x08\x02\x00\x00\x00", 5))
                return {};
        } else if (type == "IDAT") {
            packed += typed.substr(4);
        }
        at += 12 + length;
    }
    const std::size_t rowBytes = 1 + 3 * static_cast<std::size_t>(width);
    std::string raw(rowBytes * height, '\0');
    uLongf rawSize = raw.size();
    if (uncompress(reinterpret_cast<Bytef*>(raw.data()), &rawSize, reinterpret_cast<const Bytef*>(packed.data()),
                   packed.size()) != Z_OK || rawSize != raw.size())
        return {};
    std::vector<std::uint16_t> pixels;
    for (std::size_t row = 0; row < static_cast<std::size_t>(height); ++row) {
        if (raw[row * rowBytes] != 0)
            return {};
        for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
            const auto* rgb = reinterpret_cast<const std::uint8_t*>(raw.data() + row * rowBytes + 1 + 3 * x);
            pixels.push_back(Platform::PackRgb565(RGB(rgb[0], rgb[1], rgb[2])));
        }
    }
    return pixels;
}

// A ship at a place, with its gauges set directly.
struct GaugedShip : CShip {
    GaugedShip(std::int32_t x, std::int32_t y, float hullNow, std::int32_t hullTop, float energyNow, std::int32_t energyTop)
    {
        vector.Set(x, y, 0.0f, 0.0f);
        radius = 20;
        hull = hullNow;
        hullMax = hullTop;
        energy = energyNow;
        energyMax = energyTop;
    }
};

class FrameTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(d.Start());
        d->gameState = StatePlaying; // nothing over the world unless a test asks
    }
    void Frame()
    {
        log.texts.clear();
        d->DrawFrame(16.0);
    }
    // "x,y" of a text, or "absent".
    std::string Place(const std::string& text) const
    {
        const WrittenText* w = log.Find(text);
        return w ? std::to_string(w->x) + "," + std::to_string(w->y) : "absent";
    }

    DisplayApp d;
    TextLog log;
};

TEST_F(FrameTest, HeadsUpColumnsAreRightAlignedByTheEstimateAndStayUnderEveryLayer)
{
    Frame();
    EXPECT_EQ(log.texts.size(), 3u); // no ship: no energy or hull
    d->world.NewGame(6);             // level 5 with half a second to go
    d->world.AddScore(-25);
    for (std::int32_t state : {StatePlaying, StateDesign}) {
        d->gameState = state;
        Frame();
        EXPECT_EQ(Place("Level: 5") + " " + Place("Time Left: 0") + " " + Place("Score: -25") + " " +
                      Place("Energy: 0") + " " + Place("Hull: 100"),
                  "948,20 920,34 934,48 20,20 20,34");
        EXPECT_EQ(log.texts[0].colour, RGB(60, 120, 120)); // drawn first, under the screen on top
    }
}

TEST_F(FrameTest, ReadoutsBesideShieldedShipsTakeTheColourOfTheirFractions)
{
    GaugedShip quarter(300, 200, 25.9f, 100, 50.0f, 100);
    GaugedShip low(600, 400, 24.0f, 100, 49.0f, 100);
    GaugedShip empty(800, 500, 0.0f, 0, 3.0f, 0); // nothing to divide by
    for (CShip* ship : std::initializer_list<CShip*>{&quarter, &low, &empty})
        d->world.AddToLabelList(ship);
    Frame();
    EXPECT_EQ(Place("25"), "330,180");
    EXPECT_EQ(Place("(50)"), "330,206"); // lifted by the heads-up font's height
    // A quarter and a half of the gauge are the colour boundaries; an empty gauge reads as full.
    using Colour = std::pair<const char*, COLORREF>;
    for (const auto& [text, colour] : {Colour{"25", RGB(200, 200, 0)}, Colour{"(50)", RGB(0, 200, 200)},
                                       Colour{"24", RGB(200, 0, 0)}, Colour{"(49)", RGB(200, 200, 0)},
                                       Colour{"0", RGB(0, 200, 200)}, Colour{"(3)", RGB(0, 200, 200)}})
        EXPECT_EQ(log.Find(text)->colour, colour) << text;
    d->menus.SetOptionOn(OptionStats, false);
    Frame();
    EXPECT_EQ(Place("(50)"), "absent");
}

// The screenshot key keeps the frame as composed, pixel for pixel, before
// any notice covers it; a second picture in the same second takes a name of
// its own, and a folder that cannot be made is a word, not a fault.
TEST_F(FrameTest, ScreenshotsKeepTheComposedFrameExactly)
{
    ScopedEnv pictures("XDG_PICTURES_DIR", (fs::current_path() / "pictures").string());
    d->gameState = StateMenu;
    GaugedShip ship(300, 200, 25.9f, 100, 50.0f, 100);
    d->world.AddToLabelList(&ship);
    Frame();
    std::vector<std::uint16_t> composed;
    {
        LockedSurface locked;
        ASSERT_EQ(d.Back().Lock(locked), 0);
        for (int y = 0; y < d.Back().GetHeight(); ++y) {
            const auto* row = reinterpret_cast<const std::uint16_t*>(static_cast<const char*>(locked.pixels) +
                                                                    y * locked.pitch);
            composed.insert(composed.end(), row, row + d.Back().GetWidth());
        }
        d.Back().Unlock();
    }
    Platform::RequestScreenshot();
    d->DrawComfortNotice();
    d->screenshots.Finish();
    d->DrawComfortNotice(); // what became of it is shown as it comes
    const fs::directory_iterator taken("pictures/Quelvarion");
    ASSERT_NE(taken, fs::directory_iterator());
    const std::string name = taken->path().filename().string();
    EXPECT_EQ(CComfortNotice::Instance().Current(Platform::TimeGetTime()), "Screenshot: " + name);
    int width = 0;
    int height = 0;
    EXPECT_EQ(DecodedPng("pictures/Quelvarion/" + name, width, height), composed);
    EXPECT_EQ(width, 1024);
    EXPECT_EQ(height, 768);

    const CScreenshots::Frame frame{composed, 1024, 768, 0};
    std::tm when{};
    localtime_r(&frame.when, &when);
    EXPECT_EQ(CScreenshots::Write(frame, "second"), "Screenshot: " + CScreenshots::FileName(when, 1));
    EXPECT_EQ(CScreenshots::Write(frame, "second"), "Screenshot: " + CScreenshots::FileName(when, 2));
    EXPECT_EQ(CScreenshots::FileName(when, 2).substr(CScreenshots::FileName(when, 2).size() - 6), "-2.png");
    std::ofstream("blocked"); // a file where the folder would go
    EXPECT_EQ(CScreenshots::Write(frame, "blocked/Quelvarion").rfind("Screenshot not saved: ", 0), 0u);
}

} // namespace
