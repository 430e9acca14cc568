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

TEST(VectorHeadings, DirectionConventionAtTheAxes)
{
    EXPECT_DOUBLE_EQ(CVector::HeadingOf(0, 1), 0.0);
    EXPECT_DOUBLE_EQ(CVector::HeadingOf(1, 0), std::atan(1000.0));
    EXPECT_DOUBLE_EQ(CVector::HeadingOf(-1, 0), 6.2831855 + std::atan(-1000.0));
    EXPECT_NEAR(CVector::HeadingOf(0, -1), Pi, 1e-6);
    // Every result lies in [0, 2 pi).
    for (float dx : {-3.f, -1.f, 0.f, 1.f, 3.f})
        for (float dy : {-3.f, -1.f, 0.f, 1.f, 3.f}) {
            const double h = CVector::HeadingOf(dx, dy);
            EXPECT_GE(h, 0.0);
            EXPECT_LT(h, 2 * Pi + 1e-6);
        }
}

TEST(VectorHeadings, MirrorOffAHorizontalWallKeepsXAndReversesY)
{
    EXPECT_NEAR(CVector::MirrorHeading(0), Pi, 1e-6);
    EXPECT_NEAR(CVector::MirrorHeading(Pi / 2), Pi / 2, 1e-6);
    for (double h : {0.3, 1.2, 2.5, 4.0, 5.9}) {
        const double m = CVector::MirrorHeading(h);
        EXPECT_NEAR(std::sin(m), std::sin(h), 1e-6);
        EXPECT_NEAR(std::cos(m), -std::cos(h), 1e-6);
    }
}

TEST(VectorMotion, MoveIntegratesBySeconds)
{
    CVector v = At(100, 200, 30, -40);
    v.Move(1000);
    EXPECT_FLOAT_EQ(v.GetXPos(), 130);
    EXPECT_FLOAT_EQ(v.GetYPos(), 160);
    EXPECT_FLOAT_EQ(v.GetSpeed(), 50);
}

TEST(VectorMotion, IntegerPositionTruncatesTowardZero)
{
    CVector v = At(0, 0, -1500, 1500);
    v.Move(1);
    EXPECT_EQ(v.GetX(), -1);
    EXPECT_EQ(v.GetY(), 1);
    v.AddPos(-0.4f, 0.4f);
    EXPECT_EQ(v.GetX(), -1);
    EXPECT_EQ(v.GetY(), 1);
}

TEST(VectorMotion, SpeedCacheFollowsEveryVelocityChange)
{
    CVector v = At(0, 0, 3, 4);
    EXPECT_FLOAT_EQ(v.GetSpeed(), 5);
    v.AddSpeed(3, 4);
    EXPECT_FLOAT_EQ(v.GetSpeed(), 10);
    v.ApplyThrust(0, 10, 0, 1000, 1);
    EXPECT_FLOAT_EQ(v.GetSpeed(), std::sqrt(6.f * 6 + 18.f * 18));
}

TEST(VectorThrust, ZeroThrustLeavesEvenAnOverLimitVectorAlone)
{
    CVector v = At(0, 0, 300, 0);
    v.ApplyThrust(0, 0.0, 1.0, 200, 1);
    EXPECT_FLOAT_EQ(v.GetXSpeed(), 300);
    EXPECT_FLOAT_EQ(v.GetYSpeed(), 0);
}

TEST(VectorThrust, ConventionsPointOppositeWaysInY)
{
    CVector down = At(0, 0);
    down.ApplyThrust(0, 10, 0, 1000, 1);
    EXPECT_FLOAT_EQ(down.GetYSpeed(), 10);
    CVector up = At(0, 0);
    up.ApplyThrust(0, 10, 0, 1000, 0);
    EXPECT_FLOAT_EQ(up.GetYSpeed(), -10);
    CVector right = At(0, 0);
    right.ApplyThrust(0, 10, Pi / 2, 1000, 0);
    EXPECT_NEAR(right.GetXSpeed(), 10, 1e-5);
    EXPECT_NEAR(right.GetYSpeed(), 0, 1e-5);
}

