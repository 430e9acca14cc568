#include "support/Parts.h"
#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

using namespace qvtest;

constexpr double Pi = 3.14159265358979;
constexpr UINT KeyUp = 38, KeyRight = 39;

// A game whose player's ship the test builds itself.
struct Ships : ::testing::Test {
    TestApp t;
    CWorld& world = t->world;
    OpenShip* player = nullptr;

    Ships()
    {
        world.NewGame(1);
        world.Clear();
        player = new OpenShip;
        player->SetPlayerShip();
        world.AdoptPlayer(player);
    }

    static CLaser::Values Shots(std::int32_t energyUse, std::int32_t delay = 400, std::int32_t pattern = 0)
    {
        return {.speed = 300, .containment = 1000, .shots = 1, .damage = 10, .delay = delay,
                .energyUse = energyUse, .pattern = pattern};
    }

    OpenShip* Turret(std::int32_t x, std::int32_t y)
    {
        auto* ship = new OpenShip;
        ship->vector = At(x, y);
        ship->SetTurret(TeamEnemy);
        world.AddObject(ship);
        return ship;
    }

    static void Fit(CShip& ship, std::initializer_list<CComponent*> parts)
    {
        for (CComponent* c : parts)
            ship.AddComponent(c);
    }
};

TEST_F(Ships, ALaserNeedsMoreEnergyThanItUses)
{
    CLaser laser = Laser(Shots(20));
    player->AddComponent(&laser);
    player->energy = 20.0f;
    player->Fire(0);
    EXPECT_EQ(CountObjects(world, ObjectProjectile), 0);
    player->energy = 20.5f;
    player->Fire(0);
    EXPECT_EQ(CountObjects(world, ObjectProjectile), 1);
    EXPECT_FLOAT_EQ(player->GetExactEnergy(), 0.5f);
    player->energy = 100.0f;
    player->Fire(0); // still cooling down
    EXPECT_EQ(CountObjects(world, ObjectProjectile), 1);
}

TEST_F(Ships, LasersOnOneKeyTakeTurns)
{
    CLaser first = Laser(Shots(1));
    CLaser second = Laser(Shots(1));
    Fit(*player, {&first, &second});
    std::vector<CComponent*> fitted;
    player->ListComponents(fitted);
    static_cast<CLaser*>(fitted[1])->SetFireKey('F'); // as the design screen would
    player->energy = 1000.0f;
    player->PlayerKey('F', true);

    std::vector<std::pair<int, int>> firings; // (time, volleys so far)
    int volleys = 0;
    for (int ms = 16; ms <= 900; ms += 16) {
        const int before = CountObjects(world, ObjectProjectile);
        world.StepObjects(16);
        if (CountObjects(world, ObjectProjectile) > before)
            firings.push_back({ms, ++volleys});
    }
    // Laser 0 at once, laser 1 about 100 ms later, laser 0 again once its 400 ms have passed.
    ASSERT_GE(firings.size(), 3u);
    EXPECT_EQ(firings[0].first, 16);
    EXPECT_EQ(firings[1].first, 128);
    EXPECT_EQ(firings[2].first, 416);
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
    // Strength 24 at 150%: 36 energy stops 24 points; with 10 energy only 6 are stopped.
    for (const auto& [energy, damage, energyAfter, hullAfter] :
         {std::tuple(100.0f, 30, 64.0f, 94), std::tuple(10.0f, 30, 1.0f, 76), std::tuple(50.0f, 0, 50.0f, 100)}) {
        player->energy = energy;
        player->hull = 100.0f;
        player->OnHit(damage, nullptr);
        EXPECT_FLOAT_EQ(player->GetExactEnergy(), energyAfter) << energy << " " << damage;
        EXPECT_EQ(player->GetHull(), hullAfter) << energy << " " << damage;
    }
}

TEST_F(Ships, ThrustAddsTheSameSpeedEveryFrameUpToTheTopSpeed)
{
    CEngine engine = Engine(1000, 0, 1000); // thrust 10
    CSubspaceSail sail = Sail(100, 0, 150); // top speed 149
    Fit(*player, {&engine, &sail});
    player->facing = Pi / 2;
    player->PlayerKey(KeyUp, true);
    for (int ms : {16, 16, 40, 8, 16})
        player->Update(ms);
    EXPECT_NEAR(player->vector.GetXSpeed(), 50.0f, 1e-3); // 10 a frame, whatever its length
    for (int i = 0; i < 50; ++i)
        player->Update(16);
    EXPECT_NEAR(player->vector.GetXSpeed(), 149.0f, 1e-2);
}

TEST_F(Ships, EnergyRechargesTowardItsStorage)
{
    CEnergySystem plant = Plant(150, 50);
    player->AddComponent(&plant);
    player->energy = 100.0f;
    player->Update(500);
    EXPECT_FLOAT_EQ(player->GetExactEnergy(), 110.0f);
    player->Update(5000);
    EXPECT_EQ(player->GetEnergy(), 150);
}

