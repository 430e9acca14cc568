#include "support/TestApp.h"
#include "support/WorldObjects.h"
#include "world/Powerup.h"

#include <gtest/gtest.h>

namespace {

using qvtest::OpenShip;
using qvtest::TestApp;

TEST(Powerup, StartsAsAStillGoldTokenThatFadesAfterTenSeconds)
{
    TestApp t;
    CPowerup gold;
    gold.SetVector(qvtest::At(200, 200));
    EXPECT_EQ(gold.GetType(), ObjectPowerup);
    EXPECT_EQ(gold.GetRadius(), 7);
    EXPECT_EQ(gold.GetTeam(), TeamNone);
    EXPECT_EQ(gold.GetBoundsMode(), BoundsDie);
    ASSERT_EQ(t->liveSprites.size(), 1u);
    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(gold.Update(1000));
    EXPECT_FALSE(gold.Update(1));
}

TEST(Powerup, PickupGivesEnergyUpToTheStorageAndCountsOnce)
{
    TestApp t;
    auto& ship = *new OpenShip;
    ship.SetPlayerShip();
    t->world.AdoptPlayer(&ship);
    ship.energyMax = 300;
    ship.energy = 150.0f;
    CPowerup gold;
    gold.OnHit(0, &ship);
    EXPECT_EQ(ship.GetEnergy(), 300);
    EXPECT_EQ(t->world.GetPowerupsTaken(), 1);
    EXPECT_FALSE(gold.IsCollidable());
    EXPECT_EQ(ship.GetHull(), 100); // handed damage 0

    ship.energy = 50.0f;
    CPowerup second;
    second.OnHit(0, &ship);
    EXPECT_EQ(ship.GetEnergy(), 250);
    EXPECT_EQ(t->world.GetPowerupsTaken(), 2);
}

} // namespace
