#include "platform/App.h"
#include "platform/Console.h"

#include <gtest/gtest.h>

namespace {

TEST(TraceOnStderr, EachCallIsOneTimedLineWithItsNumber)
{
    EXPECT_EQ(Platform::TraceLineText({TraceLine::Plain, "Creating game fonts", 0, 0}, 15.4),
              "[     0.015] Creating game fonts\n");
    EXPECT_EQ(Platform::TraceLineText({TraceLine::Value, "Screen Width", 1024, 0}, 6138.25),
              "[     6.138] Screen Width 1024\n");
    EXPECT_EQ(Platform::TraceLineText({TraceLine::Code, "Direct Draw Init Failed (00000002)\n", 2, 0}, 0),
              "[     0.000] Direct Draw Init Failed (00000002) (code 00000002)\n");
    EXPECT_EQ(Platform::TraceLineText({TraceLine::Plain, " ", 0, 0}, 0), "[     0.000]  \n");
}

TEST(VideoDrivers, StandInsThatShowNothingAreUsedOnlyWhenNamed)
{
    EXPECT_TRUE(Platform::ShowsNothing("offscreen"));
    EXPECT_TRUE(Platform::ShowsNothing("Dummy"));
    EXPECT_FALSE(Platform::ShowsNothing("x11"));
    EXPECT_FALSE(Platform::ShowsNothing("kmsdrm"));
    EXPECT_TRUE(Platform::NamedInDriverList("dummy", "DUMMY"));
    EXPECT_TRUE(Platform::NamedInDriverList("offscreen", "wayland,offscreen"));
    EXPECT_FALSE(Platform::NamedInDriverList("offscreen", "x11"));
    EXPECT_FALSE(Platform::NamedInDriverList("dummy", ""));
}

} // namespace
