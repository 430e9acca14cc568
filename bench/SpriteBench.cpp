// The sprite layer of one frame: clear the back buffer, draw N colour-keyed
// sprite instances of the game's sizes, present. Measured against the floor
// (clear and present alone), with the sprite pages run-length encoded or not.
#include "app/GameApp.h"
#include "display/SpriteInstance.h"
#include "platform/Clock.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

struct SpriteSize {
    const char* name;
    int size;
    int directions;
    int frames;
};

// Roughly the looks of the game: ships and turrets turn, explosions animate.
const SpriteSize Sizes[] = {{"ship1", 32, 36, 0},     {"turrent1", 32, 36, 0}, {"asteroid1", 64, 0, 0},
                            {"asteroid3", 32, 0, 0},  {"asteroid4", 16, 0, 0}, {"spacemine1", 24, 0, 4},
                            {"explosion", 32, 0, 8},  {"bullet1", 6, 0, 0},    {"shrap", 4, 0, 0},
                            {"gold", 16, 0, 0}};

void PutLittle(std::ofstream& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.put(static_cast<char>((value >> (8 * i)) & 0xFF));
}

// A disc on black, the usual shape of a sprite with its keyed background.
void WriteDisc(const std::string& path, int size, std::uint8_t shade)
{
    const int row = (size * 3 + 3) & ~3;
    std::ofstream out(path, std::ios::binary);
    out.write("BM", 2);
    PutLittle(out, static_cast<std::uint32_t>(54 + row * size), 4);
    PutLittle(out, 0, 4);
    PutLittle(out, 54, 4);
    for (std::uint32_t v : {40u, static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(size)})
        PutLittle(out, v, 4);
    PutLittle(out, 1, 2);
    PutLittle(out, 24, 2);
    for (int i = 0; i < 6; ++i)
        PutLittle(out, 0, 4);
    const double r = size / 2.0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const bool inside = std::hypot(x + 0.5 - r, y + 0.5 - r) < r - 0.5;
            for (int c = 0; c < 3; ++c)
                out.put(static_cast<char>(inside ? shade + c * 20 : 0));
        }
        for (int p = size * 3; p < row; ++p)
            out.put(0);
    }
}

void WriteGameData()
{
    std::filesystem::create_directories("art");
    WriteDisc("art/blank.bmp", 4, 0);
    std::ofstream ini("sprite.ini");
    for (const SpriteSize& s : Sizes) {
        ini << s.name << ' ' << s.size << ' ' << s.size << ' ' << s.directions << ' ' << s.frames << ' '
            << (s.frames ? 60 : 0) << '\n';
        for (const std::string& file : CSpriteSet::FrameFiles(s.name, s.directions, s.frames))
            WriteDisc(file, s.size, static_cast<std::uint8_t>(60 + s.size));
    }
}

// One started game on the dummy video driver, in a scratch folder.
struct Bench {
    std::filesystem::path folder;
    std::unique_ptr<CGameApp> app;
    std::vector<CSpriteInstance> instances;

    Bench()
    {
        setenv("SDL_VIDEODRIVER", "dummy", 0);
        setenv("SDL_AUDIODRIVER", "dummy", 0);
        folder = std::filesystem::temp_directory_path() / "quelvarion-sprite-bench";
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        std::filesystem::current_path(folder);
        WriteGameData();
        Platform::SetSleepHandler([](std::uint32_t) {}); // neither the title pause nor any flip wait
        Platform::StartSdl();
        app = std::make_unique<CGameApp>();
        if (!app->InitInstance())
            std::abort();
        app->SeedRandom(1);
    }

    void Place(int count)
    {
        instances.assign(static_cast<std::size_t>(count), CSpriteInstance());
        const int kinds = static_cast<int>(std::size(Sizes));
        for (int i = 0; i < count; ++i) {
            CSpriteInstance& s = instances[static_cast<std::size_t>(i)];
            app->sprites.Find(Sizes[i % kinds].name, s);
            s.SetPosition(app->Rand() % (app->screenWidth + 40) - 20, app->Rand() % (app->screenHeight + 40) - 20);
            s.SetRotation(app->Rand() % 360);
        }
    }

    void RunLengthPages(bool enable)
    {
        for (const CSpritePage& page : app->sprites.GetPages())
            page.surface->SetRunLengthEncoded(enable);
    }

    void Clear() { app->display.GetBack()->ColourFill(nullptr, 0); }
    void Frame()
    {
        Clear();
        for (CSpriteInstance& s : instances)
            s.Draw(16.0);
        app->display.Flip();
    }
    double FloorSeconds()
    {
        constexpr int Rounds = 100;
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < Rounds; ++i) {
            Clear();
            app->display.Flip();
        }
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / Rounds;
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
    for (auto _ : state) {
        b.Clear();
        b.app->display.Flip();
    }
}
BENCHMARK(BM_ClearAndPresent)->Unit(benchmark::kMicrosecond);

// Arguments: the number of instances, and whether the pages are run-length encoded.
void BM_SpriteLayer(benchmark::State& state)
{
    Bench& b = TheBench();
    b.RunLengthPages(state.range(1) != 0);
    b.Place(static_cast<int>(state.range(0)));
    b.Frame(); // builds whatever encoding the copies use
    const double floor = b.FloorSeconds();
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state)
        b.Frame();
    const double perFrame =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / static_cast<double>(state.iterations());
    state.counters["floor_us"] = floor * 1e6;
    state.counters["x_floor"] = perFrame / floor;
    b.RunLengthPages(false);
}
BENCHMARK(BM_SpriteLayer)
    ->ArgNames({"n", "rle"})
    ->Args({100, 0})
    ->Args({100, 1})
    ->Args({1000, 0})
    ->Args({1000, 1})
    ->Unit(benchmark::kMicrosecond);

} // namespace


