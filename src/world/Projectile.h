#pragma once
#include "core/Vector.h"

#include <cstdint>

class CGameObject;

// What one firing of a laser puts into its shots.
struct ShotSpec {
    std::int32_t speed = 0;       // pixels per second added to the shooter's own motion
    std::int32_t containment = 0; // lifetime of each shot, ms
    std::int32_t shots = 1;       // projectiles per firing
    std::int32_t damage = 0;      // per projectile
};

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
// the facing, a fan about it, or a ring.
void FireParallel(const CGameObject& ship, const ShotSpec& laser);
void FireSpread(const CGameObject& ship, const ShotSpec& laser);
void FireRadiating(const CGameObject& ship, const ShotSpec& laser);
