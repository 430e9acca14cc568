#include "ship/Ship.h"

#include "app/GameApp.h"

#include <algorithm>

namespace {
constexpr std::int32_t ShipHull = 100;
constexpr std::int32_t ShipTopSpeed = 50;
constexpr std::int32_t PlayerRadius = 14;
constexpr std::int32_t TurretRadius = 13;
constexpr float PlayerMass = 1.0f;
constexpr float TurretMass = 2.0f;

constexpr std::uint8_t KeyLeft = 37;
constexpr std::uint8_t KeyUp = 38;
constexpr std::uint8_t KeyRight = 39;
constexpr std::uint8_t KeyDown = 40;

// Sets a control to the pressed value, or back to 0 on release if it still holds that value.
void Steer(std::int16_t& control, std::int16_t value, bool pressed)
{
    if (pressed)
        control = value;
    else if (control == value)
        control = 0;
}
} // namespace

CShip::CShip()
{
    type = ObjectShip;
}

void CShip::SetHull(std::int32_t points)
{
    hull = static_cast<float>(points);
    baseHull = points;
    hullMax = points;
}

void CShip::SetPlayerShip()
{
    facing = 0.0;
    controller = ControllerKeyboard;
    team = TeamPlayer;
    radius = PlayerRadius;
    mass = baseMass = PlayerMass;
    maxSpeed = ShipTopSpeed;
    flightMode = FlightKeyboard;
    CGameApp& app = TheApp();
    vector.Set(app.screenWidth / 2, app.screenHeight / 2, 0.0f, 0.0f);
    SetSprite("ship1");
    boundsMode = BoundsBounce;
    SetHull(ShipHull);
    spaceLeft = PlayerSpace;
}

void CShip::SetTurret(std::int32_t shipTeam)
{
    mass = baseMass = TurretMass;
    facing = 0.0;
    controller = ControllerComputer;
    team = shipTeam;
    radius = TurretRadius;
    maxSpeed = ShipTopSpeed;
    flightMode = FlightComputer;
    SetSprite("turrent1");
    boundsMode = BoundsFree;
    SetHull(ShipHull);
    spaceLeft = TurretSpace;
    aiActive = true;
    aiMode = AiWander;
    ChooseWanderTarget();
}

bool CShip::Update(std::int32_t elapsedMs)
{
    const double t = elapsedMs;
    if (flightMode == FlightKeyboard && alive) {
        Rotate(turnInput * turnRate * t / mass);
        vector.ApplyThrust(t, thrustInput * thrust / mass, facing, maxSpeed, 0);
    }
    if (flightMode == FlightComputer && alive && aiActive)
        vector.ApplyThrust(t, thrust / mass, aiHeading, maxSpeed, 1);
    if (!CGameObject::Update(elapsedMs))
        return false;
    if (!alive)
        return true; // showing its explosion
    if (energyMax > energy)
        energy = std::min(static_cast<float>(energy + t / energyRecharge), static_cast<float>(energyMax));
    fireTimer = static_cast<float>(fireTimer - t);
    return true;
}

void CShip::PlayerKey(UINT key, bool pressed)
{
    const auto code = static_cast<std::uint8_t>(key & 0xFF);
    switch (code) {
    case KeyLeft: Steer(turnInput, -1, pressed); return;
    case KeyUp: Steer(thrustInput, 1, pressed); return;
    case KeyRight: Steer(turnInput, 1, pressed); return;
    case KeyDown: Steer(thrustInput, -1, pressed); return;
    default: break;
    }
    const auto held = std::find(heldKeys.begin(), heldKeys.end(), code);
    if (pressed && held == heldKeys.end())
        heldKeys.push_back(code);
    else if (!pressed && held != heldKeys.end())
        heldKeys.erase(held);
}

void CShip::ClearControls()
{
    thrustInput = 0;
    turnInput = 0;
    std::vector<std::uint8_t>().swap(heldKeys);
}

void CShip::Refill()
{
    hull = static_cast<float>(hullMax);
    energy = static_cast<float>(energyMax);
}

void CShip::ScaleEnergy(float factor)
{
    energy *= factor;
}

void CShip::AddEnergy(std::int32_t amount)
{
    energy += static_cast<float>(amount);
    if (energy > energyMax)
        energy = static_cast<float>(energyMax);
}
