#include "display/Star.h"
#include "platform/DC.h"
#include "platform/Surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

namespace {

std::string Describe(const CStar& star)
{
    return std::to_string(star.GetX()) + "," + std::to_string(star.GetY()) + " size " +
           std::to_string(star.GetSize()) + " grey " + std::to_string(star.GetBrightness()) +
           (star.IsRising() ? " rising" : " falling");
}

// The lowest and highest draws, then the brightness after each twinkle until
// the star has turned twice: it turns just past each end.
TEST(StarTwinkle, DrawsAtTheEndsOfTheirRangesAndTurnsJustPastEachEnd)
{
    EXPECT_EQ(Describe(CStar::FromDraws({0, 0, 4095, 0, 16383}, 1024, 768)), "0,0 size 2 grey 100 falling");
    // The highest draws put a star just off the right and bottom edges.
    EXPECT_EQ(Describe(CStar::FromDraws({32767, 32767, 4096, 32767, 16384}, 1024, 768)),
              "1024,768 size 1 grey 220 rising");
    // From 220 rising: 222, then down two a step to 98; from 100 falling: 98, then up to 222.
    using Draws = std::array<std::int32_t, 5>;
    for (const auto& [draws, first, last] :
         {std::tuple(Draws{0, 0, 32767, 32767, 32767}, 222, 98), std::tuple(Draws{0, 0, 32767, 0, 0}, 98, 222)}) {
        CStar star = CStar::FromDraws(draws, 1024, 768);
        std::vector<std::int32_t> seen;
        for (int turns = 0; turns < 2;) {
            const bool wasRising = star.IsRising();
            star.Twinkle();
            seen.push_back(star.GetBrightness());
            turns += star.IsRising() != wasRising;
        }
        EXPECT_TRUE(seen.front() == first && seen.back() == last && seen.size() == 63u) << first;
    }
}

TEST(StarDrawing, TwinklesOnceAndLightsOnlyThePixelsOnTheSurface)
{
    constexpr int Width = 8, Height = 6;
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
    EXPECT_EQ(std::count(bits.begin(), bits.end(), 0), Width * Height - 3); // nothing above or left

    // One just off the right edge is drawn (clipped) and still twinkles.
    CStar offScreen = CStar::FromDraws({32767, 0, 32767, 0, 0}, Width, Height);
    offScreen.Draw(dc);
    EXPECT_EQ(offScreen.GetBrightness(), 98);
    EXPECT_EQ(std::count(bits.begin(), bits.end(), 0), Width * Height - 3);
}

} // namespace
