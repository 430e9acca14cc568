#include "platform/WaveFile.h"

#include "core/ByteStream.h"

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

} // namespace

namespace Platform {

std::vector<std::uint8_t> EncodeWave(const std::vector<std::int16_t>& samples, int sampleRate)
{
    const auto dataBytes = static_cast<std::uint32_t>(samples.size() * sizeof(std::int16_t));
    const std::uint16_t blockAlign = MonoChannels * BitsPerSample / 8;
    CByteWriter out;
    out.Bytes("RIFF", 4);
    out.U32(HeaderBytesAfterSize + dataBytes);
    out.Bytes("WAVEfmt ", 8);
    out.U32(FormatChunkSize);
    out.U16(PcmFormat);
    out.U16(MonoChannels);
    out.U32(static_cast<std::uint32_t>(sampleRate));
    out.U32(static_cast<std::uint32_t>(sampleRate) * blockAlign);
    out.U16(blockAlign);
    out.U16(BitsPerSample);
    out.Bytes("data", 4);
    out.U32(dataBytes);
    for (std::int16_t sample : samples)
        out.U16(static_cast<std::uint16_t>(sample));
    const std::string& bytes = out.Data();
    return {bytes.begin(), bytes.end()};
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
