#include "core/Truncate.h"

#include "core/Trace.h"

#include <cmath>
#include <limits>

std::int32_t TruncToInt32(double value)
{
    using Limits = std::numeric_limits<std::int32_t>;
    // The open bounds: every value strictly between them truncates into range.
    constexpr double Below = static_cast<double>(Limits::min()) - 1.0;
    constexpr double Above = static_cast<double>(Limits::max()) + 1.0;
    if (value > Below && value < Above)
        return static_cast<std::int32_t>(value);
    CTrace::Trace("A value beyond 32 bits was made whole", 0);
    if (std::isnan(value))
        return 0;
    return value < 0 ? Limits::min() : Limits::max();
}
