#pragma once
#include <cstdint>

namespace assetgen {

// A small fixed-seed generator (xorshift32). The data files must come out
// byte for byte the same on every run, so nothing here looks at the clock.
class Random {
public:
    explicit Random(uint32_t seed);

    uint32_t Next();
    // Uniform in [0, 1).
    double Unit();
    // Uniform in [low, high).
    double Range(double low, double high);
    // Uniform in [-1, 1), handy for noise.
    double Signed();

private:
    uint32_t state;
};

}  // namespace assetgen
