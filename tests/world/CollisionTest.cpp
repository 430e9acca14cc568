#include "support/TestApp.h"
#include "support/WorldObjects.h"
#include "world/Powerup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace {

using qvtest::OpenObject;
using qvtest::TestApp;

// Objects that register in their bands, then one collision pass over them, as
// the world runs it after every object has moved.
struct Collisions : ::testing::Test {
    TestApp t;

    OpenObject* Make(std::int32_t x, std::int32_t y, float xs, float ys, std::int32_t r)
    {
        auto* o = new OpenObject(x, y, xs, ys, r);
        o->diesOnHit = false;
        t->world.AddObject(o);
        return o;
    }

    void Pass()
    {
        for (CLinkedItem* n = t->world.GetMasterList().GetHead(); n; n = n->GetNext())
            n->GetData()->Update(0);
        for (CLinkedItem* n = t->world.GetMasterList().GetHead(); n; n = n->GetNext())
            n->GetData()->CollisionPass();
    }
};

TEST_F(Collisions, CirclesTouchBelowTheSumOfTheRadiiOnlyAndBigOnesAcrossTheSweep)
{
    struct Case {
        std::int32_t ax, ay, ar, bx, by, br;
        int hits;
    };
    const Case cases[] = {
        {300, 300, 10, 319, 300, 10, 1},
        {300, 300, 10, 320, 300, 10, 0},
        {300, 300, 10, 315, 315, 10, 0}, // the axis distances pass but the corner of the square does not
        {360, 300, 25, 300, 300, 40, 1}, // beyond 51 + the small radius, within 51 + 40
    };
    for (const Case& c : cases) {
        t->world.Clear();
        OpenObject* a = Make(c.ax, c.ay, 0, 0, c.ar);
        OpenObject* b = Make(c.bx, c.by, 0, 0, c.br);
        Pass();
        EXPECT_EQ(std::make_pair(a->hits, b->hits), std::make_pair(c.hits, c.hits)) << &c - cases;
    }
}

TEST_F(Collisions, HeadOnEqualMassesSwapTheirMotionAndSplitTheImpact)
{
    // Moving diagonally so that neither heading is bent by a zero difference.
    OpenObject* a = Make(300, 300, 100.0f, 100.0f, 10);
    OpenObject* b = Make(310, 310, -100.0f, -100.0f, 10);
    Pass();
    EXPECT_EQ(a->lastDamage, static_cast<std::int32_t>(2 * 100.0 * std::sqrt(2.0)) / 2);
    EXPECT_EQ(b->lastDamage, a->lastDamage);
    EXPECT_NEAR(a->vector.GetXSpeed(), -100.0f, 0.01);
}

TEST_F(Collisions, AnObjectAtRestAddsNothingToTheImpactAndAPairMeetsOncePerFrame)
{
    OpenObject* mover = Make(300, 300, 0.0f, 120.0f, 10);
    OpenObject* rock = Make(300, 315, 0.0f, 0.0f, 10);
    EXPECT_EQ(mover->ResolveCollision(*rock), 119); // 120 bent by a hair off the line of centres
    EXPECT_EQ(mover->ResolveCollision(*rock), -1);

    // Both straddle the border of bands 1 and 2 (y = 152): still one meeting a frame.
    t->world.Clear();
    OpenObject* a = Make(300, 150, 0, 0, 10);
    OpenObject* b = Make(305, 152, 0, 0, 10);
    Pass();
    ASSERT_NE(a->GetBand2(), -1);
    ASSERT_NE(b->GetBand2(), -1);
    EXPECT_EQ(a->hits, 1);
    Pass();
    EXPECT_EQ(a->hits, 2);
}

TEST_F(Collisions, ShotsOfOneSideCrossAndPowerupsTouchOnlyThePlayersShip)
{
    auto shot = [&](std::int32_t x, std::int32_t team) {
        OpenObject* o = Make(x, 300, 0, 0, 2);
        o->type = ObjectProjectile;
        o->team = team;
        return o;
    };
    OpenObject* p1 = shot(300, TeamPlayer);
    OpenObject* p2 = shot(301, TeamPlayer);
    OpenObject* e1 = shot(600, TeamEnemy);
    OpenObject* p3 = shot(601, TeamPlayer);
    Pass();
    EXPECT_EQ(p1->hits + p2->hits, 0);
    EXPECT_EQ(e1->hits + p3->hits, 2);

    t->world.NewGame(1); // the player's ship sits at (512, 384)
    auto* gold = new CPowerup;
    gold->SetVector(qvtest::At(512, 380));
    t->world.AddObject(gold);
    OpenObject* rock = Make(500, 380, 0, 0, 10);
    Pass();
    EXPECT_EQ(rock->hits, 1); // met the ship, passed through the gold
    EXPECT_FALSE(gold->IsAlive());
    Pass(); // no longer collidable: collected once
    EXPECT_EQ(t->world.GetPowerupsTaken(), 1);
}

TEST(Powerup, PickupGivesEnergyUpToTheShipsStorage)
{
    TestApp t;
    auto& ship = *new qvtest::OpenShip;
    ship.SetPlayerShip();
    t->world.AdoptPlayer(&ship);
    ship.energyMax = 300;
    for (float energy : {150.0f, 50.0f}) {
        ship.energy = energy;
        CPowerup().OnHit(0, &ship);
    }
    EXPECT_EQ(ship.GetEnergy(), 250);
    EXPECT_EQ(ship.GetHull(), 100); // handed damage 0
}

} // namespace
