#include "world/GameDriver.h"

#include "app/GameApp.h"
#include "ship/Ship.h"

#include <memory>
#include <vector>

namespace {
// The order in which a refit takes the kinds: what keeps the ship alive and
// armed first, speed and armour with the space that is left.
constexpr std::int32_t RefitOrder[] = {KindEngine, KindEnergySystem, KindLaser, KindShield,
                                       KindJet,    KindSubspaceSail, KindArmour};
} // namespace

void CGameDriver::Seed(std::uint32_t seed)
{
    app.SeedRandom(seed);
}

void CGameDriver::StartGame(std::int32_t startLevel)
{
    app.world.NewGame(startLevel);
    app.SetGameState(StatePlaying);
}

void CGameDriver::Key(UINT key, bool pressed)
{
    app.OnKey(key, pressed);
}

void CGameDriver::Frame(double elapsedMs)
{
    app.elapsedMs = elapsedMs;
    if (app.GetGameState() == StatePlaying)
        app.world.Update(elapsedMs);
}

void CGameDriver::Refit()
{
    CShip* ship = Player();
    if (!ship)
        return;
    std::vector<CComponent*> fitted;
    ship->ListComponents(fitted);
    // Copies first: each removal changes the ship's arrays the list points into.
    std::vector<std::unique_ptr<CComponent>> removed;
    for (const CComponent* c : fitted)
        removed.push_back(CComponent::MakeCopy(*c));
    for (const auto& c : removed) {
        for (std::int32_t piece = 0; piece < c->GetCount(); ++piece)
            ship->RemoveComponent(*c);
        app.world.AddToStock(*c);
    }
    const std::vector<CComponent*> offer = app.world.GetStock();
    for (std::int32_t kind : RefitOrder)
        for (CComponent* c : offer)
            if (c->GetKind() == kind)
                ship->AddComponent(c);
}

void CGameDriver::StartLevel()
{
    app.SetGameState(StatePlaying);
}

std::int32_t CGameDriver::GetGameState() const
{
    return app.GetGameState();
}

CWorld& CGameDriver::World() const
{
    return app.world;
}

CShip* CGameDriver::Player() const
{
    return app.world.GetPlayer();
}
