// Start-up, step by step, as the game starts on the dummy video driver with
// its own data, from a cold picture store (every bitmap decoded from its
// file): the steps are told apart by the trace lines that begin them. The
// title pause is left out; on a real desktop the window system adds its own
// time (see bench/desktop).
#include "GameFolder.h"
#include "Samples.h"
#include "app/GameApp.h"
#include "display/Bitmaps.h"
#include "platform/Clock.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>

namespace {

// The step each trace line begins, and the counter it is reported under.
const std::map<std::string, std::string> StepStarts = {
    {"Creating Window \"Quelvarion\" ", "window_ms"},
    {"Creating game fonts", "fonts_ms"},
    {"Displaying main window", "display_ms"},
    {"display title screen", "title_ms"},
    {"Restore all direct draw buffers", "sprites_ms"},
    {"Playing initialisation sound", "sound_ms"},
    {"Creating background stars", "stars_ms"},
    {"********* Initialisation Complete ********", ""},
};

void BM_StartUp(benchmark::State& state)
{
    CGameFolder folder("quelvarion-startup-bench");
    Platform::SetSleepHandler([](std::uint32_t) {});
    Platform::StartSdl();
    std::map<std::string, CSamples> steps;
    CSamples toTitle;
    for (auto _ : state) {
        ForgetDecodedBitmaps();
        std::string step;
        BenchClock::time_point stepStart;
        const BenchClock::time_point start = BenchClock::now();
        CGameApp::SetTraceSink([&](const TraceLine& line) {
            const auto next = StepStarts.find(line.text);
            if (next == StepStarts.end())
                return;
            const auto now = BenchClock::now();
            if (!step.empty())
                steps[step].Add(std::chrono::duration<double, std::milli>(now - stepStart).count());
            if (line.text == "Restore all direct draw buffers") // the title is on the screen now
                toTitle.Add(std::chrono::duration<double, std::milli>(now - start).count());
            step = next->second;
            stepStart = now;
        });
        {
            auto app = std::make_unique<CGameApp>();
            if (!app->InitInstance())
                std::abort();
            CGameApp::SetTraceSink(nullptr);
        }
    }
    Platform::SetSleepHandler(nullptr);
    toTitle.Report(state, "to_title_ms");
    for (const auto& [name, samples] : steps)
        state.counters[name] = samples.Median();
}
BENCHMARK(BM_StartUp)->Iterations(15)->Unit(benchmark::kMillisecond);

// Regaining the focus: the display's restore redraws every sprite page. With
// the decoded bitmaps kept, against reading every file again (both in the
// same iteration, the files in the system's cache either way).
void BM_RestoreOnActivation(benchmark::State& state)
{
    CGameFolder folder("quelvarion-restore-bench");
    Platform::SetSleepHandler([](std::uint32_t) {});
    Platform::StartSdl();
    auto app = std::make_unique<CGameApp>();
    if (!app->InitInstance())
        std::abort();
    CSamples kept;
    CSamples reread;
    for (auto _ : state) {
        auto start = BenchClock::now();
        app->display.Restore();
        kept.Add(MicrosecondsSince(start) / 1000);
        ForgetDecodedBitmaps();
        start = BenchClock::now();
        app->display.Restore();
        reread.Add(MicrosecondsSince(start) / 1000);
    }
    app.reset();
    Platform::SetSleepHandler(nullptr);
    kept.Report(state, "restore_ms");
    reread.Report(state, "reread_ms");
}
BENCHMARK(BM_RestoreOnActivation)->Iterations(20)->Unit(benchmark::kMillisecond);

} // namespace
