#include "app/GameCheckpoint.h"

#include "app/GameApp.h"

CGameCheckpoint::CGameCheckpoint(CGameApp& app)
    : menus(app.menus.GetStanding()), designer(app.designer), random(app.random), gameState(app.gameState),
      active(app.active), componentSerial(app.componentSerial), lastSoundPriority(app.lastSoundPriority)
{
    world.Keep(app.world, app.liveSprites);
}

void CGameCheckpoint::Restore(CGameApp& app) const
{
    world.Restore(app.world, app.liveSprites);
    app.menus.Restore(menus);
    app.designer = designer;
    app.random = random;
    app.gameState = gameState;
    app.active = active;
    app.componentSerial = componentSerial;
    app.lastSoundPriority = lastSoundPriority;
}
