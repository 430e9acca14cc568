// The components the world hands out: the design screen's offer, the bonus
// for powerups, and the kits every new mine and enemy ship is fitted with.
#include "world/World.h"

#include "core/Random.h"
#include "core/Truncate.h"
#include "ship/Armour.h"
#include "ship/EnergySystem.h"
#include "ship/Engine.h"
#include "ship/Jet.h"
#include "ship/Laser.h"
#include "ship/Shield.h"
#include "ship/SubspaceSail.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr std::int32_t OfferLevelStep = 50;
constexpr std::int32_t OfferLevelBase = 24;
constexpr std::int32_t BonusLevelBase = 29;
constexpr std::int32_t KitLevelStep = 100;
constexpr std::int32_t KitLevelBase = 625;
constexpr std::int32_t LightMineSpace = 4000;
constexpr std::int32_t HeavyMineSpace = 6000;
constexpr std::int32_t TurretSpaceToFill = 8000;

// The offer is made a little above the level, each piece with its own draw.
std::int32_t OfferTechLevel(std::int32_t level)
{
    return OfferLevelStep * (level + OfferLevelBase) + TruncToInt32(SharedRandom().Draw(101));
}

// The bonus sits above the offer, most often near the low end of its range.
std::int32_t BonusTechLevel(std::int32_t level)
{
    const std::int32_t k1 = TruncToInt32(SharedRandom().Draw(401));
    const std::int32_t k2 = TruncToInt32(SharedRandom().Draw(401));
    const std::int32_t k3 = TruncToInt32(SharedRandom().Draw(401));
    return OfferLevelStep * (level + BonusLevelBase) + TruncToInt32(2.0 / 3.0 * std::abs(k1 + k2 + k3 - 601));
}

template <class Kind, class... Args>
Kind* Generated(std::int32_t techLevel, Args... args)
{
    auto* component = new Kind;
    component->Generate(techLevel, args...);
    return component;
}

// A laser of any pattern but Radiating, generated again until it is one.
CLaser* AimedLaser(std::int32_t techLevel)
{
    auto* laser = new CLaser;
    do {
        laser->Generate(techLevel);
    } while (laser->GetPattern() == CLaser::Radiating);
    return laser;
}

// Copies of one component, as a kit holds several pieces with the same serial number.
template <class Kind>
void AppendCopies(std::vector<CComponent*>& kit, const Kind& original, std::int32_t copies)
{
    for (std::int32_t i = 0; i < copies; ++i)
        kit.push_back(new Kind(original));
}

// A mine kit: an engine, as many sails as it takes to fill the space from the
// engine's size up to `space`, and pieces of one armour.
void MakeMineKit(std::vector<CComponent*>& kit, std::int32_t techLevel, float engineDivisor, float sailDivisor,
                 std::int32_t space, std::int32_t armourPieces)
{
    CEngine* engine = Generated<CEngine>(techLevel, engineDivisor);
    CSubspaceSail* sail = Generated<CSubspaceSail>(techLevel, sailDivisor);
    std::int32_t sails = 0;
    for (std::int32_t filled = engine->GetSize(); filled < space && sail->GetSize() > 0; filled += sail->GetSize())
        ++sails;
    sail->SetCount(sails);
    kit.push_back(engine);
    kit.push_back(sail);
    CArmour armour;
    armour.Generate(techLevel);
    AppendCopies(kit, armour, armourPieces);
}

} // namespace

void CWorld::DeleteComponents(std::vector<CComponent*>& components)
{
    for (CComponent* component : components)
        delete component;
    components.clear();
}

void CWorld::RegenerateStock()
{
    DeleteComponents(stock);
    stock.push_back(Generated<CEngine>(OfferTechLevel(level), 1.0f));
    stock.push_back(Generated<CJet>(OfferTechLevel(level), 1.0f));
    stock.push_back(Generated<CSubspaceSail>(OfferTechLevel(level), 1.0f));
    if (level > 1) {
        stock.push_back(Generated<CEnergySystem>(OfferTechLevel(level)));
        stock.push_back(AimedLaser(OfferTechLevel(level)));
        stock.push_back(Generated<CShield>(OfferTechLevel(level)));
    }
    if (level > 2)
        for (std::int32_t i = 0; i < powerupsTaken; ++i)
            AddBonusComponent();
}

void CWorld::AddBonusComponent()
{
    const std::int32_t techLevel = BonusTechLevel(level);
    CComponent* bonus = nullptr;
    switch (TruncToInt32(SharedRandom().Draw(7))) {
    case 0: bonus = Generated<CEngine>(techLevel, 1.0f); break;
    case 1: bonus = Generated<CJet>(techLevel, 1.0f); break;
    case 2: bonus = Generated<CSubspaceSail>(techLevel, 1.0f); break;
    case 3: bonus = Generated<CArmour>(techLevel); break;
    case 4: bonus = Generated<CEnergySystem>(techLevel); break;
    case 5: bonus = Generated<CLaser>(techLevel); break;
    case 6: bonus = Generated<CShield>(techLevel); break;
    default: return; // only the very top draw lands here
    }
    stock.push_back(bonus);
}

void CWorld::RegenerateKits()
{
    DeleteComponents(mineKit1);
    DeleteComponents(mineKit2);
    DeleteComponents(turretKit);
    const std::int32_t techLevel = KitLevelStep * level + KitLevelBase;
    MakeMineKit(mineKit1, techLevel, 1.8f, 3.0f, LightMineSpace, 2);
    MakeMineKit(mineKit2, techLevel, 0.6f, 2.0f, HeavyMineSpace, 10);
    MakeTurretKit(techLevel);
}

void CWorld::MakeTurretKit(std::int32_t techLevel)
{
    turretKit.push_back(Generated<CEngine>(techLevel, 1.0f));
    turretKit.push_back(Generated<CEnergySystem>(techLevel));
    turretKit.push_back(AimedLaser(techLevel));
    turretKit.push_back(Generated<CShield>(techLevel));
    std::int32_t used = 0;
    for (const CComponent* c : turretKit)
        used += c->GetSize();

    // Sails and further lasers fill the rest of the space, a sail first each round.
    CSubspaceSail* sail = Generated<CSubspaceSail>(techLevel, 2.0f);
    sail->SetCount(0);
    while (used < TurretSpaceToFill && sail->GetSize() > 0) {
        sail->SetCount(sail->GetCount() + 1);
        used += sail->GetSize();
        CLaser* extra = Generated<CLaser>(techLevel);
        if (used + extra->GetSize() < TurretSpaceToFill) {
            turretKit.push_back(extra);
            used += extra->GetSize();
        } else {
            delete extra;
        }
    }
    turretKit.push_back(sail);
    CArmour armour;
    armour.Generate(techLevel);
    AppendCopies(turretKit, armour, 5);
}

void CWorld::AddToStock(const CComponent& component)
{
    const bool offered = std::any_of(stock.begin(), stock.end(),
                                     [&](const CComponent* c) { return component.IsSameAs(*c); });
    if (offered)
        return;
    std::unique_ptr<CComponent> copy = CComponent::MakeCopy(component);
    if (!copy)
        return;
    copy->SetCount(1);
    stock.push_back(copy.release());
}
