// The start level comes from a settings file players may edit by hand, and a
// level read from the file is kept whatever it is. Games started at levels the
// options screen never offers must still play without a fault.
#include "support/TestApp.h"
#include "support/GameDriver.h"
#include "world/World.h"

#include <gtest/gtest.h>

namespace {

TEST(OddStartLevels, PlayWithoutFault)
{
    for (const std::int32_t level : {-2147483647 - 1, -5, 0, 25, 1000, 2147483647}) {
        qvtest::TestApp t;
        CGameDriver driver(*t);
        driver.Seed(7);
        driver.StartGame(level);
        for (int frame = 0; frame < 2000 && driver.GetGameState() != StateMenu; ++frame) {
            if (driver.GetGameState() == StateDesign) {
                driver.Refit();
                driver.StartLevel();
            }
            driver.Frame(20);
        }
        EXPECT_GE(driver.World().GetTimeLeft(), 0) << level;
    }
}

TEST(OddStartLevels, TheGameOpensOneLevelBelowAsReadWithinTheCounter)
{
    using Case = std::pair<std::int32_t, std::int16_t>;
    for (const auto& [start, before] : {Case{0, -1}, Case{-5, -6}, Case{25, 24}, Case{-32767, -32768},
                                        Case{32768, 32767}}) {
        qvtest::TraceRecorder trace;
        EXPECT_EQ(CWorld::LevelBefore(start), before) << start;
        EXPECT_TRUE(trace.lines.empty()) << start;
    }
    for (const auto& [start, before] : {Case{-32768, -32768}, Case{-2147483647 - 1, -32768}, Case{32769, 32767},
                                        Case{2147483647, 32767}}) {
        qvtest::TraceRecorder trace;
        EXPECT_EQ(CWorld::LevelBefore(start), before) << start;
        EXPECT_EQ(trace.Texts(), std::vector<std::string>{"Start level beyond the level counter"}) << start;
    }

    qvtest::TestApp t;
    CGameDriver driver(*t);
    driver.StartGame(0);
    EXPECT_EQ(driver.World().GetLevel(), -1);
    driver.World().BeginNextLevel();
    EXPECT_EQ(driver.World().GetLevel(), 0);
    driver.StartGame(32768);
    driver.World().BeginNextLevel();
    driver.World().BeginNextLevel(); // the counter stays at its highest rather than wrap
    EXPECT_EQ(driver.World().GetLevel(), 32767);
}

} // namespace
