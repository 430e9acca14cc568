#include "platform/WaveFile.h"

#include <cmath>
#include <numbers>

namespace {

constexpr std::uint16_t PcmFormat = 1;
constexpr std::uint16_t MonoChannels = 1;
constexpr std::uint16_t BitsPerSample = 16;
constexpr std::uint32_t FormatChunkSize = 16;
constexpr std::uint32_t HeaderBytesAfterSize = 36;
constexpr double ToneAmplitude = 9000.0;
// How fast a tone dies away: its loudness falls by e^6 over its length.
constexpr double ToneDecay = 6.0;

void Put(std::vector<std::uint8_t>& out, const char* tag)
{
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<std::uint8_t>(tag[i]));
}

void PutLittleEndian(std::vector<std::uint8_t>& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

} // namespace

namespace Platform {

std::vector<std::uint8_t> EncodeWave(const std::vector<std::int16_t>& samples, int sampleRate)
{
    const auto dataBytes = static_cast<std::uint32_t>(samples.size() * sizeof(std::int16_t));
    const std::uint16_t blockAlign = MonoChannels * BitsPerSample / 8;
    std::vector<std::uint8_t> out;
    out.reserve(HeaderBytesAfterSize + 8 + dataBytes);
    Put(out, "RIFF");
    PutLittleEndian(out, HeaderBytesAfterSize + dataBytes, 4);
    Put(out, "WAVE");
    Put(out, "fmt ");
    PutLittleEndian(out, FormatChunkSize, 4);
    PutLittleEndian(out, PcmFormat, 2);
    PutLittleEndian(out, MonoChannels, 2);
    PutLittleEndian(out, static_cast<std::uint32_t>(sampleRate), 4);
    PutLittleEndian(out, static_cast<std::uint32_t>(sampleRate) * blockAlign, 4);
    PutLittleEndian(out, blockAlign, 2);
    PutLittleEndian(out, BitsPerSample, 2);
    Put(out, "data");
    PutLittleEndian(out, dataBytes, 4);
    for (std::int16_t sample : samples)
        PutLittleEndian(out, static_cast<std::uint16_t>(sample), 2);
    return out;
}

std::vector<std::int16_t> MakeTone(double frequencyHz, std::uint32_t lengthMs, int sampleRate)
{
    const auto count = static_cast<std::size_t>(static_cast<std::uint64_t>(sampleRate) * lengthMs / 1000);
    std::vector<std::int16_t> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double t = static_cast<double>(i) / sampleRate;
        const double x = static_cast<double>(i) / static_cast<double>(count);
        const double envelope = (1.0 - x) * std::exp(-ToneDecay * x); // reaches silence at the end
        const double value = ToneAmplitude * envelope * std::sin(2.0 * std::numbers::pi * frequencyHz * t);
        samples[i] = static_cast<std::int16_t>(value);
    }
    return samples;
}

} // namespace Platform
