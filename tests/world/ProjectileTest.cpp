#include "support/TestApp.h"
#include "support/WorldObjects.h"
#include "world/Projectile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using qvtest::OpenShip;
using qvtest::TestApp;

constexpr double Pi = 3.14159265358979;

struct Shot {
    double angle; // where it sits around the ship, as a facing
    double x, y, xs, ys;
    std::int32_t team, damage, lifetime;
    std::int16_t bounds;
};

// Fires one volley from a ship of radius 16 at (500, 400) and reads back the shots in launch order.
struct Volleys : ::testing::Test {
    TestApp t;
    OpenShip ship;
    std::int32_t shots = 3;

    Volleys()
    {
        ship.vector = qvtest::At(500, 400);
        ship.radius = 16;
    }

    // Each shot flies along the angle at which it sits.
    static void ExpectOutward(const std::vector<Shot>& shots, const std::vector<double>& angles)
    {
        ASSERT_EQ(shots.size(), angles.size());
        for (std::size_t i = 0; i < angles.size(); ++i) {
            EXPECT_NEAR(shots[i].angle, angles[i], 1e-5);
            EXPECT_NEAR(shots[i].xs, 300.0 * std::sin(angles[i]), 1e-3);
            EXPECT_NEAR(shots[i].ys, -300.0 * std::cos(angles[i]), 1e-3);
            EXPECT_EQ(shots[i].bounds, BoundsDie);
        }
    }

    std::vector<Shot> Fire(void (*pattern)(const CShip&, const CLaser&))
    {
        t->world.Clear();
        CLaser::Values values;
        values.speed = 300;
        values.containment = 1500;
        values.shots = shots;
        values.damage = 12;
        pattern(ship, CLaser(CComponent::Common{}, values));
        std::vector<Shot> shots;
        for (CLinkedItem* n = t->world.GetMasterList().GetHead(); n; n = n->GetNext()) {
            CGameObject* o = n->GetData();
            const CVector v = o->GetVector();
            const double dx = v.GetXPos() - ship.vector.GetXPos();
            const double dy = v.GetYPos() - ship.vector.GetYPos();
            EXPECT_NEAR(std::hypot(dx, dy), 20.0, 1e-3);
            EXPECT_EQ(o->GetType(), ObjectProjectile);
            EXPECT_EQ(o->GetRadius(), 2);
            double a = std::atan2(dx, -dy);
            if (a < -1e-6)
                a += 2 * Pi;
            shots.push_back({a, v.GetXPos(), v.GetYPos(), v.GetXSpeed(), v.GetYSpeed(), o->GetTeam(),
                             o->GetContactDamage(), o->GetLifetime(), o->GetBoundsMode()});
        }
        return shots;
    }
};

TEST_F(Volleys, ParallelShotsSitAcrossTheFrontAndAllFlyAlongTheFacing)
{
    ship.team = TeamPlayer;
    const auto shots = Fire(FireParallel);
    ASSERT_EQ(shots.size(), 3u);
    EXPECT_NEAR(shots[0].angle, Pi / 4, 1e-5);
    EXPECT_NEAR(shots[1].angle, 0.0, 1e-5);
    EXPECT_NEAR(shots[2].angle, 7 * Pi / 4, 1e-5);
    for (const Shot& s : shots) {
        EXPECT_NEAR(s.xs, 0.0, 1e-3);
        EXPECT_NEAR(s.ys, -300.0, 1e-3);
        EXPECT_EQ(s.team, TeamPlayer);
        EXPECT_EQ(s.damage, 12);
        EXPECT_EQ(s.lifetime, 1500);
        EXPECT_EQ(s.bounds, BoundsBounce);
    }
}

TEST_F(Volleys, SpreadShotsFanOutSymmetricallyAboutTheFacing)
{
    ship.team = TeamEnemy;
    ExpectOutward(Fire(FireSpread), {Pi / 20, 0.0, 2 * Pi - Pi / 20});
}

TEST_F(Volleys, RadiatingShotsRingTheShipAndNeverBounce)
{
    ship.team = TeamPlayer;
    shots = 4;
    ExpectOutward(Fire(FireRadiating), {0.0, 3 * Pi / 2, Pi, Pi / 2}); // up, left, down, right
}

TEST_F(Volleys, OneShotGoesStraightAheadInEveryPattern)
{
    ship.facing = Pi / 2;
    shots = 1;
    for (auto pattern : {FireParallel, FireSpread, FireRadiating}) {
        const auto shots = Fire(pattern);
        ASSERT_EQ(shots.size(), 1u);
        EXPECT_NEAR(shots[0].angle, Pi / 2, 1e-5);
        EXPECT_NEAR(shots[0].xs, 300.0, 1e-3);
        EXPECT_NEAR(shots[0].ys, 0.0, 1e-3);
    }
}

TEST_F(Volleys, ShotsInheritTheShipsMotion)
{
    ship.vector.Set(500, 400, 100.0f, 0.0f);
    shots = 1;
    const auto shots = Fire(FireParallel);
    ASSERT_EQ(shots.size(), 1u);
    EXPECT_NEAR(shots[0].xs, 100.0, 1e-3);
    EXPECT_NEAR(shots[0].ys, -300.0, 1e-3);
}

TEST_F(Volleys, ThePlayersShotsBounceUntilTheyExpireWhileEnemyShotsLeave)
{
    t->world.Clear();
    LaunchProjectile(qvtest::At(1000, 300, 600.0f, 0.0f), 5, TeamPlayer, 1000, BoundsBounce);
    LaunchProjectile(qvtest::At(1000, 200, 600.0f, 0.0f), 5, TeamEnemy, 1000, BoundsDie);
    CGameObject* mine = t->world.GetMasterList().GetHead()->GetData();
    CGameObject* theirs = t->world.GetMasterList().GetTail()->GetData();
    EXPECT_TRUE(mine->Update(100));
    EXPECT_LT(mine->GetVector().GetXSpeed(), 0.0f);
    EXPECT_FALSE(theirs->Update(100));
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(mine->Update(100));
    EXPECT_FALSE(mine->Update(101));
}

} // namespace
