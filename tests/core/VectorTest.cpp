#include "support/WorldObjects.h"

#include <gtest/gtest.h>

#include <cmath>

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

TEST(Vector, ThrustAddsAlongTheHeadingAndClipsAtTheLimit)
{
    struct Case {
        float xs, ys;
        double thrust, heading;
        std::int32_t limit;
        std::uint8_t convention;
        double wantX, wantY;
    };
    const Case cases[] = {
        {300, 0, 0.0, 1.0, 200, 1, 300, 0},        // no thrust: even over the limit nothing changes
        {0, 0, 10, 0, 1000, 1, 0, 10},             // a direction heading of 0 is down
        {0, 0, 10, 0, 1000, 0, 0, -10},            // a facing of 0 is up
        {0, 150, 49.9, 0, 200, 1, 0, 199.9},       // 199.9 counts as 199: below the limit
        {300, 0, 50, 3 * M_PI / 2, 200, 1, 250, 0},  // against the motion: the slower result stands
        {300, 0, 50, M_PI / 2, 200, 1, 200, 0},      // along it: back to the limit
    };
    for (const Case& c : cases) {
        CVector v = At(0, 0, c.xs, c.ys);
        v.ApplyThrust(0, c.thrust, c.heading, c.limit, c.convention);
        EXPECT_NEAR(v.GetXSpeed(), c.wantX, 1e-3) << &c - cases;
        EXPECT_NEAR(v.GetYSpeed(), c.wantY, 1e-3) << &c - cases;
    }
}

TEST(Vector, AimsStraightAtStillTargetsAndLeadsMovingOnes)
{
    CVector shooter = At(0, 0);
    EXPECT_NEAR(shooter.InterceptAngle(At(200, 300), 5, 400), CVector::HeadingOf(200, 300), 1e-9);
    // A speed of 0 means the shooter's own, and at rest that is taken as 1.
    EXPECT_NEAR(shooter.InterceptAngle(At(0, 100), 5, 0), 0.0, 1e-9);
    const double a = shooter.InterceptAngle(At(0, 400, 100, 0), 5, 400); // below, moving right
    // Fly both for the shot's flight time: they meet within a pixel or two.
    const double t = 400.0 / (400.0 * std::cos(a));
    EXPECT_NEAR(std::sin(a) * 400 * t, 100 * t, 2.0);
    const double lead = shooter.LeadAngle(At(0, 300, 150, 0), 5, 300);
    EXPECT_TRUE(lead > 0.1 && lead < M_PI / 2) << lead;
}

} // namespace
