#include "platform/AudioDevice.h"

#include "platform/Sequencer.h"
#include "platform/WavePlayer.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include <cstdlib>
#include <filesystem>

namespace {

constexpr int OutputRate = 44100;
constexpr int OutputChannels = 2;
constexpr int OutputChunkSamples = 1024;

// General MIDI sound fonts from Debian's fluid-soundfont-gm, most preferred first.
constexpr const char* SoundFonts[] = {
    "/usr/share/sounds/sf2/default-GM.sf2",
    "/usr/share/sounds/sf2/FluidR3_GM.sf2",
};

// Tells the MIDI synthesiser which instruments to play with, unless the
// player has chosen a sound font through SDL_SOUNDFONTS. Only one font is
// given: the synthesiser would load every font on the list for every tune.
void ChooseSoundFont()
{
    if (std::getenv("SDL_SOUNDFONTS"))
        return;
    std::error_code ignored;
    for (const char* font : SoundFonts) {
        if (std::filesystem::exists(font, ignored)) {
            Mix_SetSoundFonts(font);
            return;
        }
    }
}

} // namespace

CAudioDevice& CAudioDevice::Instance()
{
    // Never destroyed: the application object closes it from its own destructor,
    // after the program's other statics are gone.
    static CAudioDevice& device = *new CAudioDevice;
    return device;
}

bool CAudioDevice::Open()
{
    if (open || failed)
        return open;
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) {
        failed = true;
        return false;
    }
    ChooseSoundFont();
    Mix_Init(MIX_INIT_MID);
    if (Mix_OpenAudio(OutputRate, AUDIO_S16SYS, OutputChannels, OutputChunkSamples) != 0) {
        Mix_Quit();
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        failed = true;
        return false;
    }
    Mix_AllocateChannels(Voice + 1);
    // Effects and the tune each peak near full scale on their own; mixed at
    // these levels a shot over the loudest bar of the tune still does not clip.
    Mix_Volume(Voice, EffectVolume);
    Mix_VolumeMusic(MusicVolume);
    CSequencer::Instance().Attach();
    open = true;
    return true;
}

void CAudioDevice::Close()
{
    failed = false;
    if (!open)
        return;
    open = false;
    Mix_CloseAudio();
    Mix_Quit();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
}

namespace Platform {

void CloseAudio()
{
    CSequencer::Instance().CloseAll();
    CWavePlayer::Instance().Release();
    CAudioDevice::Instance().Close();
}

} // namespace Platform
