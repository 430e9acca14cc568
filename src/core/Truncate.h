#pragma once
#include <cstdint>
#include <limits>

// The rare value no 32-bit integer can hold, brought into range and traced.
std::int32_t TruncOutOfRange(double value);

// A real number made whole by truncation toward zero, as every rule of the game
// does it. A value no 32-bit integer can hold (beyond its range, or not a
// number at all) would make the conversion undefined, and machines disagree on
// what it gives: it is brought to the nearest end of the range (not a number
// to 0) and traced instead, so every machine plays it alike.
inline std::int32_t TruncToInt32(double value)
{
    using Limits = std::numeric_limits<std::int32_t>;
    // The open bounds: every value strictly between them truncates into range.
    constexpr double Below = static_cast<double>(Limits::min()) - 1.0;
    constexpr double Above = static_cast<double>(Limits::max()) + 1.0;
    if (value > Below && value < Above)
        return static_cast<std::int32_t>(value);
    return TruncOutOfRange(value);
}
