// The start level comes from a settings file players may edit by hand, and a
// level read from the file is kept whatever it is. Games started at levels the
// options screen never offers must still play without a fault.
#include "support/TestApp.h"
#include "world/GameDriver.h"
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

} // namespace
