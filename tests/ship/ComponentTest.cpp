#include "ship/Armour.h"
#include "ship/EnergySystem.h"
#include "ship/Engine.h"
#include "ship/Jet.h"
#include "ship/Laser.h"
#include "ship/Shield.h"
#include "ship/SubspaceSail.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

template <class Kind>
Lines StatLines(const Kind& component)
{
    Lines lines;
    component.AppendStatLines(lines);
    return lines;
}

CComponent::Common Made(std::int32_t serial, std::int32_t size = 100, std::int32_t weight = 5)
{
    return {.weight = weight, .size = size, .techLevel = 1250, .serialNumber = serial};
}

CLaser::Values LaserValues()
{
    return {.speed = 210, .containment = 1500, .shots = 3, .damage = 12, .delay = 400,
            .energyUse = 9, .pattern = CLaser::Spread};
}

TEST(ComponentStatLines, EachKindListsItsLabelsInOrder)
{
    const Lines common = {"Size: 100", "Weight: 5", "Tec Level: 1250"};
    auto with = [&](Lines own) {
        Lines all = common;
        all.insert(all.end(), own.begin(), own.end());
        return all;
    };
    EXPECT_EQ(StatLines(CArmour(Made(1), 60)), with({"Armour Value: 60"}));
    EXPECT_EQ(StatLines(CEngine(Made(2), 110)), with({"Thrust: 110"}));
    EXPECT_EQ(StatLines(CJet(Made(3), 21)), with({"Turn Thrust: 21"}));
    EXPECT_EQ(StatLines(CSubspaceSail(Made(4), 17)), with({"Max Speed: 17"}));
    EXPECT_EQ(StatLines(CEnergySystem(Made(5), 64, 300)), with({"Storage: 300", "Recharge: 64"}));
    EXPECT_EQ(StatLines(CShield(Made(6), 23, 1.5f)), with({"Strength: 23", "Conversion Rate: 150%"}));
    EXPECT_EQ(StatLines(CLaser(Made(7), LaserValues())),
              with({"Delay: 400", "Energy Use: 9", "Fire Key: ' '", "Containment: 1500", "Damage: 12",
                    "Pattern: Spread", "Speed: 210", "Shots: 3"}));
}

TEST(ComponentStatLines, AppendAfterTheCallersLinesAndWriteNegativesPlainly)
{
    Lines lines = {"Engine7"};
    CEngine(Made(7, -40), -3).AppendStatLines(lines);
    EXPECT_EQ(lines, (Lines{"Engine7", "Size: -40", "Weight: 5", "Tec Level: 1250", "Thrust: -3"}));
}

TEST(ComponentStatLines, ShieldRateIsTruncatedPerCent)
{
    EXPECT_EQ(CShield().GetConversionPercent(), 150);
    EXPECT_EQ(CShield(Made(1), 0, 1.999f).GetConversionPercent(), 199);
    EXPECT_EQ(StatLines(CShield(Made(1), 0, 0.5f)).back(), "Conversion Rate: 50%");
}

TEST(ComponentDefaults, EmptySlotDefaultsHoldTheBaseRecord)
{
    const CEngine engine;
    EXPECT_EQ(engine.GetName(), "Base");
    EXPECT_EQ(engine.GetKind(), KindEngine);
    EXPECT_EQ(engine.GetTechLevel(), 1000);
    EXPECT_EQ(engine.GetSerialNumber(), -1);
    EXPECT_EQ(engine.GetCount(), 1);
    EXPECT_EQ(engine.GetSize() + engine.GetWeight() + engine.GetThrust(), 0);
    EXPECT_FLOAT_EQ(CShield().GetConversionRate(), 1.5f);
    const CLaser laser;
    EXPECT_EQ(laser.GetFireKey(), ' ');
    EXPECT_EQ(laser.GetPattern(), CLaser::Parallel);
    EXPECT_EQ(laser.GetCooldown(), 0);
    const std::vector<std::int32_t> kinds = {CSubspaceSail().GetKind(), CEngine().GetKind(), CJet().GetKind(),
                                             CArmour().GetKind(), CEnergySystem().GetKind(),
                                             CLaser().GetKind(), CShield().GetKind()};
    EXPECT_EQ(kinds, (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, 7}));
}

TEST(ComponentIdentity, OnlyComponentsWithTheSameSerialAreTheSame)
{
    const CJet a;
    const CJet b;
    EXPECT_FALSE(a.HasSerial());
    EXPECT_FALSE(a.IsSameAs(b));
    EXPECT_FALSE(a.IsSameAs(a));

    CJet made(Made(9), 20);
    EXPECT_TRUE(made.HasSerial());
    EXPECT_TRUE(made.IsSameAs(made));
    EXPECT_FALSE(made.IsSameAs(a));
    EXPECT_FALSE(a.IsSameAs(made));
    EXPECT_FALSE(made.IsSameAs(CJet(Made(10), 20)));

    CJet copy = made;
    copy.SetCount(4);
    EXPECT_TRUE(copy.IsSameAs(made));
    EXPECT_TRUE(made.IsSameAs(copy));
    // Identity goes by number alone, across kinds too: serials are unique in a run.
    EXPECT_TRUE(CArmour(Made(9), 1).IsSameAs(made));
}

