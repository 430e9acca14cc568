#include "support/Parts.h"
#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace qvtest;

using Counts = std::vector<std::int32_t>;

// A game whose player's ship the test builds itself, fresh from its set-up:
// 10000 units of space.
struct Ships : ::testing::Test {
    TestApp t;
    CWorld& world = t->world;
    OpenShip* player = nullptr;

    Ships() { Restart(); }

    void Restart()
    {
        world.NewGame(1);
        world.Clear();
        player = new OpenShip;
        player->SetPlayerShip();
        world.AdoptPlayer(player);
    }

    static CLaser::Values Shots(std::int32_t energyUse, std::int32_t pattern = 0)
    {
        return {.speed = 300, .containment = 1000, .shots = 1, .damage = 10, .delay = 400,
                .energyUse = energyUse, .pattern = pattern};
    }

    static void Fit(CShip& ship, std::initializer_list<CComponent*> parts)
    {
        for (CComponent* c : parts)
            ship.AddComponent(c);
    }
    void Fit(std::initializer_list<CComponent*> parts) { Fit(*player, parts); }

    std::vector<CComponent*> Listed()
    {
        std::vector<CComponent*> list;
        player->ListComponents(list);
        return list;
    }
    // How many pieces each fitted entry holds, in the ship's order.
    Counts Pieces()
    {
        Counts counts;
        for (const CComponent* c : Listed())
            counts.push_back(c->GetCount());
        return counts;
    }
    std::string Keys()
    {
        std::string keys;
        for (const CLaser& laser : player->GetLasers())
            keys += static_cast<char>(laser.GetFireKey());
        return keys;
    }
};
using Fitting = Ships;

TEST_F(Ships, ALaserNeedsMoreEnergyThanItUses)
{
    CLaser laser = Laser(Shots(20));
    Fit({&laser});
    // 20 energy is not enough; 20.5 fires and leaves 0.5; then it is cooling down.
    for (const auto& [energy, shots, left] : {std::tuple(20.0f, 0, 20.0f), std::tuple(20.5f, 1, 0.5f), std::tuple(100.0f, 1, 100.0f)}) {
        player->energy = energy;
        player->Fire(0);
        EXPECT_EQ(CountObjects(world, ObjectProjectile), shots) << energy;
        EXPECT_FLOAT_EQ(player->GetExactEnergy(), left) << energy;
    }
}

TEST_F(Ships, LasersOnOneKeyTakeTurns)
{
    CLaser first = Laser(Shots(1));
    CLaser second = Laser(Shots(1));
    Fit({&first, &second});
    static_cast<CLaser*>(Listed()[1])->SetFireKey('F'); // as the design screen would
    player->energy = 1000.0f;
    player->PlayerKey('F', true);
    std::vector<int> firings; // the times a volley left
    for (int ms = 16; ms <= 900; ms += 16) {
        const int before = CountObjects(world, ObjectProjectile);
        world.StepObjects(16);
        if (CountObjects(world, ObjectProjectile) > before)
            firings.push_back(ms);
    }
    // Laser 0 at once, laser 1 about 100 ms later, laser 0 again once its 400 ms have passed.
    firings.resize(3);
    EXPECT_EQ(firings, (std::vector<int>{16, 128, 416}));
}

TEST_F(Ships, ShieldedShipsAreLabelledAndTradeEnergyForDamage)
{
    auto labelled = [this] {
        world.StepObjects(16);
        const auto& labels = world.GetLabelList();
        return std::find(labels.begin(), labels.end(), player) != labels.end();
    };
    EXPECT_FALSE(labelled());
    CShield shield = Shield(24, 1.5f);
    player->AddComponent(&shield);
    EXPECT_TRUE(labelled()); // a shielded ship shows its readouts
    // Strength 24 at 150%: 36 energy stops 24 points; with 33 energy only 22
    // are stopped. A shield that converts nothing stops nothing.
    for (const auto& [rate, energy, damage, energyAfter, hullAfter] :
         {std::tuple(1.5f, 100.0f, 30, 64.0f, 94), std::tuple(1.5f, 33.0f, 30, 0.0f, 92),
          std::tuple(1.5f, 50.0f, 0, 50.0f, 100), std::tuple(0.0f, 150.0f, 30, 150.0f, 70)}) {
        Restart();
        CShield fitted = Shield(24, rate);
        Fit({&fitted});
        player->energy = energy;
        player->OnHit(damage, nullptr);
        EXPECT_FLOAT_EQ(player->GetExactEnergy(), energyAfter) << rate << " " << energy << " " << damage;
        EXPECT_EQ(player->GetHull(), hullAfter) << rate << " " << energy << " " << damage;
    }
}

