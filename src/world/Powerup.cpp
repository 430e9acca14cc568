#include "world/Powerup.h"

#include "app/GameApp.h"
#include "ship/Ship.h"
#include "world/SoundCues.h"

CPowerup::CPowerup()
{
    type = ObjectPowerup;
    radius = 7;
    lifetime = LifetimeMs;
    SetSprite("gold");
}

void CPowerup::OnHit(std::int32_t damage, CGameObject* other)
{
    // Only the player's ship can touch a powerup, so every hit is a pickup.
    CGameObject::OnHit(damage, other);
    CGameApp& app = TheApp();
    app.world.AddPowerup();
    if (CShip* player = app.world.GetPlayer())
        player->AddEnergy(EnergyGift);
    app.PlaySoundEffect(SoundCues::Urgent, SoundCues::Pickup);
}
