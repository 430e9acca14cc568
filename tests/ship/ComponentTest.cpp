// Components: their stat lines and identity, and the values generation
// draws for each kind.
#include "core/Truncate.h"
#include "ship/Armour.h"
#include "ship/EnergySystem.h"
#include "ship/Engine.h"
#include "ship/Jet.h"
#include "ship/Laser.h"
#include "ship/Shield.h"
#include "ship/SubspaceSail.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace {

using qvtest::TestApp;
using Stats = std::vector<std::int32_t>;

// Every draw generation takes gives the same fraction of its range.
class DrawsAt {
public:
    explicit DrawsAt(double fraction) { CComponent::SetDrawSource([fraction](double m) { return m * fraction; }); }
    ~DrawsAt() { CComponent::SetDrawSource(nullptr); }
};

template <class Kind, class... Divisor>
Kind Generated(std::int32_t level, Divisor... q)
{
    Kind component;
    component.Generate(level, q...);
    return component;
}

// The generated values of each kind: size, weight, then the kind's own.
Stats Of(const CArmour& a) { return {a.GetSize(), a.GetWeight(), a.GetArmourValue()}; }
Stats Of(const CEngine& e) { return {e.GetSize(), e.GetWeight(), e.GetThrust()}; }
Stats Of(const CJet& j) { return {j.GetSize(), j.GetWeight(), j.GetTurnThrust()}; }
Stats Of(const CSubspaceSail& s) { return {s.GetSize(), s.GetWeight(), s.GetMaxSpeed()}; }
Stats Of(const CShield& s) { return {s.GetSize(), s.GetWeight(), s.GetStrength(), s.GetConversionPercent()}; }
Stats Of(const CEnergySystem& e) { return {e.GetSize(), e.GetWeight(), e.GetStorage(), e.GetRecharge()}; }
Stats Of(const CLaser& l)
{
    return {l.GetSize(), l.GetWeight(), l.GetDelay(), l.GetEnergyUse(),
            l.GetSpeed(), l.GetContainment(), l.GetDamage(), l.GetShots()};
}

// Every draw at the bottom of its range, then every draw at the top: the
// ends of each value's range at the base level.
TEST(GenerationValues, TheLowestAndHighestDrawsGiveTheEndsOfEachRange)
{
    TestApp app;
    const struct {
        std::function<Stats()> generate;
        Stats lowest, highest;
    } cases[] = {
        {[] { return Of(Generated<CArmour>(1000)); }, {0, 10, 30}, {0, 30, 90}},
        {[] { return Of(Generated<CEngine>(1000, 1.0f)); }, {3001, 41, 86}, {5001, 61, 135}},
        {[] { return Of(Generated<CJet>(1000, 1.0f)); }, {500, 2, 9}, {1600, 9, 34}},
        {[] { return Of(Generated<CSubspaceSail>(1000, 1.0f)); }, {500, 0, 10}, {1600, 7, 32}},
        {[] { return Of(Generated<CShield>(1000)); }, {500, 4, 22, 150}, {1100, 9, 24, 209}},
        {[] { return Of(Generated<CEnergySystem>(1000)); }, {2000, 10, 68, 58}, {3100, 21, 673, 80}},
        {[] { return Of(Generated<CLaser>(1000)); }, {250, 5, 1000, 5, 108, 902, 75, 1},
         {1050, 21, 1000, 51, 55, 514, 4, 36}},
    };
    for (const auto& c : cases)
        for (const double end : {0.0, 1.0}) {
            DrawsAt script(end);
            EXPECT_EQ(c.generate(), end == 0.0 ? c.lowest : c.highest) << "kind " << &c - cases + 1 << " at " << end;
        }
}

TEST(GenerationValues, TruncationHoldsEveryValueAWholeNumberCan)
{
    qvtest::TraceRecorder trace;
    EXPECT_EQ(TruncToInt32(-1.9), -1);
    EXPECT_EQ(TruncToInt32(2147483647.9), 2147483647);
    EXPECT_EQ(TruncToInt32(-2147483648.9), -2147483647 - 1);
    EXPECT_TRUE(trace.lines.empty());
    EXPECT_EQ(TruncToInt32(2147483648.0), 2147483647);
    EXPECT_EQ(TruncToInt32(-2147483649.0), -2147483647 - 1);
    EXPECT_EQ(TruncToInt32(std::nan("")), 0);
    EXPECT_EQ(trace.lines.size(), 3u);
}

// Odd start levels reach technology levels of 0 and below, where the rules'
// formulas divide by zero or take roots of negative numbers.
TEST(GenerationValues, TechnologyLevelsOfZeroAndBelowAreTraced)
{
    TestApp app;
    DrawsAt script(0.5);
    {
        qvtest::TraceRecorder trace;
        const Stats atZero = Of(Generated<CShield>(0));
        EXPECT_EQ(atZero, Of(Generated<CShield>(1))); // made as at the nearest level that divides
        EXPECT_EQ(trace.Texts().front(), "Technology level 0 in a division");
    }
    qvtest::TraceRecorder trace;
    EXPECT_EQ(Generated<CEnergySystem>(-1000).GetRecharge(), 0); // not a number, made whole
    EXPECT_EQ(trace.Texts().back(), "A value beyond 32 bits was made whole");
}

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
    copy.SetCount(2);
    EXPECT_TRUE(copy.IsSameAs(made));
    EXPECT_FALSE(made.IsSameAs(empty));
    EXPECT_FALSE(made.IsSameAs(CJet(Made(10), 20)));

    // The kind word and the serial, the count shown above one.
    EXPECT_EQ(copy.GetDisplayName(), "+ Jet9(2)");
}

} // namespace
