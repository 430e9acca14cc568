#pragma once
#include <cstdint>

// The game's one random generator: a linear congruential generator whose
// draws are 15-bit values, the same sequence for the same seed on every run.
class CRandom {
public:
    static constexpr std::int32_t Max = 32767;

    void Seed(std::uint32_t seed) { state = seed; }
    std::uint32_t GetState() const { return state; }

    // One draw, 0..32767.
    std::int32_t Rand()
    {
        state = state * 214013u + 2531011u;
        return static_cast<std::int32_t>((state >> 16) & 0x7FFF);
    }

    // One draw scaled to 0..m, worked in floating point.
    double Draw(double m) { return Rand() * m / Max; }

private:
    std::uint32_t state = 1;
};

// The generator every rule draws from; the application object owns it.
CRandom& SharedRandom();
