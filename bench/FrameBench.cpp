// Whole frames of a level in play: the world's step and the composition of
// the picture on the back buffer, with the game's own sprites. No flip, so no
// wait for the display: what is measured is the game's work per frame.
#include "GameFolder.h"
#include "Samples.h"
#include "app/GameApp.h"
#include "platform/Clock.h"
#include "ship/Ship.h"
#include "support/GameDriver.h"
#include "world/GameObject.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

namespace {

constexpr double FrameMs = 1000.0 / 60.0;
constexpr std::int32_t Level = 4;         // asteroids, mines and turrets all come
constexpr std::uint32_t Seed = 20240601;
constexpr int FramesPerScene = 1200;      // twenty seconds of play, then the level starts afresh
constexpr UINT FireKey = 'F';             // the first laser's key
constexpr UINT TurnKey = 0x25;            // left arrow: the ship turns and sprays its shots around

// The game started as it starts for a player (without the title pause), in a
// scratch folder whose data files are links to the built game data.
struct FrameBench {
    CGameFolder folder{"quelvarion-frame-bench"};
    std::unique_ptr<CGameApp> app;
    std::unique_ptr<CGameDriver> driver;

    FrameBench()
    {
        Platform::SetSleepHandler([](std::uint32_t) {});
        Platform::StartSdl();
        app = std::make_unique<CGameApp>();
        if (!app->InitInstance())
            std::abort();
        driver = std::make_unique<CGameDriver>(*app);
    }
    ~FrameBench()
    {
        driver.reset();
        app.reset();
        Platform::SetSleepHandler(nullptr);
    }

    // The level's start, the same every time: the ship refitted from the
    // offer, its usual traffic in, the fire and turn keys held.
    void StartScene()
    {
        driver->Seed(Seed);
        driver->StartGame(Level);
        while (driver->GetGameState() == StatePlaying)
            driver->Frame(FrameMs);
        driver->Refit();
        driver->StartLevel();
        CWorld& world = driver->World();
        world.SpawnAsteroids(8);
        world.SpawnMines(3);
        world.SpawnTurrets(1);
        driver->Key(FireKey, true);
        driver->Key(TurnKey, true);
    }

    bool InPlay() const { return driver->GetGameState() == StatePlaying && driver->Player(); }

};

// What the world holds, summed over the frames measured.
struct Traffic {
    double objects = 0.0;
    double shots = 0.0;
    double ships = 0.0;

    void Count(const CWorld& world)
    {
        for (const CLinkedItem* n = world.GetMasterList().GetHead(); n; n = n->GetNext()) {
            const CGameObject* object = n->GetData();
            objects += 1;
            shots += object->GetType() == ObjectProjectile;
            ships += object->GetType() == ObjectShip;
        }
    }
};

void BM_WholeFrame(benchmark::State& state)
{
    FrameBench bench;
    bench.StartScene();
    CSamples stepUs;
    CSamples drawUs;
    Traffic traffic;
    int scenes = 1;
    int sceneFrames = 0;
    for (auto _ : state) {
        if (sceneFrames == FramesPerScene || !bench.InPlay()) {
            state.PauseTiming();
            bench.StartScene();
            sceneFrames = 0;
            ++scenes;
            state.ResumeTiming();
        }
        const auto start = BenchClock::now();
        bench.app->world.Update(FrameMs);
        stepUs.Add(MicrosecondsSince(start));
        const auto drawn = BenchClock::now();
        bench.app->DrawFrame(FrameMs);
        drawUs.Add(MicrosecondsSince(drawn));
        ++sceneFrames;
        state.PauseTiming();
        traffic.Count(bench.app->world);
        state.ResumeTiming();
    }
    const auto frames = static_cast<double>(state.iterations());
    stepUs.Report(state, "step_us");
    drawUs.Report(state, "draw_us");
    state.counters["objects"] = traffic.objects / frames;
    state.counters["shots"] = traffic.shots / frames;
    state.counters["ships"] = traffic.ships / frames;
    state.counters["scenes"] = scenes;
}

// F12 in flight: what the frame loop spends taking the picture (a copy of the
// frame) beside what it spends drawing it; the file is written behind, on the
// screenshots' own thread, here waited for outside the measurement.
void BM_ScreenshotInFlight(benchmark::State& state)
{
    FrameBench bench;
    const std::filesystem::path pictures = bench.folder.folder / "pictures";
    setenv("XDG_PICTURES_DIR", pictures.c_str(), 1);
    bench.StartScene();
    CSamples drawUs;
    CSamples takeUs;
    for (auto _ : state) {
        bench.app->world.Update(FrameMs);
        const auto drawn = BenchClock::now();
        bench.app->DrawFrame(FrameMs);
        drawUs.Add(MicrosecondsSince(drawn));
        const auto taken = BenchClock::now();
        bench.app->screenshots.Take(*bench.app->display.GetBack());
        takeUs.Add(MicrosecondsSince(taken));
        state.PauseTiming();
        bench.app->screenshots.Finish();
        state.ResumeTiming();
    }
    unsetenv("XDG_PICTURES_DIR");
    drawUs.Report(state, "draw_us");
    takeUs.Report(state, "take_us");
}

} // namespace

BENCHMARK(BM_ScreenshotInFlight)->Iterations(60)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WholeFrame)->Iterations(3 * FramesPerScene)->Unit(benchmark::kMicrosecond);
