#include "world/Projectile.h"

#include "ship/Ship.h"
#include "world/Angles.h"
#include "world/GameObject.h"
#include "world/World.h"

#include <cmath>

namespace {
// Shots leave just outside the ship's own collision circle.
constexpr float MuzzleGap = 4.0f;

const char* ProjectileSprite(std::int32_t team)
{
    switch (team) {
    case TeamPlayer: return "bullet2";
    case TeamEnemy: return "bullet1";
    default: return "shrap";
    }
}

// The player's shots stay in play off the walls; everyone else's leave the screen.
std::int16_t VolleyBounds(const CGameObject& ship)
{
    return ship.GetTeam() == TeamPlayer ? BoundsBounce : BoundsDie;
}

void LaunchShot(const CShip& ship, const CLaser& laser, double angle, double direction, std::int16_t bounds)
{
    const CVector launch = LaunchVector(ship.GetVector(), angle, static_cast<float>(ship.GetRadius()) + MuzzleGap,
                                        direction, static_cast<float>(laser.GetSpeed()));
    LaunchProjectile(launch, laser.GetDamage(), ship.GetTeam(), laser.GetContainment(), bounds);
}

double WrapDown(double a)
{
    return a >= Angles::TwoPi ? a - Angles::TwoPi : a;
}
} // namespace

CVector LaunchVector(CVector from, double angle, float distance, double direction, float speed)
{
    from.AddPos(static_cast<float>(std::sin(angle) * distance), static_cast<float>(-std::cos(angle) * distance));
    from.AddSpeed(static_cast<float>(std::sin(direction) * speed), static_cast<float>(-std::cos(direction) * speed));
    return from;
}

void CGameObject::InitProjectile(const CVector& launch, std::int32_t damage, std::int32_t shooterTeam,
                                 std::int32_t lifetimeMs, std::int16_t bounds)
{
    lifetime = lifetimeMs;
    type = ObjectProjectile;
    vector = launch;
    team = shooterTeam;
    contactDamage = damage;
    radius = 2;
    mass = 0.1f;
    boundsMode = bounds;
    SetSprite(ProjectileSprite(team));
}

void LaunchProjectile(const CVector& launch, std::int32_t damage, std::int32_t team, std::int32_t lifetimeMs,
                      std::int16_t bounds)
{
    auto* shot = new CGameObject;
    shot->InitProjectile(launch, damage, team, lifetimeMs, bounds);
    TheWorld().AddObject(shot);
}

void FireParallel(const CShip& ship, const CLaser& laser)
{
    const std::int32_t n = laser.GetShots();
    const double facing = ship.GetFacing();
    double angle = WrapDown(n > 1 ? facing + Angles::HalfPi : facing);
    const double step = n > 1 ? Angles::Pi / (n + 1) : 0.0;
    for (std::int32_t turn = 0; turn <= n; ++turn) {
        if (turn > 0)
            LaunchShot(ship, laser, angle, facing, VolleyBounds(ship));
        angle = Angles::WrapUp(angle - step);
    }
}

void FireSpread(const CShip& ship, const CLaser& laser)
{
    // The first four turns of the fan are left empty, which narrows it.
    constexpr std::int32_t SkippedTurns = 4;
    const std::int32_t n = laser.GetShots();
    const double facing = ship.GetFacing();
    double angle = WrapDown(n > 1 ? facing + Angles::QuarterPi : facing);
    const double step = n > 1 ? Angles::HalfPi / (n + 7) : 0.0;
    for (std::int32_t turn = 0; turn < n + SkippedTurns; ++turn) {
        if (turn >= SkippedTurns)
            LaunchShot(ship, laser, angle, angle, VolleyBounds(ship));
        angle = Angles::WrapUp(angle - step);
    }
}

void FireRadiating(const CShip& ship, const CLaser& laser)
{
    const std::int32_t n = laser.GetShots();
    double angle = ship.GetFacing();
    const double step = n > 1 ? Angles::TwoPi / n : 0.0;
    for (std::int32_t turn = 0; turn < n; ++turn) {
        LaunchShot(ship, laser, angle, angle, BoundsDie);
        angle = Angles::WrapUp(angle - step);
    }
}
