// The wave writer, and the five effects as the game's player will read them.
#include <SDL.h>
#include <SDL_mixer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>

#include "GameDataFiles.h"
#include "WaveFile.h"
#include "WavWriter.h"

namespace {

constexpr int kFullScale = 32767;

struct Expected {
    double shortest;
    double longest;
};

const std::map<std::string, Expected> kSounds{
    {"startup.wav", {1.5, 2.0}},  {"green.wav", {0.2, 1.0}},   {"explosion.wav", {0.8, 1.3}},
    {"bullet1.wav", {0.05, 0.4}}, {"bullet2.wav", {0.05, 0.4}},
};

qvdata::WaveFile Read(const std::string& name) {
    return qvdata::WaveFile::Parse(qvdata::ReadBytes(qvdata::GameDir() / name));
}

int Peak(const std::vector<int16_t>& s) {
    int peak = 0;
    for (int16_t v : s) peak = std::max(peak, std::abs(static_cast<int>(v)));
    return peak;
}

// Sign changes a second: a rough pitch, enough to tell two sounds apart.
double CrossingsPerSecond(const qvdata::WaveFile& w) {
    int crossings = 0;
    for (size_t i = 1; i < w.samples.size(); ++i) crossings += (w.samples[i - 1] < 0) != (w.samples[i] < 0);
    return crossings / w.Seconds();
}

}  // namespace

TEST(WavWriter, WritesAPlainMono16BitPcmFileThatReadsBack) {
    const std::vector<int16_t> pcm{0, 1000, -1000, kFullScale, -kFullScale};
    const auto bytes = assetgen::WavWriter::Encode(pcm, 22050);
    ASSERT_EQ(bytes.size(), 44u + 2 * pcm.size());
    const auto w = qvdata::WaveFile::Parse(bytes);
    ASSERT_EQ(w.error, "");
    EXPECT_EQ(w.format, 1);
    EXPECT_EQ(w.channels, 1);
    EXPECT_EQ(w.bitsPerSample, 16);
    EXPECT_EQ(w.sampleRate, 22050u);
    EXPECT_EQ(w.byteRate, 44100u);
    EXPECT_EQ(w.blockAlign, 2);
    EXPECT_EQ(w.samples, pcm);
}

TEST(WavWriter, ScalesToThePeakWithoutClippingOrWrapping) {
    const auto pcm = assetgen::WavWriter::ToPcm({0.0f, 0.5f, -2.0f, 1.0f}, 0.5);
    EXPECT_EQ(pcm, (std::vector<int16_t>{0, 4096, -16384, 8192}));
    // A peak asked above full scale still stops at full scale.
    const auto loud = assetgen::WavWriter::ToPcm({1.0f, -1.0f}, 1.5);
    EXPECT_EQ(loud, (std::vector<int16_t>{kFullScale, -kFullScale}));
    EXPECT_EQ(assetgen::WavWriter::ToPcm({0.0f, 0.0f}, 0.9), (std::vector<int16_t>{0, 0}));
}

TEST(SoundFiles, EachIsMono16BitPcmOfTheRightLengthAndNeverClips) {
    for (const auto& [name, expected] : kSounds) {
        SCOPED_TRACE(name);
        const auto w = Read(name);
        ASSERT_EQ(w.error, "");
        EXPECT_EQ(w.format, 1);
        EXPECT_EQ(w.channels, 1);
        EXPECT_EQ(w.bitsPerSample, 16);
        EXPECT_TRUE(w.sampleRate == 22050 || w.sampleRate == 44100) << w.sampleRate;
        EXPECT_EQ(w.byteRate, w.sampleRate * 2);
        EXPECT_GE(w.Seconds(), expected.shortest);
        EXPECT_LE(w.Seconds(), expected.longest);
        EXPECT_LT(Peak(w.samples), kFullScale);
        EXPECT_GT(Peak(w.samples), kFullScale / 2);
        // Silent at both ends, so starting or cutting a sound never clicks.
        EXPECT_LT(std::abs(w.samples.front()), 300);
        EXPECT_LT(std::abs(w.samples.back()), 300);
    }
}

TEST(SoundFiles, ThePlayersShotAndTheEnemiesShotAreClearlyDifferent) {
    const auto player = Read("bullet1.wav"), enemy = Read("bullet2.wav");
    ASSERT_FALSE(player.samples.empty() || enemy.samples.empty());
    EXPECT_NE(player.samples, enemy.samples);
    const double higher = std::max(CrossingsPerSecond(player), CrossingsPerSecond(enemy));
    const double lower = std::min(CrossingsPerSecond(player), CrossingsPerSecond(enemy));
    const bool pitchDiffers = higher > 1.3 * lower;
    const bool lengthDiffers = std::fabs(player.Seconds() - enemy.Seconds()) > 0.05;
    EXPECT_TRUE(pitchDiffers || lengthDiffers) << higher << " vs " << lower;
}

// The game's own mixer decodes every effect and accepts the tune.
TEST(SoundFiles, TheMixerLoadsEveryEffectAndTheTune) {
    SDL_SetHint(SDL_HINT_AUDIODRIVER, "dummy");  // no sound card needed
    ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_AUDIO), 0) << SDL_GetError();
    ASSERT_EQ(Mix_OpenAudio(44100, AUDIO_S16SYS, 2, 1024), 0) << Mix_GetError();
    for (const auto& [name, expected] : kSounds) {
        Mix_Chunk* chunk = Mix_LoadWAV((qvdata::GameDir() / name).string().c_str());
        EXPECT_NE(chunk, nullptr) << name << ": " << Mix_GetError();
        if (chunk) Mix_FreeChunk(chunk);
    }
    Mix_Music* tune = Mix_LoadMUS((qvdata::GameDir() / "background.mid").string().c_str());
    EXPECT_NE(tune, nullptr) << Mix_GetError();
    if (tune) Mix_FreeMusic(tune);
    Mix_CloseAudio();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
}
