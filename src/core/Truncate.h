#pragma once
#include <cstdint>

// A real number made whole by truncation toward zero, as every rule of the game
// does it. A value no 32-bit integer can hold (beyond its range, or not a
// number at all) would make the conversion undefined: it is brought to the
// nearest end of the range (not a number to 0) and traced instead.
std::int32_t TruncToInt32(double value);
