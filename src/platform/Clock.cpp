#include "platform/Clock.h"

#include <SDL.h>

#include <chrono>
#include <thread>

namespace Platform {
namespace {

ClockSource& clockSource()
{
    static ClockSource source;
    return source;
}

SleepHandler& sleepHandler()
{
    static SleepHandler handler;
    return handler;
}

std::uint32_t SteadyMilliseconds()
{
    using namespace std::chrono;
    const auto ms = duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(ms)); // wraps like a 32-bit tick count
}

} // namespace

std::uint32_t TimeGetTime()
{
    return clockSource() ? clockSource()() : SteadyMilliseconds();
}

void Sleep(std::uint32_t ms)
{
    if (sleepHandler()) {
        sleepHandler()(ms);
        return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

double PerformanceSeconds()
{
    static const double frequency = static_cast<double>(SDL_GetPerformanceFrequency());
    return static_cast<double>(SDL_GetPerformanceCounter()) / frequency;
}

void WaitSeconds(double seconds)
{
    if (sleepHandler() || seconds <= 0.0)
        return;
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

std::int64_t CalendarSeconds()
{
    using namespace std::chrono;
    return duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
}

void SetClockSource(ClockSource source) { clockSource() = std::move(source); }
void SetSleepHandler(SleepHandler handler) { sleepHandler() = std::move(handler); }

} // namespace Platform
