#include "ship/Laser.h"
#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using namespace qvtest;

struct Levels : ::testing::Test {
    TestApp t;
    CWorld& world = t->world;

    // Plays the opening half second of a game, which ends on the design screen.
    void Open(std::int32_t startLevel)
    {
        world.NewGame(startLevel);
        t->SetGameState(StatePlaying);
        world.Update(501.0);
    }

    std::vector<std::int32_t> Kinds(const std::vector<CComponent*>& components)
    {
        std::vector<std::int32_t> kinds;
        for (const CComponent* c : components)
            kinds.push_back(c->GetKind());
        return kinds;
    }

    CGameObject* Newest() { return world.GetMasterList().GetTail()->GetData(); }
};

TEST_F(Levels, StartingAtFiveSendsATurretInTheFirstFrame)
{
    Open(5);
    ASSERT_EQ(world.GetLevel(), 5);
    EXPECT_EQ(world.GetEnemiesLeft(), 0);
    t->SetGameState(StatePlaying);
    world.Update(16.0);
    EXPECT_EQ(world.GetEnemiesLeft(), 1);
    ASSERT_EQ(Newest()->GetType(), ObjectShip);
    EXPECT_EQ(static_cast<CShip*>(Newest())->GetController(), ControllerComputer);
}

TEST_F(Levels, TimingsGrowTighterLevelByLevel)
{
    world.NewGame(1);
    struct Row {
        std::int32_t time;
        double mine, turret;
    };
    const Row table[] = {
        {60000, 120000, 120000},
        {120000, 60000, 120000},
        {120000, 40000, 120000},
        {120000, 30000, 91000},
        {120000, std::sqrt(24.0) * 21109 / 3, std::sqrt(50.0) * 55402 / 5},
        {120000, std::sqrt(32.0) * 21109 / 4, std::sqrt(60.0) * 55402 / 6},
        {120000, std::sqrt(40.0) * 21109 / 5, std::sqrt(70.0) * 55402 / 7},
        {120000, std::sqrt(48.0) * 21109 / 6, std::sqrt(80.0) * 55402 / 8},
        {120000, std::sqrt(56.0) * 21109 / 7, std::sqrt(90.0) * 55402 / 9},
        {120000, 21109, 55402},
    };
    for (std::int32_t level = 1; level <= 10; ++level) {
        world.BeginNextLevel();
        const Row& row = table[level - 1];
        EXPECT_EQ(world.GetLevel(), level);
        EXPECT_EQ(world.GetTimeLeft(), row.time) << level;
        EXPECT_DOUBLE_EQ(world.GetMineClock().interval, row.mine) << level;
        EXPECT_DOUBLE_EQ(world.GetMineClock().threshold, row.mine) << level;
        EXPECT_DOUBLE_EQ(world.GetTurretClock().interval, row.turret) << level;
        EXPECT_EQ(world.GetTurretClock().accumulated, level >= 5 ? 120000.0 : 0.0) << level;
        EXPECT_EQ(world.GetAsteroidClock().interval, 1100.0);
    }
}

TEST_F(Levels, TheAsteroidClockDrawsItsSpacingAroundTheInterval)
{
    Open(1);
    t->SetGameState(StatePlaying);
    std::set<double> thresholds;
    std::int32_t spawns = 0;
    double waited = world.GetAsteroidClock().accumulated; // it runs on from level to level
    for (int frame = 0; frame < 2000 && t->GetGameState() == StatePlaying; ++frame) {
        const double threshold = world.GetAsteroidClock().threshold;
        world.Update(16.0);
        waited += 16.0;
        if (world.GetAsteroidClock().accumulated == 0.0) {
            // Spawns on the first frame past the threshold, then counts again from 0.
            EXPECT_GT(waited, threshold);
            EXPECT_LE(waited, threshold + 16.0);
            waited = 0.0;
            ++spawns;
            thresholds.insert(world.GetAsteroidClock().threshold);
        }
    }
    EXPECT_GT(spawns, 20);
    for (double th : thresholds) {
        EXPECT_GE(th, 550.0);
        EXPECT_LE(th, 1650.0);
        EXPECT_EQ(th, std::trunc(th));
    }
}

