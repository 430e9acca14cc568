#pragma once
#include <cstdint>
#include <functional>
#include <string>

// One trace call, as a sink attached for diagnostics or tests sees it.
struct TraceLine {
    enum Kind { Plain, Value, Code };
    Kind kind = Plain;
    std::string text;
    std::int64_t number = 0;
    std::int32_t flag = 0;
};

// The trace calls that mark the program's steps and its unusual conditions.
// They write nothing unless a sink is attached, and a sink can never disturb
// the game. They sit below everything else so any layer can mark its steps.
class CTrace {
public:
    static void Trace(std::string text, std::int32_t flag);
    static void TraceValue(std::int32_t value, std::string text, std::int32_t flag);
    static void TraceCode(std::uint32_t code, std::string text, std::int32_t flag);

    using TraceSink = std::function<void(const TraceLine&)>;
    static void SetTraceSink(TraceSink sink);
};
