#include "replay/StateHash.h"

#include "ship/Ship.h"
#include "world/World.h"

namespace {

void HashClock(const CWorld::SpawnClock& clock, CStateHash& hash)
{
    hash.Add(clock.accumulated);
    hash.Add(clock.threshold);
}

void HashObject(const CGameObject& object, CStateHash& hash)
{
    hash.Add(object.GetType());
    hash.Add(object.GetTeam());
    const CVector v = object.GetVector();
    hash.Add(v.GetXPos());
    hash.Add(v.GetYPos());
    hash.Add(v.GetXSpeed());
    hash.Add(v.GetYSpeed());
    hash.Add(object.GetFacing());
    hash.Add(object.GetAge());
    if (const auto* body = dynamic_cast<const CBody*>(&object)) {
        hash.Add(body->GetBodyKind());
        hash.Add(body->GetExactHull());
    }
    if (const auto* ship = dynamic_cast<const CShip*>(&object))
        hash.Add(ship->GetExactEnergy());
}

} // namespace

void HashWorld(const CWorld& world, CStateHash& hash)
{
    hash.Add(world.GetLevel());
    hash.Add(world.GetScore());
    hash.Add(world.GetTimeLeft());
    hash.Add(world.GetEnemiesLeft());
    hash.Add(world.GetPowerupsTaken());
    hash.Add(world.GetPlayer() != nullptr);
    HashClock(world.GetAsteroidClock(), hash);
    HashClock(world.GetMineClock(), hash);
    HashClock(world.GetTurretClock(), hash);
    const CLinkedList& objects = world.GetMasterList();
    hash.Add(objects.GetCount());
    for (const CLinkedItem* item = objects.GetHead(); item; item = item->GetNext())
        if (const CGameObject* object = item->GetData())
            HashObject(*object, hash);
}
