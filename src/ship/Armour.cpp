#include "ship/Armour.h"

void CArmour::Generate(std::int32_t level)
{
    BeginGeneration(level);
    const double r = 10 + Draw(20);
    weight = Trunc(Cheaper(r, 1));
    armourValue = Trunc(Stronger(3 * r, 1));
}

void CArmour::AppendStatLines(std::vector<std::string>& lines) const
{
    CComponent::AppendStatLines(lines);
    AppendLine(lines, "Armour Value: ", armourValue);
}
