#include "platform/WavePlayer.h"

#include "core/ByteStream.h"
#include "platform/AudioDevice.h"
#include "platform/FileBytes.h"
#include "platform/WaveFile.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include <algorithm>
#include <optional>

namespace {

// The default sound: a short, bright ping.
constexpr double DefaultToneHz = 880.0;
constexpr std::uint32_t DefaultToneMs = 250;
constexpr int DefaultToneRate = 22050;
constexpr std::uint32_t SyncPollMs = 5;

// An effect is a short sound. The mixer would turn a wave of any rate or
// length into its own rate in memory: a few kilobytes at one sample a second
// would take gigabytes, so such files are not played.
constexpr std::size_t MaxWaveBytes = 16 << 20;
constexpr int MinWaveRate = 4000;
constexpr int MaxWaveRate = 192000;
constexpr double MaxWaveSeconds = 30.0;

std::uint32_t LittleEndian32(const std::vector<std::uint8_t>& bytes, std::size_t at)
{
    return static_cast<std::uint32_t>(LittleAt(&bytes[at], 4));
}

// SDL takes a wave's chunk sizes at their word and sets aside the memory they
// claim, gigabytes for a file of a few hundred bytes. A chunk that says it
// runs past the end of the file is cut to what the file holds, so a file
// that was cut short still plays what it has.
void FitChunksToFile(std::vector<std::uint8_t>& bytes)
{
    constexpr std::size_t RiffHeader = 12;
    constexpr std::size_t ChunkHeader = 8;
    if (bytes.size() < RiffHeader)
        return;
    const auto left = [&](std::size_t at) { return static_cast<std::uint32_t>(bytes.size() - at - ChunkHeader); };
    PutLittleAt(&bytes[4], std::min(LittleEndian32(bytes, 4), left(0)), 4);
    for (std::size_t at = RiffHeader; at + ChunkHeader <= bytes.size();) {
        const std::uint32_t length = LittleEndian32(bytes, at + 4);
        if (length > left(at)) {
            PutLittleAt(&bytes[at + 4], left(at), 4);
            return;
        }
        at += ChunkHeader + length + (length & 1); // chunks keep to even sizes
    }
}

// The bytes of samples a wave holds, if it is one the game plays.
std::optional<Uint32> PlayableSampleBytes(const std::vector<std::uint8_t>& bytes)
{
    if (bytes.size() > MaxWaveBytes)
        return std::nullopt;
    SDL_AudioSpec spec{};
    Uint8* samples = nullptr;
    Uint32 length = 0;
    if (!SDL_LoadWAV_RW(SDL_RWFromConstMem(bytes.data(), static_cast<int>(bytes.size())), 1, &spec, &samples, &length))
        return std::nullopt;
    SDL_FreeWAV(samples);
    const double frameBytes = static_cast<double>(SDL_AUDIO_BITSIZE(spec.format) / 8 * spec.channels);
    if (spec.freq < MinWaveRate || spec.freq > MaxWaveRate || frameBytes <= 0 ||
        length / frameBytes / spec.freq > MaxWaveSeconds)
        return std::nullopt;
    return length;
}

// What a wave without samples plays. SDL_mixer 2.8 frees the chunk it loads
// from such a wave twice, so the game makes its own, over no memory of its own.
Mix_Chunk* SilentChunk()
{
    static Uint8 nothing = 0;
    return Mix_QuickLoad_RAW(&nothing, 0);
}

} // namespace

namespace Platform {

bool PlaySound(const char* file, UINT flags)
{
    if (!file) {
        CWavePlayer::Instance().Stop();
        return true;
    }
    return CWavePlayer::Instance().Play(file, flags);
}

} // namespace Platform

CWavePlayer& CWavePlayer::Instance()
{
    // Never destroyed, like the output it plays on.
    static CWavePlayer& player = *new CWavePlayer;
    return player;
}

bool CWavePlayer::Play(const std::string& file, UINT flags)
{
    if (!CAudioDevice::Instance().Open())
        return false;
    if ((flags & SND_NOSTOP) && IsPlaying())
        return false;
    Mix_Chunk* chunk = Load(file);
    const bool useDefault = chunk == nullptr;
    if (useDefault) {
        if (flags & SND_NODEFAULT)
            return false;
        chunk = DefaultSound();
    }
    // A wave with no samples is a sound that is over as soon as it starts.
    if (!chunk || !CAudioDevice::Instance().StartVoice(chunk))
        return false;
    playingFile = file;
    playingDefault = useDefault;
    if (!(flags & SND_ASYNC))
        WaitUntilSilent();
    return true;
}

void CWavePlayer::Stop()
{
    CAudioDevice::Instance().StopVoice();
}

bool CWavePlayer::IsPlaying() const
{
    return CAudioDevice::Instance().VoicePlaying();
}

std::string CWavePlayer::PlayingFile() const
{
    return IsPlaying() ? playingFile : std::string();
}

void CWavePlayer::Release()
{
    Stop();
    for (auto& [file, chunk] : loaded)
        Mix_FreeChunk(chunk);
    loaded.clear();
    if (defaultSound)
        Mix_FreeChunk(defaultSound);
    defaultSound = nullptr;
    playingFile.clear();
    playingDefault = false;
}

// Sounds that loaded are kept for the rest of the run, since the same few
// effects play again and again; a file that failed is tried afresh next time.
Mix_Chunk* CWavePlayer::Load(const std::string& file)
{
    if (auto found = loaded.find(file); found != loaded.end())
        return found->second;
    Result why = S_OK;
    auto bytes = Platform::ReadFileAtMost(file, MaxWaveBytes, &why);
    if (!bytes) {
        Platform::SayNotRead(file, why);
        return nullptr;
    }
    FitChunksToFile(*bytes);
    const auto samples = PlayableSampleBytes(*bytes);
    if (!samples)
        return nullptr;
    Mix_Chunk* chunk = *samples == 0
                           ? SilentChunk()
                           : Mix_LoadWAV_RW(SDL_RWFromConstMem(bytes->data(), static_cast<int>(bytes->size())), 1);
    if (chunk)
        loaded.emplace(file, chunk);
    return chunk;
}

Mix_Chunk* CWavePlayer::DefaultSound()
{
    if (!defaultSound) {
        const auto wave =
            Platform::EncodeWave(Platform::MakeTone(DefaultToneHz, DefaultToneMs, DefaultToneRate), DefaultToneRate);
        defaultSound = Mix_LoadWAV_RW(SDL_RWFromConstMem(wave.data(), static_cast<int>(wave.size())), 1);
    }
    return defaultSound;
}

void CWavePlayer::WaitUntilSilent()
{
    while (Mix_Playing(CAudioDevice::Voice))
        SDL_Delay(SyncPollMs);
}
