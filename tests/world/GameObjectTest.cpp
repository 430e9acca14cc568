#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

namespace {

using qvtest::OpenObject;
using qvtest::TestApp;

TEST(GameObject, DiesPastItsLifetimeOrPastTheScreenEdgeByMoreThanItsRadius)
{
    TestApp t;
    OpenObject o(500, 400);
    o.lifetime = 500;
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(o.Update(100));
    EXPECT_FALSE(o.Update(1));
    EXPECT_EQ(o.GetSprite(), nullptr);

    OpenObject edge(-5, 300, 0, 0, 5), beyond(-6, 300, 0, 0, 5), free(-500, -500, 0, 0, 5);
    free.boundsMode = BoundsFree;
    EXPECT_TRUE(edge.Update(0));
    EXPECT_FALSE(beyond.Update(0));
    EXPECT_TRUE(free.Update(16));
}

TEST(GameObject, BounceReflectsOneAxisPerFrame)
{
    TestApp t;
    // Out on two sides at once: the x wall first, the y wall next frame.
    OpenObject corner(2, 2, -50.0f, -60.0f, 10);
    corner.boundsMode = BoundsBounce;
    ASSERT_TRUE(corner.Update(0));
    EXPECT_EQ(corner.GetX(), 11);
    EXPECT_FLOAT_EQ(corner.vector.GetXSpeed(), 50.0f);
    EXPECT_EQ(corner.GetY(), 2);
    ASSERT_TRUE(corner.Update(0));
    EXPECT_EQ(corner.GetY(), 11);
    EXPECT_FLOAT_EQ(corner.vector.GetYSpeed(), 60.0f);
}

TEST(GameObject, HoldsBothBandNodesOnlyWhileStraddlingABorder)
{
    TestApp t;
    OpenObject o(300, 100, 0.0f, 1000.0f, 10);
    // y 100: band 1 (76..151) alone; y 145 spans 135..155 into band 2; y 165 is wholly in band 2.
    const struct {
        std::int32_t ms, band, band2;
    } steps[] = {{0, 1, -1}, {45, 1, 2}, {20, 2, -1}};
    for (const auto& step : steps) {
        ASSERT_TRUE(o.Update(step.ms));
        EXPECT_EQ(o.GetBandItem()->GetOwner(), &t->world.GetBand(step.band)) << o.GetY();
        EXPECT_EQ(o.GetBandItem2()->GetOwner(), step.band2 < 0 ? nullptr : &t->world.GetBand(step.band2)) << o.GetY();
    }
    EXPECT_EQ(t->world.GetBand(1).GetCount(), 0);
}

TEST(GameObject, AHitActsOnceAndHandsDamageOnlyToAnotherTeam)
{
    TestApp t;
    OpenObject target(0, 0);
    target.team = TeamEnemy;
    target.diesOnHit = false;
    for (std::int32_t team : {TeamPlayer, TeamEnemy}) {
        OpenObject shot(0, 0);
        shot.team = team;
        shot.contactDamage = 9;
        shot.OnHit(3, &target);
        shot.OnHit(3, &target);
    }
    EXPECT_EQ(target.hits, 1);
    EXPECT_EQ(target.lastDamage, 9);
}

} // namespace
