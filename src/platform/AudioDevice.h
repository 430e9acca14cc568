#pragma once
#include "platform/Limiter.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

struct Mix_Chunk;

// The program's one audio output, on SDL_mixer: a single voice for wave
// sounds, with the MIDI sequencer's music added to the mix and the whole
// kept under full scale by a limiter. It is opened on first use; a machine
// without sound fails the open once, and from then on every sound and tune
// refuses quietly and the game runs silent.
class CAudioDevice {
public:
    static CAudioDevice& Instance();

    // Opens the output if it is not open yet. False when there is none.
    bool Open();
    bool IsOpen() const { return open; }
    // Lets go of the output; the next Open tries afresh.
    void Close();
    // The output's frames a second, once open.
    int SampleRate() const { return rate; }
    // From now on the output never opens, as on a machine without sound.
    void Disable() { disabled = true; }
    // Gives the wave voice the effects' volume step, once open.
    void ApplyEffectVolume();
    // Silenced, the output plays nothing, while the tune goes on in time.
    void SetSilenced(bool silent) { silenced = silent; }

    // Offline, no device pulls the sound: whoever writes it pulls it, as fast
    // as it likes, through the same mix, sequencer and limiter. Set before
    // the first Open.
    void SetOffline() { offline = true; }
    bool IsOffline() const { return offline; }
    // Fills frames of 16-bit stereo with what the output would play next.
    void Pull(std::int16_t* stereo, std::size_t frames);
    // The wave voice.
    bool StartVoice(Mix_Chunk* chunk);
    void StopVoice();
    bool VoicePlaying() const;

    // The mixer channel that carries every wave sound.
    static constexpr int Voice = 0;
    // Of SDL_mixer's 128: the game's effects, which peak at 0.89 of full
    // scale, come out at 0.53, and the tune's loudest bar (about 0.34, see
    // CSynthesiser) still fits under the limiter's ceiling with them.
    static constexpr int EffectVolume = 76;
    // The voice's volume at an effects volume step, of the same 128.
    static int EffectVolumeAt(int step);

private:
    static void MixOutput(void* self, std::uint8_t* stream, int bytes);
    // Adds the music to the voice's mix and keeps the sum under full scale.
    void Mix(std::int16_t* samples, std::size_t frames);
    void AddMusic(std::size_t frames);

    bool open = false;
    bool failed = false;
    int rate = 0;
    std::unique_ptr<CLimiter> limiter;
    std::vector<float> mix;   // one chunk of the output, as floats
    std::vector<float> music; // the tune's part of it, before its volume
    float musicGain = 1.0f;   // where the last chunk's music volume ended
    bool disabled = false;
    std::atomic<bool> silenced{false};
    bool offline = false;
    // The voice while offline: the sound and how far into it the output is.
    Mix_Chunk* voice = nullptr;
    std::size_t voiceAt = 0;
};

namespace Platform {
// Stops every sound and tune, closes every sequencer device and the output.
// Safe at any time, more than once, and when nothing was ever opened.
void CloseAudio();
// For runs no one listens to: every sound and tune refuses quietly.
void DisableAudio();
// For a replay watched too fast to follow by ear, or while it seeks.
void SilenceAudio(bool silent);
} // namespace Platform
