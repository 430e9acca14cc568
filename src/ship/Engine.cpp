#include "ship/Engine.h"

void CEngine::Generate(std::int32_t level, float q)
{
    BeginGeneration(level);
    const double x = (3001 + Draw(2000)) / q;
    const double y = (41 + Draw(20)) / q;
    const double t = 0.0125 * x + 1.2 * y;
    size = Trunc(Cheaper(x, 0.5));
    weight = Trunc(Cheaper(y, 0.5));
    thrust = Trunc(Stronger(t, 2));
}

void CEngine::AppendStatLines(std::vector<std::string>& lines) const
{
    CComponent::AppendStatLines(lines);
    AppendLine(lines, "Thrust: ", thrust);
}
