// The two ways a recorded game is played again: shown in the window, or
// checked without one.
#include "app/GameApp.h"
#include "app/ReplayShow.h"

#include <cstdio>

void CGameApp::KeepPlayersFiles()
{
    menus.KeepFileAsIs();
    recorder.SetEnabled(false);
}

void CGameApp::SetReplayShow(std::unique_ptr<CReplayShow> show)
{
    replayShow = std::move(show);
    KeepPlayersFiles();
}

int CGameApp::ExitInstance()
{
    const int status = CPlatformApp::ExitInstance();
    return replayShow && replayShow->WentItsOwnWay() ? ReplayDiffersStatus : status;
}

namespace {

void SayDifference(const std::string& file, const CReplay::Summary& recorded, const CReplay::Summary& played)
{
    std::fprintf(stderr,
                 "quelvarion: %s: the game ends otherwise than recorded: level %d, score %d, %u frames, "
                 "state %016llx instead of level %d, score %d, %u frames, state %016llx\n",
                 file.c_str(), played.level, played.score, played.frameCount,
                 static_cast<unsigned long long>(played.worldHash), recorded.level, recorded.score,
                 recorded.frameCount, static_cast<unsigned long long>(recorded.worldHash));
}

} // namespace

int CGameApp::VerifyReplayFile(const std::string& file)
{
    CReplay replay;
    std::string error;
    if (!CReplay::Load(file, replay, error)) {
        std::fprintf(stderr, "quelvarion: %s: %s\n", file.c_str(), error.c_str());
        return ReplayUnreadableStatus;
    }
    return VerifyReplay(std::move(replay), file);
}

int CGameApp::VerifyReplay(CReplay replay, const std::string& file)
{
    if (replay.header.gameVersion != QV_VERSION)
        std::fprintf(stderr, "quelvarion: %s was recorded by version %s of the game; this is %s\n", file.c_str(),
                     replay.header.gameVersion.c_str(), QV_VERSION);
    KeepPlayersFiles();
    ready = 1;
    active = 1;
    const std::uint32_t frames = static_cast<std::uint32_t>(replay.frames.size());
    const CReplay::Summary recorded = replay.summary;
    CReplayPlayer player(*this, std::move(replay));
    player.Begin();
    while (player.HasNextFrame() && player.GetFirstDivergence() == CReplayPlayer::NoDivergence)
        player.Step();
    if (player.GetFirstDivergence() != CReplayPlayer::NoDivergence) {
        std::fprintf(stderr, "quelvarion: %s: the game differs from the recording at frame %lld of %u\n",
                     file.c_str(), static_cast<long long>(player.GetFirstDivergence()), frames);
        return ReplayDiffersStatus;
    }
    player.Finish();
    const CReplay::Summary played = player.Summary();
    if (!(played == recorded)) {
        SayDifference(file, recorded, played);
        return ReplayDiffersStatus;
    }
    std::printf("%s: the replay plays as recorded: %u frames, level %d, score %d\n", file.c_str(), frames,
                played.level, played.score);
    return 0;
}
