#include "ship/Laser.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr std::array<const char*, 3> PatternNames = {"Parallel", "Spread", "Radiating"};

// How each pattern turns the power budget into a number of shots. More
// shots get more of the budget between them, so the damage per shot falls
// less than the number of shots grows.
struct ShotRule {
    std::int32_t powerPerShot;  // budget that buys one more possible shot
    std::int32_t baseShots;     // added to the range of the draw
    std::int32_t minShots;
    std::int32_t maxShots;
    double share;               // the budget is divided by shots × share
};

constexpr std::array<ShotRule, 3> ShotRules = {{
    {5000, 1, 1, 5, 0.7},   // Parallel
    {1000, 1, 1, 7, 0.55},  // Spread
    {250, 4, 4, 36, 0.3},   // Radiating
}};

constexpr double MaxShotSpeed = 300;
constexpr double MaxContainment = 4000;

} // namespace

CLaser& CLaser::operator=(const CLaser& other)
{
    CComponent::operator=(other);
    values = other.values;
    cooldown = 0;
    return *this;
}

void CLaser::AddCooldown(std::int32_t amount)
{
    cooldown = std::max(cooldown + amount, 0);
}

std::string CLaser::GetPatternName() const
{
    if (values.pattern < Parallel || values.pattern > Radiating)
        return {};
    return PatternNames[values.pattern];
}

CLaser::Pattern CLaser::PatternFromDraw(std::int32_t pick)
{
    // Draws 0..6: Parallel three times as likely as either of the others.
    if (pick < 3)
        return Parallel;
    return pick < 5 ? Spread : Radiating;
}

std::int32_t CLaser::DrawShots(Pattern pattern, double& power)
{
    const ShotRule& rule = ShotRules[pattern];
    const double range = Trunc(power) / rule.powerPerShot + rule.baseShots;
    const std::int32_t shots = std::clamp(Trunc(Draw(range) + 1), rule.minShots, rule.maxShots);
    if (shots >= 2)
        power /= shots * rule.share;
    return shots;
}

void CLaser::Generate(std::int32_t level)
{
    BeginGeneration(level);
    const Pattern pattern = PatternFromDraw(Trunc(Draw(6)));
    const double a = 5 + Draw(16);
    const double b = 5 + Draw(16);
    // Two draws make the delay most often short; they are taken one after
    // the other so the sequence of draws stays fixed.
    const double delayDrawA = Draw(840);
    const double delayDrawB = Draw(840);
    const double e = std::abs(Trunc(delayDrawA + delayDrawB - 840)) + 160;
    const double d = 5 + Draw(46);

    // One power budget is shared by the shots, their speed, their lifetime
    // and what is left for damage.
    double power = ((b + a + d) * 100 + 5 * e) * TechFactor();
    const std::int32_t shots = DrawShots(pattern, power);
    const double speed = std::min((1.0 / 6 + Draw(0.25)) * power * 0.1, MaxShotSpeed);
    power -= 10 * speed;
    const double lifetime = std::min((1.0 / 6 + Draw(0.5)) * power, MaxContainment);
    power = (power - lifetime) * 0.05;

    size = Trunc(50 * Cheaper(a, 0.5));
    weight = Trunc(Cheaper(b, 0.5));
    values.delay = Trunc(Cheaper(e, 0.5));
    values.energyUse = Trunc(Cheaper(d, 0.5));
    values.speed = Trunc(speed);
    values.shots = shots;
    values.containment = Trunc(lifetime);
    values.damage = Trunc(power) / 3;
    values.pattern = pattern;
}

void CLaser::AppendStatLines(std::vector<std::string>& lines) const
{
    CComponent::AppendStatLines(lines);
    AppendLine(lines, "Delay: ", values.delay);
    AppendLine(lines, "Energy Use: ", values.energyUse);
    lines.push_back(std::string("Fire Key: '") + values.fireKey + "'");
    AppendLine(lines, "Containment: ", values.containment);
    AppendLine(lines, "Damage: ", values.damage);
    lines.push_back("Pattern: " + GetPatternName());
    AppendLine(lines, "Speed: ", values.speed);
    AppendLine(lines, "Shots: ", values.shots);
}
