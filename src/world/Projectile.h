#pragma once
#include "core/Vector.h"

#include <cstdint>

class CLaser;
class CShip;

// Shrapnel of an exploding body: weak, short-lived, on no side.
namespace Shrapnel {
constexpr std::int32_t Damage = 1;
constexpr std::int32_t LifetimeMs = 2000;
} // namespace Shrapnel

// The vector of something leaving `from`: placed `distance` pixels out along
// `angle` and given `speed` along `direction` on top of the parent's motion
// (both angles as facings: 0 up the screen, clockwise).
CVector LaunchVector(CVector from, double angle, float distance, double direction, float speed);

// Creates one projectile and hands it to the world.
void LaunchProjectile(const CVector& launch, std::int32_t damage, std::int32_t team, std::int32_t lifetimeMs,
                      std::int16_t bounds);

// The three volleys a laser can fire from a ship: shots side by side along
// the facing, a fan about it, or a ring. Each shot gets the laser's speed,
// damage and containment (its lifetime).
void FireParallel(const CShip& ship, const CLaser& laser);
void FireSpread(const CShip& ship, const CLaser& laser);
void FireRadiating(const CShip& ship, const CLaser& laser);
