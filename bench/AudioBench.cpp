// What the music costs the audio thread: one output chunk of the game's tune
// rendered by the sequencer's stream and passed through the limiter, as the
// output's mix takes it.
#include "platform/FileBytes.h"
#include "platform/Limiter.h"
#include "platform/MusicStream.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr int Rate = 44100;
constexpr std::size_t ChunkFrames = 1024; // the output's chunk

void BM_MusicChunk(benchmark::State& state)
{
    setenv("SDL_SOUNDFONTS", QV_GAME_DIR "/background.sf2", 0); // the game's own instruments
    const auto bytes = Platform::ReadFileAtMost(QV_GAME_DIR "/background.mid", CMidiTune::MaxFileBytes);
    auto parsed = bytes ? CMidiTune::Parse(bytes->data(), bytes->size()) : std::nullopt;
    auto synthesiser = CSynthesiser::Create(Rate);
    if (!parsed || !synthesiser) {
        state.SkipWithError("no tune or no sound font");
        return;
    }
    const auto tune = std::make_shared<const CMidiTune>(std::move(*parsed));
    CMusicStream stream(std::move(synthesiser), Rate);
    CLimiter limiter(Rate);
    std::vector<float> chunk(2 * ChunkFrames);
    stream.Start(tune);
    for (auto _ : state) {
        std::fill(chunk.begin(), chunk.end(), 0.0f);
        if (stream.Render(chunk.data(), ChunkFrames))
            stream.Start(tune); // round and round, as the game plays it
        limiter.Process(chunk.data(), ChunkFrames);
        benchmark::DoNotOptimize(chunk.data());
    }
    // Frames of music made a second of CPU time; the output takes 44100.
    state.counters["frames_per_s"] =
        benchmark::Counter(static_cast<double>(ChunkFrames * state.iterations()), benchmark::Counter::kIsRate);
}
// A minute and a half of music: the whole tune and its seam.
BENCHMARK(BM_MusicChunk)->Iterations(Rate * 90 / ChunkFrames)->Unit(benchmark::kMicrosecond);

} // namespace
