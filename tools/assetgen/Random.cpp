#include "Random.h"

namespace assetgen {

Random::Random(uint32_t seed) : state(seed != 0 ? seed : 0x9E3779B9u) {}

uint32_t Random::Next() {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}

double Random::Unit() {
    return (Next() >> 8) * (1.0 / 16777216.0);
}

double Random::Range(double low, double high) {
    return low + (high - low) * Unit();
}

double Random::Signed() {
    return Range(-1.0, 1.0);
}

}  // namespace assetgen
