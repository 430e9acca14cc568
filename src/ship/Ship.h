#pragma once
#include "platform/Types.h"
#include "ship/Body.h"

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

// A body that flies under control: the player's ship or an enemy turret.
class CShip : public CBody {
public:
    static constexpr std::int32_t PlayerSpace = 10000;
    static constexpr std::int32_t TurretSpace = 8000;

    CShip();

    bool Update(std::int32_t elapsedMs) override;

    void SetPlayerShip();
    void SetTurret(std::int32_t shipTeam);

    void PlayerKey(UINT key, bool pressed);
    void ClearControls();
    void Refill();
    void ScaleEnergy(float factor);
    void AddEnergy(std::int32_t amount);

    std::int32_t GetEnergy() const { return static_cast<std::int32_t>(energy); }
    float GetExactEnergy() const { return energy; }
    std::int32_t GetEnergyMax() const { return energyMax; }
    std::int32_t GetEnergyRecharge() const { return energyRecharge; }
    std::int32_t GetController() const { return controller; }
    std::int16_t GetTurnInput() const { return turnInput; }
    std::int16_t GetThrustInput() const { return thrustInput; }
    const std::vector<std::uint8_t>& GetHeldKeys() const { return heldKeys; }

protected:
    std::int32_t controller = 0;
    std::int32_t flightMode = 0;
    float energy = 0.0f;
    float fireTimer = 0.0f;
    std::int32_t energyMax = 0;
    std::int32_t energyRecharge = 0;
    std::vector<std::uint8_t> heldKeys;

private:
    void SetHull(std::int32_t points);
};
