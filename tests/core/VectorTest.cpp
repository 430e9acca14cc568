#include "support/WorldObjects.h"

#include <gtest/gtest.h>

namespace {

using qvtest::At;

TEST(Vector, MovesBySecondsAndTruncatesPositionsTowardZero)
{
    CVector v = At(100, 200, 30, -40);
    v.Move(1000);
    EXPECT_EQ(v.ToString(), "Vector -- xPos:130 yPos:160 xSpeed:30 ySpeed:-40");
    EXPECT_FLOAT_EQ(v.GetSpeed(), 50);
    CVector w = At(0, 0, -1500, 1500);
    w.Move(1);
    w.AddPos(-0.4f, 0.4f);
    EXPECT_EQ(w.ToString(), "Vector -- xPos:-1 yPos:1 xSpeed:-1500 ySpeed:1500");
    EXPECT_EQ(At(-5, 7, -2.9f, 3.9f).ToString(), "Vector -- xPos:-5 yPos:7 xSpeed:-2 ySpeed:3");
}

} // namespace
