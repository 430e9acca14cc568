#include "core/Truncate.h"

#include "core/Trace.h"

#include <cmath>

std::int32_t TruncOutOfRange(double value)
{
    using Limits = std::numeric_limits<std::int32_t>;
    CTrace::Trace("A value beyond 32 bits was made whole", 0);
    if (std::isnan(value))
        return 0;
    return value < 0 ? Limits::min() : Limits::max();
}
