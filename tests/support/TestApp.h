#pragma once
#include "app/GameApp.h"
#include "platform/Clock.h"
#include "platform/MessageBox.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace qvtest {

// Runs a test inside its own empty working directory, since the game reads and
// writes its files relative to the working directory.
class ScopedWorkDir {
public:
    ScopedWorkDir();
    ~ScopedWorkDir();
    const std::filesystem::path& Path() const { return dir; }

private:
    std::filesystem::path dir;
    std::filesystem::path previous;
};

// A manual millisecond clock and an instant sleep for the platform layer.
class FakeClock {
public:
    FakeClock()
    {
        Platform::SetClockSource([this] { return now; });
        Platform::SetSleepHandler([this](std::uint32_t ms) { slept += ms; });
    }
    ~FakeClock()
    {
        Platform::SetClockSource(nullptr);
        Platform::SetSleepHandler(nullptr);
    }
    void Set(std::uint32_t ms) { now = ms; }
    void Advance(std::uint32_t ms) { now += ms; }
    std::uint32_t Now() const { return now; }
    std::uint32_t SleptMs() const { return slept; }

private:
    std::uint32_t now = 1000;
    std::uint32_t slept = 0;
};

// Records every trace call while alive.
class TraceRecorder {
public:
    TraceRecorder() { CGameApp::SetTraceSink([this](const TraceLine& line) { lines.push_back(line); }); }
    ~TraceRecorder() { CGameApp::SetTraceSink(nullptr); }
    std::vector<TraceLine> lines;
    std::vector<std::string> Texts() const;
};

// A game application of the test's own, in a scratch folder, with a seeded
// generator and a fake clock. Nothing is shown and nothing waits.
struct TestApp {
    ScopedWorkDir dir;
    FakeClock clock;
    std::unique_ptr<CGameApp> app;

    explicit TestApp(std::uint32_t seed = 12345);
    CGameApp& operator*() { return *app; }
    CGameApp* operator->() { return app.get(); }
};

} // namespace qvtest
