#pragma once
#include <cstdint>
#include <string>
#include <vector>

// A video written by FFmpeg, run as a program of its own: pictures go to it
// down a pipe as raw RGB, one after another at a steady rate, and are encoded
// into a scratch file; at the end the sound, a wave file, is put beside them
// in the finished video. H.264 and AAC in MP4: what Debian's FFmpeg encodes
// fastest and what every browser and Linux player plays.
class CVideoEncoder {
public:
    // Why an encoding failed, for the exit status.
    enum class Failure { None, NoEncoder, Refused };
    static constexpr const char* Program = "ffmpeg";
    static constexpr const char* Package = "ffmpeg";

    struct Settings {
        std::string path;          // the video to write
        std::int32_t width = 0;    // of the pictures handed over
        std::int32_t height = 0;
        std::int32_t outWidth = 0; // of the video: the pictures are scaled to it
        std::int32_t outHeight = 0;
        std::int32_t framesPerSecond = 60;
    };

    CVideoEncoder() = default;
    ~CVideoEncoder();
    CVideoEncoder(const CVideoEncoder&) = delete;
    CVideoEncoder& operator=(const CVideoEncoder&) = delete;

    bool Start(const Settings& settings);
    // One picture, width x height x 3 bytes, rows top down.
    bool WritePicture(const std::vector<std::uint8_t>& rgb);
    // Ends the pictures, puts the sound in, writes the video. False on failure.
    bool Finish(const std::string& wavePath);

    Failure GetFailure() const { return failure; }
    const std::string& GetError() const { return error; }
    // A folder for scratch files, gone with the encoder.
    const std::string& ScratchFolder() const { return scratch; }

private:
    bool Fail(Failure kind, const std::string& why);
    // Runs the program; its standard input is the write end returned in input, or none.
    bool Spawn(const std::vector<std::string>& arguments, int* input);
    bool Wait(const char* step);
    std::string LogTail() const;

    Settings settings;
    std::string scratch;
    int pipe = -1;
    int child = -1;
    Failure failure = Failure::None;
    std::string error;
};
