#pragma once
#include "ship/Component.h"

// A subspace sail; sails stack, and together they set the ship's top speed.
class CSubspaceSail : public CComponent {
public:
    CSubspaceSail() : CComponent(KindSubspaceSail) {}
    CSubspaceSail(const Common& common, std::int32_t maxSpeed)
        : CComponent(KindSubspaceSail, common), maxSpeed(maxSpeed) {}

    std::int32_t GetMaxSpeed() const { return maxSpeed; }

    // q as for engines: above 1 smaller and slower.
    void Generate(std::int32_t level, float q = 1.0f);
    void AppendStatLines(std::vector<std::string>& lines) const override;

private:
    std::int32_t maxSpeed = 0;
};
