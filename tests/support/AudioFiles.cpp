#include "support/AudioFiles.h"

#include "platform/AudioDevice.h"
#include "platform/WaveFile.h"

#include <SDL.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace qvtest {

namespace {

constexpr int TestRate = 22050;
constexpr double TestToneHz = 440.0;
constexpr std::uint32_t TicksPerQuarter = 480;
constexpr std::uint32_t MsPerQuarter = 500; // the default tempo

void Append(std::vector<std::uint8_t>& out, std::initializer_list<std::uint8_t> bytes)
{
    out.insert(out.end(), bytes);
}

void AppendBigEndian(std::vector<std::uint8_t>& out, std::uint32_t value, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void WriteAll(const std::string& file, const std::vector<std::uint8_t>& bytes)
{
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

} // namespace

void WriteWave(const std::string& file, std::uint32_t lengthMs)
{
    WriteAll(file, Platform::EncodeWave(Platform::MakeTone(TestToneHz, lengthMs, TestRate), TestRate));
}

void WriteTune(const std::string& file, std::uint32_t noteMs)
{
    // Note lengths go in MIDI's variable-length form, here always two bytes of seven bits.
    const std::uint32_t ticks = std::min(noteMs * TicksPerQuarter / MsPerQuarter, 0x3FFFu);
    const auto high = static_cast<std::uint8_t>(0x80 | (ticks >> 7));
    const auto low = static_cast<std::uint8_t>(ticks & 0x7F);
    std::vector<std::uint8_t> track{0x00, 0xC0, 0x00}; // piano
    for (std::uint8_t note : {60, 64, 67})
        Append(track, {0x00, 0x90, note, 100, high, low, 0x80, note, 0});
    Append(track, {0x00, 0xFF, 0x2F, 0x00}); // end of track

    std::vector<std::uint8_t> midi{'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1};
    AppendBigEndian(midi, TicksPerQuarter, 2);
    Append(midi, {'M', 'T', 'r', 'k'});
    AppendBigEndian(midi, static_cast<std::uint32_t>(track.size()), 4);
    midi.insert(midi.end(), track.begin(), track.end());
    WriteAll(file, midi);
}

void WriteBytes(const std::string& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

bool WaitUntil(const std::function<bool()>& condition, std::uint32_t timeoutMs)
{
    const Uint64 end = SDL_GetTicks64() + timeoutMs;
    while (!condition()) {
        if (SDL_GetTicks64() >= end)
            return false;
        SDL_Delay(5);
    }
    return true;
}

ScopedEnv::ScopedEnv(const char* variable, const std::string& value) : name(variable)
{
    if (const char* old = std::getenv(variable))
        previous = old;
    setenv(variable, value.c_str(), 1);
}

ScopedEnv::~ScopedEnv()
{
    if (previous)
        setenv(name.c_str(), previous->c_str(), 1);
    else
        unsetenv(name.c_str());
}

AudioScope::AudioScope()
{
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    Platform::CloseAudio();
}

AudioScope::~AudioScope()
{
    Platform::CloseAudio();
}

} // namespace qvtest
