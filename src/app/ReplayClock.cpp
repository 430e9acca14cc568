#include "app/ReplayClock.h"

#include <limits>

double CReplayClock::DueMs(double fromMs, double wallMs, std::size_t speed)
{
    if (speed >= FastestSpeed)
        return std::numeric_limits<double>::infinity();
    return fromMs + wallMs * Factors[speed];
}

std::string CReplayClock::SpeedName(std::size_t speed)
{
    static constexpr std::array<const char*, SpeedCount> names{"1/4x", "1/2x", "1x", "2x", "4x", "8x", "max"};
    return names[speed < SpeedCount ? speed : FastestSpeed];
}

void CReplayClock::Restart(double atMs, std::uint32_t now)
{
    anchorMs = atMs;
    anchorWall = now;
}

double CReplayClock::DueMs(std::uint32_t now) const
{
    if (paused)
        return anchorMs;
    return DueMs(anchorMs, static_cast<double>(now - anchorWall), speed);
}

void CReplayClock::SetSpeed(std::size_t newSpeed, double atMs, std::uint32_t now)
{
    if (newSpeed >= SpeedCount)
        return;
    Restart(atMs, now);
    speed = newSpeed;
}

void CReplayClock::SetPaused(bool pause, double atMs, std::uint32_t now)
{
    Restart(atMs, now);
    paused = pause;
}
