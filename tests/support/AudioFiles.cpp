#include "support/AudioFiles.h"

#include "platform/AudioDevice.h"
#include "platform/WaveFile.h"
#include "support/BitmapFiles.h"
#include "support/MidiBytes.h"

#include <SDL.h>

#include <cstdlib>

namespace qvtest {

void WriteWave(const std::string& file, std::uint32_t lengthMs)
{
    WriteFile(file, Platform::EncodeWave(Platform::MakeTone(440.0, lengthMs, 22050), 22050));
}

void WriteTune(const std::string& file, std::uint32_t noteMs)
{
    midi::Bytes events{0x00, 0xC0, 0x00}; // piano
    for (std::uint8_t note : {60, 64, 67})
        events = midi::Join({events, {0x00, 0x90, note, 100}, midi::Delta(noteMs), {0x80, note, 0}});
    WriteFile(file, midi::OneTrackTune(events));
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
