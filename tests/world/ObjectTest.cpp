#include "support/TestApp.h"
#include "support/WorldObjects.h"
#include "world/Projectile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using qvtest::OpenShip;
using qvtest::TestApp;

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
