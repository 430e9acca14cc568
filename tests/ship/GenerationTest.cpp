#include "ship/Armour.h"
#include "ship/EnergySystem.h"
#include "ship/Engine.h"
#include "ship/Jet.h"
#include "ship/Laser.h"
#include "ship/Shield.h"
#include "ship/SubspaceSail.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>
#include <vector>

namespace {

using qvtest::TestApp;

// Scripts the draws generation takes: each draw returns the next listed value
// and, once the list is used up, the given fraction of its range. Records the
// range of every draw asked for.
class ScriptedDraws {
public:
    explicit ScriptedDraws(std::vector<double> listed = {}, double restFraction = 0.0)
        : values(std::move(listed)), rest(restFraction)
    {
        CComponent::SetDrawSource([this](double m) {
            ranges.push_back(m);
            return next < values.size() ? values[next++] : m * rest;
        });
    }
    ~ScriptedDraws() { CComponent::SetDrawSource(nullptr); }

    std::vector<double> ranges;

private:
    std::vector<double> values;
    double rest;
    std::size_t next = 0;
};

constexpr double Top = 1.0;

template <class Kind>
Kind Generated(std::int32_t level)
{
    Kind component;
    component.Generate(level);
    return component;
}

template <class Kind>
Kind Generated(std::int32_t level, float q)
{
    Kind component;
    component.Generate(level, q);
    return component;
}

TEST(GenerationDraws, EachKindTakesItsDrawsInTheOrderOfItsFormula)
{
    TestApp app;
    auto rangesOf = [](auto generate) {
        ScriptedDraws draws;
        generate();
        return draws.ranges;
    };
    using R = std::vector<double>;
    EXPECT_EQ(rangesOf([] { Generated<CArmour>(1000); }), (R{20}));
    EXPECT_EQ(rangesOf([] { Generated<CEngine>(1000, 1.0f); }), (R{2000, 20}));
    EXPECT_EQ(rangesOf([] { Generated<CJet>(1000, 1.0f); }), (R{11, 7}));
    EXPECT_EQ(rangesOf([] { Generated<CSubspaceSail>(1000, 1.0f); }), (R{11, 7}));
    EXPECT_EQ(rangesOf([] { Generated<CShield>(1000); }), (R{6, 5}));
    EXPECT_EQ(rangesOf([] { Generated<CEnergySystem>(1000); }), (R{11, 11, 2.0 / 3}));
    // With the lowest draws the power budget is 6500; the shot draw's range
    // depends on it by pattern.
    EXPECT_EQ(rangesOf([] { Generated<CLaser>(1000); }), (R{6, 16, 16, 840, 840, 46, 2, 0.25, 0.5}));
    auto laserRanges = [](double patternDraw) {
        ScriptedDraws draws({patternDraw});
        Generated<CLaser>(1000);
        return draws.ranges;
    };
    EXPECT_EQ(laserRanges(3)[6], 7);
    EXPECT_EQ(laserRanges(6)[6], 30);
}

TEST(GenerationValues, ControlledDrawsAtTheBaseLevel)
{
    TestApp app;
    {
        ScriptedDraws draws({10});  // r = 20
        const CArmour armour = Generated<CArmour>(1000);
        EXPECT_EQ(armour.GetWeight(), 20);
        EXPECT_EQ(armour.GetArmourValue(), 60);
        EXPECT_EQ(armour.GetSize(), 0);
    }
    {
        ScriptedDraws draws({999, 9});  // X = 4000, Y = 50
        const CEngine engine = Generated<CEngine>(1000, 1.0f);
        EXPECT_EQ(engine.GetSize(), 4000);
        EXPECT_EQ(engine.GetWeight(), 50);
        EXPECT_EQ(engine.GetThrust(), 110);
    }
}

TEST(GenerationValues, HigherLevelsAreCheaperAndStrongerAndDivisorsShrink)
{
    TestApp app;
    {
        ScriptedDraws draws({10});
        const CArmour armour = Generated<CArmour>(2000);
        EXPECT_EQ(armour.GetWeight(), 10);
        EXPECT_EQ(armour.GetArmourValue(), 120);
        EXPECT_EQ(armour.GetTechLevel(), 2000);
    }
    {
        ScriptedDraws draws({999, 9});  // X = 2000, Y = 25 after the divisor
        const CEngine engine = Generated<CEngine>(2000, 2.0f);
        EXPECT_EQ(engine.GetSize(), 1500);
        EXPECT_EQ(engine.GetWeight(), 18);
        EXPECT_EQ(engine.GetThrust(), 165);
    }
    {
        ScriptedDraws draws({6, 3});
        const CJet jet = Generated<CJet>(1500, 1.0f);
        EXPECT_EQ(jet.GetSize(), 733);
        EXPECT_EQ(jet.GetWeight(), 4);
        EXPECT_EQ(jet.GetTurnThrust(), 42);
    }
    {
        ScriptedDraws draws({7, 6});
        const CSubspaceSail sail = Generated<CSubspaceSail>(1500, 3.0f);
        EXPECT_EQ(sail.GetSize(), 355);
        EXPECT_EQ(sail.GetWeight(), 2);
        EXPECT_EQ(sail.GetMaxSpeed(), 14);
    }
    {
        ScriptedDraws draws({3, 2});  // X = 8, Y = 6
        const CShield shield = Generated<CShield>(2000);
        EXPECT_EQ(shield.GetSize(), 666);
        EXPECT_EQ(shield.GetWeight(), 5);
        EXPECT_EQ(shield.GetStrength(), 115);
        EXPECT_FLOAT_EQ(shield.GetConversionRate(), 1.15f);
    }
    {
        ScriptedDraws draws({5, 4, 1.0 / 3});
        const CEnergySystem energy = Generated<CEnergySystem>(1500);
        EXPECT_EQ(energy.GetSize(), 1666);
        EXPECT_EQ(energy.GetWeight(), 11);
        EXPECT_EQ(energy.GetStorage(), 557);
        EXPECT_EQ(energy.GetRecharge(), 46);
    }
    {
        // Spread, A = 13, B = 9, delay base 400, D = 25: a budget of 10050
        // split over three shots, then into speed, lifetime and damage.
        ScriptedDraws draws({3, 8, 4, 500, 100, 20, 2.5, 0.1, 0.25});
        const CLaser laser = Generated<CLaser>(1500);
        EXPECT_EQ(laser.GetPattern(), CLaser::Spread);
        EXPECT_EQ(laser.GetSize(), 541);
        EXPECT_EQ(laser.GetWeight(), 7);
        EXPECT_EQ(laser.GetDelay(), 333);
        EXPECT_EQ(laser.GetEnergyUse(), 20);
        EXPECT_EQ(laser.GetShots(), 3);
        EXPECT_EQ(laser.GetSpeed(), 162);
        EXPECT_EQ(laser.GetContainment(), 1861);
        EXPECT_EQ(laser.GetDamage(), 43);
    }
}

TEST(GenerationValues, LowestAndHighestDrawsReachTheEndsOfEachRange)
{
    TestApp app;
    // Every draw at the bottom of its range, then every draw at the top.
    auto ends = [](auto generate) {
        auto generateAt = [&](double fraction) {
            ScriptedDraws script({}, fraction);
            return generate();
        };
        return std::pair{generateAt(0.0), generateAt(Top)};
    };
    {
        const auto [low, high] = ends([] { return Generated<CArmour>(1000); });
        EXPECT_EQ(low.GetWeight(), 10);
        EXPECT_EQ(low.GetArmourValue(), 30);
        EXPECT_EQ(high.GetWeight(), 30);
        EXPECT_EQ(high.GetArmourValue(), 90);
    }
    {
        const auto [low, high] = ends([] { return Generated<CEngine>(1000, 1.0f); });
        EXPECT_EQ(std::tuple(low.GetSize(), low.GetWeight(), low.GetThrust()), std::tuple(3001, 41, 86));
        EXPECT_EQ(std::tuple(high.GetSize(), high.GetWeight(), high.GetThrust()), std::tuple(5001, 61, 135));
    }
    {
        const auto [low, high] = ends([] { return Generated<CJet>(1000, 1.0f); });
        EXPECT_EQ(std::tuple(low.GetSize(), low.GetWeight(), low.GetTurnThrust()), std::tuple(500, 2, 9));
        EXPECT_EQ(std::tuple(high.GetSize(), high.GetWeight(), high.GetTurnThrust()), std::tuple(1600, 9, 34));
    }
    {
        const auto [low, high] = ends([] { return Generated<CSubspaceSail>(1000, 1.0f); });
        EXPECT_EQ(std::tuple(low.GetSize(), low.GetWeight(), low.GetMaxSpeed()), std::tuple(500, 0, 10));
        EXPECT_EQ(std::tuple(high.GetSize(), high.GetWeight(), high.GetMaxSpeed()), std::tuple(1600, 7, 32));
    }
    {
        const auto [low, high] = ends([] { return Generated<CShield>(1000); });
        EXPECT_EQ(std::tuple(low.GetSize(), low.GetWeight(), low.GetStrength()), std::tuple(500, 4, 22));
        EXPECT_EQ(std::tuple(high.GetSize(), high.GetWeight(), high.GetStrength()), std::tuple(1100, 9, 24));
        EXPECT_FLOAT_EQ(low.GetConversionRate(), 1.5f);
        EXPECT_FLOAT_EQ(high.GetConversionRate(), 2.1f);
    }
    {
        // Capacity and recharge speed share one total, so their ends come
        // from different splits.
        auto energy = [](std::vector<double> draws) {
            ScriptedDraws script(std::move(draws));
            return Generated<CEnergySystem>(1000);
        };
        const CEnergySystem smallest = energy({0, 0, 0});
        EXPECT_EQ(std::tuple(smallest.GetSize(), smallest.GetWeight(), smallest.GetStorage()),
                  std::tuple(2000, 10, 68));
        EXPECT_EQ(energy({0, 0, 2.0 / 3}).GetRecharge(), 99);
        const CEnergySystem largest = energy({11, 11, 2.0 / 3});
        EXPECT_EQ(std::tuple(largest.GetSize(), largest.GetWeight(), largest.GetStorage()),
                  std::tuple(3100, 21, 673));
        EXPECT_EQ(energy({11, 11, 0}).GetRecharge(), 50);
    }
    {
        const auto [low, high] = ends([] { return Generated<CLaser>(1000); });
        EXPECT_EQ(std::tuple(low.GetSize(), low.GetWeight(), low.GetEnergyUse()), std::tuple(250, 5, 5));
        EXPECT_EQ(std::tuple(high.GetSize(), high.GetWeight(), high.GetEnergyUse()), std::tuple(1050, 21, 51));
        // The delay is longest when both of its draws are lowest (or both
        // highest), shortest when they add up to their range.
        EXPECT_EQ(low.GetDelay(), 1000);
        EXPECT_EQ(high.GetDelay(), 1000);
        ScriptedDraws middle({0, 0, 0, 420, 420});
        EXPECT_EQ(Generated<CLaser>(1000).GetDelay(), 160);
    }
}

TEST(GenerationValues, ManyDrawsAtTheBaseLevelStayInTheirRanges)
{
    TestApp app(20240611);
    constexpr int Samples = 3000;
    auto within = [](std::int32_t v, std::int32_t low, std::int32_t high) { return v >= low && v <= high; };
    for (int i = 0; i < Samples; ++i) {
        const auto armour = Generated<CArmour>(1000);
        ASSERT_TRUE(within(armour.GetWeight(), 10, 30) && within(armour.GetArmourValue(), 30, 90));
        const auto engine = Generated<CEngine>(1000, 1.0f);
        ASSERT_TRUE(within(engine.GetSize(), 3001, 5001) && within(engine.GetWeight(), 41, 61) &&
                    within(engine.GetThrust(), 86, 135));
        const auto jet = Generated<CJet>(1000, 1.0f);
        ASSERT_TRUE(within(jet.GetSize(), 500, 1600) && within(jet.GetWeight(), 2, 9) &&
                    within(jet.GetTurnThrust(), 9, 34));
        const auto sail = Generated<CSubspaceSail>(1000, 1.0f);
        ASSERT_TRUE(within(sail.GetSize(), 500, 1600) && within(sail.GetWeight(), 0, 7) &&
                    within(sail.GetMaxSpeed(), 10, 32));
        const auto shield = Generated<CShield>(1000);
        ASSERT_TRUE(within(shield.GetSize(), 500, 1100) && within(shield.GetWeight(), 4, 9) &&
                    within(shield.GetStrength(), 22, 24) && within(shield.GetConversionPercent(), 150, 210));
        const auto energy = Generated<CEnergySystem>(1000);
        ASSERT_TRUE(within(energy.GetSize(), 2000, 3100) && within(energy.GetWeight(), 10, 21) &&
                    within(energy.GetStorage(), 68, 673) && within(energy.GetRecharge(), 50, 99));
        const auto laser = Generated<CLaser>(1000);
        ASSERT_TRUE(within(laser.GetSize(), 250, 1050) && within(laser.GetWeight(), 5, 21) &&
                    within(laser.GetDelay(), 160, 1000) && within(laser.GetEnergyUse(), 5, 51) &&
                    within(laser.GetSpeed(), 0, 300) && within(laser.GetContainment(), 0, 4000) &&
                    laser.GetDamage() >= 0);
        const std::int32_t maxShots[] = {4, 7, 36};
        const std::int32_t minShots[] = {1, 1, 4};
        ASSERT_TRUE(within(laser.GetShots(), minShots[laser.GetPattern()], maxShots[laser.GetPattern()]))
            << laser.GetPatternName() << " with " << laser.GetShots() << " shots";
    }
}

TEST(LaserGeneration, PatternsFollowTheirShareOfTheDraw)
{
    TestApp app;
    auto patternFor = [](double draw) {
        ScriptedDraws script({draw});
        return Generated<CLaser>(1000).GetPattern();
    };
    EXPECT_EQ(patternFor(0), CLaser::Parallel);
    EXPECT_EQ(patternFor(2.999), CLaser::Parallel);
    EXPECT_EQ(patternFor(3), CLaser::Spread);
    EXPECT_EQ(patternFor(4.999), CLaser::Spread);
    EXPECT_EQ(patternFor(5), CLaser::Radiating);
    EXPECT_EQ(patternFor(6), CLaser::Radiating);
}

TEST(LaserGeneration, ShotsSpeedAndLifetimeAreCapped)
{
    TestApp app;
    // At a very high level every highest draw asks for far more than the caps.
    auto strongest = [](double patternDraw) {
        ScriptedDraws script({patternDraw}, Top);
        return Generated<CLaser>(40000);
    };
    const CLaser parallel = strongest(0);
    EXPECT_EQ(parallel.GetShots(), 5);
    EXPECT_EQ(strongest(3).GetShots(), 7);
    const CLaser radiating = strongest(6);
    EXPECT_EQ(radiating.GetShots(), 36);
    for (const CLaser& laser : {parallel, radiating}) {
        EXPECT_EQ(laser.GetSpeed(), 300);
        EXPECT_EQ(laser.GetContainment(), 4000);
        EXPECT_GT(laser.GetDamage(), 0);
    }

    // The weakest Radiating laser still fires four shots.
    ScriptedDraws weakest({6});
    EXPECT_EQ(Generated<CLaser>(1000).GetShots(), 4);
}

TEST(GenerationSerials, EveryGenerationTakesTheNextNumberOfTheRun)
{
    TestApp app;
    const auto sail = Generated<CSubspaceSail>(1250, 1.0f);
    const auto armour = Generated<CArmour>(1250);
    CLaser laser;
    laser.Generate(1250);
    laser.Generate(1250);  // generated again: number 3 is left unused
    EXPECT_EQ(sail.GetName(), "+ Subspace Sail1");
    EXPECT_EQ(armour.GetName(), "+ Armour2");
    EXPECT_EQ(laser.GetName(), "Laser4");
    EXPECT_EQ(laser.GetSerialNumber(), 4);
    EXPECT_EQ(laser.GetCount(), 1);
    EXPECT_EQ(laser.GetTechLevel(), 1250);
    EXPECT_FALSE(laser.IsSameAs(armour));
    EXPECT_EQ(app->NextComponentSerial(), 5);
}

TEST(GenerationSerials, DrawsComeFromTheGamesSharedGenerator)
{
    TestApp app(4242);
    CRandom same;
    same.Seed(4242);
    const double r = 10 + same.Rand() * 20.0 / CRandom::Max;
    const auto armour = Generated<CArmour>(1000);
    EXPECT_EQ(armour.GetWeight(), static_cast<int>(r));
    EXPECT_EQ(armour.GetArmourValue(), static_cast<int>(3 * r));
    // The next draw of the game is the one after the armour's.
    EXPECT_EQ(app->Rand(), same.Rand());
}

} // namespace
