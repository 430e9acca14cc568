#pragma once
#include "core/Trace.h"

#include <functional>
#include <string>

// The terminal the game was started from: one line on stderr for every
// failure the player must hear about, and, when asked for, the trace.
namespace Platform {

// Writes "quelvarion: <line>" to stderr as one write. A closed or full stderr
// is ignored: telling of a problem never becomes one.
void PrintError(const std::string& line);

// Tests catch the lines instead; null restores stderr.
using ErrorLineHandler = std::function<void(const std::string&)>;
void SetErrorLineHandler(ErrorLineHandler handler);

// Milliseconds since the program started (the first call counts as the start).
double MillisecondsSinceStart();

// One trace call as its line on stderr: the time since start, then the text,
// then the number of a value or code call.
std::string TraceLineText(const TraceLine& line, double ms);
// Every trace call from now on goes to stderr.
void TraceToStderr();

} // namespace Platform
