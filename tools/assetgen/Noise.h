#pragma once
#include <array>
#include <cstdint>

namespace assetgen {

// Smooth value noise on an integer lattice, seeded so that every picture
// made with it is repeatable. Values lie in about [-1, 1].
class Noise {
public:
    explicit Noise(uint32_t seed);

    double At(double x, double y, double z = 0.0) const;
    // Fractal sum of octaves, each twice as fine and half as strong.
    double Fractal(double x, double y, double z, int octaves) const;

private:
    double Lattice(int x, int y, int z) const;

    std::array<uint8_t, 512> permutation{};
    std::array<double, 256> values{};
};

}  // namespace assetgen
