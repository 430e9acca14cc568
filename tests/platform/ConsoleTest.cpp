#include "platform/App.h"

#include <gtest/gtest.h>

namespace {

TEST(VideoDrivers, ADriverIsNamedInAListWhateverItsCase)
{
    EXPECT_TRUE(Platform::NamedInDriverList("dummy", "DUMMY"));
    EXPECT_TRUE(Platform::NamedInDriverList("offscreen", "wayland,offscreen"));
    EXPECT_FALSE(Platform::NamedInDriverList("offscreen", "x11"));
    EXPECT_FALSE(Platform::NamedInDriverList("dummy", ""));
}

} // namespace
