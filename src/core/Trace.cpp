#include "core/Trace.h"

namespace {

CTrace::TraceSink& traceSink()
{
    static CTrace::TraceSink sink;
    return sink;
}

void Emit(TraceLine line)
{
    auto& sink = traceSink();
    if (!sink)
        return;
    try {
        sink(line);
    } catch (...) {
        // A failing sink must never reach the game.
    }
}

} // namespace

void CTrace::Trace(std::string text, std::int32_t flag)
{
    Emit({TraceLine::Plain, std::move(text), 0, flag});
}

void CTrace::TraceValue(std::int32_t value, std::string text, std::int32_t flag)
{
    Emit({TraceLine::Value, std::move(text), value, flag});
}

void CTrace::TraceCode(std::uint32_t code, std::string text, std::int32_t flag)
{
    Emit({TraceLine::Code, std::move(text), code, flag});
}

void CTrace::SetTraceSink(TraceSink sink)
{
    traceSink() = std::move(sink);
}
