#pragma once
#include <cstdint>
#include <cstring>
#include <type_traits>

class CWorld;

// A 64-bit FNV-1a digest of values, byte for byte: the same values in the
// same order give the same digest on every run of the same build.
class CStateHash {
public:
    template <class T>
    void Add(T value)
    {
        static_assert(std::is_arithmetic_v<T>);
        unsigned char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        for (unsigned char b : bytes)
            digest = (digest ^ b) * Prime;
    }
    std::uint64_t Get() const { return digest; }
    // The two halves folded together, for a digest kept every frame.
    std::uint32_t Folded() const { return static_cast<std::uint32_t>(digest ^ (digest >> 32)); }

private:
    static constexpr std::uint64_t Prime = 0x100000001B3ull;
    std::uint64_t digest = 0xCBF29CE484222325ull;
};

// The world's state: the level, score, time and clocks, and every object of
// the master list in its order, with its kind, position, velocity, hull and
// energy.
void HashWorld(const CWorld& world, CStateHash& hash);
