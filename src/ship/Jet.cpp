#include "ship/Jet.h"

void CJet::Generate(std::int32_t level, float q)
{
    BeginGeneration(level);
    const double x = (5 + Draw(11)) / q;
    const double y = (2 + Draw(7)) / q;
    const double t = x + 2 * y;
    size = Trunc(100 * Cheaper(x, 1));
    weight = Trunc(Cheaper(y, 0.5));
    turnThrust = Trunc(Stronger(t, 2));
}

void CJet::AppendStatLines(std::vector<std::string>& lines) const
{
    CComponent::AppendStatLines(lines);
    AppendLine(lines, "Turn Thrust: ", turnThrust);
}
