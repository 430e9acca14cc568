#pragma once
#include <cstdint>
#include <vector>

namespace Platform {

// A mono 16-bit PCM wave file, byte for byte as it would lie on disk.
std::vector<std::uint8_t> EncodeWave(const std::vector<std::int16_t>& samples, int sampleRate);

// A sine tone that starts at once and dies away over its length, so that it
// neither clicks at the start nor at the end.
std::vector<std::int16_t> MakeTone(double frequencyHz, std::uint32_t lengthMs, int sampleRate);

} // namespace Platform