TEST_F(Levels, SpawnsComeInFromAnEdgeMovingInward)
{
    world.NewGame(1);
    world.Clear();
    std::set<int> edges;
    for (int i = 0; i < 400; ++i) {
        CBody body;
        ASSERT_TRUE(world.PlaceAtEdge(body, 70, 180));
        const CVector v = body.GetVector();
        const std::int32_t x = v.GetX(), y = v.GetY();
        // Which edge, the speed into the screen and the drift along the edge.
        const int edge = y == 0 ? 0 : y == 768 ? 1 : x == 0 ? 2 : 3;
        const float in[] = {v.GetYSpeed(), -v.GetYSpeed(), v.GetXSpeed(), -v.GetXSpeed()};
        const float along = edge < 2 ? v.GetXSpeed() : v.GetYSpeed();
        edges.insert(edge);
        if (edge == 3) {
            ASSERT_EQ(x, 1024);
        }
        EXPECT_GE(in[edge], 70.0f);
        EXPECT_LE(in[edge], 180.0f);
        EXPECT_GE(along, -90.0f);
        EXPECT_LE(along, 90.0f);
    }
    EXPECT_EQ(edges.size(), 4u);
}

TEST_F(Levels, ASpawnWithNoRoomIsDropped)
{
    world.NewGame(3);
    world.Clear();
    OpenObject* wall = new OpenObject(512, 384, 0, 0, 2000); // covers every edge
    world.AddObject(wall);
    CBody probe;
    EXPECT_FALSE(world.PlaceAtEdge(probe, 10, 20));
    world.SpawnMines(1);
    world.SpawnTurrets(1);
    world.SpawnAsteroids(1);
    world.SpawnMines(0);
    world.SpawnMines(-3);
    EXPECT_EQ(world.GetMasterList().GetCount(), 1);
    EXPECT_EQ(world.GetEnemiesLeft(), 0);
}

TEST_F(Levels, TheOfferGrowsWithTheLevelAndThePowerupsTaken)
{
    Open(1); // the first level opens on the design screen with a minute on the clock
    EXPECT_EQ(world.GetTimeLeft(), 60000);
    EXPECT_EQ(t->GetGameState(), StateDesign);
    EXPECT_EQ(Kinds(world.GetStock()), (std::vector<std::int32_t>{KindEngine, KindJet, KindSubspaceSail}));
    for (const CComponent* c : world.GetStock()) {
        EXPECT_GE(c->GetTechLevel(), 1250);
        EXPECT_LE(c->GetTechLevel(), 1351);
    }
    world.AddPowerup(); // powerups of level 1 bring nothing for level 2
    world.BeginNextLevel();
    ASSERT_EQ(world.GetLevel(), 2);
    EXPECT_EQ(Kinds(world.GetStock()), (std::vector<std::int32_t>{KindEngine, KindJet, KindSubspaceSail,
                                                                   KindEnergySystem, KindLaser, KindShield}));
    EXPECT_EQ(world.GetPowerupsTaken(), 0);
    for (int i = 0; i < 3; ++i)
        world.AddPowerup();
    world.BeginNextLevel();
    EXPECT_EQ(world.GetStock().size(), 9u);
    for (std::size_t i = 6; i < 9; ++i) {
        EXPECT_GE(world.GetStock()[i]->GetTechLevel(), 1600);
        EXPECT_LE(world.GetStock()[i]->GetTechLevel(), 2001);
    }
    std::set<std::int32_t> serials;
    for (const CComponent* c : world.GetStock())
        serials.insert(c->GetSerialNumber());
    EXPECT_EQ(serials.size(), 9u);

    for (int i = 0; i < 40; ++i) {
        world.RegenerateStock();
        EXPECT_NE(static_cast<const CLaser*>(world.GetStock()[4])->GetPattern(), CLaser::Radiating);
    }
}

