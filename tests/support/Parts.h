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

using std::int32_t;

inline CComponent::Common Part(int32_t size, int32_t weight = 0)
{
    return {.weight = weight, .size = size, .serialNumber = TheApp().NextComponentSerial()};
}

inline CEngine Engine(int32_t size, int32_t weight = 0, int32_t thrust = 100) { return {Part(size, weight), thrust}; }
inline CJet Jet(int32_t size, int32_t weight = 0, int32_t turnThrust = 10) { return {Part(size, weight), turnThrust}; }
inline CSubspaceSail Sail(int32_t size, int32_t weight = 0, int32_t maxSpeed = 10) { return {Part(size, weight), maxSpeed}; }
inline CArmour Armour(int32_t weight = 0, int32_t armourValue = 30) { return {Part(0, weight), armourValue}; }
inline CEnergySystem Plant(int32_t storage, int32_t recharge = 50, int32_t size = 100) { return {Part(size), recharge, storage}; }
inline CShield Shield(int32_t strength, float rate, int32_t size = 100) { return {Part(size), strength, rate}; }
inline CLaser Laser(CLaser::Values values, int32_t size = 100) { return {Part(size), values}; }

} // namespace qvtest
