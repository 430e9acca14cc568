#include "support/Parts.h"
#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace qvtest;

constexpr double Pi = 3.14159265358979;

// A game whose player's ship the test builds itself.
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
};

TEST_F(Ships, ALaserNeedsMoreEnergyThanItUses)
{
    CLaser laser = Laser(Shots(20));
    player->AddComponent(&laser);
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
    Fit(*player, {&first, &second});
    std::vector<CComponent*> fitted;
    player->ListComponents(fitted);
    static_cast<CLaser*>(fitted[1])->SetFireKey('F'); // as the design screen would
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
    ASSERT_GE(firings.size(), 3u);
    EXPECT_EQ(std::vector<int>(firings.begin(), firings.begin() + 3), (std::vector<int>{16, 128, 416}));
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
    // Strength 24 at 150%: 36 energy stops 24 points; with 10 energy only 6
    // are stopped. A shield that converts nothing stops nothing.
    for (const auto& [rate, energy, damage, energyAfter, hullAfter] :
         {std::tuple(1.5f, 100.0f, 30, 64.0f, 94), std::tuple(1.5f, 10.0f, 30, 1.0f, 76),
          std::tuple(1.5f, 50.0f, 0, 50.0f, 100), std::tuple(0.0f, 150.0f, 30, 150.0f, 70)}) {
        OpenShip ship;
        ship.SetPlayerShip();
        CShield fitted = Shield(24, rate);
        ship.AddComponent(&fitted);
        ship.energy = energy;
        ship.OnHit(damage, nullptr);
        EXPECT_FLOAT_EQ(ship.GetExactEnergy(), energyAfter) << rate << " " << energy << " " << damage;
        EXPECT_EQ(ship.GetHull(), hullAfter) << rate << " " << energy << " " << damage;
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
        OpenShip ship;
        ship.SetPlayerShip();
        CEnergySystem plant = Plant(150, c.recharge);
        ship.AddComponent(&plant);
        ship.energy = 100.0f;
        ship.Update(c.ms);
        EXPECT_FLOAT_EQ(ship.GetExactEnergy(), c.after) << c.recharge << " " << c.ms;
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
            EXPECT_NEAR(enemy->facing, 3 * Pi / 2, 1e-3); // aimed at the player to its left
        }
    }
}

} // namespace
