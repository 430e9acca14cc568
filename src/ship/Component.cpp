#include "ship/Component.h"

#include "core/Random.h"
#include "core/Trace.h"
#include "ship/Armour.h"
#include "ship/EnergySystem.h"
#include "ship/Engine.h"
#include "ship/Jet.h"
#include "ship/Laser.h"
#include "ship/Shield.h"
#include "ship/SubspaceSail.h"

#include <array>

namespace {

// Stacking kinds start with "+": a ship counts their pieces in one entry.
constexpr std::array<const char*, 8> KindWords = {
    "", "+ Subspace Sail", "Engine", "+ Jet", "+ Armour", "Energy System", "Laser", "Shield",
};

// An empty slot's default carries no serial number and this name.
constexpr const char* DefaultName = "Base";

CComponent::DrawSource drawSource;

template <class Kind>
std::unique_ptr<CComponent> CopyAs(const CComponent& x)
{
    return std::make_unique<Kind>(static_cast<const Kind&>(x));
}

} // namespace

CComponent::CComponent(ComponentKind kind) : name(DefaultName), kind(kind)
{
}

CComponent::CComponent(ComponentKind kind, const Common& values)
    : weight(values.weight),
      size(values.size),
      kind(kind),
      techLevel(values.techLevel),
      serialNumber(values.serialNumber),
      count(values.count)
{
    if (HasSerial())
        NameAfterSerial();
    else
        name = DefaultName;
}

bool CComponent::IsSameAs(const CComponent& other) const
{
    return HasSerial() && serialNumber == other.serialNumber;
}

std::string CComponent::GetDisplayName() const
{
    if (count > 1)
        return name + "(" + std::to_string(count) + ")";
    return name;
}

void CComponent::AppendStatLines(std::vector<std::string>& lines) const
{
    AppendLine(lines, "Size: ", size);
    AppendLine(lines, "Weight: ", weight);
    AppendLine(lines, "Tec Level: ", techLevel);
}

std::string CComponent::KindWord(std::int32_t kind)
{
    if (kind < KindSubspaceSail || kind > KindShield)
        return {};
    return KindWords[kind];
}

std::unique_ptr<CComponent> CComponent::MakeCopy(const CComponent& x)
{
    switch (x.kind) {
    case KindSubspaceSail: return CopyAs<CSubspaceSail>(x);
    case KindEngine: return CopyAs<CEngine>(x);
    case KindJet: return CopyAs<CJet>(x);
    case KindArmour: return CopyAs<CArmour>(x);
    case KindEnergySystem: return CopyAs<CEnergySystem>(x);
    case KindLaser: return CopyAs<CLaser>(x);
    case KindShield: return CopyAs<CShield>(x);
    default: return nullptr;
    }
}

void CComponent::SetDrawSource(DrawSource source)
{
    drawSource = std::move(source);
}

void CComponent::BeginGeneration(std::int32_t level)
{
    techLevel = level;
    serialNumber = NextComponentSerial();
    NameAfterSerial();
}

double CComponent::Draw(double m)
{
    return drawSource ? drawSource(m) : SharedRandom().Draw(m);
}

double CComponent::Cheaper(double v, double k) const
{
    double factor = TechFactor();
    if (factor == 0.0) {
        // Technology level 0 would divide by zero: it is made as at level 1, the nearest that does not.
        CTrace::Trace("Technology level 0 in a division", 0);
        factor = TechFactorOf(1);
    }
    return v + (v / factor - v) * k;
}

double CComponent::Stronger(double v, double k) const
{
    return v + (v * TechFactor() - v) * k;
}

void CComponent::AppendLine(std::vector<std::string>& lines, const char* label, std::int32_t value)
{
    lines.push_back(label + std::to_string(value));
}

void CComponent::NameAfterSerial()
{
    name = KindWord(kind) + std::to_string(serialNumber);
}
