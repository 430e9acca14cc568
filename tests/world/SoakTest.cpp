// A long game played by random keys and a simple autopilot, with the world's
// books checked after every frame. Short by default; set QV_SOAK_LEVELS to
// play further.
#include "replay/Replay.h"
#include "ship/Ship.h"
#include "support/TestApp.h"
#include "support/GameDriver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>

namespace {

using qvtest::TestApp;

constexpr UINT KeyLeft = 37, KeyUp = 38, KeyRight = 39, KeyDown = 40;
constexpr std::int32_t DeathsBeforeMovingOn = 2;

// What an enemy is worth when it dies, or 0 for anything that is no enemy.
std::int32_t EnemyValue(const CGameObject& o, std::int32_t level)
{
    if (o.GetType() == ObjectBody && static_cast<const CBody&>(o).GetBodyKind() == BodyMine)
        return level * 100;
    const bool turret = o.GetType() == ObjectShip && o.GetTeam() == TeamEnemy &&
                        static_cast<const CShip&>(o).GetController() == ControllerComputer;
    return turret ? static_cast<std::int32_t>((level + 10.0) * 20.0) : 0;
}

std::map<const CGameObject*, std::int32_t> Enemies(const CWorld& world)
{
    std::map<const CGameObject*, std::int32_t> enemies;
    for (CLinkedItem* n = world.GetMasterList().GetHead(); n; n = n->GetNext())
        if (const std::int32_t value = EnemyValue(*n->GetData(), world.GetLevel()))
            enemies[n->GetData()] = value;
    return enemies;
}

// The lists hold exactly the live objects, each band in x order, every
// object where its own fields say it is.
void CheckLists(CGameApp& app)
{
    const CWorld& world = app.world;
    const CLinkedList& master = world.GetMasterList();
    std::int32_t walked = 0, looks = 0;
    const CLinkedItem* previous = nullptr;
    for (CLinkedItem* n = master.GetHead(); n; previous = n, n = n->GetNext(), ++walked) {
        ASSERT_TRUE(n->GetPrev() == previous && n->GetOwner() == &master);
        const CGameObject* o = n->GetData();
        // Only the player's ship, which died of old age at the end of its explosion, is left without a look.
        ASSERT_TRUE(o->GetSprite() || o == world.GetPlayerObject());
        looks += o->GetSprite() != nullptr;
        for (auto [node, band] : {std::pair{o->GetBandItem(), o->GetBand()}, {o->GetBandItem2(), o->GetBand2()}})
            ASSERT_EQ(node->GetOwner(), band == CGameObject::NoBand ? nullptr : &world.GetBand(band));
    }
    ASSERT_EQ(master.GetTail(), previous);
    ASSERT_EQ(walked, master.GetCount());
    ASSERT_EQ(CGameObject::LiveCount(), walked) << "an object was lost or freed twice";
    ASSERT_EQ(static_cast<std::int32_t>(app.liveSprites.size()), looks) << "a look outlived its object";

    for (std::int32_t b = 0; b < CWorld::BandCount; ++b) {
        std::int32_t inBand = 0;
        for (CLinkedItem* n = world.GetBand(b).GetHead(); n; n = n->GetNext(), ++inBand) {
            const CGameObject* o = n->GetData();
            ASSERT_EQ(o->GetMasterItem()->GetOwner(), &master);
            ASSERT_TRUE((n == o->GetBandItem() && o->GetBand() == b) || (n == o->GetBandItem2() && o->GetBand2() == b));
            ASSERT_TRUE(!n->GetNext() || o->GetX() <= n->GetNext()->GetData()->GetX());
        }
        ASSERT_EQ(inBand, world.GetBand(b).GetCount());
    }
}

// Steers toward the nearest live enemy or body and holds the fire keys when
// it is ahead, or turns tail and runs when it is too close; now and then a
// random key goes down or up.
void Fly(CGameDriver& driver, std::minstd_rand& noise)
{
    const CShip* ship = driver.Player();
    if (!ship)
        return;
    const CGameObject* target = nullptr;
    double distance = 1e18;
    for (CLinkedItem* n = driver.World().GetMasterList().GetHead(); n; n = n->GetNext()) {
        const CGameObject* o = n->GetData();
        const double d = std::hypot(o->GetX() - ship->GetX(), o->GetY() - ship->GetY());
        if (o->IsAlive() && (o->GetTeam() == TeamEnemy || o->GetType() == ObjectBody) && d < distance)
            target = o, distance = d;
    }
    const bool flee = target && distance < 120.0;
    double turn = 0.0;
    if (target) // the bearing as a facing
        turn = std::remainder(std::atan2(target->GetX() - ship->GetX(), -(target->GetY() - ship->GetY())) +
                                  (flee ? M_PI : 0.0) - ship->GetFacing(), 2 * M_PI);
    driver.Key(KeyRight, turn > 0.1);
    driver.Key(KeyLeft, turn < -0.1);
    driver.Key(KeyUp, flee && std::fabs(turn) < 0.5);
    for (UINT fire : {'F', 'D', 'S'})
        driver.Key(fire, target && !flee && std::fabs(turn) < 0.3);
    if (std::uniform_int_distribution<int>(0, 19)(noise) == 0) {
        const UINT keys[] = {KeyLeft, KeyUp, KeyRight, KeyDown, 'F', 'D', 'S', 'A', 'G', 'Q', '7', ' '};
        const UINT key = keys[std::uniform_int_distribution<int>(0, 11)(noise)];
        driver.Key(key, std::uniform_int_distribution<int>(0, 1)(noise) == 1);
    }
}

TEST(Soak, AutopilotedGamesKeepTheWorldsBooksStraight)
{
    const char* levels = std::getenv("QV_SOAK_LEVELS");
    const std::int32_t target = levels && std::atoi(levels) > 0 ? std::atoi(levels) : 2;
    std::vector<CReplay> replays;
    {
        TestApp t(20240611);
        CGameDriver driver(*t);
        std::minstd_rand noise(77), frameTimes(5);
        std::uniform_real_distribution<double> frameMs(8.0, 34.0);

        const std::uint64_t createdBefore = CGameObject::CreatedCount();
        std::int64_t frames = 0;
        std::int32_t deathsHere = 0, highestLevel = 0, levelsCompleted = 0;
        bool opening = true; // a new game's half-second lead-in is no level of play
        driver.StartGame(1);

        while (highestLevel <= target) {
            CWorld& world = driver.World();
            if (driver.GetGameState() == StateDesign) {
                if (world.GetLevel() > highestLevel)
                    highestLevel = world.GetLevel(), deathsHere = 0;
                levelsCompleted += !opening;
                opening = false;
                driver.Refit();
                driver.StartLevel();
                continue;
            }
            if (driver.GetGameState() == StateMenu) { // the ship was lost: play on from the same level
                driver.StartGame(world.GetLevel() + (++deathsHere >= DeathsBeforeMovingOn));
                replays.push_back(t->recorder.GetFinished());
                opening = true;
                continue;
            }

            Fly(driver, noise);
            const std::int32_t levelBefore = world.GetLevel(), scoreBefore = world.GetScore();
            const auto enemiesBefore = Enemies(world);
            driver.Frame(frameMs(frameTimes));
            ++frames;

            ASSERT_NO_FATAL_FAILURE(CheckLists(*t)) << "frame " << frames;
            const auto enemiesAfter = Enemies(world);
            ASSERT_EQ(world.GetEnemiesLeft(), static_cast<std::int32_t>(enemiesAfter.size())) << "frame " << frames;
            if (world.GetLevel() == levelBefore) {
                std::int32_t earned = 0;
                for (const auto& [enemy, value] : enemiesBefore)
                    earned += enemiesAfter.count(enemy) ? 0 : value;
                ASSERT_EQ(world.GetScore() - scoreBefore, earned) << "frame " << frames;
            }
            ASSERT_LT(frames, 5000000) << "the soak never got through its levels";
        }

        const std::uint64_t created = CGameObject::CreatedCount() - createdBefore;
        std::cout << "soak: levels reached " << highestLevel << ", levels completed " << levelsCompleted << ", games "
                  << replays.size() + 1 << ", frames " << frames << ", objects created " << created << std::endl;
        EXPECT_GT(levelsCompleted, 0);
        EXPECT_GT(created, 100u);
        t->EndRecording();
        replays.push_back(t->recorder.GetFinished());
    }

    // Every game of the soak, played again from its replay, ends as it did.
    for (std::size_t g = 0; g < replays.size(); ++g) {
        TestApp again;
        EXPECT_EQ(again->VerifyReplay(replays[g], "soak game " + std::to_string(g + 1)), 0);
    }
}

} // namespace
