#include <benchmark/benchmark.h>

#include <cstdlib>

// One table for every benchmark. They run without a display or sound card,
// on SDL's dummy drivers, like the tests.
int main(int argc, char** argv)
{
    setenv("SDL_VIDEODRIVER", "dummy", 0);
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
