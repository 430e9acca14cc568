#include "support/Parts.h"
#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;
using Counts = std::vector<std::int32_t>;

// The player's ship, fresh from its set-up: 10000 units of space.
struct Fitting : ::testing::Test {
    TestApp t;
    OpenShip ship;

    Fitting() { ship.SetPlayerShip(); }

    std::vector<CComponent*> Listed()
    {
        std::vector<CComponent*> list;
        ship.ListComponents(list);
        return list;
    }
    // How many pieces each fitted entry holds, in the ship's order.
    Counts Pieces()
    {
        Counts counts;
        for (const CComponent* c : Listed())
            counts.push_back(c->GetCount());
        return counts;
    }
    std::string Keys()
    {
        std::string keys;
        for (const CLaser& laser : ship.GetLasers())
            keys += static_cast<char>(laser.GetFireKey());
        return keys;
    }
    void Fit(std::initializer_list<CComponent*> parts)
    {
        for (CComponent* c : parts)
            ship.AddComponent(c);
    }
};

TEST_F(Fitting, TheSpaceBudgetMustKeepOneUnitFree)
{
    ship.spaceLeft = 1000;
    CJet tooBig = Jet(1000), fits = Jet(999);
    Fit({&tooBig});
    EXPECT_TRUE(Listed().empty());
    Fit({&fits});
    EXPECT_EQ(ship.GetSpaceLeft(), 1);

    CEngine small = Engine(3000), bigger = Engine(4000), biggest = Engine(4001);
    ship.spaceLeft = 4001;
    Fit({&small, &bigger}); // 1001 - 4000 + 3000 leaves 1
    EXPECT_EQ(ship.GetSpaceLeft(), 1);
    EXPECT_TRUE(Listed().front()->IsSameAs(bigger));
    Fit({&biggest});
    EXPECT_TRUE(Listed().front()->IsSameAs(bigger));
}

TEST_F(Fitting, StackingKindsCountPiecesAndGiveThemBackOneAtATime)
{
    CJet jet = Jet(500);
    Fit({&jet, &jet});
    EXPECT_EQ(Pieces(), Counts{2});
    EXPECT_EQ(ship.GetSpaceLeft(), 9000);
    EXPECT_FALSE(ship.RemoveComponent(jet));
    EXPECT_EQ(Pieces(), Counts{1});
    EXPECT_EQ(ship.GetSpaceLeft(), 9500);
    EXPECT_TRUE(ship.RemoveComponent(jet));
    EXPECT_TRUE(Listed().empty());
    EXPECT_EQ(ship.GetSpaceLeft(), 10000);

    CSubspaceSail sails = Sail(600); // a kit entry of several sails is taken whole
    sails.SetCount(5);
    Fit({&sails});
    EXPECT_EQ(Pieces(), Counts{5});
    EXPECT_EQ(ship.GetSpaceLeft(), 7000);
}

TEST_F(Fitting, ArmourStopsAtTenPiecesHoweverItIsSplit)
{
    CArmour six = Armour(), four = Armour(), more = Armour();
    for (int i = 0; i < 6; ++i)
        Fit({&six});
    Fit({&four, &four, &four, &four, &more, &six});
    EXPECT_EQ(Pieces(), (Counts{6, 4}));
    EXPECT_EQ(ship.GetSpaceLeft(), 10000);
}

TEST_F(Fitting, LasersTakeTheFirstFreeFireKeyRespectingKeysTheDesignScreenChanged)
{
    CLaser laser = Laser({}), another = Laser({}), third = Laser({});
    Fit({&laser, &laser, &laser, &laser}); // the same offered laser, up to three times
    EXPECT_EQ(Keys(), "FDS");
    static_cast<CLaser*>(Listed()[1])->SetFireKey('G');
    ship.RemoveComponent(laser); // the first matching entry goes
    Fit({&another});
    EXPECT_EQ(another.GetFireKey(), 'F'); // the handed laser itself is given the key
    EXPECT_EQ(Keys(), "GSF");
    ship.RemoveComponent(laser);
    Fit({&third}); // 'D' is free again, and comes before 'A'
    EXPECT_EQ(Keys(), "SFD");
}

} // namespace
