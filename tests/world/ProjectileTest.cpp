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
    double xs, ys;
    std::int32_t team, damage, lifetime;
    std::int16_t bounds;
};

// Fires one volley from a ship of radius 16 at (500, 400) and reads back the shots in launch order.
struct Volleys : ::testing::Test {
    TestApp t;
    OpenShip ship;

    std::vector<Shot> Fire(void (*pattern)(const CShip&, const CLaser&), std::int32_t shots)
    {
        t->world.Clear();
        CLaser::Values values{.speed = 300, .containment = 1500, .shots = shots, .damage = 12};
        pattern(ship, CLaser(CComponent::Common{}, values));
        std::vector<Shot> out;
        for (CLinkedItem* n = t->world.GetMasterList().GetHead(); n; n = n->GetNext()) {
            CGameObject* o = n->GetData();
            const CVector v = o->GetVector();
            const double dx = v.GetXPos() - ship.vector.GetXPos();
            const double dy = v.GetYPos() - ship.vector.GetYPos();
            EXPECT_NEAR(std::hypot(dx, dy), 20.0, 1e-3); // just outside the ship
            EXPECT_EQ(o->GetType(), ObjectProjectile);
            EXPECT_EQ(o->GetRadius(), 2);
            double a = std::atan2(dx, -dy);
            if (a < -1e-6)
                a += 2 * Pi;
            out.push_back({a, v.GetXSpeed(), v.GetYSpeed(), o->GetTeam(), o->GetContactDamage(), o->GetLifetime(),
                           o->GetBoundsMode()});
        }
        return out;
    }
};

TEST_F(Volleys, EachPatternPlacesAndAimsItsShots)
{
    using Pattern = void (*)(const CShip&, const CLaser&);
    struct Case {
        Pattern pattern;
        std::int32_t team, shots;
        double facing;
        float shipXSpeed;
        std::vector<double> angles;
        bool alongFacing; // or each along the angle at which it sits
        std::int16_t bounds;
    };
    const Case cases[] = {
        {FireParallel, TeamPlayer, 3, 0.0, 0, {Pi / 4, 0.0, 7 * Pi / 4}, true, BoundsBounce},
        {FireSpread, TeamEnemy, 3, 0.0, 0, {Pi / 20, 0.0, 2 * Pi - Pi / 20}, false, BoundsDie},
        {FireRadiating, TeamPlayer, 4, 0.0, 0, {0.0, 3 * Pi / 2, Pi, Pi / 2}, false, BoundsDie}, // never bounce
        // One shot goes straight ahead whatever the pattern, and every shot inherits the ship's motion.
        {FireParallel, TeamEnemy, 1, Pi / 2, 100, {Pi / 2}, true, BoundsDie},
        {FireSpread, TeamEnemy, 1, Pi / 2, 0, {Pi / 2}, true, BoundsDie},
        {FireRadiating, TeamEnemy, 1, Pi / 2, 0, {Pi / 2}, true, BoundsDie},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        ship.vector = qvtest::At(500, 400, c.shipXSpeed, 0);
        ship.radius = 16;
        ship.team = c.team;
        ship.facing = c.facing;
        const auto shots = Fire(c.pattern, c.shots);
        ASSERT_EQ(shots.size(), c.angles.size());
        for (std::size_t i = 0; i < shots.size(); ++i) {
            const Shot& s = shots[i];
            const double along = c.alongFacing ? c.facing : c.angles[i];
            EXPECT_NEAR(s.angle, c.angles[i], 1e-5);
            EXPECT_NEAR(s.xs, c.shipXSpeed + 300.0 * std::sin(along), 1e-3);
            EXPECT_NEAR(s.ys, -300.0 * std::cos(along), 1e-3);
            EXPECT_EQ(s.team, c.team);
            EXPECT_EQ(s.damage, 12);
            EXPECT_EQ(s.lifetime, 1500);
            EXPECT_EQ(s.bounds, c.bounds);
        }
    }
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