TEST_F(Levels, ComponentsGivenBackToTheOfferAreNotDoubled)
{
    Open(2);
    const std::size_t offered = world.GetStock().size();
    world.AddToStock(*world.GetStock()[0]);
    EXPECT_EQ(world.GetStock().size(), offered);
    CJet elsewhere(CComponent::Common{.serialNumber = t->NextComponentSerial(), .count = 3}, 10);
    world.AddToStock(elsewhere);
    ASSERT_EQ(world.GetStock().size(), offered + 1);
    EXPECT_EQ(world.GetStock().back()->GetCount(), 1);
    EXPECT_TRUE(world.GetStock().back()->IsSameAs(elsewhere));
}

TEST_F(Levels, KitsFillEachEnemysSpaceInTheirOwnWay)
{
    Open(3);
    auto sizes = [](const std::vector<CComponent*>& kit, std::int32_t count) {
        std::int32_t total = 0;
        for (const CComponent* c : kit)
            total += c->GetSize() * (c->GetKind() == KindSubspaceSail ? count : 1);
        return total;
    };
    struct Expect {
        const std::vector<CComponent*>* kit;
        std::int32_t space;
        std::size_t armour;
    };
    for (const Expect e : {Expect{&world.GetMineKit1(), 4000, 2}, Expect{&world.GetMineKit2(), 6000, 10}}) {
        const auto& kit = *e.kit;
        ASSERT_EQ(kit.size(), 2 + e.armour);
        EXPECT_EQ(kit[0]->GetKind(), KindEngine);
        EXPECT_EQ(kit[0]->GetTechLevel(), 925);
        EXPECT_EQ(kit[1]->GetKind(), KindSubspaceSail);
        const std::int32_t n = kit[1]->GetCount();
        EXPECT_GE(sizes(kit, n), e.space);
        if (n > 0) {
            EXPECT_LT(sizes(kit, n - 1), e.space);
        }
        for (std::size_t i = 2; i < kit.size(); ++i)
            EXPECT_TRUE(kit[i]->IsSameAs(*kit[2]));
    }

    const auto& turret = world.GetTurretKit();
    EXPECT_EQ(Kinds(std::vector<CComponent*>(turret.begin(), turret.begin() + 4)),
              (std::vector<std::int32_t>{KindEngine, KindEnergySystem, KindLaser, KindShield}));
    EXPECT_NE(static_cast<const CLaser*>(turret[2])->GetPattern(), CLaser::Radiating);
    const std::size_t sail = turret.size() - 6;
    ASSERT_EQ(turret[sail]->GetKind(), KindSubspaceSail);
    const std::int32_t n = turret[sail]->GetCount();
    EXPECT_GE(sizes(turret, n), 8000);
    EXPECT_LT(sizes(turret, n) - turret[sail]->GetSize(), 8000);
    for (std::size_t i = sail + 1; i < turret.size(); ++i)
        EXPECT_EQ(turret[i]->GetKind(), KindArmour);
}

TEST_F(Levels, EnemiesCarryWhatTheirKitsLetThemFit)
{
    Open(4);
    t->SetGameState(StatePlaying);
    for (int i = 0; i < 6; ++i) {
        world.SpawnMines(1);
        auto* mine = static_cast<CBody*>(Newest());
        std::vector<CComponent*> carried;
        mine->ListComponents(carried);
        ASSERT_GE(carried.size(), 2u);
        EXPECT_EQ(carried.front()->GetKind(), KindEngine);
        EXPECT_EQ(carried.back()->GetKind(), KindArmour);
        const std::int32_t armour = carried.back()->GetCount();
        EXPECT_TRUE(armour == 2 || armour == 10);
        EXPECT_EQ(mine->GetContactDamage(), mine->GetSpaceLeft() / 8 + 4 * 5);
    }

    world.SpawnTurrets(1);
    auto* turret = static_cast<CShip*>(Newest());
    EXPECT_LE(turret->GetLasers().size(), 3u);
    EXPECT_GE(turret->GetLasers().size(), 1u);
    EXPECT_TRUE(turret->GetShield().HasSerial());
    EXPECT_FLOAT_EQ(turret->GetExactEnergy(), 0.75f * static_cast<float>(turret->GetEnergyMax()));
    EXPECT_EQ(turret->GetTeam(), TeamEnemy);
}

} // namespace
