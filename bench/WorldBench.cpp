// One frame of the world with many moving objects: the band sweep the game
// uses against a plain test of every pair. Both step the same crowd the same
// number of frames, so they see the same contacts (hits_per_frame).
#include "app/GameApp.h"
#include "display/SpriteInstance.h"
#include "world/GameObject.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace {

constexpr std::int32_t FrameMs = 16;

// Frames stepped for each crowd size, the same for both ways of finding contacts.
std::int64_t FramesFor(std::int64_t objects)
{
    return objects <= 100 ? 20000 : objects <= 1000 ? 400 : 40;
}

std::int64_t hits = 0;

// A drifting object that bounces off the walls and shrugs off every hit, so
// the crowd stays the same size from frame to frame.
class CDrifter : public CGameObject {
public:
    CDrifter(std::int32_t x, std::int32_t y, float xs, float ys, std::int32_t r)
    {
        vector.Set(x, y, xs, ys);
        radius = r;
        mass = 0.1f * r;
        boundsMode = BoundsBounce;
    }
    void OnHit(std::int32_t, CGameObject*) override { ++hits; }
};

// The application, in a scratch folder so that nothing it may read or write lands here.
struct BenchApp {
    std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::path dir = std::filesystem::temp_directory_path() / "quelvarion-bench";
    CGameApp* app;

    BenchApp()
    {
        std::filesystem::create_directories(dir);
        std::filesystem::current_path(dir);
        app = new CGameApp;
        app->SeedRandom(20240601);
    }
    ~BenchApp()
    {
        delete app;
        std::filesystem::current_path(previous);
        std::filesystem::remove_all(dir);
    }
};

std::vector<CGameObject*> Populate(CGameApp& app, std::int64_t count)
{
    std::vector<CGameObject*> objects;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto r = static_cast<std::int32_t>(2 + app.Draw(12));
        const auto x = static_cast<std::int32_t>(r + 1 + app.Draw(1024 - 2 * r - 2));
        const auto y = static_cast<std::int32_t>(r + 1 + app.Draw(768 - 2 * r - 2));
        const auto xs = static_cast<float>(app.Draw(400) - 200);
        const auto ys = static_cast<float>(app.Draw(400) - 200);
        auto* o = new CDrifter(x, y, xs, ys, r);
        app.world.AddObject(o);
        objects.push_back(o);
    }
    app.world.StepObjects(0); // registers everyone in the bands
    return objects;
}

void ReportPerObject(benchmark::State& state)
{
    state.counters["per_object"] = benchmark::Counter(
        static_cast<double>(state.range(0)), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void ReportContacts(benchmark::State& state)
{
    ReportPerObject(state);
    state.counters["hits_per_frame"] = static_cast<double>(hits) / static_cast<double>(state.iterations());
}

void BM_WorldStep_BandSweep(benchmark::State& state)
{
    BenchApp bench;
    Populate(*bench.app, state.range(0));
    hits = 0;
    for (auto _ : state)
        bench.app->world.StepObjects(FrameMs);
    ReportContacts(state);
}

void BM_WorldStep_AllPairs(benchmark::State& state)
{
    BenchApp bench;
    std::vector<CGameObject*> objects = Populate(*bench.app, state.range(0));
    hits = 0;
    for (auto _ : state) {
        for (CGameObject* o : objects)
            o->Update(FrameMs);
        for (std::size_t i = 0; i < objects.size(); ++i) {
            CGameObject& a = *objects[i];
            if (a.GetSprite())
                a.GetSprite()->SetPosition(a.GetX(), a.GetY());
            if (!a.IsCollidable())
                continue;
            for (std::size_t j = i + 1; j < objects.size(); ++j)
                if (objects[j]->IsCollidable())
                    a.Collide(*objects[j]);
        }
    }
    ReportContacts(state);
}

// Many objects dying in one frame, their looks leaving the live list: each
// removal should cost the same however many objects there are.
void BM_ObjectsDieAtOnce(benchmark::State& state)
{
    BenchApp bench;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<CGameObject*> objects;
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            auto* o = new CDrifter(100, 100, 0, 0, 4);
            o->SetSprite("asteroid1");
            bench.app->world.AddObject(o);
            objects.push_back(o);
        }
        // They die in the world's order, not the order their looks were made.
        std::reverse(objects.begin(), objects.end());
        state.ResumeTiming();
        for (CGameObject* o : objects)
            bench.app->world.DeleteObject(o);
    }
    ReportPerObject(state);
}

// Each crowd size on its own, so that each can have its own number of frames.
const bool registered = [] {
    for (std::int64_t n : {100, 1000, 5000}) {
        benchmark::RegisterBenchmark("BM_WorldStep_BandSweep", BM_WorldStep_BandSweep)
            ->Arg(n)->Iterations(FramesFor(n))->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark("BM_WorldStep_AllPairs", BM_WorldStep_AllPairs)
            ->Arg(n)->Iterations(FramesFor(n))->Unit(benchmark::kMicrosecond);
    }
    return true;
}();

} // namespace

BENCHMARK(BM_ObjectsDieAtOnce)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);


