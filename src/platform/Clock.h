#pragma once
#include <cstdint>
#include <functional>

// The millisecond clock: milliseconds since start-up as an unsigned 32-bit
// count that wraps after 2^32 ms, and a blocking wait. Tests may replace both
// so that frame timing and start-up pauses can be driven exactly.
namespace Platform {

std::uint32_t TimeGetTime();
void Sleep(std::uint32_t ms);

// The performance counter in seconds, for pacing the display: steady and far
// finer than a millisecond.
double PerformanceSeconds();
// Sleeps for a span that need not be whole milliseconds. While a test or a
// benchmark has replaced the wait, it returns at once: they own time then.
void WaitSeconds(double seconds);

// Seconds since the epoch, for seeding the random generator.
std::int64_t CalendarSeconds();

using ClockSource = std::function<std::uint32_t()>;
using SleepHandler = std::function<void(std::uint32_t)>;

// An empty function restores the real clock or the real wait.
void SetClockSource(ClockSource source);
void SetSleepHandler(SleepHandler handler);

} // namespace Platform
