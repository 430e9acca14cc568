#pragma once
#include "app/GameApp.h"
#include "ship/Armour.h"
#include "ship/EnergySystem.h"
#include "ship/Engine.h"
#include "ship/Jet.h"
#include "ship/Laser.h"
#include "ship/Shield.h"
#include "ship/SubspaceSail.h"

// Components with known values, each with a fresh serial number of the run.
namespace qvtest {

inline CComponent::Common Part(std::int32_t size, std::int32_t weight = 0)
{
    return {.weight = weight, .size = size, .serialNumber = TheApp().NextComponentSerial()};
}

inline CEngine Engine(std::int32_t size, std::int32_t weight = 0, std::int32_t thrust = 100)
{
    return CEngine(Part(size, weight), thrust);
}

inline CJet Jet(std::int32_t size, std::int32_t weight = 0, std::int32_t turnThrust = 10)
{
    return CJet(Part(size, weight), turnThrust);
}

inline CSubspaceSail Sail(std::int32_t size, std::int32_t weight = 0, std::int32_t maxSpeed = 10)
{
    return CSubspaceSail(Part(size, weight), maxSpeed);
}

inline CArmour Armour(std::int32_t weight = 0, std::int32_t armourValue = 30)
{
    return CArmour(Part(0, weight), armourValue);
}

inline CEnergySystem Plant(std::int32_t storage, std::int32_t recharge = 50, std::int32_t size = 100)
{
    return CEnergySystem(Part(size), recharge, storage);
}

inline CShield Shield(std::int32_t strength, float rate, std::int32_t size = 100)
{
    return CShield(Part(size), strength, rate);
}

inline CLaser Laser(CLaser::Values values, std::int32_t size = 100)
{
    return CLaser(Part(size), values);
}

} // namespace qvtest
