#pragma once

// The program's one audio output, on SDL_mixer: a single voice for wave
// sounds and the music stream for the MIDI sequencer. It is opened on first
// use; a machine without sound fails the open once, and from then on every
// sound and tune refuses quietly and the game runs silent.
class CAudioDevice {
public:
    static CAudioDevice& Instance();

    // Opens the output if it is not open yet. False when there is none.
    bool Open();
    bool IsOpen() const { return open; }
    // Lets go of the output; the next Open tries afresh.
    void Close();

    // The mixer channel that carries every wave sound.
    static constexpr int Voice = 0;
    static constexpr int EffectVolume = 88; // of SDL_mixer's 128
    static constexpr int MusicVolume = 52;

private:
    bool open = false;
    bool failed = false;
};

namespace Platform {
// Stops every sound and tune, closes every sequencer device and the output.
// Safe at any time, more than once, and when nothing was ever opened.
void CloseAudio();
} // namespace Platform
