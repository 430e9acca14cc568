#include "world/Powerup.h"

#include "audio/SoundCues.h"
#include "ship/Ship.h"
#include "world/World.h"

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
    TheWorld().AddPowerup();
    if (CShip* player = TheWorld().GetPlayer())
        player->AddEnergy(EnergyGift);
    SoundCues::Play(SoundCues::Urgent, SoundCues::Pickup);
}
