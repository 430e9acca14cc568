// The two ways a recorded game is played again: shown in the window, or
// checked without one.
#include "app/GameApp.h"
#include "app/GameVersion.h"
#include "app/ReplayShow.h"
#include "platform/Console.h"
#include "platform/Ending.h"
#include "replay/StateHash.h"

#include <cstdio>

CReplay::Header CGameApp::ReplayHeader(std::int32_t startLevel) const
{
    CReplay::Header h;
    h.gameVersion = GameVersion();
    h.randomState = random.GetState();
    h.componentSerial = componentSerial;
    h.startLevel = startLevel;
    h.musicOn = menus.IsMusicOn();
    h.soundOn = menus.IsSoundOn();
    h.starsOn = menus.IsStarsOn();
    h.statsOn = menus.IsStatsOn();
    h.menuScreen = menus.GetScreen();
    h.optionsCursor = menus.GetOptionsCursor();
    const CHighScoreTable& table = menus.GetHighScores();
    for (int i = 0; i < CHighScoreTable::Size; ++i)
        h.highScores[static_cast<std::size_t>(i)] = {table.GetName(i), table.GetScore(i)};
    for (const CStar& star : stars)
        h.stars.push_back({star.GetX(), star.GetY(), star.GetSize(), star.GetBrightness(), star.IsRising()});
    return h;
}

std::uint32_t CGameApp::FrameHash(bool withRandom) const
{
    CStateHash hash;
    hash.Add(gameState);
    HashWorld(world, hash);
    if (withRandom)
        hash.Add(random.GetState());
    return hash.Folded();
}

CReplay::Summary CGameApp::ReplaySummary(std::uint32_t frameCount) const
{
    CStateHash hash;
    HashWorld(world, hash);
    return {world.GetLevel(), world.GetScore(), frameCount, hash.Get()};
}

void CGameApp::EndRecording()
{
    if (recorder.IsRecording())
        recorder.End(ReplaySummary(recorder.GetReplay().FrameCount()));
}

void CGameApp::KeepPlayersFiles()
{
    menus.KeepFileAsIs();
    recorder.SetEnabled(false);
}

void CGameApp::SetReplayShow(CReplayShow* show)
{
    replayShow = show;
    KeepPlayersFiles();
}

void CGameApp::BeginReplayShow()
{
    if (replayShow)
        replayShow->Begin();
}

bool CGameApp::ShowReplayFrame()
{
    return replayShow->ShowFrame();
}

void CGameApp::OnReplayLiveKey(UINT key, bool pressed)
{
    replayShow->OnLiveKey(key, pressed);
}

PadKeys CGameApp::ReplayPadKeys(PadControl control)
{
    return CReplayShow::PadKeysFor(control);
}

int CGameApp::ExitInstance()
{
    const int status = CPlatformApp::ExitInstance();
    return replayShow && replayShow->Status() != 0 ? replayShow->Status() : status;
}

bool CGameApp::PlaysByOurRules(const CReplay::Header& header, const std::string& file)
{
    if (header.rulesVersion != CReplay::RulesVersion) {
        Platform::PrintError(file + " was recorded under other rules (rules " + std::to_string(header.rulesVersion) +
                             "; this game plays by rules " + std::to_string(CReplay::RulesVersion) +
                             "), so it cannot play as recorded");
        return false;
    }
    if (header.gameVersion != GameVersion())
        Platform::PrintError(file + " was recorded by version " + header.gameVersion + " of the game; this is " +
                             GameVersion() + ", which plays by the same rules");
    return true;
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
    if (!PlaysByOurRules(replay.header, file))
        return ReplayDiffersStatus;
    KeepPlayersFiles();
    ready = 1;
    active = 1;
    const std::uint32_t frames = replay.FrameCount();
    const CReplay::Summary recorded = replay.summary;
    CReplayPlayer player(*this, std::move(replay));
    player.Begin();
    while (player.HasNextFrame() && player.GetFirstDivergence() == CReplayPlayer::NoDivergence) {
        Platform::AnswerEndingSignals();
        player.Step();
    }
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
