#pragma once
#include "ship/Component.h"

// The main drive; a ship has one engine slot.
class CEngine : public CComponent {
public:
    CEngine() : CComponent(KindEngine) {}
    CEngine(const Common& common, std::int32_t thrust)
        : CComponent(KindEngine, common), thrust(thrust) {}

    std::int32_t GetThrust() const { return thrust; }

    // A divisor q above 1 makes a smaller, lighter and weaker engine (the
    // enemies' kits); the player's engines are made at 1.
    void Generate(std::int32_t level, float q = 1.0f);
    void AppendStatLines(std::vector<std::string>& lines) const override;

private:
    std::int32_t thrust = 0;
};