// The energy systems of the highest technology levels need 0 ms or less a unit.
TEST_F(Ships, EnergyAndShieldsStayNumbersAtEveryRecharge)
{
    for (const std::int32_t recharge : {1, 0, -5}) {
        CEnergySystem plant = Plant(150, recharge);
        player->AddComponent(&plant);
        player->energy = 100.0f;
        player->Update(0);
        EXPECT_FLOAT_EQ(player->GetExactEnergy(), 100.0f) << recharge; // no time, no energy
        player->Update(16);
        EXPECT_FLOAT_EQ(player->GetExactEnergy(), recharge > 0 ? 116.0f : 150.0f) << recharge;
    }
    CShield numb = Shield(24, 0.0f); // converts nothing, so stops nothing
    player->AddComponent(&numb);
    player->hull = 100.0f;
    player->OnHit(30, nullptr);
    EXPECT_EQ(player->GetHull(), 70);
    EXPECT_FLOAT_EQ(player->GetExactEnergy(), 150.0f);
}

TEST_F(Ships, EnemiesAttackWithinThreeHundredPixelsAndWanderBeyond)
{
    CLaser laser = Laser(Shots(5, 400, CLaser::Parallel));
    CEnergySystem plant = Plant(100);
    OpenShip* near = Turret(512 + 299, 384);
    OpenShip* far = Turret(512 + 300, 384);
    for (OpenShip* s : {near, far}) {
        Fit(*s, {&laser, &plant});
        s->energy = 50.0f; // not full
        s->thinkTimer = 1000;
    }
    world.StepObjects(0);
    EXPECT_EQ(near->GetAiMode(), AiAttack);
    EXPECT_EQ(far->GetAiMode(), AiWander);
    EXPECT_EQ(CountObjects(world, ObjectProjectile), 1); // only the attacker fires
    // Aimed at the player to its left: facing 3 pi / 2.
    EXPECT_NEAR(near->facing, 3 * Pi / 2, 1e-3);

    far->energy = 100.0f; // a wanderer fires only with full energy
    far->thinkTimer = 1000;
    world.StepObjects(0);
    EXPECT_EQ(CountObjects(world, ObjectProjectile), 2);
}

TEST_F(Ships, AnEnemyWhollyOffTheScreenNeverFires)
{
    CLaser laser = Laser(Shots(5));
    CEnergySystem plant = Plant(100);
    OpenShip* away = Turret(-14, 384); // radius 13
    Fit(*away, {&laser, &plant});
    for (int i = 0; i < 30; ++i)
        world.StepObjects(16);
    EXPECT_EQ(CountObjects(world, ObjectProjectile), 0);
    away->vector = At(-12, 384);
    away->thinkTimer = 1000;
    world.StepObjects(0);
    EXPECT_EQ(CountObjects(world, ObjectProjectile), 1);
}

TEST_F(Ships, AScriptedPlayerTurnsFiresAndBreaksAnAsteroid)
{
    // Engine, two jets, an energy system and one Parallel laser strong enough for a medium asteroid.
    CEngine engine = Engine(3000, 40, 1000);
    CJet jet = Jet(500, 2, 50);
    CEnergySystem plant = Plant(300, 60);
    CLaser laser = Laser({.speed = 300, .containment = 2000, .shots = 1, .damage = 400, .delay = 300,
                          .energyUse = 10, .pattern = CLaser::Parallel});
    Fit(*player, {&engine, &jet, &jet, &plant, &laser});
    auto* rock = new CBody;
    rock->SetVector(At(512 + 160, 384 - 40));
    rock->SetAsteroid(2);
    world.AddObject(rock);
    const double bearing = std::atan2(160.0, 40.0); // as a facing: clockwise from up

    int frames = 0;
    t->SetGameState(StatePlaying); // keys reach the ship only in play
    t->OnKey(KeyRight, true);
    while (player->facing < bearing && frames < 200) {
        t->world.StepObjects(16);
        ++frames;
    }
    t->OnKey(KeyRight, false);
    ASSERT_LT(frames, 200) << "the ship never came round";
    EXPECT_NEAR(player->facing, bearing, 0.1);

    t->OnKey('F', true);
    t->world.StepObjects(16);
    t->OnKey('F', false);
    ASSERT_EQ(CountObjects(world, ObjectProjectile), 1);

    std::int32_t fragments = 0;
    for (int i = 0; i < 90 && fragments == 0; ++i) {
        t->world.StepObjects(16);
        for (CLinkedItem* n = world.GetMasterList().GetHead(); n; n = n->GetNext())
            if (n->GetData()->GetType() == ObjectBody && n->GetData()->GetRadius() == 7)
                ++fragments;
    }
    EXPECT_EQ(fragments, 3);
    std::int32_t debris = 0; // the spent shot is still in the list, dead
    for (CLinkedItem* n = world.GetMasterList().GetHead(); n; n = n->GetNext())
        if (n->GetData()->GetType() == ObjectProjectile && n->GetData()->IsAlive())
            ++debris;
    EXPECT_EQ(debris, 13); // the medium asteroid's shrapnel
}

} // namespace
