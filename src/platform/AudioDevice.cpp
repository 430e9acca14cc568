#include "platform/AudioDevice.h"

#include "platform/Sequencer.h"
#include "platform/Volume.h"
#include "platform/WavePlayer.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include <algorithm>
#include <cmath>
#include <dlfcn.h>

namespace {

constexpr int OutputRate = 44100;
constexpr int OutputChannels = 2;
constexpr int OutputChunkSamples = 1024;
constexpr float FullScale = 32768.0f;

} // namespace

namespace {

extern "C" void IgnoreAlsaComplaint(const char*, int, const char*, int, const char*, ...) {}

// ALSA tells stderr about every device it looks for and misses (several
// lines on a machine without a sound card); the game says itself when it
// plays silent. SDL loads ALSA on its own, so the one it will use is found here.
void QuietenAlsa()
{
    void* alsa = ::dlopen("libasound.so.2", RTLD_LAZY);
    if (!alsa)
        return;
    using Handler = void (*)(const char*, int, const char*, int, const char*, ...);
    using SetHandler = int (*)(Handler);
    if (auto set = reinterpret_cast<SetHandler>(::dlsym(alsa, "snd_lib_error_set_handler")))
        set(IgnoreAlsaComplaint);
    // Kept loaded: the handler must stay where ALSA can call it.
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
    if (open || failed || disabled)
        return open;
    QuietenAlsa();
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) {
        failed = true;
        return false;
    }
    // Only the rate may differ from the one asked for: the mix is always
    // 16-bit stereo, which is what MixOutput reads.
    if (Mix_OpenAudioDevice(OutputRate, AUDIO_S16SYS, OutputChannels, OutputChunkSamples, nullptr,
                            SDL_AUDIO_ALLOW_FREQUENCY_CHANGE) != 0) {
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        failed = true;
        return false;
    }
    Uint16 format = 0;
    int channels = 0;
    Mix_QuerySpec(&rate, &format, &channels);
    limiter = std::make_unique<CLimiter>(rate);
    mix.assign(static_cast<std::size_t>(OutputChannels * OutputChunkSamples), 0.0f);
    music.assign(mix.size(), 0.0f);
    musicGain = Platform::VolumeGain(Platform::GetVolume(VolumeChannel::Music));
    Mix_AllocateChannels(Voice + 1);
    open = true;
    ApplyEffectVolume();
    if (!offline)
        Mix_SetPostMix(&CAudioDevice::MixOutput, this);
    return true;
}

int CAudioDevice::EffectVolumeAt(int step)
{
    return static_cast<int>(std::lround(EffectVolume * Platform::VolumeGain(step)));
}

void CAudioDevice::ApplyEffectVolume()
{
    if (open)
        Mix_Volume(Voice, EffectVolumeAt(Platform::GetVolume(VolumeChannel::Effects)));
}

void CAudioDevice::Close()
{
    failed = false;
    if (!open)
        return;
    open = false;
    Mix_SetPostMix(nullptr, nullptr);
    Mix_CloseAudio();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
}

// On the audio thread, once SDL_mixer has mixed the wave voice: adds the
// music and keeps the sum under full scale.
void CAudioDevice::MixOutput(void* self, std::uint8_t* stream, int bytes)
{
    const std::size_t frames = static_cast<std::size_t>(bytes) / (sizeof(std::int16_t) * OutputChannels);
    static_cast<CAudioDevice*>(self)->Mix(reinterpret_cast<std::int16_t*>(stream), frames);
}

void CAudioDevice::Mix(std::int16_t* samples, std::size_t frames)
{
    const std::size_t pieceFrames = mix.size() / OutputChannels;
    for (std::size_t done = 0; done < frames;) {
        const std::size_t count = std::min(pieceFrames, frames - done);
        std::int16_t* out = samples + OutputChannels * done;
        for (std::size_t i = 0; i < OutputChannels * count; ++i)
            mix[i] = out[i] / FullScale;
        AddMusic(count);
        limiter->Process(mix.data(), count);
        if (silenced)
            std::fill(mix.begin(), mix.begin() + static_cast<std::ptrdiff_t>(OutputChannels * count), 0.0f);
        for (std::size_t i = 0; i < OutputChannels * count; ++i)
            out[i] = static_cast<std::int16_t>(std::lrint(mix[i] * FullScale));
        done += count;
    }
}

// The tune at its volume, gliding from the last chunk's volume to the
// current one so that a step is no click.
void CAudioDevice::AddMusic(std::size_t frames)
{
    std::fill_n(music.begin(), OutputChannels * frames, 0.0f);
    CSequencer::Instance().Render(music.data(), frames);
    const float target = Platform::VolumeGain(Platform::GetVolume(VolumeChannel::Music));
    const float glide = (target - musicGain) / static_cast<float>(frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const float gain = musicGain + glide * static_cast<float>(frame + 1);
        for (std::size_t channel = 0; channel < OutputChannels; ++channel) {
            const std::size_t i = OutputChannels * frame + channel;
            mix[i] += gain * music[i];
        }
    }
    musicGain = target;
}

void CAudioDevice::Pull(std::int16_t* stereo, std::size_t frames)
{
    const std::size_t bytes = frames * OutputChannels * sizeof(std::int16_t);
    std::fill(stereo, stereo + frames * OutputChannels, std::int16_t{0});
    if (!open)
        return;
    // As SDL_mixer mixes its channel: the sound at the voice's volume, over silence.
    if (VoicePlaying()) {
        const std::size_t count = std::min<std::size_t>(bytes, voice->alen - voiceAt);
        SDL_MixAudioFormat(reinterpret_cast<Uint8*>(stereo), voice->abuf + voiceAt, AUDIO_S16SYS,
                           static_cast<Uint32>(count), EffectVolumeAt(Platform::GetVolume(VolumeChannel::Effects)));
        voiceAt += count;
    }
    Mix(stereo, frames);
}

bool CAudioDevice::StartVoice(Mix_Chunk* chunk)
{
    if (!offline) {
        Mix_HaltChannel(Voice);
        return chunk->alen == 0 || Mix_PlayChannel(Voice, chunk, 0) >= 0;
    }
    voice = chunk;
    voiceAt = 0;
    return true;
}

void CAudioDevice::StopVoice()
{
    if (offline)
        voice = nullptr;
    else if (open)
        Mix_HaltChannel(Voice);
}

bool CAudioDevice::VoicePlaying() const
{
    if (offline)
        return voice && voiceAt < voice->alen;
    return open && Mix_Playing(Voice) != 0;
}

namespace Platform {

void DisableAudio()
{
    CAudioDevice::Instance().Disable();
}

void SilenceAudio(bool silent)
{
    CAudioDevice::Instance().SetSilenced(silent);
}

void CloseAudio()
{
    CSequencer::Instance().CloseAll();
    CWavePlayer::Instance().Release();
    CAudioDevice::Instance().Close();
}

} // namespace Platform
