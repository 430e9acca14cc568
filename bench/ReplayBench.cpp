// Checking a replay: a five-minute game, recorded as the game records the
// player's, played again through the rules without a window or sound, as
// --verify does. Seeking in a replay watched: a jump back near the end of a
// thirty-minute game, which re-makes the game from its start.
#include "app/GameApp.h"
#include "app/ReplayPlayer.h"
#include "support/GameDriver.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>

namespace {

namespace fs = std::filesystem;

constexpr double FrameMs = 1000.0 / 60.0;
constexpr int FiveMinutes = 5 * 60 * 60;
constexpr int ThirtyMinutes = 30 * 60 * 60;
constexpr std::uint32_t Seed = 4; // a game whose ship lives through the five minutes
constexpr UINT FlightKeys[] = {VK_LEFT, VK_RIGHT, 'F', 'D'};

// The game's files go to a scratch folder; nothing of the game's data is needed.
struct ScratchFolder {
    fs::path previous = fs::current_path();
    fs::path folder = fs::temp_directory_path() / "quelvarion-replay-bench";
    ScratchFolder()
    {
        fs::remove_all(folder);
        fs::create_directories(folder);
        fs::current_path(folder);
    }
    ~ScratchFolder()
    {
        fs::current_path(previous);
        fs::remove_all(folder);
    }
};

// Minutes of the first levels, turned and fired by random keys, refitted between levels.
CReplay Record(int frames)
{
    CGameApp app;
    CGameDriver driver(app);
    std::minstd_rand script(Seed);
    driver.Seed(Seed);
    driver.StartGame(1);
    for (int frame = 0; frame < frames && driver.GetGameState() != StateMenu;) {
        if (driver.GetGameState() == StateDesign) {
            driver.Refit();
            driver.StartLevel();
            continue;
        }
        if (script() % 20 == 0)
            driver.Key(FlightKeys[script() % std::size(FlightKeys)], script() % 2 == 0);
        driver.Frame(FrameMs);
        ++frame;
    }
    app.EndRecording();
    return app.recorder.GetFinished();
}

void BM_VerifyFiveMinuteGame(benchmark::State& state)
{
    ScratchFolder scratch;
    const CReplay replay = Record(FiveMinutes);
    if (replay.frames.size() != FiveMinutes)
        state.SkipWithError("the recorded ship did not live five minutes");
    CGameApp app;
    app.KeepPlayersFiles();
    for (auto _ : state) {
        CReplayPlayer player(app, replay);
        player.Begin();
        while (player.HasNextFrame())
            player.Step();
        player.Finish();
        if (player.GetFirstDivergence() != CReplayPlayer::NoDivergence || !(player.Summary() == replay.summary))
            state.SkipWithError("the replay did not play as recorded");
    }
    state.counters["frames"] = static_cast<double>(replay.frames.size());
    state.counters["minutes"] = static_cast<double>(replay.frames.size()) / (60 * 60);
    state.counters["level"] = replay.summary.level;
}
BENCHMARK(BM_VerifyFiveMinuteGame)->Unit(benchmark::kMillisecond)->Iterations(5);

// Ten seconds back from the end of the game, as the Left key asks: the game
// is re-made unseen from the checkpoint before there (or, without them, from
// its start). With checkpoints:2, the worst case lands just before a checkpoint: nearly the
// whole spacing is re-made.
void BM_SeekBackAtEndOfThirtyMinuteGame(benchmark::State& state)
{
    ScratchFolder scratch;
    const CReplay replay = Record(ThirtyMinutes);
    CGameApp app;
    app.KeepPlayersFiles();
    CReplayPlayer player(app, replay);
    if (state.range(0) != 0)
        player.KeepCheckpoints();
    player.Begin();
    player.SeekTo(player.FrameCount());
    const double lastCheckpointMs = static_cast<double>(player.CheckpointCount()) * CReplayPlayer::CheckpointMs;
    const std::size_t target = state.range(0) == 2 ? player.FramesWithin(lastCheckpointMs - 1.0) - 1
                                                   : player.FramesWithin(player.TotalMs() - 10000.0);
    for (auto _ : state) {
        player.SeekTo(target);
        state.PauseTiming();
        player.SeekTo(player.FrameCount());
        state.ResumeTiming();
    }
    if (player.GetFirstDivergence() != CReplayPlayer::NoDivergence)
        state.SkipWithError("the replay did not play as recorded");
    state.counters["minutes"] = player.TotalMs() / 60000.0;
    state.counters["level"] = replay.summary.level;
    state.counters["checkpoints"] = static_cast<double>(player.CheckpointCount());
}
BENCHMARK(BM_SeekBackAtEndOfThirtyMinuteGame)->ArgName("checkpoints")->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