TEST(VectorThrust, LimitClipsToExactlyTheLimitAlongTheNewDirection)
{
    CVector v = At(0, 0);
    v.ApplyThrust(0, 500, Pi / 2, 200, 1);
    EXPECT_NEAR(v.GetSpeed(), 200, 1e-3);
    EXPECT_NEAR(v.GetXSpeed(), 200, 1e-3);
    EXPECT_NEAR(v.GetYSpeed(), 0, 0.5);
}

TEST(VectorThrust, BelowTheLimitThrustAddsFreely)
{
    CVector v = At(0, 0, 0, 100);
    v.ApplyThrust(0, 50, 0, 200, 1);
    EXPECT_FLOAT_EQ(v.GetYSpeed(), 150);
    // 199.9 truncates to 199, still below the limit
    CVector w = At(0, 0, 0, 150);
    w.ApplyThrust(0, 49.9, 0, 200, 1);
    EXPECT_NEAR(w.GetYSpeed(), 199.9, 1e-3);
}

TEST(VectorThrust, ThrustAgainstMotionOverTheLimitKeepsTheSlowerResult)
{
    CVector v = At(0, 0, 300, 0);
    v.ApplyThrust(0, 50, 3 * Pi / 2, 200, 1); // pointing left, against the motion
    EXPECT_NEAR(v.GetXSpeed(), 250, 1e-3);
    // thrust along the motion at the limit is clipped back to it
    CVector w = At(0, 0, 300, 0);
    w.ApplyThrust(0, 50, Pi / 2, 200, 1);
    EXPECT_NEAR(w.GetSpeed(), 200, 1e-3);
}

TEST(VectorAiming, InterceptOfAStationaryTargetIsThePlainHeading)
{
    CVector shooter = At(100, 100);
    const CVector target = At(300, 400);
    const double direct = CVector::HeadingOf(200, 300);
    EXPECT_NEAR(shooter.InterceptAngle(target, 5, 400), direct, 1e-9);
}

TEST(VectorAiming, InterceptLeadsAMovingTargetSoTheShotMeetsIt)
{
    CVector shooter = At(0, 0);
    const CVector target = At(0, 400, 100, 0); // below, moving right
    const double a = shooter.InterceptAngle(target, 5, 400);
    EXPECT_GT(a, 0.0);
    EXPECT_LT(a, Pi / 2);
    // Fly both for the shot's flight time: they meet within a pixel or two.
    const double t = 400.0 / (400.0 * std::cos(a));
    const double shotX = std::sin(a) * 400 * t;
    const double targetX = 100 * t;
    EXPECT_NEAR(shotX, targetX, 2.0);
}

TEST(VectorAiming, ZeroSpeedMeansOwnSpeedOrOne)
{
    CVector still = At(0, 0);
    const CVector target = At(0, 100);
    EXPECT_NEAR(still.InterceptAngle(target, 5, 0), 0.0, 1e-9);
    EXPECT_NEAR(still.LeadAngle(target, 5, 0), 0.0, 1e-9);
}

TEST(VectorAiming, LeadAngleAimsAheadOfACrossingTarget)
{
    CVector chaser = At(0, 0);
    const CVector target = At(0, 300, 150, 0);
    const double lead = chaser.LeadAngle(target, 5, 300);
    EXPECT_GT(lead, 0.1);
    EXPECT_LT(lead, Pi / 2);
}

TEST(VectorText, ToStringShowsWholeNumbersRightAfterTheirLabels)
{
    EXPECT_EQ(CVector().ToString(), "Vector -- xPos:0 yPos:0 xSpeed:0 ySpeed:0");
    EXPECT_EQ(At(-5, 7, -2.9f, 3.9f).ToString(), "Vector -- xPos:-5 yPos:7 xSpeed:-2 ySpeed:3");
}

} // namespace
