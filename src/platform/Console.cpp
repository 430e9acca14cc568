#include "platform/Console.h"

#include <chrono>
#include <cstdio>
#include <unistd.h>

namespace Platform {

namespace {

constexpr const char* ProgramName = "quelvarion";

ErrorLineHandler& errorLineHandler()
{
    static ErrorLineHandler handler;
    return handler;
}

void WriteToStderr(const std::string& text)
{
    const char* data = text.data();
    std::size_t left = text.size();
    while (left > 0) {
        const ssize_t written = ::write(STDERR_FILENO, data, left);
        if (written <= 0)
            return; // nobody is listening; the game goes on regardless
        data += written;
        left -= static_cast<std::size_t>(written);
    }
}

} // namespace

void PrintError(const std::string& line)
{
    if (auto& handler = errorLineHandler()) {
        handler(line);
        return;
    }
    WriteToStderr(std::string(ProgramName) + ": " + line + "\n");
}

void SetErrorLineHandler(ErrorLineHandler handler)
{
    errorLineHandler() = std::move(handler);
}

double MillisecondsSinceStart()
{
    using Clock = std::chrono::steady_clock;
    static const Clock::time_point start = Clock::now();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

std::string TraceLineText(const TraceLine& line, double ms)
{
    std::string text = line.text;
    if (!text.empty() && text.back() == '\n')
        text.pop_back(); // the display's error texts end a line of their own
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "[%10.3f] ", ms / 1000.0);
    char number[32] = "";
    if (line.kind == TraceLine::Value)
        std::snprintf(number, sizeof number, " %lld", static_cast<long long>(line.number));
    else if (line.kind == TraceLine::Code)
        std::snprintf(number, sizeof number, " (code %08llx)", static_cast<unsigned long long>(line.number));
    return stamp + text + number + "\n";
}

void TraceToStderr()
{
    MillisecondsSinceStart();
    CTrace::SetTraceSink([](const TraceLine& line) { WriteToStderr(TraceLineText(line, MillisecondsSinceStart())); });
}

} // namespace Platform
