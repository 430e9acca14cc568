// The two ways a recorded game is played again: shown in the window, or
// checked without one.
#include "app/GameApp.h"
#include "app/ReplayShow.h"
#include "platform/Console.h"

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

std::string Describe(const CReplay::Summary& s)
{
    char state[17];
    std::snprintf(state, sizeof state, "%016llx", static_cast<unsigned long long>(s.worldHash));
    return "level " + std::to_string(s.level) + ", score " + std::to_string(s.score) + ", " +
           std::to_string(s.frameCount) + " frames, state " + state;
}

} // namespace

int CGameApp::VerifyReplayFile(const std::string& file)
{
    CReplay replay;
    std::string error;
    if (!CReplay::Load(file, replay, error)) {
        Platform::PrintError(file + ": " + error);
        return ReplayUnreadableStatus;
    }
    return VerifyReplay(std::move(replay), file);
}

int CGameApp::VerifyReplay(CReplay replay, const std::string& file)
{
    if (replay.header.gameVersion != QV_VERSION)
        Platform::PrintError(file + " was recorded by version " + replay.header.gameVersion + " of the game; this is " +
                             QV_VERSION + ", which may play it otherwise");
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
        Platform::PrintError(file + ": the game differs from the recording at frame " +
                             std::to_string(player.GetFirstDivergence()) + " of " + std::to_string(frames));
        return ReplayDiffersStatus;
    }
    player.Finish();
    const CReplay::Summary played = player.Summary();
    if (!(played == recorded)) {
        Platform::PrintError(file + ": the game ends otherwise than recorded: " + Describe(played) + " instead of " +
                             Describe(recorded));
        return ReplayDiffersStatus;
    }
    std::printf("%s: the replay plays as recorded: %u frames, level %d, score %d\n", file.c_str(), frames,
                played.level, played.score);
    return 0;
}
