#include "display/SpriteInstance.h"
#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using qvtest::OpenObject;
using qvtest::TestApp;

constexpr std::int32_t W = 1024;
constexpr std::int32_t H = 768;

TEST(GameObjectLifetime, DiesOnTheUpdateThatTakesItsAgePastTheLifetime)
{
    TestApp t;
    OpenObject o(500, 400);
    o.lifetime = 500;
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(o.Update(100));
    EXPECT_EQ(o.age, 500);
    EXPECT_FALSE(o.Update(1));
    EXPECT_EQ(o.GetSprite(), nullptr);

    OpenObject forever(500, 400);
    for (int i = 0; i < 100; ++i)
        ASSERT_TRUE(forever.Update(100000));
}

TEST(GameObjectBounds, LeavingTheScreenKillsOnlyInDieModeAndOnlyPastTheRadius)
{
    TestApp t;
    OpenObject edge(-5, 300, 0, 0, 5);
    EXPECT_TRUE(edge.Update(0));
    OpenObject beyond(-6, 300, 0, 0, 5);
    EXPECT_FALSE(beyond.Update(0));
    OpenObject below(300, H + 6, 0, 0, 5);
    EXPECT_FALSE(below.Update(0));

    OpenObject free(-500, -500, 0, 0, 5);
    free.boundsMode = BoundsFree;
    EXPECT_TRUE(free.Update(16));
}

TEST(GameObjectBounds, BounceReflectsOneAxisPerFrame)
{
    TestApp t;
    OpenObject o(W - 10 + 3, 300, 120.0f, 7.0f, 10);
    o.boundsMode = BoundsBounce;
    ASSERT_TRUE(o.Update(0));
    EXPECT_EQ(o.GetX(), W - 10);
    EXPECT_FLOAT_EQ(o.vector.GetXSpeed(), -120.0f);
    EXPECT_FLOAT_EQ(o.vector.GetYSpeed(), 7.0f);

    // Out on two sides at once: the x wall first, the y wall next frame.
    OpenObject corner(2, 2, -50.0f, -60.0f, 10);
    corner.boundsMode = BoundsBounce;
    ASSERT_TRUE(corner.Update(0));
    EXPECT_EQ(corner.GetX(), 11);
    EXPECT_EQ(corner.GetY(), 2);
    EXPECT_FLOAT_EQ(corner.vector.GetYSpeed(), -60.0f);
    ASSERT_TRUE(corner.Update(0));
    EXPECT_EQ(corner.GetY(), 11);
    EXPECT_FLOAT_EQ(corner.vector.GetYSpeed(), 60.0f);
}

TEST(GameObjectRotation, StaysWithinOneTurnAndTurnsTheSprite)
{
    TestApp t;
    OpenObject o(100, 100);
    o.SetSprite("ship1");
    o.Rotate(-0.1);
    EXPECT_NEAR(o.facing, 6.283185307 - 0.1, 1e-12);
    EXPECT_EQ(o.GetSprite()->GetAngle(), 354);
    o.Rotate(0.2);
    EXPECT_NEAR(o.facing, 0.1, 1e-9);
}

TEST(GameObjectSprite, LivesInTheApplicationListUntilReleased)
{
    TestApp t;
    {
        OpenObject o(40, 50);
        o.SetSprite("gold");
        ASSERT_EQ(t->liveSprites.size(), 1u);
        EXPECT_EQ(t->liveSprites.front(), o.GetSprite());
        EXPECT_EQ(o.GetSprite()->GetX(), 40);
        EXPECT_EQ(o.GetSprite()->GetY(), 50);
    }
    EXPECT_TRUE(t->liveSprites.empty());

    // A new game deletes every look first; the object then lets go without a second delete.
    OpenObject orphan(1, 1);
    orphan.SetSprite("gold");
    delete t->liveSprites.front();
    t->liveSprites.clear();
    orphan.ReleaseSprite();
    EXPECT_EQ(orphan.GetSprite(), nullptr);
}

TEST(GameObjectBands, HoldsBothNodesOnlyWhileStraddlingABorder)
{
    TestApp t;
    ASSERT_EQ(t->world.GetBandHeight(), 76);
    OpenObject o(300, 100, 0.0f, 1000.0f, 10);
    // y 100: band 1 (76..151) alone; y 145 spans 135..155 into band 2; y 165 is wholly in band 2.
    const struct {
        std::int32_t ms, band, band2, inBand1;
    } steps[] = {{0, 1, -1, 1}, {45, 1, 2, 1}, {20, 2, -1, 0}};
    for (const auto& step : steps) {
        ASSERT_TRUE(o.Update(step.ms));
        EXPECT_EQ(o.GetBand(), step.band) << o.GetY();
        EXPECT_EQ(o.GetBand2(), step.band2) << o.GetY();
        EXPECT_EQ(o.GetBandItem()->GetOwner(), &t->world.GetBand(step.band)) << o.GetY();
        EXPECT_EQ(o.GetBandItem2()->GetOwner(), step.band2 < 0 ? nullptr : &t->world.GetBand(step.band2));
        EXPECT_EQ(t->world.GetBand(1).GetCount(), step.inBand1) << o.GetY();
    }
}

TEST(GameObjectHit, ActsOnceAndHandsDamageOnlyToAnotherTeam)
{
    TestApp t;
    OpenObject shot(0, 0);
    shot.team = TeamPlayer;
    shot.contactDamage = 9;
    OpenObject target(0, 0);
    target.team = TeamEnemy;
    target.diesOnHit = false;

    shot.OnHit(3, &target);
    EXPECT_FALSE(shot.IsAlive());
    EXPECT_FALSE(shot.IsCollidable());
    EXPECT_FALSE(shot.Update(0));
    EXPECT_EQ(target.hits, 1);
    EXPECT_EQ(target.lastDamage, 9);
    EXPECT_EQ(target.lastOther, nullptr);

    shot.OnHit(3, &target);
    EXPECT_EQ(target.hits, 1);

    OpenObject ownShot(0, 0);
    ownShot.team = TeamEnemy;
    ownShot.contactDamage = 9;
    ownShot.OnHit(0, &target);
    EXPECT_EQ(target.hits, 1);
}

} // namespace
