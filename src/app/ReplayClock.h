#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

// The pace a replay is watched at: how much of the recorded time is due at a
// reading of the wall clock. The rules always get the recorded frames; the
// speed only decides how many of them fall between two pictures (several at
// a fast speed, the last one shown) or how long one is held (a slow one).
class CReplayClock {
public:
    // The speeds, slowest first; the last makes frames as fast as they draw.
    static constexpr std::size_t SpeedCount = 7;
    static constexpr std::size_t NormalSpeed = 2;
    static constexpr std::size_t FastestSpeed = SpeedCount - 1;
    // Recorded milliseconds per wall millisecond; the fastest has none.
    static constexpr std::array<double, SpeedCount - 1> Factors{0.25, 0.5, 1.0, 2.0, 4.0, 8.0};
    // Above this factor the replay is watched in silence.
    static constexpr double LoudestFactor = 2.0;

    // The recorded time due after wallMs of watching at a speed, from recorded
    // time fromMs on. At the fastest speed everything is due.
    static double DueMs(double fromMs, double wallMs, std::size_t speed);
    static std::string SpeedName(std::size_t speed);
    static bool Heard(std::size_t speed) { return speed < FastestSpeed && Factors[speed] <= LoudestFactor; }

    // Each change of pace (a start, a seek, a speed, a pause) goes on from
    // atMs, the recorded time of the picture on show.
    void Restart(double atMs, std::uint32_t now);
    double DueMs(std::uint32_t now) const;
    void SetSpeed(std::size_t speed, double atMs, std::uint32_t now);
    std::size_t GetSpeed() const { return speed; }
    void SetPaused(bool pause, double atMs, std::uint32_t now);
    bool IsPaused() const { return paused; }

private:
    // The recorded time and the wall clock at the last change of pace.
    double anchorMs = 0.0;
    std::uint32_t anchorWall = 0;
    std::size_t speed = NormalSpeed;
    bool paused = false;
};
