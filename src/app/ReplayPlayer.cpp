#include "app/ReplayPlayer.h"

#include "app/GameApp.h"

#include <algorithm>

CReplayPlayer::CReplayPlayer(CGameApp& application, CReplay recorded) : app(application), replay(std::move(recorded))
{
    entryFrame.reserve(replay.frames.size() + 1);
    entryMs.reserve(replay.frames.size() + 1);
    std::size_t frames = 0;
    double ms = 0.0;
    for (const CReplay::Frame& frame : replay.frames) {
        entryFrame.push_back(frames);
        entryMs.push_back(ms);
        frames += frame.count;
        ms += frame.elapsedMs;
    }
    entryFrame.push_back(frames);
    entryMs.push_back(ms);
}

void CReplayPlayer::ApplyHeader()
{
    const CReplay::Header& h = replay.header;
    app.random.Seed(h.randomState);
    app.componentSerial = h.componentSerial;
    CMenuSystem& menus = app.menus;
    menus.SetOptionOn(OptionMusic, h.musicOn);
    menus.SetOptionOn(OptionSound, h.soundOn);
    menus.SetOptionOn(OptionStars, h.starsOn);
    menus.SetOptionOn(OptionStats, h.statsOn);
    if (CMenuOption* level = menus.FindOption(OptionStartLevel))
        level->SetValue(h.startLevel);
    menus.ShowScreen(h.menuScreen, h.optionsCursor);
    for (std::size_t i = 0; i < h.highScores.size(); ++i)
        menus.SetHighScore(static_cast<int>(i), h.highScores[i].name, h.highScores[i].score);
    if (!h.stars.empty()) {
        app.stars.clear();
        for (const CReplay::Star& s : h.stars)
            app.stars.push_back(CStar::Restored(s.x, s.y, s.size, s.brightness, s.rising));
    }
}

void CReplayPlayer::Begin()
{
    ApplyHeader();
    // As the menu's "New Game" does.
    app.ApplyMusicOption();
    app.StartGameAt(replay.header.startLevel);
    entry = 0;
    inRun = 0;
    made = 0;
    madeMs = 0.0;
    level = app.world.GetLevel();
    if (levelStarts.empty())
        levelStarts.push_back(0);
}

void CReplayPlayer::NoteLevel()
{
    const std::int32_t now = app.world.GetLevel();
    if (now == level)
        return;
    level = now;
    if (made > levelStarts.back())
        levelStarts.push_back(made);
}

void CReplayPlayer::SeekTo(std::size_t frames)
{
    const Checkpoint* nearest = CheckpointBefore(frames);
    if (nearest && (frames < made || nearest->made > made))
        Restore(*nearest);
    else if (frames < made)
        Begin();
    while (made < frames && HasNextFrame())
        Step();
}

const CReplayPlayer::Checkpoint* CReplayPlayer::CheckpointBefore(std::size_t frames) const
{
    const auto after = std::upper_bound(checkpoints.begin(), checkpoints.end(), frames,
                                        [](std::size_t f, const Checkpoint& c) { return f < c.made; });
    return after == checkpoints.begin() ? nullptr : &*(after - 1);
}

void CReplayPlayer::KeepCheckpointIfDue()
{
    const std::size_t kept = checkpoints.size();
    if (!keepingCheckpoints || madeMs < static_cast<double>(kept + 1) * CheckpointMs ||
        (kept > 0 && made <= checkpoints.back().made))
        return;
    checkpoints.push_back({made, entry, inRun, madeMs, level, CGameCheckpoint(app)});
}

void CReplayPlayer::Restore(const Checkpoint& checkpoint)
{
    checkpoint.game.Restore(app);
    made = checkpoint.made;
    entry = checkpoint.entry;
    inRun = checkpoint.inRun;
    madeMs = checkpoint.madeMs;
    level = checkpoint.level;
}

bool CReplayPlayer::SeekNextLevel()
{
    const auto known = std::upper_bound(levelStarts.begin(), levelStarts.end(), made);
    if (known != levelStarts.end()) {
        SeekTo(*known);
        return true;
    }
    const std::size_t count = levelStarts.size();
    while (HasNextFrame() && levelStarts.size() == count)
        Step();
    return levelStarts.size() != count;
}

double CReplayPlayer::MsAfter(std::size_t frames) const
{
    frames = std::min(frames, FrameCount());
    const std::size_t e =
        static_cast<std::size_t>(std::upper_bound(entryFrame.begin(), entryFrame.end(), frames) - entryFrame.begin()) - 1;
    if (e >= replay.frames.size())
        return TotalMs();
    return entryMs[e] + static_cast<double>(frames - entryFrame[e]) * replay.frames[e].FrameMs();
}

std::size_t CReplayPlayer::FramesWithin(double ms) const
{
    if (ms >= TotalMs())
        return FrameCount();
    const std::size_t e =
        static_cast<std::size_t>(std::upper_bound(entryMs.begin(), entryMs.end(), ms) - entryMs.begin()) - 1;
    const CReplay::Frame& frame = replay.frames[e];
    const double frameMs = frame.FrameMs();
    const std::size_t within = frameMs > 0.0 ? static_cast<std::size_t>((ms - entryMs[e]) / frameMs) : frame.count;
    return entryFrame[e] + std::min<std::size_t>(within, frame.count);
}

void CReplayPlayer::Deliver(std::size_t first, std::size_t end)
{
    for (std::size_t i = first; i < end; ++i) {
        const CReplay::Input& input = replay.inputs[i];
        if (input.message == WM_ACTIVATEAPP)
            app.OnActivate(input.wParam != 0);
        else
            app.OnKey(input.wParam, input.message == WM_KEYDOWN);
    }
}

double CReplayPlayer::Step()
{
    const CReplay::Frame& frame = replay.frames[entry];
    if (inRun == 0)
        Deliver(replay.FirstInputBefore(entry), replay.EndInputBefore(entry));
    const double ms = frame.FrameMs();
    app.AdvanceFrame(ms);
    // A frame made again by a seek was checked the first time: the rules are
    // the same, so only frames never made before cost a digest.
    if (made >= checkedFrames && firstDivergence == NoDivergence &&
        app.FrameHash(replay.DigestCoversRandom()) != frame.stateHash)
        firstDivergence = static_cast<std::int64_t>(made);
    ++made;
    madeMs += ms;
    checkedFrames = std::max(checkedFrames, made);
    NoteLevel();
    if (++inRun == frame.count) {
        inRun = 0;
        ++entry;
    }
    KeepCheckpointIfDue();
    return ms;
}

void CReplayPlayer::Finish()
{
    Deliver(replay.FirstInputBefore(replay.frames.size()), replay.EndInputBefore(replay.frames.size()));
}

CReplay::Summary CReplayPlayer::Summary() const
{
    return app.ReplaySummary(static_cast<std::uint32_t>(made));
}
