#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

namespace {

using qvtest::OpenObject;
using qvtest::TestApp;

// A game in its first, half-second level, with the world running.
struct PlayingWorld : ::testing::Test {
    TestApp t;
    CWorld& world = t->world;

    PlayingWorld() { t->NewGame(); }

    OpenObject* Add(OpenObject* o)
    {
        world.AddObject(o);
        return o;
    }
};

TEST_F(PlayingWorld, ObjectsAddedDuringTheWalkAreUpdatedInTheSameFrameAndActAfterIt)
{
    OpenObject* parent = Add(new OpenObject(100, 100));
    OpenObject* child = nullptr;
    std::vector<OpenObject*> order;
    parent->onUpdate = [&] {
        if (!child)
            world.AddObject(child = new OpenObject(50, 200)); // left of its parent: the master list is unsorted
        world.AddToActionList(child);
        world.AddToActionList(parent);
    };
    parent->onAct = [&] { order.push_back(parent); };
    world.Update(16.0);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->updates, 1);
    child->onAct = [&] { order.push_back(child); };
    world.Update(16.0);
    EXPECT_EQ(order, (std::vector<OpenObject*>{parent, child, parent})); // in the order asked, emptied each frame
}

TEST_F(PlayingWorld, TheLevelOutlastsItsTimeUntilTheLastEnemyIsGone)
{
    world.SetPaused(true);
    world.Update(100.0);
    EXPECT_EQ(world.GetTimeLeft(), 500); // a paused world stands still
    world.SetPaused(false);
    world.SpawnMines(1);
    CBody* mine = static_cast<CBody*>(world.GetMasterList().GetTail()->GetData());
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

// Kills an enemy of the level by explosion and returns the points it brought.
std::int32_t PointsForKilling(TestApp& t, std::int32_t startLevel, bool turret)
{
    t->world.NewGame(startLevel);
    t->SetGameState(StatePlaying);
    if (turret)
        t->world.SpawnTurrets(1);
    else
        t->world.SpawnMines(1);
    static_cast<CBody*>(t->world.GetMasterList().GetTail()->GetData())->Explode();
    const std::int32_t before = t->world.GetScore();
    for (int i = 0; i < 60 && t->world.GetEnemiesLeft() > 0; ++i)
        t->world.Update(16.0);
    return t->world.GetScore() - before;
}

TEST_F(PlayingWorld, EnemiesScoreByLevel)
{
    EXPECT_EQ(PointsForKilling(t, 4, false), 300);
    EXPECT_EQ(PointsForKilling(t, 4, true), 260);
}

TEST_F(PlayingWorld, ThePlayersDeathEndsTheGameAtOnce)
{
    world.SpawnMines(1); // holds the level open past its half second
    world.GetPlayer()->OnHit(1000, nullptr); // explodes, and dies once the explosion has shown
    world.Update(16.0);
    ASSERT_EQ(t->GetGameState(), StatePlaying);
    // Added after the ship, so later in the update order: neither updated nor acting that frame.
    OpenObject* after = Add(new OpenObject(700, 100));
    after->onAct = [] { FAIL() << "no action pass after the player's death"; };
    world.AddToActionList(after);
    world.Update(900.0);
    EXPECT_EQ(t->GetGameState(), StateMenu);
    EXPECT_EQ(after->updates, 0);
}

} // namespace
