#include "ship/EnergySystem.h"

#include <cmath>

void CEnergySystem::Generate(std::int32_t level)
{
    BeginGeneration(level);
    const double t = TechFactor();
    const double a = 20 + Draw(11);
    const double b = 10 + Draw(11);
    // The plant's total output is split at random between capacity (f) and
    // recharge speed (g).
    const double n = a + b;
    const double f = (1.0 / 7 + Draw(2.0 / 3)) * n;
    const double g = n - f;
    const double f1 = f + (4 * f * t - f);
    const double g1 = g + (2 * g * t - g);
    const double r = 300 * (1 / std::pow(g1, 0.6) + 0.1);
    const double r1 = r - (r * t - r) / 3;
    size = Trunc(100 * Cheaper(a, 1));
    weight = Trunc(Cheaper(b, 0.5));
    storage = Trunc(4 * Stronger(f1, 0.5));
    recharge = Trunc(r1);
}

void CEnergySystem::AppendStatLines(std::vector<std::string>& lines) const
{
    CComponent::AppendStatLines(lines);
    AppendLine(lines, "Storage: ", storage);
    AppendLine(lines, "Recharge: ", recharge);
}
