#include "support/AudioFiles.h"

#include "platform/AudioDevice.h"
#include "platform/WaveFile.h"

#include <SDL.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace qvtest {

namespace {

void WriteAll(const std::string& file, const std::vector<std::uint8_t>& bytes)
{
    std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                                static_cast<std::streamsize>(bytes.size()));
}

} // namespace

void WriteWave(const std::string& file, std::uint32_t lengthMs)
{
    WriteAll(file, Platform::EncodeWave(Platform::MakeTone(440.0, lengthMs, 22050), 22050));
}

void WriteTune(const std::string& file, std::uint32_t noteMs)
{
    // 480 ticks a quarter note of 500 ms (the default tempo); each note length
    // goes in MIDI's variable-length form, here always two bytes of seven bits.
    const std::uint32_t ticks = std::min(noteMs * 480 / 500, 0x3FFFu);
    const auto high = static_cast<std::uint8_t>(0x80 | (ticks >> 7));
    const auto low = static_cast<std::uint8_t>(ticks & 0x7F);
    std::vector<std::uint8_t> track{0x00, 0xC0, 0x00}; // piano
    for (std::uint8_t note : {60, 64, 67})
        track.insert(track.end(), {0x00, 0x90, note, 100, high, low, 0x80, note, 0});
    track.insert(track.end(), {0x00, 0xFF, 0x2F, 0x00}); // end of track
    const auto size = static_cast<std::uint8_t>(track.size()); // always under 256
    std::vector<std::uint8_t> midi{'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1, 480 >> 8, 480 & 0xFF,
                                   'M', 'T', 'r', 'k', 0, 0, 0, size};
    midi.insert(midi.end(), track.begin(), track.end());
    WriteAll(file, midi);
}

void WriteBytes(const std::string& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

bool WaitUntil(const std::function<bool()>& condition, std::uint32_t timeoutMs)
{
    for (const Uint64 end = SDL_GetTicks64() + timeoutMs; !condition(); SDL_Delay(5))
        if (SDL_GetTicks64() >= end)
            return false;
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
    previous ? setenv(name.c_str(), previous->c_str(), 1) : unsetenv(name.c_str());
}

AudioScope::AudioScope()
{
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    Platform::CloseAudio();
}

AudioScope::~AudioScope() { Platform::CloseAudio(); }

} // namespace qvtest
