#pragma once
#include "core/Truncate.h"
#include "platform/Types.h"
#include "ship/Body.h"
#include "ship/EnergySystem.h"
#include "ship/Laser.h"
#include "ship/Shield.h"

#include <cstdint>
#include <vector>

// Who flies a ship.
enum Controller : std::int32_t {
    ControllerKeyboard = 1,
    ControllerComputer = 2,
};

// How a ship steers: by the arrow keys or toward its own chosen heading.
enum FlightMode : std::int32_t {
    FlightKeyboard = 1,
    FlightComputer = 2,
};

// A body that flies under control and fights: the player's ship, or an enemy
// ship (a turret) that wanders, keeps its distance and shoots with lead.
class CShip : public CBody {
public:
    static constexpr std::int32_t PlayerSpace = 10000;
    static constexpr std::int32_t TurretSpace = 8000;
    // A firing blocks the next one for this long, ms.
    static constexpr float FireSpacingMs = 100.0f;

    CShip();
    // The same ship, its lasers as hot as they are (a laser's own copy starts cool).
    CShip* Clone() const override;

    bool Update(std::int32_t elapsedMs) override;
    void Act() override;
    void OnHit(std::int32_t damage, CGameObject* other) override;
    void ListComponents(std::vector<CComponent*>& list) override;
    void AddComponent(CComponent* component) override;
    bool RemoveComponent(const CComponent& component) override;
    void RecomputeStats() override;

    void SetPlayerShip();
    void SetTurret(std::int32_t shipTeam);

    // Fires the laser at that index if its energy and cool-down allow.
    void Fire(std::int32_t index);
    void PlayerKey(UINT key, bool pressed);
    void ClearControls();
    void Refill();
    void ScaleEnergy(float factor);
    void AddEnergy(std::int32_t amount);

    std::int32_t GetEnergy() const { return TruncToInt32(energy); }
    float GetExactEnergy() const { return energy; }
    std::int32_t GetEnergyMax() const { return energyMax; }
    std::int32_t GetEnergyRecharge() const { return energyRecharge; }
    std::int32_t GetController() const { return controller; }
    std::int16_t GetTurnInput() const { return turnInput; }
    std::int16_t GetThrustInput() const { return thrustInput; }
    float GetFireTimer() const { return fireTimer; }
    const std::vector<std::uint8_t>& GetHeldKeys() const { return heldKeys; }
    const std::vector<CLaser>& GetLasers() const { return lasers; }
    const CShield& GetShield() const { return shield; }
    const CEnergySystem& GetEnergySystem() const { return energySystem; }

    // Readouts of the design screen's statistics panel.
    std::int32_t GetDisplayTurnSpeed() const;
    std::int32_t GetShieldStrength() const { return shield.GetStrength(); }
    std::int32_t GetDisplayShieldLoss() const { return shield.GetConversionPercent(); }

protected:
    CShip(const CShip&) = default; // for Clone
    CEnergySystem energySystem;
    CShield shield;
    std::vector<CLaser> lasers;
    std::int32_t controller = 0;
    std::int32_t flightMode = 0;
    float energy = 0.0f;
    float fireTimer = 0.0f;
    std::int32_t energyMax = 0;
    std::int32_t energyRecharge = 0;
    std::vector<std::uint8_t> heldKeys;

private:
    void SetHull(std::int32_t points);
    void AddLaser(CLaser& laser);
    bool CanFireAgain() const { return fireTimer < 1.0f; }
    void Recharge(double t);
    void FireByKeys();
    void EnemyAct();
    bool ReachesIntoScreen() const;
};
