#pragma once
#include "ship/Component.h"

// A steering jet; jets stack, and together they set the ship's turn rate.
class CJet : public CComponent {
public:
    CJet() : CComponent(KindJet) {}
    CJet(const Common& common, std::int32_t turnThrust)
        : CComponent(KindJet, common), turnThrust(turnThrust) {}

    std::int32_t GetTurnThrust() const { return turnThrust; }

    // q as for engines: above 1 smaller and weaker.
    void Generate(std::int32_t level, float q = 1.0f);
    void AppendStatLines(std::vector<std::string>& lines) const override;

private:
    std::int32_t turnThrust = 0;
};
