// The sound font the tune is played with, as the generator writes it and as
// the game's synthesiser reads it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <cstring>
#include <string>

#include "GameDataFiles.h"
#include "platform/AudioDevice.h"
#include "platform/Limiter.h"
#include "platform/MidiTune.h"
#include "platform/MusicStream.h"
#include "platform/Synthesiser.h"

namespace {

constexpr int kRate = 44100;
constexpr uint8_t kDrumChannel = 9;
// The instruments whose waves loop for as long as a note is held.
constexpr const char* kSustained[] = {"Warm pad", "Square lead", "Synth bass", "Calliope", "Crystal"};

uint32_t Le32(const std::vector<uint8_t>& b, size_t at) {
    return b.at(at) | b.at(at + 1) << 8 | b.at(at + 2) << 16 | static_cast<uint32_t>(b.at(at + 3)) << 24;
}

// The chunks of a RIFF list body, by tag, in file order.
std::vector<std::pair<std::string, std::vector<uint8_t>>> Chunks(const std::vector<uint8_t>& b, size_t at, size_t end) {
    std::vector<std::pair<std::string, std::vector<uint8_t>>> chunks;
    while (at + 8 <= end) {
        const uint32_t size = Le32(b, at + 4);
        EXPECT_LE(at + 8 + size, end) << qvdata::Tag(b, at);
        chunks.emplace_back(qvdata::Tag(b, at), std::vector<uint8_t>(b.begin() + at + 8, b.begin() + at + 8 + size));
        at += 8 + size + size % 2;
    }
    return chunks;
}

// How loud a note is, played alone with the game's font.
float Loudness(CSynthesiser& synth, uint8_t channel, uint8_t program, uint8_t key) {
    synth.Reset();
    synth.Send({0, static_cast<uint8_t>(0xC0 | channel), program, 0});
    synth.Send({0, static_cast<uint8_t>(0x90 | channel), key, 100});
    std::vector<float> out(2 * kRate / 5);
    synth.Render(out.data(), out.size() / 2);
    float loudest = 0.0f;
    for (float v : out) loudest = std::max(loudest, std::fabs(v));
    return loudest;
}

// Every sample lies in the sample data; a looped one repeats itself across
// its loop, so the loop is heard without a click. (The synthesiser taking the
// font whole is the next test's.)
TEST(TuneFont, IsASmallSoundFontWithSeamlessLoops) {
    const auto b = qvdata::ReadBytes(qvdata::GameDir() / "background.sf2");
    EXPECT_LT(b.size(), 1u << 20) << "a megabyte at most";
    ASSERT_EQ(qvdata::Tag(b, 0), "RIFF");
    std::map<std::string, std::vector<uint8_t>> parts;  // the chunks of its three lists
    for (const auto& [tag, body] : Chunks(b, 12, b.size()))
        for (auto& [sub, data] : Chunks(body, 4, body.size())) parts[sub] = data;
    const auto& shdr = parts["shdr"];
    const auto& smpl = parts["smpl"];
    ASSERT_GE(shdr.size(), 2 * 46u) << "a sample and the terminal record";
    const auto point = [&](uint32_t i) { return static_cast<int16_t>(smpl.at(2 * i) | smpl.at(2 * i + 1) << 8); };
    for (size_t at = 0; at + 46 < shdr.size(); at += 46) {
        const std::string name(reinterpret_cast<const char*>(&shdr[at]), strnlen(reinterpret_cast<const char*>(&shdr[at]), 20));
        const uint32_t start = Le32(shdr, at + 20), end = Le32(shdr, at + 24), loopStart = Le32(shdr, at + 28),
                       loopEnd = Le32(shdr, at + 32);
        EXPECT_TRUE(start < loopStart && loopStart < loopEnd && loopEnd < end && end + 46 <= smpl.size() / 2) << name;
        const bool sustained = std::any_of(std::begin(kSustained), std::end(kSustained),
                                           [&](const char* instrument) { return name.rfind(instrument, 0) == 0; });
        for (uint32_t i = 0; sustained && i < 8; ++i) EXPECT_EQ(point(loopStart + i), point(loopEnd + i)) << name;
    }
}

// Every program and drum of the tune sounds, and so does every other program.
// The levels leave the limiter nothing to do with the game's own sounds: the
// loudest effect over the loudest moment of the tune stays under its ceiling.
TEST(TuneFont, EverythingTheTuneAsksForSoundsAndTheLoudestEffectOverItStaysUnderTheCeiling) {
    const auto bytes = qvdata::ReadBytes(qvdata::GameDir() / "background.mid");
    auto tune = CMidiTune::Parse(bytes.data(), bytes.size());
    ASSERT_TRUE(tune);
    std::map<uint8_t, uint8_t> programs;  // channel to program
    std::set<uint8_t> drums;
    for (const MidiMessage& m : tune->Messages()) {
        if ((m.status & 0xF0) == 0xC0) programs[m.status & 0x0F] = m.data1;
        if ((m.status & 0xF0) == 0x90 && (m.status & 0x0F) == kDrumChannel) drums.insert(m.data1);
    }
    EXPECT_EQ(programs.size(), 5u);
    EXPECT_EQ(drums.size(), 8u);
    auto synth = CSynthesiser::Create(kRate);  // SDL_SOUNDFONTS names the game's font in the tests
    ASSERT_TRUE(synth);
    // Taken whole by the synthesiser: a font it refused would leave a system font sounding instead.
    EXPECT_EQ(synth->LoadedFonts(), std::vector<std::string>{(qvdata::GameDir() / "background.sf2").string()});
    for (const auto& [channel, program] : programs) EXPECT_GT(Loudness(*synth, channel, program, 60), 0.01f) << int(program);
    for (uint8_t key : drums) EXPECT_GT(Loudness(*synth, kDrumChannel, 0, key), 0.01f) << "drum " << int(key);
    for (int program = 0; program < 128; ++program)
        EXPECT_GT(Loudness(*synth, 0, static_cast<uint8_t>(program), 60), 0.001f) << "program " << program;

    CMusicStream stream(std::move(synth), kRate);
    stream.Start(std::make_shared<const CMidiTune>(std::move(*tune)));
    float music = 0.0f;
    std::vector<float> chunk(2 * 4096);
    for (bool ended = false; !ended;) {
        std::fill(chunk.begin(), chunk.end(), 0.0f);
        ended = stream.Render(chunk.data(), chunk.size() / 2);
        for (float v : chunk) music = std::max(music, std::fabs(v));
    }
    float effects = 0.0f;
    for (const char* name : {"startup.wav", "green.wav", "explosion.wav", "bullet1.wav", "bullet2.wav"}) {
        const auto wave = qvdata::ReadBytes(qvdata::GameDir() / name);
        for (size_t at = 44; at + 1 < wave.size(); at += 2)
            effects = std::max(effects, std::fabs(static_cast<int16_t>(wave[at] | wave[at + 1] << 8) / 32768.0f));
    }
    effects *= static_cast<float>(CAudioDevice::EffectVolume) / 128.0f;
    EXPECT_GT(music, 0.2f) << "the tune is clearly heard";
    EXPECT_GT(effects, 0.4f) << "and so are the effects";
    EXPECT_LT(music + effects, CLimiter::Ceiling);
}

}  // namespace
