#include "support/DisplayApp.h"
#include "support/TextLog.h"

#include "display/Star.h"
#include "ship/Ship.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

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
        d->stars.clear();
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
    for (std::int32_t state : {StatePlaying, StateMenu, StatePaused, StateDesign}) {
        d->gameState = state;
        Frame();
        EXPECT_EQ(Place("Level: 5"), "948,20");
        EXPECT_EQ(Place("Time Left: 0"), "920,34");
        EXPECT_EQ(Place("Score: -25"), "934,48");
        EXPECT_EQ(Place("Energy: 0"), "20,20");
        EXPECT_EQ(Place("Hull: 100"), "20,34");
        EXPECT_EQ(log.texts[0].colour, RGB(60, 120, 120));
        EXPECT_EQ(log.texts.size() > 5, state != StatePlaying);
        EXPECT_EQ(Place("Your Ship") != "absent", state == StateDesign);
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
    const std::vector<std::pair<const char*, COLORREF>> colours{
        {"25", RGB(200, 200, 0)}, {"(50)", RGB(0, 200, 200)}, {"24", RGB(200, 0, 0)},
        {"(49)", RGB(200, 200, 0)}, {"0", RGB(0, 200, 200)},  {"(3)", RGB(0, 200, 200)}};
    for (const auto& [text, colour] : colours)
        EXPECT_EQ(log.Find(text)->colour, colour) << text;

    d->menus.SetOptionOn(OptionStats, false);
    Frame();
    EXPECT_EQ(Place("(50)"), "absent");
}

TEST_F(FrameTest, TheBackgroundIsClearedToBlackAndStarsShowOnlyWithTheirOption)
{
    d->stars.push_back(CStar::FromDraws({16384, 16384, 0, 16384, 0}, 1024, 768)); // large, at 512,384, grey 160
    d.Back().ColourFill(nullptr, 0xFFFF);
    d->menus.SetOptionOn(OptionStars, false);
    Frame();
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 512, 384), 0u);
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 5, 700), 0u);
    EXPECT_EQ(d->stars[0].GetBrightness(), 160); // a star not drawn stands still

    d->menus.SetOptionOn(OptionStars, true);
    Frame();
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 512, 384), Platform::PackRgb565(RGB(158, 158, 158)));
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 512, 383), Platform::PackRgb565(RGB(79, 79, 79)));
}

} // namespace
