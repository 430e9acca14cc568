#pragma once
#include "core/Random.h"
#include "frontend/MenuSystem.h"
#include "frontend/ShipDesigner.h"
#include "world/WorldCheckpoint.h"

#include <cstdint>

class CGameApp;

// Everything the rules of a game in progress stand on, as it stood after a
// frame: the world, the screens around it and the shared random generator.
// Putting it back makes the game go on from there exactly as it went on the
// first time. The stars are not the rules': they twinkle on undisturbed.
class CGameCheckpoint {
public:
    explicit CGameCheckpoint(CGameApp& app);
    void Restore(CGameApp& app) const;

private:
    CWorldCheckpoint world;
    CMenuSystem::Standing menus;
    CShipDesigner designer;
    CRandom random;
    std::int32_t gameState;
    std::int32_t active;
    std::int32_t componentSerial;
    std::int16_t lastSoundPriority;
};
