#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>


namespace {

using namespace qvtest;

constexpr double Pi = 3.14159265358979;

struct Bodies : ::testing::Test {
    TestApp t;
    CWorld& world = t->world;

    // An asteroid of the size, or a mine of the kind, added to the world.
    OpenBody* Add(bool mine, std::int16_t n, std::int32_t x, std::int32_t y)
    {
        auto* body = new OpenBody;
        body->SetVector(At(x, y));
        mine ? body->SetMine(n) : body->SetAsteroid(n);
        world.AddObject(body);
        return body;
    }
    OpenBody* Asteroid(std::int16_t size, std::int32_t x = 300, std::int32_t y = 300) { return Add(false, size, x, y); }
    OpenBody* Mine(std::int16_t kind, std::int32_t x, std::int32_t y) { return Add(true, kind, x, y); }

    // Objects in the world that are asteroids of the given radius, not counting one.
    std::int32_t Asteroids(std::int32_t radius, const CGameObject* except = nullptr)
    {
        std::int32_t n = 0;
        for (CLinkedItem* node = world.GetMasterList().GetHead(); node; node = node->GetNext()) {
            CGameObject* o = node->GetData();
            if (o != except && o->GetType() == ObjectBody &&
                static_cast<CBody*>(o)->GetBodyKind() == BodyAsteroid && o->GetRadius() == radius)
                ++n;
        }
        return n;
    }
};

TEST_F(Bodies, AsteroidsSplitIntoTheNextSizeDownWithDebris)
{
    struct Case {
        std::int16_t size;
        std::int32_t childRadius, children, debris;
    };
    for (const Case c : {Case{1, 7, 0, 6}, Case{2, 7, 3, 13}, Case{3, 10, 3, 27}}) {
        world.Clear();
        OpenBody* rock = Asteroid(c.size);
        rock->Explode();
        rock->Explode(); // a second explosion adds nothing
        EXPECT_EQ(Asteroids(c.childRadius, rock), c.children) << c.size;
        EXPECT_EQ(CountObjects(world, ObjectProjectile), c.debris) << c.size;
    }
}

// A wandering mine keeps its target until it is within three radii of it or
// its time is up.
TEST_F(Bodies, MinesChaseWithinThreeHundredPixelsAndWanderBeyond)
{
    world.NewGame(1); // the player's ship at (512, 384)
    OpenBody* far = Mine(1, 512 + 300, 384);
    OpenBody* near = Mine(1, 512 + 299, 384);
    far->Act();
    near->Act();
    EXPECT_EQ(far->GetAiMode(), AiWander);
    EXPECT_EQ(near->GetAiMode(), AiChase);
    EXPECT_NEAR(near->GetAiHeading(), 3 * Pi / 2, 1e-3); // straight left, at the resting ship

    far->targetX = 1000;
    far->targetY = 700;
    far->wanderTimer = 4000;
    far->Act(); // neither near nor overdue
    EXPECT_EQ(far->GetTargetX(), 1000);
    far->targetX = 812 + 26;
    far->targetY = 384;
    far->Act();
    EXPECT_NE(far->GetTargetX() * 10000 + far->GetTargetY(), 838 * 10000 + 384);
    EXPECT_EQ(far->wanderTimer, 0);
}

} // namespace
