#pragma once
#include "ship/Component.h"

// The shield takes damage in place of the hull and pays for every absorbed
// point with energy at its conversion rate.
class CShield : public CComponent {
public:
    static constexpr float DefaultConversionRate = 1.5f;

    CShield() : CComponent(KindShield) {}
    CShield(const Common& common, std::int32_t strength, float conversionRate)
        : CComponent(KindShield, common), strength(strength), conversionRate(conversionRate) {}

    std::int32_t GetStrength() const { return strength; }
    float GetConversionRate() const { return conversionRate; }
    // The rate as the design screen shows it: 1.5 reads 150 (per cent).
    std::int32_t GetConversionPercent() const;

    void Generate(std::int32_t level);
    void AppendStatLines(std::vector<std::string>& lines) const override;

private:
    std::int32_t strength = 0;
    float conversionRate = DefaultConversionRate;
};
