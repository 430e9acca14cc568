#pragma once
#include "platform/Types.h"

#include <map>
#include <string>

struct Mix_Chunk;

// Flags of PlaySound, with their Windows values.
constexpr UINT SND_SYNC = 0x0000;      // return when the sound has ended
constexpr UINT SND_ASYNC = 0x0001;     // return as soon as the sound has started
constexpr UINT SND_NODEFAULT = 0x0002; // a missing file plays nothing instead of the default sound
constexpr UINT SND_NOSTOP = 0x0010;    // refuse, rather than cut off a sound that is playing
constexpr UINT SND_NOWAIT = 0x2000;    // never wait for a busy device
constexpr UINT SND_FILENAME = 0x20000; // the sound is named by its file

namespace Platform {
// Plays a wave file on the program's one voice; a null file stops the voice.
// True when the sound (or the default sound in its place) has started.
bool PlaySound(const char* file, UINT flags);
} // namespace Platform

// The simple wave player: one voice for the whole program, so a new sound
// either cuts off the one playing or, asked not to, is refused. A file that
// cannot be found or read plays the default sound, a short tone made here.
class CWavePlayer {
public:
    static CWavePlayer& Instance();

    bool Play(const std::string& file, UINT flags);
    void Stop();
    bool IsPlaying() const;
    // The file of the sound playing now, empty when the voice is silent.
    std::string PlayingFile() const;
    // True while the default sound stands in for a file that could not be played.
    bool IsPlayingDefault() const { return IsPlaying() && playingDefault; }

    // Frees every loaded sound; called when the output closes.
    void Release();

private:
    Mix_Chunk* Load(const std::string& file);
    Mix_Chunk* DefaultSound();
    static void WaitUntilSilent();

    std::map<std::string, Mix_Chunk*> loaded;
    Mix_Chunk* defaultSound = nullptr;
    std::string playingFile;
    bool playingDefault = false;
};
