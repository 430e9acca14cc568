#include "app/ReplayExport.h"

#include "platform/AudioDevice.h"
#include "platform/Console.h"
#include "platform/DrawTypes.h"
#include "platform/Surface.h"

#include <cmath>
#include <filesystem>
#include <unistd.h>

namespace {

constexpr int Channels = 2;
constexpr int WaveHeaderBytes = 44;
constexpr int ProgressWidth = 40;
constexpr int LoggedPercentStep = 25;

void PutLittle(std::uint8_t* at, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        at[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

// A 16-bit stereo wave's header, for so many frames of sound.
void WriteWaveHeader(std::FILE* file, int rate, std::uint64_t frames)
{
    const auto data = static_cast<std::uint32_t>(frames * Channels * 2);
    std::uint8_t h[WaveHeaderBytes] = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' '};
    PutLittle(h + 4, 36 + data, 4);
    PutLittle(h + 16, 16, 4);
    PutLittle(h + 20, 1, 2); // PCM
    PutLittle(h + 22, Channels, 2);
    PutLittle(h + 24, static_cast<std::uint32_t>(rate), 4);
    PutLittle(h + 28, static_cast<std::uint32_t>(rate * Channels * 2), 4);
    PutLittle(h + 32, Channels * 2, 2);
    PutLittle(h + 34, 16, 2);
    h[36] = 'd';
    h[37] = 'a';
    h[38] = 't';
    h[39] = 'a';
    PutLittle(h + 40, data, 4);
    std::fseek(file, 0, SEEK_SET);
    std::fwrite(h, 1, sizeof h, file);
}

} // namespace

CReplayExport::CReplayExport(Request wanted) : request(std::move(wanted))
{
}

CReplayExport::~CReplayExport()
{
    if (wave)
        std::fclose(wave);
    if (started && !finished)
        Platform::PrintError("the export of " + request.videoPath + " was stopped before its end: no video written");
}

int CReplayExport::Failed()
{
    Platform::PrintError("cannot export " + request.videoPath + ": " + encoder.GetError());
    status = encoder.GetFailure() == CVideoEncoder::Failure::NoEncoder ? NoEncoderStatus : EncoderFailedStatus;
    return status;
}

bool CReplayExport::Start(std::int32_t gameWidth, std::int32_t gameHeight, double totalMs)
{
    // Said before the work, not after it.
    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::absolute(request.videoPath, ec).parent_path();
    if (ec || !std::filesystem::is_directory(folder, ec) || ::access(folder.c_str(), W_OK) != 0) {
        Platform::PrintError("cannot export " + request.videoPath + ": " + folder.string() +
                             " is no folder the video can be written in");
        status = EncoderFailedStatus;
        return false;
    }
    CVideoEncoder::Settings settings;
    settings.path = request.videoPath;
    settings.width = gameWidth;
    settings.height = gameHeight;
    settings.outWidth = request.width > 0 ? request.width : gameWidth;
    settings.outHeight = request.height > 0 ? request.height : gameHeight;
    settings.framesPerSecond = FramesPerSecond;
    if (!encoder.Start(settings)) {
        Failed();
        return false;
    }
    started = true;
    rgb.resize(static_cast<std::size_t>(gameWidth) * gameHeight * 3);
    pictureCount = static_cast<std::size_t>(std::ceil(totalMs / PictureMs));
    wavePath = encoder.ScratchFolder() + "/sound.wav";
    wave = std::fopen(wavePath.c_str(), "wb");
    rate = CAudioDevice::Instance().IsOpen() ? CAudioDevice::Instance().SampleRate() : 44100;
    if (wave)
        WriteWaveHeader(wave, rate, 0);
    return true;
}

void CReplayExport::SoundUntil(double ms)
{
    const auto until = static_cast<std::uint64_t>(std::llround(ms * rate / 1000.0));
    if (until <= soundFrames || !wave)
        return;
    sound.resize(static_cast<std::size_t>(until - soundFrames) * Channels);
    CAudioDevice::Instance().Pull(sound.data(), sound.size() / Channels);
    std::fwrite(sound.data(), sizeof(std::int16_t), sound.size(), wave);
    soundFrames = until;
}

bool CReplayExport::TakePicture(CSurface& picture)
{
    LockedSurface locked;
    if (picture.Lock(locked) != 0)
        return true; // a picture lost is written as the one before
    std::uint8_t* out = rgb.data();
    for (std::int32_t y = 0; y < picture.GetHeight(); ++y) {
        const auto* row = reinterpret_cast<const std::uint16_t*>(static_cast<const char*>(locked.pixels) +
                                                                 static_cast<std::ptrdiff_t>(y) * locked.pitch);
        for (std::int32_t x = 0; x < picture.GetWidth(); ++x) {
            const COLORREF colour = Platform::UnpackRgb565(row[x]);
            *out++ = GetRValue(colour);
            *out++ = GetGValue(colour);
            *out++ = GetBValue(colour);
        }
    }
    picture.Unlock();
    ++pictures;
    Progress(false);
    return encoder.WritePicture(rgb);
}

// A bar redrawn in place on a terminal; elsewhere (a log) a line now and then.
void CReplayExport::Progress(bool last)
{
    static const bool terminal = ::isatty(STDERR_FILENO) != 0;
    const int step = terminal ? 1 : LoggedPercentStep;
    const int percent = pictureCount ? static_cast<int>(100 * pictures / pictureCount) : 100;
    const bool same = percent / step == shownPercent / step;
    if (same && (!last || !terminal))
        return;
    shownPercent = percent;
    const int filled = percent * ProgressWidth / 100;
    std::fprintf(stderr, "%sexporting [%s%s] %3d%%  %zu/%zu pictures%s", terminal ? "\r" : "",
                 std::string(filled, '#').c_str(), std::string(ProgressWidth - filled, ' ').c_str(), percent, pictures,
                 pictureCount, terminal && !last ? "" : "\n");
    std::fflush(stderr);
}

int CReplayExport::Finish()
{
    finished = true;
    Progress(true);
    SoundUntil(static_cast<double>(pictures) * PictureMs);
    if (wave) {
        WriteWaveHeader(wave, rate, soundFrames);
        const bool written = std::fclose(wave) == 0;
        wave = nullptr;
        if (!written) {
            Platform::PrintError("cannot export " + request.videoPath + ": the sound could not be written");
            return status = EncoderFailedStatus;
        }
    }
    if (!encoder.Finish(wavePath))
        return Failed();
    std::fprintf(stderr, "%s: %zu pictures, %.2f s\n", request.videoPath.c_str(), pictures,
                 static_cast<double>(pictures) * PictureMs / 1000.0);
    return status;
}
