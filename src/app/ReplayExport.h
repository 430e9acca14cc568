#pragma once
#include "platform/VideoEncoder.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

class CSurface;

// A replay written as a video: pictures at a steady rate, each the last
// recorded frame due at its time, and the sound the game would have played,
// pulled from the game's own mix as the rules make it. The replay shown
// drives it; it keeps the pictures, the sound and the terminal's progress line.
class CReplayExport {
public:
    static constexpr std::int32_t FramesPerSecond = 60;
    static constexpr double PictureMs = 1000.0 / FramesPerSecond;
    // Exit statuses beside the replay's own.
    static constexpr int NoEncoderStatus = 5;
    static constexpr int EncoderFailedStatus = 6;
    static constexpr unsigned LargestSide = 7680;

    struct Request {
        std::string videoPath;
        std::int32_t width = 0; // of the video; 0 for the game's own size
        std::int32_t height = 0;
    };

    explicit CReplayExport(Request request);
    ~CReplayExport();
    CReplayExport(const CReplayExport&) = delete;
    CReplayExport& operator=(const CReplayExport&) = delete;

    // Starts the encoder for pictures of the game's size; false (said on stderr) when it cannot.
    bool Start(std::int32_t gameWidth, std::int32_t gameHeight, double totalMs);
    // The recorded time the next picture shows, and how many pictures the video has.
    double NextPictureMs() const { return static_cast<double>(pictures + 1) * PictureMs; }
    bool HasNextPicture() const { return pictures < pictureCount; }
    // The sound up to a recorded time.
    void SoundUntil(double ms);
    bool TakePicture(CSurface& picture);
    // Finishes the video; the exit status.
    int Finish();
    int GetStatus() const { return status; }

private:
    void Progress(bool last);
    int Failed();

    Request request;
    CVideoEncoder encoder;
    std::FILE* wave = nullptr;
    std::string wavePath;
    int rate = 0;
    std::uint64_t soundFrames = 0;
    std::size_t pictures = 0;
    std::size_t pictureCount = 0;
    std::vector<std::uint8_t> rgb;
    std::vector<std::int16_t> sound;
    int status = 0;
    bool started = false;
    bool finished = false;
    int shownPercent = -1;
};
