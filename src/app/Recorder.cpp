#include "app/Recorder.h"

#include "app/GameApp.h"
#include "platform/Console.h"
#include "platform/FileStore.h"
#include "replay/StateHash.h"


void CRecorder::Begin(const CGameApp& app, std::int32_t startLevel)
{
    if (!enabled)
        return;
    replay = CReplay();
    replay.header = HeaderOf(app, startLevel);
    recording = true;
}

void CRecorder::Input(std::uint32_t message, std::uint32_t wParam)
{
    if (recording)
        replay.AddInput(message, wParam);
}

void CRecorder::DropLastInput()
{
    if (recording && replay.inputs.size() > replay.FirstInputBefore(replay.frames.size()))
        replay.inputs.pop_back();
}

void CRecorder::Frame(double elapsedMs, std::uint32_t stateHash)
{
    if (recording)
        replay.AddFrame(elapsedMs, stateHash);
}

void CRecorder::End(const CGameApp& app)
{
    if (!recording)
        return;
    recording = false;
    replay.summary = SummaryOf(app, static_cast<std::uint32_t>(replay.frames.size()));
    const std::string bytes = replay.Encode();
    if (!lastGameFile.empty())
        Save(lastGameFile, bytes);
    if (!recordFile.empty())
        Save(recordFile, bytes);
    finished = std::move(replay);
    replay = CReplay();
}

void CRecorder::Save(const std::string& path, const std::string& bytes) const
{
    if (const Result saved = Platform::SaveFile(path, bytes); saved != S_OK)
        Platform::PrintError("replay not saved in " + path + ": " + Platform::FileProblemText(saved));
}

CReplay::Header CRecorder::HeaderOf(const CGameApp& app, std::int32_t startLevel)
{
    CReplay::Header h;
    h.gameVersion = QV_VERSION;
    h.randomState = app.random.GetState();
    h.componentSerial = app.componentSerial;
    h.startLevel = startLevel;
    h.musicOn = app.menus.IsMusicOn();
    h.soundOn = app.menus.IsSoundOn();
    h.starsOn = app.menus.IsStarsOn();
    h.statsOn = app.menus.IsStatsOn();
    h.menuScreen = app.menus.GetScreen();
    h.optionsCursor = app.menus.GetOptionsCursor();
    const CHighScoreTable& table = app.menus.GetHighScores();
    for (int i = 0; i < CHighScoreTable::Size; ++i)
        h.highScores[static_cast<std::size_t>(i)] = {table.GetName(i), table.GetScore(i)};
    for (const CStar& star : app.stars)
        h.stars.push_back({star.GetX(), star.GetY(), star.GetSize(), star.GetBrightness(), star.IsRising()});
    return h;
}

std::uint32_t CRecorder::FrameHash(const CGameApp& app)
{
    CStateHash hash;
    hash.Add(app.gameState);
    HashWorld(app.world, hash);
    return hash.Folded();
}

CReplay::Summary CRecorder::SummaryOf(const CGameApp& app, std::uint32_t frameCount)
{
    CStateHash hash;
    HashWorld(app.world, hash);
    return {app.world.GetLevel(), app.world.GetScore(), frameCount, hash.Get()};
}
