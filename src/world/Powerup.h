#pragma once
#include "world/GameObject.h"

// A gold token left by a breaking asteroid: the player's ship that flies into
// it gains energy and, later in the game, an extra component at the level's end.
class CPowerup : public CGameObject {
public:
    static constexpr std::int32_t EnergyGift = 200;
    static constexpr std::int32_t LifetimeMs = 10000;

    CPowerup();
    CPowerup* Clone() const override { return new CPowerup(*this); }
    void OnHit(std::int32_t damage, CGameObject* other) override;

protected:
    CPowerup(const CPowerup&) = default; // for Clone
};
