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

std::int32_t SoakLevels()
{
    const char* text = std::getenv("QV_SOAK_LEVELS");
    const int levels = text ? std::atoi(text) : 0;
    return levels > 0 ? levels : 2;
}

// What an enemy is worth when it dies, or 0 for anything that is no enemy.
std::int32_t EnemyValue(const CGameObject& o, std::int32_t level)
{
    if (o.GetType() == ObjectBody && static_cast<const CBody&>(o).GetBodyKind() == BodyMine)
        return level * 100;
    if (o.GetType() == ObjectShip && o.GetTeam() == TeamEnemy &&
        static_cast<const CShip&>(o).GetController() == ControllerComputer)
        return static_cast<std::int32_t>((level + 10.0) * 20.0);
    return 0;
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
    std::int32_t walked = 0;
    std::int32_t looks = 0;
    const CLinkedItem* previous = nullptr;
    for (CLinkedItem* n = master.GetHead(); n; n = n->GetNext()) {
        ASSERT_EQ(n->GetPrev(), previous);
        ASSERT_EQ(n->GetOwner(), &master);
        const CGameObject* o = n->GetData();
        // Only the player's ship, which died of old age at the end of its explosion, is left without a look.
        if (o->GetSprite())
            ++looks;
        else
            ASSERT_EQ(o, world.GetPlayerObject());
        for (auto [node, band] : {std::pair{o->GetBandItem(), o->GetBand()}, {o->GetBandItem2(), o->GetBand2()}}) {
            const CLinkedList* expected = band == CGameObject::NoBand ? nullptr : &world.GetBand(band);
            ASSERT_EQ(node->GetOwner(), expected);
        }
        previous = n;
        ++walked;
    }
    ASSERT_EQ(master.GetTail(), previous);
    ASSERT_EQ(walked, master.GetCount());
    ASSERT_EQ(CGameObject::LiveCount(), walked) << "an object was lost or freed twice";
    ASSERT_EQ(static_cast<std::int32_t>(app.liveSprites.size()), looks) << "a look outlived its object";

    for (std::int32_t b = 0; b < CWorld::BandCount; ++b) {
        const CLinkedList& band = world.GetBand(b);
        std::int32_t inBand = 0;
        for (CLinkedItem* n = band.GetHead(); n; n = n->GetNext()) {
            const CGameObject* o = n->GetData();
            ASSERT_EQ(o->GetMasterItem()->GetOwner(), &master);
            ASSERT_TRUE((n == o->GetBandItem() && o->GetBand() == b) || (n == o->GetBandItem2() && o->GetBand2() == b));
            if (n->GetNext()) {
                ASSERT_LE(o->GetX(), n->GetNext()->GetData()->GetX());
            }
            ++inBand;
        }
        ASSERT_EQ(inBand, band.GetCount());
    }
}

// Steers toward the nearest enemy and holds the fire keys when it is ahead;
// now and then a random key goes down or up.
class CPilot {
public:
    CPilot(CGameDriver& gameDriver, std::uint32_t seed) : driver(gameDriver), noise(seed) {}

    void Fly()
    {
        CShip* ship = driver.Player();
        if (!ship)
            return;
        double distance = 0.0;
        const CGameObject* target = Nearest(*ship, distance);
        double turn = 0.0;
        bool flee = false;
        if (target) {
            double bearing = std::atan2(target->GetX() - ship->GetX(), -(target->GetY() - ship->GetY())); // a facing
            // Too close: turn tail and run; otherwise face it and shoot.
            flee = distance < 120.0;
            if (flee)
                bearing += M_PI;
            turn = std::remainder(bearing - ship->GetFacing(), 2 * M_PI);
        }
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

private:
    // The nearest live enemy or body, and how far it is.
    const CGameObject* Nearest(const CShip& ship, double& bestDistance) const
    {
        const CGameObject* best = nullptr;
        bestDistance = 1e18;
        for (CLinkedItem* n = driver.World().GetMasterList().GetHead(); n; n = n->GetNext()) {
            const CGameObject* o = n->GetData();
            const double d = std::hypot(o->GetX() - ship.GetX(), o->GetY() - ship.GetY());
            if (o->IsAlive() && (o->GetTeam() == TeamEnemy || o->GetType() == ObjectBody) && d < bestDistance) {
                bestDistance = d;
                best = o;
            }
        }
        return best;
    }

    CGameDriver& driver;
    std::minstd_rand noise;
};

TEST(Soak, AutopilotedGamesKeepTheWorldsBooksStraight)
{
    const std::int32_t target = SoakLevels();
    std::vector<CReplay> replays;
    {
        TestApp t(20240611);
        CGameDriver driver(*t);
        CPilot pilot(driver, 77);
        std::minstd_rand frameTimes(5);
        std::uniform_real_distribution<double> frameMs(8.0, 34.0);

        const std::uint64_t createdBefore = CGameObject::CreatedCount();
        std::int64_t frames = 0;
        double simulatedMs = 0.0;
        std::int32_t games = 1, deathsHere = 0, highestLevel = 0, levelsCompleted = 0;
        bool opening = true; // a new game's half-second lead-in is no level of play
        driver.StartGame(1);

        while (highestLevel <= target) {
            CWorld& world = driver.World();
            if (driver.GetGameState() == StateDesign) {
                if (world.GetLevel() > highestLevel) {
                    highestLevel = world.GetLevel();
                    deathsHere = 0;
                }
                if (!opening)
                    ++levelsCompleted;
                opening = false;
                driver.Refit();
                driver.StartLevel();
                continue;
            }
            if (driver.GetGameState() == StateMenu) { // the ship was lost: play on from the same level
                ++games;
                const std::int32_t level = world.GetLevel();
                driver.StartGame(++deathsHere >= DeathsBeforeMovingOn ? level + 1 : level);
                replays.push_back(t->recorder.GetFinished());
                opening = true;
                continue;
            }

            pilot.Fly();
            const std::int32_t levelBefore = world.GetLevel();
            const std::int32_t scoreBefore = world.GetScore();
            const auto enemiesBefore = Enemies(world);
            const double ms = frameMs(frameTimes);
            driver.Frame(ms);
            simulatedMs += ms;
            ++frames;

            ASSERT_NO_FATAL_FAILURE(CheckLists(*t)) << "frame " << frames;
            const auto enemiesAfter = Enemies(world);
            ASSERT_EQ(world.GetEnemiesLeft(), static_cast<std::int32_t>(enemiesAfter.size())) << "frame " << frames;
            if (world.GetLevel() == levelBefore) {
                std::int32_t earned = 0;
                for (const auto& [enemy, value] : enemiesBefore)
                    if (!enemiesAfter.count(enemy))
                        earned += value;
                ASSERT_EQ(world.GetScore() - scoreBefore, earned) << "frame " << frames;
            }
            ASSERT_LT(frames, 5000000) << "the soak never got through its levels";
        }

        const std::uint64_t created = CGameObject::CreatedCount() - createdBefore;
        std::cout << "soak: levels reached " << highestLevel << ", levels completed " << levelsCompleted << ", games "
                  << games << ", simulated minutes " << simulatedMs / 60000.0 << ", frames " << frames
                  << ", objects created " << created << std::endl;
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
