#include "world/World.h"

#include "app/GameControl.h"
#include "core/Trace.h"
#include "core/Truncate.h"
#include "display/Screen.h"
#include "ship/Component.h"
#include "ship/Ship.h"
#include "world/GameObject.h"


namespace {
constexpr std::int32_t MinePointsPerLevel = 100;
constexpr double TurretPointsLevelOffset = 10.0;
constexpr double TurretPointsFactor = 20.0;
} // namespace

CWorld::CWorld()
{
    masterList.SetSorted(false);
    labelList.reserve(10);
    actionList.reserve(10);
}

CWorld::~CWorld()
{
    Clear();
}

void CWorld::Update(double elapsedMs)
{
    if (paused)
        return;
    if (timeLeft > 0.0) {
        AdvanceClocks(elapsedMs);
        timeLeft -= elapsedMs;
    }
    if (timeLeft <= 0.0 && enemiesLeft < 1) {
        BeginNextLevel();
        return;
    }
    // Objects move in whole milliseconds; the clocks above keep the fractions.
    StepObjects(TruncToInt32(elapsedMs));
}

bool CWorld::StepObjects(std::int32_t elapsedMs)
{
    if (!RunObjectPass(elapsedMs))
        return false;
    for (CLinkedItem* node = masterList.GetHead(); node; node = node->GetNext())
        node->GetData()->CollisionPass();
    for (std::size_t i = 0; i < actionList.size(); ++i)
        actionList[i]->Act();
    return true;
}

bool CWorld::RunObjectPass(std::int32_t dt)
{
    actionList.clear();
    labelList.clear();
    std::int32_t survivors = 0;
    CLinkedItem* node = masterList.GetHead();
    while (node) {
        CGameObject* object = node->GetData();
        if (object->Update(dt)) {
            ++survivors;
            node = node->GetNext();
            continue;
        }
        if (object == GetPlayerObject()) {
            Game::GameOver();
            return false;
        }
        CountKill(*object);
        node = node->GetNext();
        DeleteObject(object);
    }
    CheckMasterList(survivors);
    return true;
}

void CWorld::CountKill(CGameObject& object)
{
    if (object.GetType() == ObjectBody && static_cast<CBody&>(object).GetBodyKind() == BodyMine) {
        --enemiesLeft;
        score += level * MinePointsPerLevel;
    } else if (object.GetType() == ObjectShip && static_cast<CShip&>(object).GetController() == ControllerComputer &&
               object.GetTeam() == TeamEnemy) {
        --enemiesLeft;
        score += TruncToInt32((level + TurretPointsLevelOffset) * TurretPointsFactor);
    }
}

void CWorld::CheckMasterList(std::int32_t survivors) const
{
    if (masterList.GetCount() == survivors)
        return;
    CTrace::TraceCode(static_cast<std::uint32_t>(survivors), "Master Object list corrupt!", 0);
    CTrace::Trace(masterList.Dump(), 0);
}

void CWorld::AddObject(CGameObject* object)
{
    masterList.Insert(object->GetMasterItem());
}

bool CWorld::DeleteObject(CGameObject* object)
{
    const std::int32_t type = object->GetType();
    if (type < ObjectPlain || type > ObjectPowerup)
        return false;
    delete object; // each kind's destructor unlinks it from every list
    return true;
}

void CWorld::InsertInBand(std::int32_t index, CLinkedItem* node)
{
    if (index >= 0 && index < BandCount)
        bands[index].Insert(node);
}

bool CWorld::Overlaps(CGameObject& object) const
{
    if (!object.IsCollidable())
        return false;
    for (CLinkedItem* node = masterList.GetHead(); node; node = node->GetNext()) {
        const CGameObject* other = node->GetData();
        if (other != &object && other->IsCollidable() && object.Touches(*other))
            return true;
    }
    return false;
}

std::int32_t CWorld::GetTimeLeft() const
{
    return timeLeft > 0.0 ? TruncToInt32(timeLeft) : 0;
}

CGameObject* CWorld::GetPlayerObject() const
{
    return player;
}

void CWorld::AdoptPlayer(CShip* ship)
{
    AddObject(ship);
    player = ship;
}

std::int32_t CWorld::GetBandHeight() const
{
    return bandHeight > 0 ? bandHeight : ScreenHeight() / BandCount;
}

void CWorld::Clear()
{
    while (CLinkedItem* tail = masterList.GetTail()) {
        if (!DeleteObject(tail->GetData()))
            tail->Unlink(); // not a kind the world deletes; let go of it all the same
    }
    for (auto* components : {&stock, &mineKit1, &mineKit2, &turretKit})
        DeleteComponents(*components);
    labelList.clear();
    actionList.clear();
    player = nullptr; // deleted with the rest; a new game brings the next one
}
