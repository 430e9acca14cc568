#include "platform/Ending.h"

#include "platform/Console.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>

namespace Platform {
namespace {

constexpr int EndingSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int PhasePollMs = 20;

std::atomic<Phase> phase{Phase::Starting};
std::atomic<bool> closeRequested{false};
std::atomic<bool> ending{false};
pid_t programPid = 0;
int signalPipe[2] = {-1, -1};
std::atomic<bool> listening{false};
std::atomic<int> signalsHeard{0};

std::mutex& wordsLock()
{
    static std::mutex lock;
    return lock;
}

LastWords& lastWords()
{
    static LastWords words;
    return words;
}

extern "C" void OnEndingSignal(int signal)
{
    const int saved = errno;
    const unsigned char number = static_cast<unsigned char>(signal);
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &number, 1);
    errno = saved;
}

// A child of ours (a message box drawn by a process of its own) must not
// outlive the program, nor take its signals for the program's.
extern "C" void OnForkChild()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (int signal : EndingSignals)
        std::signal(signal, SIG_DFL);
    if (::getppid() != programPid)
        ::_exit(0); // the program ended before the child could ask to end with it
}

std::string SignalName(int signal)
{
    switch (signal) {
    case SIGINT: return "SIGINT";
    case SIGTERM: return "SIGTERM";
    case SIGHUP: return "SIGHUP";
    default: return "signal " + std::to_string(signal);
    }
}

bool WaitWhileLooping(int ms)
{
    for (int waited = 0; waited < ms; waited += PhasePollMs) {
        if (phase != Phase::Looping)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(PhasePollMs));
    }
    return phase != Phase::Looping;
}

// The loop, when one runs, closes the game itself and saves as usual; only a
// loop that does not answer in time, a second signal, or no loop at all ends
// the program from here.
void OnSignalHeard(int signal, int heardBefore)
{
    const std::string line = "ended by " + SignalName(signal);
    if (heardBefore == 0 && phase == Phase::Looping) {
        closeRequested = true;
        if (WaitWhileLooping(LoopGraceMs))
            return;
        EndAtOnce(SignalStatusBase + signal, line + ": the game did not close in time");
    }
    if (heardBefore == 0 && phase == Phase::Ending)
        return;
    EndAtOnce(SignalStatusBase + signal, line);
}

void ListenForSignals()
{
    for (;;) {
        unsigned char number = 0;
        const ssize_t got = ::read(signalPipe[0], &number, 1);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return;
        OnSignalHeard(number, signalsHeard++);
    }
}

// Xlib's own handlers end the program through exit, whose destructors call
// into SDL on the dead connection and never return.
struct XErrorReport {
    int type;
    void* display;
    unsigned long resource;
    unsigned long serial;
    unsigned char errorCode;
    unsigned char requestCode;
    unsigned char minorCode;
};
using XIOErrorHandler = int (*)(void*);
using XErrorHandler = int (*)(void*, XErrorReport*);

extern "C" int OnDisplayConnectionLost(void*)
{
    EndAtOnce(DisplayLostStatus, DisplayLostLine);
}

extern "C" int OnDisplayRefusal(void*, XErrorReport* report)
{
    EndAtOnce(DisplayLostStatus, "the display refused a request (X error " + std::to_string(report->errorCode) +
                                     ", request " + std::to_string(report->requestCode) +
                                     "); what the game had to save is saved");
}

} // namespace

void SetLastWords(LastWords words)
{
    std::lock_guard<std::mutex> hold(wordsLock());
    lastWords() = std::move(words);
}

void EndAtOnce(int status, const std::string& line)
{
    // Only the first caller saves; any other waits for it to end the program.
    if (ending.exchange(true))
        for (;;)
            ::pause();
    // A child of ours (a message box) ends with its own display connection:
    // the program itself will tell.
    if (programPid != 0 && ::getpid() != programPid)
        ::_exit(status);
    {
        std::lock_guard<std::mutex> hold(wordsLock());
        if (lastWords())
            lastWords()();
    }
    PrintError(line);
    ::_exit(status);
}

void SetPhase(Phase now)
{
    phase = now;
}

void HearEndingSignals(Listening how)
{
    if (signalPipe[0] < 0) {
        programPid = ::getpid();
        if (::pipe2(signalPipe, O_CLOEXEC) != 0)
            return;
        ::pthread_atfork(nullptr, nullptr, OnForkChild);
        struct sigaction action {};
        action.sa_handler = OnEndingSignal;
        action.sa_flags = SA_RESTART; // a file being read when one comes is read on, not failed
        sigemptyset(&action.sa_mask);
        for (int signal : EndingSignals)
            ::sigaction(signal, &action, nullptr);
    }
    if (how == Listening::OnItsOwn && !listening.exchange(true))
        std::thread(ListenForSignals).detach();
}

void AnswerEndingSignals()
{
    if (signalPipe[0] < 0 || listening)
        return;
    pollfd waiting{signalPipe[0], POLLIN, 0};
    unsigned char number = 0;
    while (::poll(&waiting, 1, 0) > 0 && ::read(signalPipe[0], &number, 1) == 1)
        OnSignalHeard(number, signalsHeard++);
}

bool TakeCloseRequest()
{
    return closeRequested.exchange(false);
}

void WatchDisplayConnection()
{
    // SDL loads Xlib itself, so the program need not link it: find the one loaded.
    void* xlib = ::dlopen("libX11.so.6", RTLD_LAZY | RTLD_NOLOAD);
    if (!xlib)
        return;
    using SetIOHandler = XIOErrorHandler (*)(XIOErrorHandler);
    using SetHandler = XErrorHandler (*)(XErrorHandler);
    if (auto setIO = reinterpret_cast<SetIOHandler>(::dlsym(xlib, "XSetIOErrorHandler")))
        setIO(OnDisplayConnectionLost);
    if (auto set = reinterpret_cast<SetHandler>(::dlsym(xlib, "XSetErrorHandler")))
        set(OnDisplayRefusal);
    ::dlclose(xlib);
}

} // namespace Platform
