#include "platform/App.h"
#include "platform/Gamepads.h"

#include <SDL.h>
#include <benchmark/benchmark.h>

namespace {

// What looking for gamepads costs: SDL's game controller support started
// (its mapping database read, the joysticks enumerated) and stopped again.
// The game pays it once, after the title screen is up.
void BM_StartGamepads(benchmark::State& state)
{
    Platform::StartSdl();
    for (auto _ : state) {
        CGamepads pads(nullptr);
        if (!pads.Start())
            state.SkipWithError(SDL_GetError());
    }
}
BENCHMARK(BM_StartGamepads)->Unit(benchmark::kMillisecond);

} // namespace
