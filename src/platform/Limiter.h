#pragma once
#include <cstddef>
#include <vector>

// Keeps the mixed output under a ceiling below full scale, so that an
// effect over the loudest bar of the tune never clips: a peak limiter that
// looks a millisecond and a half ahead. The gain glides down over the
// look-ahead before a peak that would pass the ceiling, so the peak itself
// comes out at the ceiling at most, and climbs back over a tenth of a second.
// Below the ceiling the sound passes unchanged, only that little later.
class CLimiter {
public:
    static constexpr float Ceiling = 0.89f; // of full scale: about -1 dB

    explicit CLimiter(int sampleRate);

    // Interleaved stereo frames in place.
    void Process(float* stereo, std::size_t frames);
    std::size_t DelayFrames() const { return lookAhead; }

private:
    float ProcessGain(float need);

    std::size_t lookAhead;
    double releasePerFrame;
    std::vector<float> delayed; // the frames in the look-ahead, stereo
    std::vector<float> needs;   // the gain each frame in the look-ahead needs, and the newest
    int needing = 0;            // how many of them are below 1
    std::vector<float> holds;   // the smallest need around each of the last frames
    std::size_t at = 0;
    double holdSum = 0.0;
    float gain = 1.0f;
};
