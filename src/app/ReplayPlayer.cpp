#include "app/ReplayPlayer.h"

#include "app/GameApp.h"

CReplayPlayer::CReplayPlayer(CGameApp& application, CReplay recorded) : app(application), replay(std::move(recorded))
{
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
    if (firstDivergence == NoDivergence && app.FrameHash(replay.DigestCoversRandom()) != frame.stateHash)
        firstDivergence = static_cast<std::int64_t>(made);
    ++made;
    if (++inRun == frame.count) {
        inRun = 0;
        ++entry;
    }
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
