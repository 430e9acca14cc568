#pragma once
#include "ship/Component.h"

// The power plant: how much energy the ship stores and how fast it comes back.
class CEnergySystem : public CComponent {
public:
    CEnergySystem() : CComponent(KindEnergySystem) {}
    CEnergySystem(const Common& common, std::int32_t recharge, std::int32_t storage)
        : CComponent(KindEnergySystem, common), recharge(recharge), storage(storage) {}

    // Milliseconds to regain one unit of energy.
    std::int32_t GetRecharge() const { return recharge; }
    // The ship's energy capacity.
    std::int32_t GetStorage() const { return storage; }

    void Generate(std::int32_t level);
    void AppendStatLines(std::vector<std::string>& lines) const override;

private:
    std::int32_t recharge = 0;
    std::int32_t storage = 0;
};
