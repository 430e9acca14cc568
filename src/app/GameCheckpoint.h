#pragma once
#include "core/Random.h"
#include "display/Star.h"
#include "frontend/MenuSystem.h"
#include "frontend/ShipDesigner.h"
#include "world/WorldCheckpoint.h"

#include <cstdint>
#include <vector>

class CGameApp;

// Everything the rules of a game in progress stand on, as it stood after a
// frame: the world, the screens around it, the shared random generator and
// the stars. Putting it back makes the game go on from there exactly as it
// went on the first time.
class CGameCheckpoint {
public:
    explicit CGameCheckpoint(CGameApp& app);
    void Restore(CGameApp& app) const;

private:
    CWorldCheckpoint world;
    CMenuSystem::Standing menus;
    CShipDesigner designer;
    std::vector<CStar> stars;
    CRandom random;
    std::int32_t gameState;
    std::int32_t active;
    std::int32_t componentSerial;
    std::int16_t lastSoundPriority;
};
