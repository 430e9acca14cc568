#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using qvtest::OpenObject;
using qvtest::TestApp;
using qvtest::TraceRecorder;

// A game in its first, half-second level, with the world running.
struct PlayingWorld : ::testing::Test {
    TestApp t;
    CWorld& world = t->world;

    PlayingWorld() { t->NewGame(); }

    CShip& Player() { return *world.GetPlayer(); }

    OpenObject* Add(OpenObject* o)
    {
        world.AddObject(o);
        return o;
    }
};

TEST_F(PlayingWorld, NewGameStartsAHalfSecondLevelBeforeTheFirstDesignScreen)
{
    EXPECT_EQ(world.GetLevel(), 0);
    EXPECT_EQ(world.GetTimeLeft(), 500);
    EXPECT_EQ(world.GetMasterList().GetCount(), 1);
    EXPECT_EQ(Player().GetX(), 512);
    EXPECT_EQ(Player().GetY(), 384);
    for (int i = 0; i < 31; ++i)
        world.Update(16.0);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    world.Update(16.0); // 512 ms: the time is up and nothing hostile is left
    EXPECT_EQ(world.GetLevel(), 1);
    EXPECT_EQ(world.GetTimeLeft(), 60000);
    EXPECT_EQ(t->GetGameState(), StateDesign);
    EXPECT_TRUE(world.IsPaused());
}

TEST_F(PlayingWorld, PausedWorldChangesNothing)
{
    OpenObject* o = Add(new OpenObject(100, 100, 50.0f, 0.0f));
    world.SetPaused(true);
    world.Update(100.0);
    EXPECT_EQ(world.GetTimeLeft(), 500);
    EXPECT_EQ(o->updates, 0);
    EXPECT_EQ(o->GetX(), 100);
}

TEST_F(PlayingWorld, FractionalFramesRunTheClockButNotTheObjects)
{
    OpenObject* o = Add(new OpenObject(100, 100, 1000.0f, 0.0f));
    o->lifetime = 1;
    world.Update(0.6);
    EXPECT_EQ(o->age, 0);
    EXPECT_EQ(o->GetX(), 100);
    EXPECT_EQ(world.GetTimeLeft(), 499); // 499.4 shown truncated
    world.Update(0.6);
    EXPECT_EQ(world.GetTimeLeft(), 498);
}

TEST_F(PlayingWorld, ObjectsAddedDuringTheWalkAreUpdatedInTheSameFrame)
{
    OpenObject* parent = Add(new OpenObject(100, 100));
    OpenObject* child = nullptr;
    parent->onUpdate = [&] {
        if (!child)
            world.AddObject(child = new OpenObject(200, 200));
    };
    world.Update(16.0);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->updates, 1);
    EXPECT_EQ(world.GetMasterList().GetTail()->GetData(), child);
}

TEST_F(PlayingWorld, TheLevelOutlastsItsTimeUntilTheLastEnemyIsGone)
{
    world.SpawnMines(1);
    CBody* mine = static_cast<CBody*>(world.GetMasterList().GetTail()->GetData());
    ASSERT_EQ(mine->GetBodyKind(), BodyMine);
    const CVector before = mine->GetVector();
    world.Update(600.0);
    EXPECT_EQ(world.GetTimeLeft(), 0); // never shown negative
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    EXPECT_NE(mine->GetVector().GetXPos() + mine->GetVector().GetYPos(), before.GetXPos() + before.GetYPos());
    // No new spawns once the time is up, however long it lasts.
    for (int i = 0; i < 200; ++i)
        world.Update(16.0);
    EXPECT_EQ(world.GetMasterList().GetCount(), 2);
    EXPECT_EQ(world.GetLevel(), 0);

    mine->Explode(); // shows its explosion for 875 ms, then dies
    for (int i = 0; i < 54; ++i)
        world.Update(16.0);
    EXPECT_EQ(world.GetEnemiesLeft(), 1);
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
    auto* enemy = static_cast<CBody*>(t->world.GetMasterList().GetTail()->GetData());
    enemy->Explode();
    const std::int32_t before = t->world.GetScore();
    for (int i = 0; i < 60 && t->world.GetEnemiesLeft() > 0; ++i)
        t->world.Update(16.0);
    return t->world.GetScore() - before;
}

