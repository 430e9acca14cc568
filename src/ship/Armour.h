#pragma once
#include "ship/Component.h"

// Plating that adds hull points per piece. It takes no space; a ship carries
// at most ten pieces.
class CArmour : public CComponent {
public:
    CArmour() : CComponent(KindArmour) {}
    CArmour(const Common& common, std::int32_t armourValue)
        : CComponent(KindArmour, common), armourValue(armourValue) {}

    std::int32_t GetArmourValue() const { return armourValue; }

    void Generate(std::int32_t level);
    void AppendStatLines(std::vector<std::string>& lines) const override;

private:
    std::int32_t armourValue = 0;
};
