#include "WavWriter.h"

#include <algorithm>
#include <cmath>

namespace assetgen {

namespace {

constexpr uint16_t kFormatPcm = 1;
constexpr uint16_t kChannels = 1;
constexpr uint16_t kBitsPerSample = 16;
constexpr uint32_t kFmtChunkSize = 16;
constexpr double kFullScale = 32767.0;

void Put16(std::vector<uint8_t>& out, uint16_t v) {
    out.push_back(static_cast<uint8_t>(v));
    out.push_back(static_cast<uint8_t>(v >> 8));
}

void Put32(std::vector<uint8_t>& out, uint32_t v) {
    for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<uint8_t>(v >> shift));
}

void PutTag(std::vector<uint8_t>& out, const char* tag) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(tag[i]));
}

}  // namespace

std::vector<uint8_t> WavWriter::Encode(const std::vector<int16_t>& samples, uint32_t sampleRate) {
    const uint16_t blockAlign = kChannels * kBitsPerSample / 8;
    const uint32_t dataBytes = static_cast<uint32_t>(samples.size()) * blockAlign;
    std::vector<uint8_t> out;
    out.reserve(44 + dataBytes);
    PutTag(out, "RIFF");
    Put32(out, 4 + (8 + kFmtChunkSize) + (8 + dataBytes));
    PutTag(out, "WAVE");
    PutTag(out, "fmt ");
    Put32(out, kFmtChunkSize);
    Put16(out, kFormatPcm);
    Put16(out, kChannels);
    Put32(out, sampleRate);
    Put32(out, sampleRate * blockAlign);
    Put16(out, blockAlign);
    Put16(out, kBitsPerSample);
    PutTag(out, "data");
    Put32(out, dataBytes);
    for (int16_t s : samples) Put16(out, static_cast<uint16_t>(s));
    return out;
}

std::vector<int16_t> WavWriter::ToPcm(const std::vector<float>& signal, double peak) {
    float loudest = 0.0f;
    for (float s : signal) loudest = std::max(loudest, std::fabs(s));
    const double gain = loudest > 0.0f ? peak * kFullScale / loudest : 0.0;
    std::vector<int16_t> pcm;
    pcm.reserve(signal.size());
    for (float s : signal) {
        const double v = std::clamp(std::round(s * gain), -kFullScale, kFullScale);
        pcm.push_back(static_cast<int16_t>(v));
    }
    return pcm;
}

}  // namespace assetgen