TEST_F(PlayingWorld, EnemiesScoreByLevelAndAsteroidsNothing)
{
    EXPECT_EQ(PointsForKilling(t, 4, false), 300);
    EXPECT_EQ(PointsForKilling(t, 4, true), 260);
    EXPECT_EQ(PointsForKilling(t, 1, true), 200);

    t->world.NewGame(4);
    t->SetGameState(StatePlaying);
    auto* rock = new CBody;
    rock->SetVector(qvtest::At(100, 100));
    rock->SetAsteroid(1);
    world.AddObject(rock);
    rock->Explode();
    world.Update(16.0);
    EXPECT_EQ(world.GetScore(), 0);
    EXPECT_EQ(world.GetEnemiesLeft(), 0);
}

TEST_F(PlayingWorld, ThePlayersDeathEndsTheGameAtOnce)
{
    OpenObject* before = new OpenObject(100, 100);
    // Put one object ahead of the ship and one behind it in the update order.
    world.Clear();
    world.AddObject(before);
    auto* ship = new CShip;
    ship->SetPlayerShip();
    world.AdoptPlayer(ship);
    OpenObject* after = Add(new OpenObject(700, 100));
    world.SpawnMines(1); // holds the level open past its half second
    ship->OnHit(1000, nullptr); // explodes, and dies once the explosion has shown
    world.Update(16.0);
    ASSERT_EQ(t->GetGameState(), StatePlaying);
    const std::int32_t objects = world.GetMasterList().GetCount();
    after->onAct = [] { FAIL() << "no action pass after the player's death"; };
    world.AddToActionList(after);

    world.Update(900.0);
    EXPECT_EQ(t->GetGameState(), StateMenu);
    EXPECT_TRUE(world.IsPaused());
    EXPECT_EQ(before->updates, 2);
    EXPECT_EQ(after->updates, 1);
    EXPECT_EQ(world.GetMasterList().GetCount(), objects); // the wreck and the rest stay until the next game
}

TEST_F(PlayingWorld, ActionsRunAfterTheCollisionPassInTheOrderAsked)
{
    OpenObject* a = Add(new OpenObject(100, 100));
    OpenObject* b = Add(new OpenObject(300, 100));
    std::vector<OpenObject*> order;
    a->onUpdate = [&] { world.AddToActionList(b); };
    b->onUpdate = [&] { world.AddToActionList(a); };
    a->onAct = [&] { order.push_back(a); };
    b->onAct = [&] { order.push_back(b); };
    world.Update(16.0);
    EXPECT_EQ(order, (std::vector<OpenObject*>{b, a}));
    world.Update(16.0);
    EXPECT_EQ(order.size(), 4u); // the list is emptied every frame
}

TEST_F(PlayingWorld, ABrokenMasterListIsTracedAndTheFrameGoesOn)
{
    TraceRecorder trace;
    OpenObject* victim = Add(new OpenObject(100, 100));
    OpenObject* vandal = Add(new OpenObject(200, 100));
    vandal->onUpdate = [&] { victim->GetMasterItem()->Unlink(); };
    world.Update(16.0);
    const auto texts = trace.Texts();
    const auto found = std::find(texts.begin(), texts.end(), "Master Object list corrupt!");
    ASSERT_NE(found, texts.end());
    const auto& line = trace.lines[static_cast<std::size_t>(found - texts.begin())];
    EXPECT_EQ(line.kind, TraceLine::Code);
    EXPECT_EQ(line.number, 3);
    EXPECT_EQ(vandal->updates, 1);
    delete victim;
}

TEST_F(PlayingWorld, BandIndexesOutsideTheScreenAreIgnored)
{
    OpenObject o(10, 10);
    world.InsertInBand(10, o.GetBandItem());
    world.InsertInBand(-1, o.GetBandItem());
    EXPECT_EQ(o.GetBandItem()->GetOwner(), nullptr);
    world.InsertInBand(9, o.GetBandItem());
    EXPECT_EQ(o.GetBandItem()->GetOwner(), &world.GetBand(9));
}

TEST_F(PlayingWorld, OverlapsSeesOnlyCollidableOthers)
{
    OpenObject probe(500, 500, 0, 0, 5);
    EXPECT_FALSE(world.Overlaps(probe));
    OpenObject* near = Add(new OpenObject(508, 500, 0, 0, 4));
    EXPECT_TRUE(world.Overlaps(probe));
    near->collidable = false;
    EXPECT_FALSE(world.Overlaps(probe));
    near->collidable = true;
    probe.collidable = false;
    EXPECT_FALSE(world.Overlaps(probe));
}

} // namespace
