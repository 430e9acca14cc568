// The wave writer, and the five effects as the game's mixer reads them.
#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <numbers>
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>

#include "GameDataFiles.h"
#include "WavWriter.h"

namespace {

constexpr int kFullScale = 32767;

// Shortest and longest length in seconds.
const std::map<std::string, std::pair<double, double>> kSounds{
    {"startup.wav", {1.5, 2.0}},  {"green.wav", {0.2, 1.0}},   {"explosion.wav", {0.8, 1.3}},
    {"bullet1.wav", {0.05, 0.4}}, {"bullet2.wav", {0.05, 0.4}},
};

// A wave as SDL decodes it for the mixer; no samples when it would not load.
struct Wave {
    SDL_AudioSpec spec{};
    std::vector<int16_t> samples;
    double Seconds() const { return spec.freq ? static_cast<double>(samples.size()) / spec.freq : 0.0; }
};

Wave Decode(const std::vector<uint8_t>& bytes) {
    Wave w;
    Uint8* buffer = nullptr;
    Uint32 length = 0;
    if (SDL_LoadWAV_RW(SDL_RWFromConstMem(bytes.data(), static_cast<int>(bytes.size())), 1, &w.spec, &buffer, &length)) {
        w.samples.assign(reinterpret_cast<int16_t*>(buffer), reinterpret_cast<int16_t*>(buffer + length));
        SDL_FreeWAV(buffer);
    }
    return w;
}

}  // namespace

// A plain mono 16-bit PCM file that reads back; a peak asked above full
// scale still stops at full scale.
TEST(WavWriter, WritesAPlainMono16BitPcmFileThatReadsBackAndStopsAtFullScale) {
    const std::vector<int16_t> pcm{0, 1000, -1000, kFullScale, -kFullScale};
    const auto bytes = assetgen::WavWriter::Encode(pcm, 22050);
    ASSERT_EQ(bytes.size(), 44u + 2 * pcm.size());
    const auto w = Decode(bytes);
    EXPECT_TRUE(w.spec.format == AUDIO_S16LSB && w.spec.channels == 1 && w.spec.freq == 22050);
    EXPECT_EQ(w.samples, pcm);
    EXPECT_EQ(assetgen::WavWriter::ToPcm({1.0f, -1.0f}, 1.5), (std::vector<int16_t>{kFullScale, -kFullScale}));
}

// How the energy of a sound's first 93 ms (4096 samples at 44.1 kHz) is
// shared between the bass, which laptop and phone speakers barely play, the
// middle and the treble.
struct Bands {
    double low = 0, mid = 0, high = 0;  // below 200 Hz, 200 Hz to 2 kHz, above
};

Bands EnergyBands(const Wave& w) {
    constexpr size_t kFrame = 4096;
    Bands bands;
    for (size_t bin = 1; bin < kFrame / 2; ++bin) {
        std::complex<double> sum = 0;
        const std::complex<double> step = std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(bin) / kFrame);
        std::complex<double> turn = 1;
        for (size_t i = 0; i < kFrame && i < w.samples.size(); ++i, turn *= step) sum += turn * static_cast<double>(w.samples[i]);
        const double hz = static_cast<double>(bin) * w.spec.freq / kFrame;
        (hz < 200 ? bands.low : hz < 2000 ? bands.mid : bands.high) += std::norm(sum);
    }
    const double total = bands.low + bands.mid + bands.high;
    return {bands.low / total, bands.mid / total, bands.high / total};
}

// Each effect is mono 16-bit PCM of its length, loud but never clipped, and
// silent at both ends, so starting or cutting it never clicks. Laptop
// speakers hardly play below 200 Hz: every sound has most of its onset above
// that, and an explosion fills all three bands.
TEST(SoundFiles, EachIsPlainPcmOfItsLengthNeverClipsAndStartsWhereSmallSpeakersPlay) {
    for (const auto& [name, length] : kSounds) {
        SCOPED_TRACE(name);
        const auto w = Decode(qvdata::ReadBytes(qvdata::GameDir() / name));
        ASSERT_FALSE(w.samples.empty()) << SDL_GetError();
        EXPECT_TRUE(w.spec.format == AUDIO_S16LSB && w.spec.channels == 1);
        EXPECT_TRUE(w.spec.freq == 22050 || w.spec.freq == 44100) << w.spec.freq;
        EXPECT_GE(w.Seconds(), length.first);
        EXPECT_LE(w.Seconds(), length.second);
        const auto [low, high] = std::minmax_element(w.samples.begin(), w.samples.end());
        const int peak = std::max(-static_cast<int>(*low), static_cast<int>(*high));
        EXPECT_LT(peak, kFullScale);
        EXPECT_GT(peak, kFullScale / 2);
        EXPECT_LT(std::abs(w.samples.front()), 300);
        EXPECT_LT(std::abs(w.samples.back()), 300);
        const Bands b = EnergyBands(w);
        EXPECT_LE(b.low, 0.5);
        EXPECT_GE(b.mid, 0.25);
        if (name == "explosion.wav") {
            EXPECT_GE(std::min({b.low, b.mid, b.high}), 0.2);
        }
    }
}
