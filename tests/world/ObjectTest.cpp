#include "support/TestApp.h"
#include "support/WorldObjects.h"
#include "world/Powerup.h"
#include "world/Projectile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace {

using qvtest::OpenObject;
using qvtest::OpenShip;
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

TEST(Volleys, EachPatternPlacesAndAimsItsShots)
{
    TestApp t;
    OpenShip ship;
    using Pattern = void (*)(const CShip&, const CLaser&);
    struct Case {
        Pattern pattern;
        std::int32_t team, shots;
        double facing;
        float shipXSpeed;
        std::vector<double> angles; // where each shot sits around the ship, as a facing
        bool alongFacing;           // or each along the angle at which it sits
        std::int16_t bounds;
    };
    const Case cases[] = {
        {FireParallel, TeamPlayer, 3, 0.0, 0, {M_PI / 4, 0.0, 7 * M_PI / 4}, true, BoundsBounce},
        {FireSpread, TeamEnemy, 3, 0.0, 0, {M_PI / 20, 0.0, 2 * M_PI - M_PI / 20}, false, BoundsDie},
        {FireRadiating, TeamPlayer, 4, 0.0, 0, {0.0, 3 * M_PI / 2, M_PI, M_PI / 2}, false, BoundsDie}, // never bounce
        // One shot goes straight ahead whatever the pattern, and every shot inherits the ship's motion.
        {FireParallel, TeamEnemy, 1, M_PI / 2, 100, {M_PI / 2}, true, BoundsDie},
        {FireRadiating, TeamEnemy, 1, M_PI / 2, 0, {M_PI / 2}, true, BoundsDie},
    };
    for (const Case& c : cases) {
        ship.vector = qvtest::At(500, 400, c.shipXSpeed, 0);
        ship.radius = 16;
        ship.team = c.team;
        ship.facing = c.facing;
        t->world.Clear();
        c.pattern(ship, CLaser(CComponent::Common{}, CLaser::Values{.speed = 300, .containment = 1500, .shots = c.shots}));
        ASSERT_EQ(t->world.GetMasterList().GetCount(), static_cast<std::int32_t>(c.angles.size())) << &c - cases;
        std::size_t i = 0;
        for (CLinkedItem* n = t->world.GetMasterList().GetHead(); n; n = n->GetNext(), ++i) {
            const CGameObject* o = n->GetData();
            const CVector v = o->GetVector();
            const double dx = v.GetXPos() - 500, dy = v.GetYPos() - 400;
            const double along = c.alongFacing ? c.facing : c.angles[i];
            const double at = std::atan2(dx, -dy);
            EXPECT_NEAR(std::hypot(dx, dy), 20.0, 1e-3) << &c - cases; // just outside the ship
            EXPECT_NEAR(std::remainder(at - c.angles[i], 2 * M_PI), 0.0, 1e-5) << &c - cases << " shot " << i;
            EXPECT_NEAR(v.GetXSpeed(), c.shipXSpeed + 300.0 * std::sin(along), 1e-3) << &c - cases;
            EXPECT_NEAR(v.GetYSpeed(), -300.0 * std::cos(along), 1e-3) << &c - cases;
            EXPECT_EQ(o->GetTeam(), c.team);
            EXPECT_EQ(o->GetBoundsMode(), c.bounds);
        }
    }
}

} // namespace