TEST(ComponentNames, NamedAfterKindAndSerialWithTheCountShownAboveOne)
{
    EXPECT_EQ(CLaser(Made(7), {}).GetName(), "Laser7");
    EXPECT_EQ(CSubspaceSail(Made(12), 0).GetName(), "+ Subspace Sail12");
    EXPECT_EQ(CEnergySystem(Made(3), 0, 0).GetName(), "Energy System3");

    CJet jet(Made(4), 0);
    EXPECT_EQ(jet.GetDisplayName(), "+ Jet4");
    jet.SetCount(2);
    EXPECT_EQ(jet.GetDisplayName(), "+ Jet4(2)");
    jet.SetCount(13);
    EXPECT_EQ(jet.GetDisplayName(), "+ Jet4(13)");
    jet.SetCount(0);
    EXPECT_EQ(jet.GetDisplayName(), "+ Jet4");
    EXPECT_EQ(CArmour().GetDisplayName(), "Base");
}

TEST(LaserState, CooldownNeverGoesBelowZero)
{
    CLaser laser(Made(1), LaserValues());
    laser.AddCooldown(30);
    laser.AddCooldown(-50);
    EXPECT_EQ(laser.GetCooldown(), 0);
    laser.AddCooldown(400);
    laser.AddCooldown(-16);
    EXPECT_EQ(laser.GetCooldown(), 384);
}

TEST(LaserState, CopiesStartCoolButKeepTheFireKey)
{
    CLaser laser(Made(1), LaserValues());
    laser.SetFireKey('D');
    laser.AddCooldown(250);

    const CLaser copy(laser);
    EXPECT_EQ(copy.GetCooldown(), 0);
    EXPECT_EQ(copy.GetFireKey(), 'D');
    EXPECT_TRUE(copy.IsSameAs(laser));
    EXPECT_EQ(StatLines(copy), StatLines(laser));

    CLaser assigned;
    assigned.AddCooldown(90);
    assigned = laser;
    EXPECT_EQ(assigned.GetCooldown(), 0);
    EXPECT_EQ(assigned.GetName(), "Laser1");
}

TEST(LaserState, ClosingAGapInAnArrayKeepsTheLaterLasersCooldown)
{
    std::vector<CLaser> lasers = {CLaser(Made(1), {}), CLaser(Made(2), {}), CLaser(Made(3), {})};
    lasers[2].AddCooldown(120);
    lasers.erase(lasers.begin());
    ASSERT_EQ(lasers.size(), 2u);
    EXPECT_EQ(lasers[1].GetName(), "Laser3");
    EXPECT_EQ(lasers[1].GetCooldown(), 120);
}

TEST(LaserState, PatternNames)
{
    auto nameOf = [](std::int32_t pattern) {
        CLaser::Values values;
        values.pattern = pattern;
        return CLaser(Made(1), values).GetPatternName();
    };
    EXPECT_EQ(nameOf(0), "Parallel");
    EXPECT_EQ(nameOf(1), "Spread");
    EXPECT_EQ(nameOf(2), "Radiating");
    EXPECT_EQ(nameOf(3), "");
    EXPECT_EQ(nameOf(-1), "");
}

TEST(ComponentCopies, MakeCopyKeepsTheKindAndEveryValue)
{
    const CShield shield(Made(5, 700, 6), 23, 1.8f);
    const std::unique_ptr<CComponent> copy = CComponent::MakeCopy(shield);
    ASSERT_NE(copy, nullptr);
    const auto* asShield = dynamic_cast<const CShield*>(copy.get());
    ASSERT_NE(asShield, nullptr);
    EXPECT_TRUE(asShield->IsSameAs(shield));
    EXPECT_FLOAT_EQ(asShield->GetConversionRate(), 1.8f);
    EXPECT_EQ(StatLines(*asShield), StatLines(shield));

    std::vector<std::unique_ptr<CComponent>> kinds;
    kinds.push_back(std::make_unique<CSubspaceSail>(Made(1), 3));
    kinds.push_back(std::make_unique<CEngine>(Made(2), 3));
    kinds.push_back(std::make_unique<CJet>(Made(3), 3));
    kinds.push_back(std::make_unique<CArmour>(Made(4), 3));
    kinds.push_back(std::make_unique<CEnergySystem>(Made(5), 3, 3));
    kinds.push_back(std::make_unique<CLaser>(Made(6), LaserValues()));
    kinds.push_back(std::make_unique<CShield>(Made(7), 3, 2.0f));
    for (const auto& original : kinds) {
        const auto made = CComponent::MakeCopy(*original);
        ASSERT_NE(made, nullptr);
        Lines a;
        Lines b;
        original->AppendStatLines(a);
        made->AppendStatLines(b);
        EXPECT_EQ(made->GetKind(), original->GetKind());
        EXPECT_EQ(a, b) << original->GetName();
    }

    struct PlainRecord : CComponent {
        PlainRecord() : CComponent(KindBase) {}
    };
    EXPECT_EQ(CComponent::MakeCopy(PlainRecord()), nullptr);
}

} // namespace
