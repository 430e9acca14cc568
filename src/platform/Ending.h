#pragma once
#include <functional>
#include <string>

// How the program ends when it cannot end through its message loop: its
// display gone (nothing may call into SDL or X any more), or an ending signal
// that arrives while no loop listens (a start-up step, the title pause, an
// error box, a replay being checked). What the player has is saved by the
// last words, which touch files only; then the program leaves at once, and
// the system lets go of the folder's lock.
namespace Platform {

// The exit status of a game whose display went away, and its line.
constexpr int DisplayLostStatus = 4;
constexpr const char* DisplayLostLine =
    "the display went away (its connection broke); what the game had to save is saved";
// The exit status of a program an ending signal ended at once: 128 + signal.
constexpr int SignalStatusBase = 128;
// How long a message loop has to end after an ending signal before the
// program ends without it.
constexpr int LoopGraceMs = 700;

using LastWords = std::function<void()>;
// Registers what to save on an ending at once; an empty function forgets it.
void SetLastWords(LastWords words);

// Saves through the last words (once, whoever asks), writes line to stderr
// and leaves with status, without running any destructor.
[[noreturn]] void EndAtOnce(int status, const std::string& line);

// Where the program stands, for a signal that arrives now: inside the loop,
// which ends the game itself; before it, where the signal ends the program at
// once; or past it, ending already.
enum class Phase { Starting, Looping, Ending };
void SetPhase(Phase phase);

// Hears SIGINT, SIGTERM and SIGHUP from now on, in every phase: on a thread
// of its own, which answers even while the program waits on the display or a
// box, or, for work that never waits (a replay being checked), whenever
// AnswerEndingSignals is called; such work starts no thread at all, so it
// runs wherever the program can, under emulators that cannot start threads
// too. A helper process the program starts (a message box's) ends with the
// program.
enum class Listening { OnItsOwn, WhenAsked };
void HearEndingSignals(Listening listening = Listening::OnItsOwn);
// Answers the ending signals heard since last asked, as the thread would.
void AnswerEndingSignals();
// Whether an ending signal asked the loop to close the game; asking clears it.
bool TakeCloseRequest();

// With SDL's X11 video up: a connection to the display that breaks, or a
// request it refuses, ends the game at once with DisplayLostStatus.
void WatchDisplayConnection();

} // namespace Platform
