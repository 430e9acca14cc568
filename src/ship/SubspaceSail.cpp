#include "ship/SubspaceSail.h"

void CSubspaceSail::Generate(std::int32_t level, float q)
{
    BeginGeneration(level);
    const double x = (5 + Draw(11)) / q;
    const double y = Draw(7) / q;
    size = Trunc(100 * Cheaper(x, 1.0 / 3));
    weight = Trunc(y);  // a sail's weight does not improve with technology
    maxSpeed = Trunc(Stronger(2 * x, 1.5));
}

void CSubspaceSail::AppendStatLines(std::vector<std::string>& lines) const
{
    CComponent::AppendStatLines(lines);
    AppendLine(lines, "Max Speed: ", maxSpeed);
}
