#pragma once
#include <cstdint>
#include <vector>

namespace assetgen {

// Encodes mono 16-bit PCM wave files ("RIFF"/"WAVE" with one "fmt " and one
// "data" chunk), the plainest form every wave player accepts.
class WavWriter {
public:
    static std::vector<uint8_t> Encode(const std::vector<int16_t>& samples, uint32_t sampleRate);

    // Scales the signal so its loudest sample sits at peak (a fraction of
    // full scale) and rounds it to 16 bits. A silent signal stays silent.
    static std::vector<int16_t> ToPcm(const std::vector<float>& signal, double peak);
};

}  // namespace assetgen
