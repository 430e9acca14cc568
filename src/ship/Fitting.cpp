// Fitting components to bodies and ships, and the statistics that follow
// from what is fitted.
#include "ship/Body.h"

#include "core/Truncate.h"
#include "ship/Ship.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace {
constexpr std::int32_t BaseTopSpeed = 50;
constexpr double TopSpeedRange = 200.0;
constexpr double SailSpeedScale = 15.0;
constexpr double ArmourStackPenalty = 0.1;
constexpr double WeightToMass = 0.01;
constexpr double ThrustScale = 0.01;
constexpr std::size_t MaxLasers = 3;

// Top speed from the sails' summed speed: 50, plus a term that grows toward
// 200 as sails are added (and, oddly, again for very small sums).
std::int32_t TopSpeed(std::int32_t sailSpeed)
{
    if (sailSpeed == 0)
        return BaseTopSpeed;
    const double s = sailSpeed / SailSpeedScale;
    return TruncToInt32(BaseTopSpeed + std::abs(TopSpeedRange * (1.0 - std::pow(s, 0.7) / s)));
}

// Turning ability from the jets' summed turn thrust; a ship without jets cannot turn.
double TurnRate(std::int32_t turnThrust)
{
    if (turnThrust == 0)
        return 0.0;
    const double j = turnThrust;
    return std::pow(1.0 - std::pow(j, 0.8) / j, 4) * 400 * 0.0001;
}

template <class Kind>
std::int32_t PieceCount(const std::vector<Kind>& entries)
{
    return std::accumulate(entries.begin(), entries.end(), 0,
                           [](std::int32_t n, const Kind& e) { return n + e.GetCount(); });
}
} // namespace

template <class Kind>
Kind* CBody::FindSame(std::vector<Kind>& entries, const CComponent& x)
{
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Kind& e) { return x.IsSameAs(e); });
    return found == entries.end() ? nullptr : &*found;
}

template <class Kind>
bool CBody::ReplaceSlot(Kind& slot, const CComponent& x)
{
    // The budget must keep at least one unit free.
    if (spaceLeft - x.GetSize() + slot.GetSize() <= 0)
        return false;
    spaceLeft += slot.GetSize();
    slot = static_cast<const Kind&>(x);
    spaceLeft -= x.GetSize();
    return true;
}

template <class Kind>
void CBody::Stack(std::vector<Kind>& entries, const CComponent& x)
{
    bool matched = false;
    for (Kind& e : entries) {
        if (x.IsSameAs(e)) {
            e.SetCount(e.GetCount() + 1);
            matched = true;
        }
    }
    if (!matched)
        entries.push_back(static_cast<const Kind&>(x));
}

template <class Kind>
void CBody::AddToStack(std::vector<Kind>& entries, const CComponent& x)
{
    if (spaceLeft - x.GetSize() <= 0)
        return;
    Stack(entries, x);
    // A kit's entry may stand for several pieces and is taken whole.
    spaceLeft -= x.GetCount() * x.GetSize();
}

void CBody::AddArmour(const CComponent& x)
{
    // Armour takes no space, but a body carries ten pieces at most.
    if (armour.size() < MaxArmourPieces && PieceCount(armour) < static_cast<std::int32_t>(MaxArmourPieces))
        Stack(armour, x);
}

template <class Kind>
bool CBody::RemovePiece(std::vector<Kind>& entries, const CComponent& x, bool givesSpaceBack)
{
    Kind* entry = FindSame(entries, x);
    if (!entry)
        return true;
    if (givesSpaceBack)
        spaceLeft += entry->GetSize();
    if (entry->GetCount() < 2) {
        entries.erase(entries.begin() + (entry - entries.data()));
        return true;
    }
    entry->SetCount(entry->GetCount() - 1);
    return false;
}

void CBody::AddComponent(CComponent* component)
{
    const CComponent& x = *component;
    switch (x.GetKind()) {
    case KindEngine: ReplaceSlot(engine, x); break;
    case KindJet: AddToStack(jets, x); break;
    case KindSubspaceSail: AddToStack(sails, x); break;
    case KindArmour: AddArmour(x); break;
    default: break;
    }
    RecomputeStats();
}

bool CBody::RemoveComponent(const CComponent& x)
{
    bool gone = true;
    switch (x.GetKind()) {
    case KindEngine:
        spaceLeft += engine.GetSize();
        engine = CEngine();
        break;
    case KindJet: gone = RemovePiece(jets, x, true); break;
    case KindSubspaceSail: gone = RemovePiece(sails, x, true); break;
    case KindArmour: gone = RemovePiece(armour, x, false); break;
    default: break;
    }
    RecomputeStats();
    return gone;
}

