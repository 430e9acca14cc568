#include "support/GameDriver.h"

#include "app/GameApp.h"
#include "ship/Ship.h"

#include <vector>

namespace {
// The order in which a refit takes the kinds: what keeps the ship alive and
// armed first, speed and armour with the space that is left.
constexpr std::int32_t RefitOrder[] = {KindEngine, KindEnergySystem, KindLaser, KindShield,
                                       KindJet,    KindSubspaceSail, KindArmour};
constexpr int MaxRefitPresses = 1000;
} // namespace

void CGameDriver::Refit()
{
    CShip* ship = Player();
    if (!ship || app.GetGameState() != StateDesign)
        return;
    // Everything off: the ship's list, each entry until it is gone.
    std::vector<CComponent*> fitted;
    ship->ListComponents(fitted);
    if (!fitted.empty())
        Press(VK_RIGHT);
    // Each press takes one piece off; a ship holds far fewer than this.
    for (int presses = 0; !fitted.empty() && presses < MaxRefitPresses; ++presses) {
        Press(VK_RETURN);
        fitted.clear();
        ship->ListComponents(fitted);
    }
    // Then the offer, kind by kind, walking the selection to each.
    const std::vector<CComponent*> offer = app.world.GetStock();
    std::int32_t at = app.designer.GetOfferSelection();
    for (std::int32_t kind : RefitOrder) {
        for (std::size_t i = 0; i < offer.size(); ++i) {
            if (offer[i]->GetKind() != kind)
                continue;
            for (; at < static_cast<std::int32_t>(i); ++at)
                Press(VK_DOWN);
            for (; at > static_cast<std::int32_t>(i); --at)
                Press(VK_UP);
            Press(VK_RETURN);
        }
    }
}
