#include "support/Parts.h"
#include "support/TestApp.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

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
    void Fit(std::initializer_list<CComponent*> parts)
    {
        for (CComponent* c : parts)
            ship.AddComponent(c);
    }
};

TEST_F(Fitting, TheSpaceBudgetMustKeepOneUnitFree)
{
    ship.spaceLeft = 1000;
    CJet tooBig = Jet(1000);
    ship.AddComponent(&tooBig);
    EXPECT_TRUE(Listed().empty());
    CJet fits = Jet(999);
    ship.AddComponent(&fits);
    EXPECT_EQ(ship.GetSpaceLeft(), 1);

    CEngine small = Engine(3000);
    ship.spaceLeft = 4001;
    ship.AddComponent(&small);
    CEngine bigger = Engine(4000);
    ship.AddComponent(&bigger); // 1001 - 4000 + 3000 leaves 1
    EXPECT_EQ(ship.GetSpaceLeft(), 1);
    EXPECT_TRUE(Listed().front()->IsSameAs(bigger));
    CEngine biggest = Engine(4001);
    ship.AddComponent(&biggest);
    EXPECT_TRUE(Listed().front()->IsSameAs(bigger));
}

TEST_F(Fitting, StackingKindsCountPiecesAndGiveThemBackOneAtATime)
{
    CJet jet = Jet(500);
    ship.AddComponent(&jet);
    ship.AddComponent(&jet);
    ASSERT_EQ(Listed().size(), 1u);
    EXPECT_EQ(Listed().front()->GetCount(), 2);
    EXPECT_EQ(ship.GetSpaceLeft(), 9000);

    EXPECT_FALSE(ship.RemoveComponent(jet));
    EXPECT_EQ(Listed().front()->GetCount(), 1);
    EXPECT_EQ(ship.GetSpaceLeft(), 9500);
    EXPECT_TRUE(ship.RemoveComponent(jet));
    EXPECT_TRUE(Listed().empty());
    EXPECT_EQ(ship.GetSpaceLeft(), 10000);

    CSubspaceSail sails = Sail(600); // a kit entry of several sails is taken whole
    sails.SetCount(5);
    ship.AddComponent(&sails);
    EXPECT_EQ(Listed().front()->GetCount(), 5);
    EXPECT_EQ(ship.GetSpaceLeft(), 7000);
}

TEST_F(Fitting, ArmourStopsAtTenPiecesHoweverItIsSplit)
{
    CArmour six = Armour();
    CArmour four = Armour();
    for (int i = 0; i < 6; ++i)
        ship.AddComponent(&six);
    for (int i = 0; i < 4; ++i)
        ship.AddComponent(&four);
    CArmour more = Armour();
    ship.AddComponent(&more);
    ship.AddComponent(&six);
    ASSERT_EQ(Listed().size(), 2u);
    EXPECT_EQ(Listed()[0]->GetCount() + Listed()[1]->GetCount(), 10);
    EXPECT_EQ(ship.GetSpaceLeft(), 10000);
}

TEST_F(Fitting, LasersTakeTheFirstFreeFireKey)
{
    CLaser laser = Laser({});
    for (int i = 0; i < 4; ++i)
        ship.AddComponent(&laser); // the same offered laser, up to three times
    ASSERT_EQ(ship.GetLasers().size(), 3u);
    EXPECT_EQ(ship.GetLasers()[0].GetFireKey(), 'F');
    EXPECT_EQ(ship.GetLasers()[1].GetFireKey(), 'D');
    EXPECT_EQ(ship.GetLasers()[2].GetFireKey(), 'S');

    ship.RemoveComponent(laser); // the first matching entry goes
    ASSERT_EQ(ship.GetLasers().size(), 2u);
    EXPECT_EQ(ship.GetLasers()[0].GetFireKey(), 'D');
    CLaser another = Laser({});
    ship.AddComponent(&another);
    EXPECT_EQ(another.GetFireKey(), 'F'); // the handed laser itself is given the key
    EXPECT_EQ(ship.GetLasers()[2].GetFireKey(), 'F');
}

TEST_F(Fitting, KeysTheDesignScreenChangedAreRespected)
{
    CLaser a = Laser({}), b = Laser({}), c = Laser({});
    Fit({&a, &b});
    static_cast<CLaser*>(Listed()[0])->SetFireKey('A');
    static_cast<CLaser*>(Listed()[1])->SetFireKey('G');
    ship.AddComponent(&c);
    EXPECT_EQ(ship.GetLasers()[2].GetFireKey(), 'F');
    ship.RemoveComponent(a); // 'A' is free again, but 'F' and 'G' are taken
    CLaser d = Laser({});
    ship.AddComponent(&d);
    EXPECT_EQ(ship.GetLasers()[2].GetFireKey(), 'D');
}

TEST_F(Fitting, MassAndHullFollowTheArmourStack)
{
    CEngine engine = Engine(1000, 50);
    ship.AddComponent(&engine);
    CArmour heavy = Armour(20, 30);
    CArmour light = Armour(10, 40);
    Fit({&heavy, &heavy, &light});
    // 1.0 + 0.5 engine + 2 x 0.2 x 1.1 + 1 x 0.1 x 1.1
    EXPECT_NEAR(ship.GetMass(), 2.05f, 1e-5);
    EXPECT_EQ(ship.GetHullMax(), 200);
    EXPECT_EQ(ship.GetHull(), 200);
}

TEST_F(Fitting, TopSpeedFollowsTheSailsAndTurnRateTheJets)
{
    CEngine engine = Engine(1000, 0, 500);
    ship.AddComponent(&engine);
    EXPECT_EQ(ship.GetMaxSpeed(), 50); // no sails, whatever the engine

    for (const auto& [sailSpeed, topSpeed] : {std::pair(10, 75), std::pair(30, 87), std::pair(150, 149)}) {
        OpenShip s;
        s.SetPlayerShip();
        CSubspaceSail sail = Sail(100, 0, sailSpeed);
        s.AddComponent(&sail);
        EXPECT_EQ(s.GetMaxSpeed(), topSpeed) << sailSpeed;
    }

    EXPECT_EQ(ship.GetTurnRate(), 0.0); // no jets: cannot turn
    CJet ten = Jet(100, 0, 10);
    ship.AddComponent(&ten);
    EXPECT_NEAR(ship.GetTurnRate(), 0.000742, 1e-6);
    CJet ninety = Jet(100, 0, 45);
    Fit({&ninety, &ninety});
    EXPECT_NEAR(ship.GetTurnRate(), 0.00525, 1e-5);
}

} // namespace