void CBody::ListComponents(std::vector<CComponent*>& list)
{
    if (engine.HasSerial())
        list.push_back(&engine);
    for (CJet& e : jets)
        list.push_back(&e);
    for (CSubspaceSail& e : sails)
        list.push_back(&e);
    for (CArmour& e : armour)
        list.push_back(&e);
}

void CBody::RecomputeStats()
{
    mass = baseMass;
    mass += engine.GetWeight() * WeightToMass;
    thrust = static_cast<float>(engine.GetThrust() * ThrustScale);

    std::int32_t sailSpeed = 0;
    for (const CSubspaceSail& e : sails) {
        mass += (e.GetWeight() * WeightToMass) * e.GetCount();
        sailSpeed += e.GetCount() * e.GetMaxSpeed();
    }
    maxSpeed = TopSpeed(sailSpeed);

    // Each further armour entry, and each further piece in a stack, weighs a tenth more.
    double hullPoints = baseHull;
    for (std::size_t i = 0; i < armour.size(); ++i) {
        const std::int32_t n = armour[i].GetCount();
        mass += n * armour[i].GetWeight() * WeightToMass * (1.0 + ArmourStackPenalty * (n + static_cast<double>(i) - 1));
        hullPoints += n * armour[i].GetArmourValue();
    }
    hullMax = TruncToInt32(hullPoints);

    std::int32_t turnThrust = 0;
    for (const CJet& e : jets) {
        mass += (e.GetWeight() * WeightToMass) * e.GetCount();
        turnThrust += e.GetCount() * e.GetTurnThrust();
    }
    turnRate = TurnRate(turnThrust);
    hull = static_cast<float>(hullMax); // every refit repairs the body completely
}

void CShip::AddComponent(CComponent* component)
{
    CBody::AddComponent(component);
    switch (component->GetKind()) {
    case KindEnergySystem:
        if (ReplaceSlot(energySystem, *component))
            energy = static_cast<float>(energySystem.GetStorage()); // a new plant starts full
        break;
    case KindLaser: AddLaser(static_cast<CLaser&>(*component)); break;
    case KindShield: ReplaceSlot(shield, *component); break;
    default: break;
    }
    RecomputeStats();
}

void CShip::AddLaser(CLaser& laser)
{
    if (spaceLeft - laser.GetSize() <= 0 || lasers.size() >= MaxLasers)
        return;
    char key = CLaser::SpareFireKey;
    for (char candidate : CLaser::FittedFireKeys) {
        const bool taken = std::any_of(lasers.begin(), lasers.end(),
                                       [&](const CLaser& fitted) { return fitted.GetFireKey() == candidate; });
        if (!taken) {
            key = candidate;
            break;
        }
    }
    laser.SetFireKey(key);
    spaceLeft -= laser.GetSize();
    lasers.push_back(laser);
}

bool CShip::RemoveComponent(const CComponent& x)
{
    const bool gone = CBody::RemoveComponent(x);
    switch (x.GetKind()) {
    case KindEnergySystem:
        spaceLeft += energySystem.GetSize();
        energySystem = CEnergySystem(); // the energy already stored stays
        break;
    case KindLaser:
        if (CLaser* fitted = FindSame(lasers, x)) {
            spaceLeft += fitted->GetSize();
            lasers.erase(lasers.begin() + (fitted - lasers.data()));
        }
        break;
    case KindShield:
        spaceLeft += shield.GetSize();
        shield = CShield();
        break;
    default: break;
    }
    RecomputeStats();
    return gone;
}

void CShip::ListComponents(std::vector<CComponent*>& list)
{
    CBody::ListComponents(list);
    if (energySystem.HasSerial())
        list.push_back(&energySystem);
    for (CLaser& e : lasers)
        list.push_back(&e);
    if (shield.HasSerial())
        list.push_back(&shield);
}

void CShip::RecomputeStats()
{
    CBody::RecomputeStats();
    mass += energySystem.GetWeight() * WeightToMass;
    energyMax = energySystem.GetStorage();
    energyRecharge = energySystem.GetRecharge();
    for (const CLaser& e : lasers)
        mass += e.GetWeight() * WeightToMass;
    mass += shield.GetWeight() * WeightToMass;
}

std::int32_t CShip::GetDisplayTurnSpeed() const
{
    return TruncToInt32(turnRate * 10000 / mass);
}

