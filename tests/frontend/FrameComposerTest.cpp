#include "support/DisplayApp.h"
#include "support/TextLog.h"

#include "app/ComfortNotice.h"
#include "app/Screenshots.h"
#include "platform/Clock.h"
#include "platform/ComfortKeys.h"
#include "ship/Ship.h"
#include "support/AudioFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

using namespace qvtest;
namespace fs = std::filesystem;

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

// The design screen's statistics, and its hint under the help line up to level four.
TEST_F(FrameTest, TheDesignScreenShowsStatisticsAndTheHintsUpToLevelFour)
{
    d->gameState = StateDesign;
    d->world.NewGame(5); // level 4, the last with a hint
    auto hintLines = [&] {
        return std::count_if(log.texts.begin(), log.texts.end(), [](const WrittenText& t) {
            return t.y == 768 - 85 || t.y == 768 - 70 || t.y == 768 - 40;
        });
    };
    Frame();
    const WrittenText* loss = log.Find("Shield Energy Loss: 150%");
    ASSERT_NE(loss, nullptr);
    EXPECT_EQ(loss->y, 140 + 9 * 15);
    EXPECT_EQ(hintLines(), 3);
    d->world.BeginNextLevel();
    Frame();
    EXPECT_EQ(hintLines(), 1); // the help line alone
}

// The screenshot key keeps the frame as composed, before any notice covers
// it, as a 1024 x 768 PNG (its pixels against the screen's: the window_mode
// flow); a second picture in the same second takes a name of its own, and a
// folder that cannot be made is a word, not a fault.
TEST_F(FrameTest, ScreenshotsKeepTheFrameUnderNamesOfTheirOwn)
{
    ScopedEnv pictures("XDG_PICTURES_DIR", (fs::current_path() / "pictures").string());
    Frame();
    Platform::RequestScreenshot();
    d->DrawComfortNotice();
    d->screenshots.Finish();
    d->DrawComfortNotice(); // what became of it is shown as it comes
    const fs::directory_iterator taken("pictures/Quelvarion");
    ASSERT_NE(taken, fs::directory_iterator());
    EXPECT_EQ(CComfortNotice::Instance().Current(Platform::TimeGetTime()),
              "Screenshot: " + taken->path().filename().string());
    std::ifstream in(taken->path(), std::ios::binary);
    std::string head(24, '\0');
    in.read(head.data(), 24);
    EXPECT_EQ(head.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(head.substr(16), std::string("\0\0\x04\0\0\0\x03\0", 8)); // 1024 x 768

    const CScreenshots::Frame frame{std::vector<std::uint16_t>(4 * 3, 0xFFFF), 4, 3, 0};
    std::tm when{};
    localtime_r(&frame.when, &when);
    for (int number : {1, 2})
        EXPECT_EQ(CScreenshots::Write(frame, "second"), "Screenshot: " + CScreenshots::FileName(when, number));
    EXPECT_TRUE(CScreenshots::FileName(when, 2).ends_with("-2.png"));
    std::ofstream("blocked"); // a file where the folder would go
    EXPECT_EQ(CScreenshots::Write(frame, "blocked/Quelvarion").rfind("Screenshot not saved: ", 0), 0u);
}

} // namespace