// Recharge is milliseconds a unit: the energy systems of the highest
// technology levels need 0 ms or less, and still give no energy in no time.
TEST_F(Ships, EnergyRechargesTowardItsStorageAndStaysANumberAtEveryRecharge)
{
    const struct {
        std::int32_t recharge, ms;
        float after;
    } cases[] = {{50, 500, 110.0f}, {50, 5500, 150.0f}, {1, 0, 100.0f}, {1, 16, 116.0f},
                 {0, 0, 100.0f},    {0, 16, 150.0f},    {-5, 0, 100.0f}, {-5, 16, 150.0f}};
    for (const auto& c : cases) {
        Restart();
        CEnergySystem plant = Plant(150, c.recharge);
        Fit({&plant});
        player->energy = 100.0f;
        player->Update(c.ms);
        EXPECT_FLOAT_EQ(player->GetExactEnergy(), c.after) << c.recharge << " " << c.ms;
    }
}

// An enemy attacks the player within 300 pixels and wanders beyond, firing
// there only with full energy; one wholly off the screen (radius 13) never fires.
TEST_F(Ships, EnemiesAttackWithinThreeHundredPixelsAndFireOnlyOnTheScreen)
{
    const struct {
        std::int32_t x;
        float energy;
        std::int16_t mode;
        int shots;
    } cases[] = {{512 + 299, 50.0f, AiAttack, 1}, {512 + 300, 50.0f, AiWander, 0},
                 {512 + 300, 100.0f, AiWander, 1}, {-14, 100.0f, AiWander, 0}, {-12, 100.0f, AiWander, 1}};
    for (const auto& c : cases) {
        Restart();
        CLaser laser = Laser(Shots(5, CLaser::Parallel));
        CEnergySystem plant = Plant(100);
        auto* enemy = new OpenShip;
        enemy->vector = At(c.x, 384);
        enemy->SetTurret(TeamEnemy);
        world.AddObject(enemy);
        Fit(*enemy, {&laser, &plant});
        enemy->energy = c.energy;
        enemy->thinkTimer = 1000;
        world.StepObjects(0);
        EXPECT_EQ(enemy->GetAiMode(), c.mode) << c.x << " " << c.energy;
        EXPECT_EQ(CountObjects(world, ObjectProjectile), c.shots) << c.x << " " << c.energy;
        if (c.mode == AiAttack) {
            EXPECT_NEAR(enemy->facing, 3 * M_PI / 2, 1e-3); // aimed at the player to its left
        }
    }
}

TEST_F(Fitting, TheSpaceBudgetMustKeepOneUnitFree)
{
    player->spaceLeft = 1000;
    CJet tooBig = Jet(1000), fits = Jet(999);
    Fit({&tooBig});
    EXPECT_TRUE(Listed().empty());
    Fit({&fits});
    EXPECT_EQ(player->GetSpaceLeft(), 1);

    CEngine small = Engine(3000), bigger = Engine(4000), biggest = Engine(4001);
    player->spaceLeft = 4001;
    Fit({&small, &bigger}); // 1001 - 4000 + 3000 leaves 1
    EXPECT_EQ(player->GetSpaceLeft(), 1);
    EXPECT_TRUE(Listed().front()->IsSameAs(bigger));
    Fit({&biggest});
    EXPECT_TRUE(Listed().front()->IsSameAs(bigger));
}

TEST_F(Fitting, ArmourStopsAtTenPiecesHoweverItIsSplit)
{
    CArmour six = Armour(), four = Armour(), more = Armour();
    for (int i = 0; i < 6; ++i)
        Fit({&six});
    Fit({&four, &four, &four, &four, &more, &six});
    EXPECT_EQ(Pieces(), (Counts{6, 4}));
    EXPECT_EQ(player->GetSpaceLeft(), 10000);
}

TEST_F(Fitting, LasersTakeTheFirstFreeFireKeyRespectingKeysTheDesignScreenChanged)
{
    CLaser laser = Laser({}), another = Laser({}), third = Laser({});
    Fit({&laser, &laser, &laser, &laser}); // the same offered laser, up to three times
    EXPECT_EQ(Keys(), "FDS");
    static_cast<CLaser*>(Listed()[1])->SetFireKey('G');
    static_cast<CLaser*>(Listed()[2])->AddCooldown(120);
    player->RemoveComponent(laser); // the first matching entry goes, the later ones keeping their state
    EXPECT_EQ(player->GetLasers()[1].GetCooldown(), 120);
    Fit({&another});
    EXPECT_EQ(another.GetFireKey(), 'F'); // the handed laser itself is given the key
    EXPECT_EQ(Keys(), "GSF");
    player->RemoveComponent(laser);
    Fit({&third}); // 'D' is free again, and comes before 'A'
    EXPECT_EQ(Keys(), "SFD");
}

// The same game, for asteroids.
struct Bodies : Ships {
    CBody* Asteroid(std::int16_t size)
    {
        auto* body = new CBody;
        body->SetVector(At(300, 300));
        body->SetAsteroid(size);
        world.AddObject(body);
        return body;
    }

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
        CBody* rock = Asteroid(c.size);
        rock->Explode();
        rock->Explode(); // a second explosion adds nothing
        EXPECT_EQ(Asteroids(c.childRadius, rock), c.children) << c.size;
        EXPECT_EQ(CountObjects(world, ObjectProjectile), c.debris) << c.size;
    }
}

} // namespace
