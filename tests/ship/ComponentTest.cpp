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

CLaser MadeLaser(std::int32_t serial)
{
    return CLaser(Made(serial), {.speed = 210, .containment = 1500, .shots = 3, .damage = 12, .delay = 400,
                                 .energyUse = 9, .pattern = CLaser::Spread});
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
}

TEST(ComponentIdentity, SameOnlyByARealSerialNumberWhateverTheCount)
{
    const CJet empty;
    EXPECT_FALSE(empty.IsSameAs(empty));

    const CJet made(Made(9), 20);
    CJet copy = made;
    copy.SetCount(4);
    EXPECT_TRUE(copy.IsSameAs(made));
    EXPECT_FALSE(made.IsSameAs(empty));
    EXPECT_FALSE(made.IsSameAs(CJet(Made(10), 20)));

    // The kind word and the serial, the count shown above one.
    EXPECT_EQ(copy.GetDisplayName(), "+ Jet9(4)");
}

TEST(LaserState, ClosingAGapInAnArrayKeepsTheLaterLasersCooldown)
{
    std::vector<CLaser> lasers = {MadeLaser(1), MadeLaser(2), MadeLaser(3)};
    lasers[2].AddCooldown(120);
    lasers.erase(lasers.begin());
    EXPECT_EQ(lasers[1].GetName(), "Laser3");
    EXPECT_EQ(lasers[1].GetCooldown(), 120);
}

} // namespace
