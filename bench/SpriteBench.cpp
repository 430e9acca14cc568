// The sprite layer of one frame: clear the back buffer, draw the looks of a
// level's objects with the game's own sprites, present. Every iteration also
// makes the floor frame (clear and present alone) right before, so both see
// the same machine at the same moment; the figures are medians of the pairs,
// and sprites_us the drawing of the sprites alone, timed within the frame.
#include "GameFolder.h"
#include "Samples.h"
#include "app/GameApp.h"
#include "display/SpriteInstance.h"
#include "platform/Clock.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

struct Looks {
    const char* name;
    int count;
};

// What a level shows at once, by the game's own catalogue. A usual frame of a
// level in play (the level-4 scene of the whole-frame benchmark holds about 28
// objects, a dozen of them shots), and a crowded one: a turret fight over
// broken asteroids with explosions and their shrapnel.
const std::vector<Looks> UsualLevel = {{"ship1", 1},     {"turrent1", 1}, {"asteroid4", 3}, {"asteroid3", 3},
                                       {"asteroid1", 3}, {"spacemine1", 2}, {"explosion", 1}, {"bullet1", 8},
                                       {"bullet2", 2},   {"shrap", 4}};
const std::vector<Looks> CrowdedLevel = {{"ship1", 1},      {"turrent1", 3},   {"asteroid4", 4}, {"asteroid3", 8},
                                         {"asteroid1", 12}, {"spacemine1", 3}, {"spacemine2", 2}, {"explosion", 4},
                                         {"bullet1", 16},   {"bullet2", 12},  {"shrap", 30},     {"gold", 2}};
const std::vector<Looks>* const Scenes[] = {&UsualLevel, &CrowdedLevel};

// The game started on the dummy video driver with its own data.
struct Bench {
    CGameFolder folder{"quelvarion-sprite-bench"};
    std::unique_ptr<CGameApp> app;
    std::vector<CSpriteInstance> instances;

    Bench()
    {
        Platform::SetSleepHandler([](std::uint32_t) {}); // neither the title pause nor any wait for the display
        Platform::StartSdl();
        app = std::make_unique<CGameApp>();
        if (!app->InitInstance())
            std::abort();
        app->SeedRandom(1);
    }

    void Place(const std::vector<Looks>& scene)
    {
        instances.clear();
        for (const Looks& looks : scene) {
            for (int i = 0; i < looks.count; ++i) {
                CSpriteInstance s;
                app->sprites.Find(looks.name, s);
                // Some lie across the screen's edges, as objects coming in do.
                s.SetPosition(app->Rand() % (app->screenWidth + 40) - 20, app->Rand() % (app->screenHeight + 40) - 20);
                s.SetRotation(app->Rand() % 360);
                instances.push_back(s);
            }
        }
    }

    void RunLengthPages(bool enable)
    {
        for (const CSpritePage& page : app->sprites.GetPages())
            page.surface->SetRunLengthEncoded(enable);
    }

    void Clear() { app->display.GetBack()->ColourFill(nullptr, 0); }
    void Floor()
    {
        Clear();
        app->display.Flip();
    }
    // The whole frame; drawUs gets the time the sprites alone took.
    void Frame(double& drawUs)
    {
        Clear();
        const auto start = BenchClock::now();
        for (CSpriteInstance& s : instances)
            s.Draw(16.0);
        drawUs = MicrosecondsSince(start);
        app->display.Flip();
    }
};

Bench& TheBench()
{
    static Bench bench;
    return bench;
}

void BM_ClearAndPresent(benchmark::State& state)
{
    Bench& b = TheBench();
    CSamples floor;
    for (auto _ : state) {
        const auto start = BenchClock::now();
        b.Floor();
        floor.Add(MicrosecondsSince(start));
    }
    floor.Report(state, "floor_us");
}
BENCHMARK(BM_ClearAndPresent)->Unit(benchmark::kMicrosecond);

// Arguments: the scene (0 a usual level, 1 a crowded one) and whether the
// pages are run-length encoded. The time shown is the whole frame's.
void BM_SpriteLayer(benchmark::State& state)
{
    Bench& b = TheBench();
    b.RunLengthPages(state.range(1) != 0);
    b.Place(*Scenes[state.range(0)]);
    double drawUs = 0.0;
    b.Frame(drawUs); // builds whatever encoding the copies use
    CSamples floor;
    CSamples frame;
    CSamples sprites;
    for (auto _ : state) {
        const auto start = BenchClock::now();
        b.Floor();
        const auto between = BenchClock::now();
        b.Frame(drawUs);
        const double frameUs = MicrosecondsSince(between);
        floor.Add(std::chrono::duration<double, std::micro>(between - start).count());
        frame.Add(frameUs);
        sprites.Add(drawUs);
        state.SetIterationTime(frameUs * 1e-6);
    }
    state.counters["sprites"] = static_cast<double>(b.instances.size());
    floor.Report(state, "floor_us");
    sprites.Report(state, "sprites_us");
    state.counters["x_floor"] = frame.Median() / floor.Median();
    b.RunLengthPages(false);
}
BENCHMARK(BM_SpriteLayer)
    ->ArgNames({"scene", "rle"})
    ->Args({0, 0})
    ->Args({1, 0})
    ->Args({1, 1})
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace
