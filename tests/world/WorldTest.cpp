// The world: its spawns, the end of a level, scoring, and games started at
// levels the options screen never offers. The start level comes from a
// settings file players may edit by hand, and a level read from the file is
// kept whatever it is: such games must still play without a fault.
#include "support/GameDriver.h"
#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace qvtest;

// A new game from level 1, not yet in play.
struct Levels : ::testing::Test {
    Levels() { world.NewGame(1); }
    CGameObject* Newest() { return world.GetMasterList().GetTail()->GetData(); }

    TestApp t;
    CWorld& world = t->world;
};

// Where every edge is taken, a spawn is dropped and never counted as an enemy.
TEST_F(Levels, NoSpawnWithNoRoomAtAnyEdge)
{
    world.Clear();
    world.AddObject(new OpenObject(512, 384, 2000)); // covers every edge
    world.SpawnMines(1);
    world.SpawnTurrets(1);
    EXPECT_EQ(world.GetMasterList().GetCount(), 1);
    EXPECT_EQ(world.GetEnemiesLeft(), 0);
}

// From level 3 the offer holds a bonus component, of a higher technology,
// for each powerup taken in the level before; those of level 1 bring nothing.
TEST_F(Levels, EachPowerupTakenAddsABonusToTheNextOfferFromLevelThree)
{
    world.BeginNextLevel();
    world.AddPowerup();
    world.BeginNextLevel();
    EXPECT_EQ(world.GetStock().size(), 6u);
    for (int i = 0; i < 3; ++i)
        world.AddPowerup();
    world.BeginNextLevel();
    ASSERT_EQ(world.GetStock().size(), 9u);
    for (std::size_t i = 6; i < 9; ++i)
        EXPECT_TRUE(world.GetStock()[i]->GetTechLevel() >= 1600 && world.GetStock()[i]->GetTechLevel() <= 2001) << i;
}

// A game in its first, half-second level, with the world running.
struct PlayingWorld : Levels {
    PlayingWorld() { t->NewGame(); }
};

TEST_F(PlayingWorld, TheLevelOutlastsItsTimeUntilTheLastEnemyIsGone)
{
    world.SetPaused(true);
    world.Update(100.0);
    EXPECT_EQ(world.GetTimeLeft(), 500); // a paused world stands still
    world.SetPaused(false);
    world.SpawnMines(1);
    CBody* mine = static_cast<CBody*>(Newest());
    ASSERT_EQ(mine->GetBodyKind(), BodyMine);
    world.Update(600.0);
    EXPECT_EQ(world.GetTimeLeft(), 0); // never shown negative
    // No new spawns once the time is up, however long it lasts.
    for (int i = 0; i < 200; ++i)
        world.Update(16.0);
    EXPECT_EQ(world.GetMasterList().GetCount(), 2);
    EXPECT_EQ(world.GetLevel(), 0);

    mine->Explode(); // shows its explosion for 875 ms, then dies
    for (int i = 0; i < 55; ++i)
        world.Update(16.0);
    EXPECT_EQ(world.GetEnemiesLeft(), 0);
    EXPECT_EQ(world.GetLevel(), 0);
    world.Update(16.0);
    EXPECT_EQ(world.GetLevel(), 1);
}

// An enemy killed by explosion brings its points once the explosion is over.
TEST_F(PlayingWorld, EnemiesScoreByLevel)
{
    for (const auto& [turret, points] : {std::pair(false, 300), std::pair(true, 260)}) {
        world.NewGame(4);
        t->SetGameState(StatePlaying);
        turret ? world.SpawnTurrets(1) : world.SpawnMines(1);
        static_cast<CBody*>(Newest())->Explode();
        for (int i = 0; i < 60 && world.GetEnemiesLeft() > 0; ++i)
            world.Update(16.0);
        EXPECT_EQ(world.GetScore(), points) << turret;
    }
}

// A game opens one level below its start, as the counter holds it, and plays
// on from there without a fault; at the counter's top it stays rather than wrap.
TEST(OddStartLevels, PlayWithoutFault)
{
    for (const std::int32_t level : {-2147483647 - 1, -5, 0, 25, 1000, 2147483647}) {
        TestApp t;
        CGameDriver driver(*t);
        driver.Seed(7);
        driver.StartGame(level);
        const std::int16_t opening = CWorld::LevelBefore(level);
        EXPECT_EQ(driver.World().GetLevel(), opening) << level;
        for (int frame = 0; frame < 2000 && driver.GetGameState() != StateMenu; ++frame) {
            if (driver.GetGameState() == StateDesign) {
                driver.Refit();
                driver.StartLevel();
            }
            driver.Frame(20);
        }
        EXPECT_GE(driver.World().GetTimeLeft(), 0) << level;
        EXPECT_GE(driver.World().GetLevel(), std::min(opening + 1, 32767)) << level; // past the opening, unwrapped
    }
}

// Levels beyond the 16-bit counter are traced and held at its ends.
TEST(OddStartLevels, TheLevelBeforeTheStartIsHeldWithinTheCounter)
{
    const struct {
        std::int32_t start;
        std::int16_t before;
        bool traced;
    } cases[] = {{0, -1, false},         {-32767, -32768, false},         {32768, 32767, false},
                 {-32768, -32768, true}, {-2147483647 - 1, -32768, true}, {32769, 32767, true}};
    for (const auto& c : cases) {
        TraceRecorder trace;
        EXPECT_EQ(CWorld::LevelBefore(c.start), c.before) << c.start;
        EXPECT_EQ(trace.Texts(), c.traced ? std::vector<std::string>{"Start level beyond the level counter"}
                                          : std::vector<std::string>{}) << c.start;
    }
}

} // namespace
