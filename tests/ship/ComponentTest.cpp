#include "ship/Armour.h"
#include "ship/EnergySystem.h"
#include "ship/Engine.h"
#include "ship/Jet.h"
#include "ship/Laser.h"
#include "ship/Shield.h"
#include "ship/SubspaceSail.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Lines = std::vector<std::string>;

Lines StatLines(const CComponent& component, Lines lines = {})
{
    component.AppendStatLines(lines);
    return lines;
}

CComponent::Common Made(std::int32_t serial)
{
    return {.weight = 5, .size = 100, .techLevel = 1250, .serialNumber = serial};
}

CLaser MadeLaser(std::int32_t serial, std::int32_t pattern = CLaser::Spread)
{
    return CLaser(Made(serial), {.speed = 210, .containment = 1500, .shots = 3, .damage = 12, .delay = 400,
                                 .energyUse = 9, .pattern = pattern});
}

TEST(ComponentStatLines, EachKindListsItsLabelsInOrderAfterTheCallersLines)
{
    auto with = [](Lines own) {
        Lines all = {"Size: 100", "Weight: 5", "Tec Level: 1250"};
        all.insert(all.end(), own.begin(), own.end());
        return all;
    };
    EXPECT_EQ(StatLines(CArmour(Made(1), 60)), with({"Armour Value: 60"}));
    EXPECT_EQ(StatLines(CEngine(Made(2), 110)), with({"Thrust: 110"}));
    EXPECT_EQ(StatLines(CJet(Made(3), 21)), with({"Turn Thrust: 21"}));
    EXPECT_EQ(StatLines(CSubspaceSail(Made(4), 17)), with({"Max Speed: 17"}));
    EXPECT_EQ(StatLines(CEnergySystem(Made(5), 64, 300)), with({"Storage: 300", "Recharge: 64"}));
    EXPECT_EQ(StatLines(CShield(Made(6), 23, CShield().GetConversionRate())),
              with({"Strength: 23", "Conversion Rate: 150%"}));
    // A laser never fitted shows a blank fire key.
    EXPECT_EQ(StatLines(MadeLaser(7)), with({"Delay: 400", "Energy Use: 9", "Fire Key: ' '", "Containment: 1500",
                                             "Damage: 12", "Pattern: Spread", "Speed: 210", "Shots: 3"}));

    EXPECT_EQ(StatLines(CJet(Made(3), 21), {"+ Jet3"}).front(), "+ Jet3");
    EXPECT_EQ(StatLines(CShield(Made(1), 0, 1.999f)).back(), "Conversion Rate: 199%");
    EXPECT_EQ(MadeLaser(1, CLaser::Radiating).GetPatternName(), "Radiating");
    EXPECT_EQ(MadeLaser(1, 3).GetPatternName(), "");
}

TEST(ComponentIdentity, SameOnlyByARealSerialNumberWhateverTheCount)
{
    const CJet empty;
    EXPECT_EQ(empty.GetName(), "Base");
    EXPECT_EQ(empty.GetTechLevel(), 1000);
    EXPECT_FALSE(empty.HasSerial());
    EXPECT_FALSE(empty.IsSameAs(CJet()));
    EXPECT_FALSE(empty.IsSameAs(empty));

    const CJet made(Made(9), 20);
    CJet copy = made;
    copy.SetCount(4);
    EXPECT_TRUE(copy.IsSameAs(made));
    EXPECT_TRUE(made.IsSameAs(copy));
    EXPECT_FALSE(made.IsSameAs(empty));
    EXPECT_FALSE(empty.IsSameAs(made));
    EXPECT_FALSE(made.IsSameAs(CJet(Made(10), 20)));

    // Names: the kind word and the serial, the count shown above one.
    EXPECT_EQ(MadeLaser(7).GetName(), "Laser7");
    EXPECT_EQ(CSubspaceSail(Made(12), 0).GetName(), "+ Subspace Sail12");
    CJet jet(Made(4), 0);
    EXPECT_EQ(jet.GetDisplayName(), "+ Jet4");
    jet.SetCount(2);
    EXPECT_EQ(jet.GetDisplayName(), "+ Jet4(2)");
}

TEST(LaserState, CooldownStopsAtZeroAndCopiesStartCool)
{
    CLaser laser = MadeLaser(1);
    laser.AddCooldown(30);
    laser.AddCooldown(-50);
    EXPECT_EQ(laser.GetCooldown(), 0);
    EXPECT_EQ(CLaser().GetFireKey(), ' ');

    laser.SetFireKey('D');
    laser.AddCooldown(250);
    const CLaser copy(laser);
    EXPECT_EQ(copy.GetCooldown(), 0);
    EXPECT_EQ(copy.GetFireKey(), 'D');
    CLaser assigned = MadeLaser(2);
    assigned.AddCooldown(90);
    assigned = laser;
    EXPECT_EQ(assigned.GetCooldown(), 0);
    EXPECT_EQ(StatLines(assigned), StatLines(laser));
}

TEST(LaserState, ClosingAGapInAnArrayKeepsTheLaterLasersCooldown)
{
    std::vector<CLaser> lasers = {MadeLaser(1), MadeLaser(2), MadeLaser(3)};
    lasers[2].AddCooldown(120);
    lasers.erase(lasers.begin());
    EXPECT_EQ(lasers[1].GetName(), "Laser3");
    EXPECT_EQ(lasers[1].GetCooldown(), 120);
}

TEST(ComponentCopies, MakeCopyKeepsTheKindAndEveryValue)
{
    const CSubspaceSail sail(Made(1), 3);
    const CEngine engine(Made(2), 3);
    const CJet jet(Made(3), 3);
    const CArmour armour(Made(4), 3);
    const CEnergySystem energy(Made(5), 3, 3);
    const CLaser laser = MadeLaser(6);
    const CShield shield(Made(7), 3, 2.0f);
    for (const CComponent* original :
         std::initializer_list<const CComponent*>{&sail, &engine, &jet, &armour, &energy, &laser, &shield}) {
        const auto made = CComponent::MakeCopy(*original);
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(made->GetKind(), original->GetKind());
        EXPECT_TRUE(made->IsSameAs(*original));
        EXPECT_EQ(StatLines(*made), StatLines(*original)) << original->GetName();
    }

    struct PlainRecord : CComponent {
        PlainRecord() : CComponent(KindBase) {}
    };
    EXPECT_EQ(CComponent::MakeCopy(PlainRecord()), nullptr);
}

} // namespace
