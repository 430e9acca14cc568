#include "ship/Ship.h"

#include "audio/SoundCues.h"
#include "core/Truncate.h"
#include "display/Screen.h"
#include "world/Angles.h"
#include "world/Projectile.h"
#include "world/World.h"

#include <algorithm>

namespace {
constexpr std::int32_t ShipHull = 100;
constexpr std::int32_t ShipTopSpeed = 50;
constexpr std::int32_t PlayerRadius = 14;
constexpr std::int32_t TurretRadius = 13;
constexpr float PlayerMass = 1.0f;
constexpr float TurretMass = 2.0f;

constexpr std::int32_t AimIterations = 5;

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
    vector.Set(ScreenWidth() / 2, ScreenHeight() / 2, 0.0f, 0.0f);
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

CShip* CShip::Clone() const
{
    auto* copy = new CShip(*this);
    for (std::size_t i = 0; i < lasers.size(); ++i)
        copy->lasers[i].AddCooldown(lasers[i].GetCooldown());
    return copy;
}

bool CShip::Update(std::int32_t elapsedMs)
{
    const double t = elapsedMs;
    if (flightMode == FlightKeyboard && alive) {
        // Turning scales with the frame time; thrust adds the same speed every frame.
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
        Recharge(t);
    for (CLaser& laser : lasers)
        laser.AddCooldown(-elapsedMs);
    fireTimer = static_cast<float>(fireTimer - t);
    bool wantsToAct = !heldKeys.empty() && !lasers.empty() && CanFireAgain();
    if (shield.HasSerial())
        TheWorld().AddToLabelList(this);

    if (controller == ControllerComputer) {
        thinkTimer += elapsedMs;
        wanderTimer += elapsedMs;
        if (thinkTimer > ThinkIntervalMs) {
            wantsToAct = true;
            thinkTimer = 0;
        }
        if (CanFireAgain() && TruncToInt32(energy) == energyMax)
            wantsToAct = true;
        if (aiMode == AiAttack && CanFireAgain())
            wantsToAct = true;
    }
    if (wantsToAct)
        TheWorld().AddToActionList(this);
    return true;
}

void CShip::Act()
{
    if (!alive)
        return;
    if (controller == ControllerKeyboard && !heldKeys.empty() && !lasers.empty())
        FireByKeys();
    if (team == TeamEnemy && controller == ControllerComputer)
        EnemyAct();
}

void CShip::FireByKeys()
{
    // A laser that fires blocks the rest, so several lasers on one key take turns.
    for (std::size_t i = 0; i < lasers.size(); ++i)
        for (std::uint8_t key : heldKeys)
            if (static_cast<std::uint8_t>(lasers[i].GetFireKey()) == key && CanFireAgain())
                Fire(static_cast<std::int32_t>(i));
}

void CShip::EnemyAct()
{
    const CGameObject* player = TheWorld().GetPlayerObject();
    if (player)
        aiMode = IsNear(*player) ? AiAttack : AiWander;
    if (aiMode == AiWander)
        KeepWandering();
    if (aiMode == AiAttack) {
        if (player) {
            // Flies away from where the player is heading: keeps its distance.
            aiHeading = vector.LeadAngle(player->GetVector(), AimIterations, maxSpeed) + Angles::Pi;
            while (aiHeading > Angles::TwoPi)
                aiHeading -= Angles::TwoPi;
        } else {
            aiMode = AiWander;
        }
    } else {
        HeadForTarget();
    }

    const bool ready = CanFireAgain() && !lasers.empty() && (aiMode == AiAttack || energy == energyMax);
    if (!ready || !player || !ReachesIntoScreen())
        return;
    // Aimed directly, without turning the sprite.
    facing = CVector::MirrorHeading(vector.InterceptAngle(player->GetVector(), AimIterations, lasers[0].GetSpeed()));
    for (std::size_t i = 0; i < lasers.size(); ++i)
        Fire(static_cast<std::int32_t>(i));
}

bool CShip::ReachesIntoScreen() const
{
    const std::int32_t x = GetX();
    const std::int32_t y = GetY();
    return x + radius > 0 && y + radius > 0 && x - radius < ScreenWidth() && y - radius < ScreenHeight();
}

void CShip::Fire(std::int32_t index)
{
    CLaser& laser = lasers[static_cast<std::size_t>(index)];
    if (!(laser.GetEnergyUse() < energy) || laser.GetCooldown() != 0)
        return;
    energy -= static_cast<float>(laser.GetEnergyUse());
    laser.AddCooldown(laser.GetDelay());
    switch (laser.GetPattern()) {
    case CLaser::Parallel: FireParallel(*this, laser); break;
    case CLaser::Spread: FireSpread(*this, laser); break;
    case CLaser::Radiating: FireRadiating(*this, laser); break;
    default: break;
    }
    SoundCues::Play(SoundCues::Shot, team == TeamPlayer ? SoundCues::PlayerShot : SoundCues::EnemyShot);
    fireTimer = FireSpacingMs;
}

// One unit of energy takes energyRecharge milliseconds. The energy systems of
// the highest technology levels need 0 ms or less: they refill at once, and a
// frame of no time at all brings nothing, so energy never becomes 0/0 and
// recharge only ever raises it.
void CShip::Recharge(double t)
{
    if (energyRecharge > 0)
        energy = std::min(static_cast<float>(energy + t / energyRecharge), static_cast<float>(energyMax));
    else if (t > 0)
        energy = static_cast<float>(energyMax);
}

void CShip::OnHit(std::int32_t damage, CGameObject* other)
{
    if (shield.HasSerial()) {
        // The shield draws what energy it may and stops the damage that energy pays for.
        const float rate = shield.GetConversionRate();
        std::int32_t drawn = TruncToInt32(shield.GetStrength() * rate);
        if (drawn > energy)
            drawn = TruncToInt32(energy);
        // A shield that converts at rate 0 draws nothing and so stops nothing.
        const std::int32_t paidFor = rate != 0.0f ? TruncToInt32(drawn / rate) : 0;
        const std::int32_t stopped = std::min(paidFor, damage);
        energy -= rate * static_cast<float>(stopped);
        damage -= stopped;
    }
    if (damage > 0)
        CBody::OnHit(damage, other);
}

void CShip::PlayerKey(UINT key, bool pressed)
{
    const auto code = static_cast<std::uint8_t>(key & 0xFF);
    switch (code) {
    case VK_LEFT: Steer(turnInput, -1, pressed); return;
    case VK_UP: Steer(thrustInput, 1, pressed); return;
    case VK_RIGHT: Steer(turnInput, 1, pressed); return;
    case VK_DOWN: Steer(thrustInput, -1, pressed); return;
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
