#include "display/Star.h"
#include "platform/DC.h"
#include "platform/Surface.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

std::string Describe(const CStar& star)
{
    return std::to_string(star.GetX()) + "," + std::to_string(star.GetY()) + " size " +
           std::to_string(star.GetSize()) + " grey " + std::to_string(star.GetBrightness()) +
           (star.IsRising() ? " rising" : " falling");
}

// The brightness after each twinkle, until the star has turned twice.
std::vector<std::int32_t> TwinkleSequence(CStar star)
{
    std::vector<std::int32_t> seen;
    for (int turns = 0; turns < 2;) {
        const bool wasRising = star.IsRising();
        star.Twinkle();
        seen.push_back(star.GetBrightness());
        turns += star.IsRising() != wasRising;
    }
    return seen;
}

std::vector<std::int32_t> Steps(std::int32_t from, std::int32_t to)
{
    std::vector<std::int32_t> values;
    for (std::int32_t v = from; v != to; v += from < to ? 2 : -2)
        values.push_back(v);
    values.push_back(to);
    return values;
}

TEST(StarConstruction, DrawsAtTheEndsOfTheirRanges)
{
    EXPECT_EQ(Describe(CStar::FromDraws({0, 0, 4095, 0, 16383}, 1024, 768)), "0,0 size 2 grey 100 falling");
    // The highest draws put a star just off the right and bottom edges.
    EXPECT_EQ(Describe(CStar::FromDraws({32767, 32767, 4096, 32767, 16384}, 1024, 768)),
              "1024,768 size 1 grey 220 rising");
}

TEST(StarConstruction, TakesFiveDrawsOfTheSharedGeneratorInOrder)
{
    qvtest::TestApp t(4242);
    CRandom same;
    same.Seed(4242);
    const std::array<std::int32_t, 5> draws{same.Rand(), same.Rand(), same.Rand(), same.Rand(), same.Rand()};
    EXPECT_EQ(Describe(CStar()), Describe(CStar::FromDraws(draws, 1024, 768)));
    EXPECT_EQ(t->Rand(), same.Rand()); // and no more
}

TEST(StarTwinkle, TurnsJustPastEachEnd)
{
    // From 220 rising: 222, then down to 98, where it turns up again.
    EXPECT_EQ(TwinkleSequence(CStar::FromDraws({0, 0, 32767, 32767, 32767}, 1024, 768)), Steps(222, 98));
    // From 100 falling: 98, then up to 222.
    EXPECT_EQ(TwinkleSequence(CStar::FromDraws({0, 0, 32767, 0, 0}, 1024, 768)), Steps(98, 222));
}

TEST(StarPixels, ALargeStarLightsItsFourNeighboursAtHalfBrightness)
{
    CStar star = CStar::FromDraws({32767, 0, 0, 16384, 0}, 1024, 768); // grey 160, at the top-right corner
    star.Twinkle();
    std::vector<std::string> lit;
    const CStar::Pixels pixels = star.GetPixels();
    for (int i = 0; i < pixels.count; ++i) {
        const StarPixel& p = pixels.pixel[static_cast<std::size_t>(i)];
        lit.push_back(std::to_string(p.x) + "," + std::to_string(p.y) + ":" + std::to_string(p.grey));
    }
    EXPECT_EQ(lit, (std::vector<std::string>{"1024,0:158", "1025,0:79", "1023,0:79", "1024,1:79", "1024,-1:79"}));
    EXPECT_EQ(CStar::FromDraws({100, 100, 32767, 0, 0}, 1024, 768).GetPixels().count, 1);
}

TEST(StarDrawing, TwinklesOnceAndLightsOnlyThePixelsOnTheSurface)
{
    constexpr int Width = 8;
    constexpr int Height = 6;
    std::vector<std::uint16_t> bits(Width * Height, 0);
    CDC dc(bits.data(), Width, Width, Height);
    auto grey = [](std::uint8_t g) { return Platform::PackRgb565(RGB(g, g, g)); };

    // A large star in the top-left corner, grey 160 and falling.
    CStar corner = CStar::FromDraws({0, 0, 0, 16384, 0}, Width, Height);
    corner.Draw(dc);
    corner.Draw(dc);
    EXPECT_EQ(corner.GetBrightness(), 156);
    EXPECT_EQ(bits[0], grey(156));
    EXPECT_EQ(bits[1], grey(78));     // right
    EXPECT_EQ(bits[Width], grey(78)); // below
    EXPECT_EQ(std::count(bits.begin(), bits.end(), 0), Width * Height - 3);

    // One just off the right edge is drawn (clipped) and still twinkles.
    CStar offScreen = CStar::FromDraws({32767, 0, 32767, 0, 0}, Width, Height);
    offScreen.Draw(dc);
    EXPECT_EQ(offScreen.GetBrightness(), 98);
    EXPECT_EQ(std::count(bits.begin(), bits.end(), 0), Width * Height - 3);
}

} // namespace
