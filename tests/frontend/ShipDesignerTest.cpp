#include "frontend/ShipDesigner.h"
#include "support/Parts.h"
#include "support/TestApp.h"

#include "platform/Keys.h"
#include "ship/Ship.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

// A game on its design screen, with an offer the test makes.
class ShipDesignerTest : public ::testing::Test {
protected:
    ShipDesignerTest() { t->world.NewGame(1); }

    void Press(std::initializer_list<UINT> keys)
    {
        for (UINT key : keys)
            t->designer.OnKey(key, true);
    }
    void Offer(const CComponent& component) { t->world.AddToStock(component); }
    std::vector<CComponent*> Fitted()
    {
        std::vector<CComponent*> list;
        t->world.GetPlayer()->ListComponents(list);
        return list;
    }
    std::string FittedNames()
    {
        std::string names;
        for (const CComponent* c : Fitted())
            names += c->GetDisplayName() + ";";
        return names;
    }
    std::int16_t Focus() { return t->designer.GetFocus(); }
    std::int16_t Selected() { return t->designer.GetComponentSelection(); }

    TestApp t;
};

TEST_F(ShipDesignerTest, SelectionsStopAtTheEndsAndTheShipListTakesTheFocusOnlyWhenItListsSomething)
{
    Offer(Engine(100));
    Offer(Jet(100));
    Press({VK_UP, VK_DOWN, VK_DOWN, VK_RIGHT});
    EXPECT_EQ(t->designer.GetOfferSelection(), 1);
    EXPECT_EQ(Focus(), CShipDesigner::FocusOffer); // the ship has nothing yet

    Press({VK_RETURN, VK_LEFT, VK_DOWN});
    EXPECT_EQ(Focus(), CShipDesigner::FocusShip);
    EXPECT_EQ(Selected(), 0);
}

TEST_F(ShipDesignerTest, GivingBackMovesTheSelectionOnlyWhenTheLastEntryGoes)
{
    Offer(Engine(100));
    Offer(Jet(100));
    Offer(Sail(100));
    Press({VK_RETURN, VK_DOWN, VK_RETURN, VK_DOWN, VK_RETURN});
    Press({VK_RIGHT, VK_DOWN, VK_DOWN, VK_RETURN}); // the last of three
    EXPECT_EQ(FittedNames(), "Engine1;+ Jet2;");
    EXPECT_EQ(Selected(), 1);
    EXPECT_EQ(t->world.GetStock().size(), 3u); // it was on offer already

    Press({VK_LEFT, VK_RETURN, VK_RIGHT}); // the sail again
    Press({VK_RETURN});                    // the jet, in the middle: the selection stays
    EXPECT_EQ(FittedNames(), "Engine1;+ Subspace Sail3;");
    EXPECT_EQ(Selected(), 1);
    Press({VK_RETURN, VK_RETURN}); // the only one left: back to the offer
    EXPECT_EQ(Focus(), CShipDesigner::FocusOffer);

    // A stacked piece not on offer goes back once, one piece at a time.
    CJet bonus = Jet(100);
    t->world.GetPlayer()->AddComponent(&bonus);
    t->world.GetPlayer()->AddComponent(&bonus);
    Press({VK_RIGHT, VK_SPACE, VK_SPACE});
    EXPECT_EQ(FittedNames(), "");
    EXPECT_EQ(t->world.GetStock().size(), 4u);
    EXPECT_EQ(t->world.GetStock()[3]->GetDisplayName(), "+ Jet4");
}

TEST_F(ShipDesignerTest, ALetterOrDigitKeysTheHighlightedShipLaserWhicheverListHasTheFocus)
{
    Offer(Plant(500));
    Offer(Laser({}));
    Press({VK_RETURN, VK_DOWN, VK_RETURN, VK_RETURN});
    auto key = [this](std::size_t index) { return static_cast<CLaser*>(Fitted()[index])->GetFireKey(); };
    Press({'G'}); // the ship's highlight is on the energy system
    EXPECT_EQ(key(1), 'F');
    Press({VK_RIGHT, VK_DOWN, VK_LEFT, 'G'});
    EXPECT_EQ(key(1), 'G');
    Press({VK_RIGHT, VK_DOWN, Platform::VirtualKeyFor(SDLK_KP_7)}); // the number pad's digits are digits
    EXPECT_EQ(key(2), '7');

    t->world.Clear(); // without a ship Enter and the fire keys do nothing
    Offer(Engine(100));
    Press({VK_RETURN, 'F'});
    EXPECT_EQ(t->world.GetStock().size(), 1u);
}

TEST(ShipDesignerLayout, PanelsOnA1024By768Screen)
{
    const CShipDesigner::Layout l = CShipDesigner::ComputeLayout(1024, 768);
    EXPECT_EQ(l.shipPanel, (RECT{50, 100, 348, 668}));
    EXPECT_EQ(l.offerDetail, (RECT{363, 100, 661, 286}));
    EXPECT_EQ(l.offerList, (RECT{363, 301, 661, 668}));
    EXPECT_EQ(l.componentDetail, (RECT{676, 100, 974, 286}));
    EXPECT_EQ(l.componentList, (RECT{676, 301, 974, 668}));
}

} // namespace
