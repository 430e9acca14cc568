#include "ship/Shield.h"

std::int32_t CShield::GetConversionPercent() const
{
    return Trunc(conversionRate * 100.0f);
}

void CShield::Generate(std::int32_t level)
{
    BeginGeneration(level);
    const double x = 5 + Draw(6);
    const double y = 4 + Draw(5);
    size = Trunc(100 * Cheaper(x, 1.0 / 3));
    weight = Trunc(Cheaper(y, 1.0 / 3));
    // Strength and rate grow from the unscaled draws, not from size and weight.
    strength = Trunc(Stronger(0.5 * y + 20, 4));
    conversionRate = static_cast<float>(Cheaper(0.1 * x + 0.5, 1) + 0.5);
}

void CShield::AppendStatLines(std::vector<std::string>& lines) const
{
    CComponent::AppendStatLines(lines);
    AppendLine(lines, "Strength: ", strength);
    lines.push_back("Conversion Rate: " + std::to_string(GetConversionPercent()) + "%");
}
