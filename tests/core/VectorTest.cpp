#include "core/Vector.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr double Pi = 3.14159265358979;

CVector At(int x, int y, float xs = 0, float ys = 0)
{
    CVector v;
    v.Set(x, y, xs, ys);
    return v;
}

TEST(VectorHeadings, DirectionConventionAndMirror)
{
    EXPECT_DOUBLE_EQ(CVector::HeadingOf(0, 1), 0.0);
    EXPECT_DOUBLE_EQ(CVector::HeadingOf(1, 0), std::atan(1000.0));
    EXPECT_DOUBLE_EQ(CVector::HeadingOf(-1, 0), 6.2831855 + std::atan(-1000.0));
    EXPECT_NEAR(CVector::HeadingOf(0, -1), Pi, 1e-6);
    for (float dx : {-3.f, -1.f, 0.f, 1.f, 3.f})
        for (float dy : {-3.f, -1.f, 0.f, 1.f, 3.f}) {
            const double h = CVector::HeadingOf(dx, dy);
            EXPECT_GE(h, 0.0);
            EXPECT_LT(h, 2 * Pi + 1e-6);
        }
    // Off a horizontal wall: x kept, y reversed.
    EXPECT_NEAR(CVector::MirrorHeading(0), Pi, 1e-6);
    for (double h : {Pi / 2, 0.3, 1.2, 2.5, 4.0, 5.9}) {
        const double m = CVector::MirrorHeading(h);
        EXPECT_NEAR(std::sin(m), std::sin(h), 1e-6);
        EXPECT_NEAR(std::cos(m), -std::cos(h), 1e-6);
    }
}

TEST(VectorMotion, MovesBySecondsTruncatesTowardZeroAndRecomputesTheSpeed)
{
    CVector v = At(100, 200, 30, -40);
    v.Move(1000);
    EXPECT_FLOAT_EQ(v.GetXPos(), 130);
    EXPECT_FLOAT_EQ(v.GetYPos(), 160);
    EXPECT_FLOAT_EQ(v.GetSpeed(), 50);
    v.AddSpeed(-27, 44); // (3, 4)
    EXPECT_FLOAT_EQ(v.GetSpeed(), 5);
    v.ApplyThrust(0, 10, 0, 1000, 1);
    EXPECT_FLOAT_EQ(v.GetSpeed(), std::sqrt(3.f * 3 + 14.f * 14));

    CVector w = At(0, 0, -1500, 1500);
    w.Move(1);
    w.AddPos(-0.4f, 0.4f);
    EXPECT_EQ(w.GetX(), -1);
    EXPECT_EQ(w.GetY(), 1);
}

TEST(VectorThrust, AddsAlongTheHeadingAndClipsAtTheLimit)
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
        {0, 0, 10, Pi / 2, 1000, 0, 10, 0},
        {0, 0, 500, Pi / 2, 200, 1, 200, 0},       // clipped to exactly the limit
        {0, 100, 50, 0, 200, 1, 0, 150},
        {0, 150, 49.9, 0, 200, 1, 0, 199.9},       // 199.9 counts as 199: below the limit
        {300, 0, 50, 3 * Pi / 2, 200, 1, 250, 0},  // against the motion: the slower result stands
        {300, 0, 50, Pi / 2, 200, 1, 200, 0},      // along it: back to the limit
    };
    for (const Case& c : cases) {
        CVector v = At(0, 0, c.xs, c.ys);
        v.ApplyThrust(0, c.thrust, c.heading, c.limit, c.convention);
        EXPECT_NEAR(v.GetXSpeed(), c.wantX, 1e-3) << c.xs << "," << c.ys << " + " << c.thrust << "@" << c.heading;
        EXPECT_NEAR(v.GetYSpeed(), c.wantY, 1e-3) << c.xs << "," << c.ys << " + " << c.thrust << "@" << c.heading;
    }
}

TEST(VectorAiming, StillTargetsAndZeroSpeedsAimStraight)
{
    CVector shooter = At(100, 100);
    EXPECT_NEAR(shooter.InterceptAngle(At(300, 400), 5, 400), CVector::HeadingOf(200, 300), 1e-9);
    // A speed of 0 means the shooter's own, and at rest that is taken as 1.
    EXPECT_NEAR(shooter.InterceptAngle(At(100, 200), 5, 0), 0.0, 1e-9);
    EXPECT_NEAR(shooter.LeadAngle(At(100, 200), 5, 0), 0.0, 1e-9);
}

TEST(VectorAiming, MovingTargetsAreLedSoTheShotMeetsThem)
{
    CVector shooter = At(0, 0);
    const double a = shooter.InterceptAngle(At(0, 400, 100, 0), 5, 400); // below, moving right
    EXPECT_GT(a, 0.0);
    EXPECT_LT(a, Pi / 2);
    // Fly both for the shot's flight time: they meet within a pixel or two.
    const double t = 400.0 / (400.0 * std::cos(a));
    EXPECT_NEAR(std::sin(a) * 400 * t, 100 * t, 2.0);

    const double lead = shooter.LeadAngle(At(0, 300, 150, 0), 5, 300);
    EXPECT_GT(lead, 0.1);
    EXPECT_LT(lead, Pi / 2);
}

TEST(VectorText, ToStringShowsWholeNumbersRightAfterTheirLabels)
{
    EXPECT_EQ(CVector().ToString(), "Vector -- xPos:0 yPos:0 xSpeed:0 ySpeed:0");
    EXPECT_EQ(At(-5, 7, -2.9f, 3.9f).ToString(), "Vector -- xPos:-5 yPos:7 xSpeed:-2 ySpeed:3");
}

} // namespace
