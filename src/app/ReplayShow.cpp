#include "app/ReplayShow.h"

#include "app/GameApp.h"
#include "app/ReplayExport.h"
#include "frontend/TextPen.h"
#include "platform/AudioDevice.h"
#include "platform/Clock.h"
#include "platform/Console.h"
#include "platform/DC.h"
#include "platform/Surface.h"
#include "platform/WavePlayer.h"

#include <algorithm>
#include <string>

namespace {

// Long waits are taken in short pieces so the live keys stay quick.
constexpr std::uint32_t LongestWaitMs = 10;
// The longest the frames made between two pictures may take to make.
constexpr std::uint32_t LongestCatchUpMs = 100;
// At the fastest speed, a picture about every refresh of a 60 Hz screen.
constexpr std::uint32_t FastestBatchMs = 16;
constexpr std::int32_t MarkerMargin = 8;
constexpr std::int32_t MarkerRise = 18;
constexpr COLORREF MarkerColour = RGB(150, 150, 150);
// A level that began this shortly before is passed over by "previous level",
// as a player pressing it twice in a row would want.
constexpr double PreviousLevelGraceMs = 2000.0;

} // namespace

CReplayShow::CReplayShow(CGameApp& application, CReplay replay) : app(application), player(application, std::move(replay))
{
}

void CReplayShow::Begin()
{
    player.KeepCheckpoints();
    player.Begin();
    if (startLevel > 0 || startMs > 0.0) {
        Platform::SilenceAudio(true);
        while (app.world.GetLevel() < startLevel && player.SeekNextLevel()) {
        }
        if (startMs > 0.0)
            player.SeekTo(player.FramesWithin(startMs));
        NoteDivergence();
        Platform::PlaySound(nullptr, 0);
        Platform::SilenceAudio(false);
        unshown = true;
    }
    playedMs = player.MsAfter(player.GetFramesMade());
    clock.Restart(playedMs, Platform::TimeGetTime());
    if (exporter && !exporter->Start(app.screenWidth, app.screenHeight, player.TotalMs())) {
        exportStatus = exporter->GetStatus();
        exporter = nullptr;
        Game::CloseMainWindow();
    }
}

int CReplayShow::Status() const
{
    if (exporter)
        return CReplayExport::EncoderFailedStatus; // stopped before its end
    if (exportStatus != 0)
        return exportStatus;
    return WentItsOwnWay() ? CGameApp::ReplayDiffersStatus : 0;
}

void CReplayShow::ExportPicture()
{
    const std::size_t due = player.FramesWithin(exporter->NextPictureMs());
    double frameMs = 0.0;
    while (player.GetFramesMade() < due) {
        playedMs += player.NextFrameMs();
        // What the frame starts is heard from its end, as when it is shown.
        exporter->SoundUntil(playedMs);
        frameMs = player.Step();
        NoteDivergence();
        if (player.GetFramesMade() < due)
            app.DrawFrame(frameMs);
    }
    app.DrawFrame(frameMs);
    CSurface* back = app.display.GetBack();
    if (back && !exporter->TakePicture(*back))
        EndExport();
}

void CReplayShow::EndExport()
{
    if (!player.HasNextFrame())
        player.Finish();
    exportStatus = exporter->Finish();
    exporter = nullptr;
    finished = true;
    Game::CloseMainWindow();
}

PadKeys CReplayShow::PadKeysFor(PadControl control)
{
    switch (control) {
    case PadControl::LeftShoulder: return {{VK_OEM_MINUS}, 0};
    case PadControl::RightShoulder: return {{VK_OEM_PLUS}, 0};
    case PadControl::South: return {{VK_SPACE}, 0};
    case PadControl::Start:
    case PadControl::Back: return {{VK_ESCAPE}, 0};
    case PadControl::Left: return {{VK_LEFT}, 0};
    case PadControl::Right: return {{VK_RIGHT}, 0};
    case PadControl::Up: return {{VK_NEXT}, 0};
    case PadControl::Down: return {{VK_PRIOR}, 0};
    case PadControl::East: return {{VK_OEM_PERIOD}, 0};
    case PadControl::West: return {{VK_OEM_COMMA}, 0};
    default: return {};
    }
}

void CReplayShow::OnLiveKey(UINT key, bool pressed)
{
    if (!pressed)
        return;
    const std::uint32_t now = Platform::TimeGetTime();
    bar.Wake(now);
    if (finished)
        endAt = now; // the viewer is still there: the end waits for them
    const UINT code = key & 0xFF;
    const std::size_t speed = clock.GetSpeed();
    switch (code) {
    case VK_ESCAPE: Game::CloseMainWindow(); break;
    case VK_SPACE: SetPaused(!clock.IsPaused()); break;
    case VK_OEM_MINUS: SetSpeed(speed > 0 ? speed - 1 : 0); break;
    case VK_OEM_PLUS: SetSpeed(speed + 1); break;
    case VK_OEM_PERIOD:
        SetPaused(true);
        SeekTo(player.GetFramesMade() + 1);
        break;
    case VK_OEM_COMMA:
        SetPaused(true);
        SeekTo(player.GetFramesMade() > 0 ? player.GetFramesMade() - 1 : 0);
        break;
    case VK_LEFT:
    case VK_OEM_4: SeekTo(player.FramesWithin(std::max(0.0, playedMs - SeekStepMs))); break;
    case VK_RIGHT:
    case VK_OEM_6: SeekTo(player.FramesWithin(playedMs + SeekStepMs)); break;
    case VK_PRIOR: SeekLevel(-1); break;
    case VK_NEXT: SeekLevel(1); break;
    default:
        if (code >= '1' && code < '1' + CReplayClock::SpeedCount)
            SetSpeed(code - '1');
        break;
    }
}

void CReplayShow::SetSpeed(std::size_t speed)
{
    clock.SetSpeed(std::min(speed, CReplayClock::FastestSpeed), playedMs, Platform::TimeGetTime());
    Platform::SilenceAudio(!CReplayClock::Heard(clock.GetSpeed()));
}

void CReplayShow::SetPaused(bool pause)
{
    if (!finished)
        clock.SetPaused(pause, playedMs, Platform::TimeGetTime());
}

void CReplayShow::SeekTo(std::size_t frames)
{
    Platform::SilenceAudio(true);
    player.SeekTo(frames);
    NoteDivergence();
    // What the frames made unseen started is not heard after them.
    Platform::PlaySound(nullptr, 0);
    Platform::SilenceAudio(!CReplayClock::Heard(clock.GetSpeed()));
    Shown(Platform::TimeGetTime());
}

void CReplayShow::SeekLevel(int direction)
{
    if (direction > 0) {
        Platform::SilenceAudio(true);
        player.SeekNextLevel();
        SeekTo(player.GetFramesMade());
        return;
    }
    std::size_t target = 0;
    for (std::size_t start : player.GetLevelStarts())
        if (player.MsAfter(start) < playedMs - PreviousLevelGraceMs)
            target = start;
    SeekTo(target);
}

// After a seek: the picture is to be drawn anew, and the pace goes on from it.
void CReplayShow::Shown(std::uint32_t now)
{
    playedMs = player.MsAfter(player.GetFramesMade());
    clock.Restart(playedMs, now);
    finished = finished && !player.HasNextFrame();
    unshown = true;
}

bool CReplayShow::ShowFrame()
{
    if (exporter) {
        if (exporter->HasNextPicture())
            ExportPicture();
        else
            EndExport();
        return exporter != nullptr;
    }
    const std::uint32_t now = Platform::TimeGetTime();
    // The pace is taken up at the window's first turn and again after a
    // stall, as the game pauses after one: a start that took long or a
    // machine that stopped the program is not made up by racing through the
    // recording.
    if (!paced || now - lastTurn > CGameApp::StalledFrameMs)
        clock.Restart(playedMs, now);
    paced = true;
    lastTurn = now;
    if (unshown) {
        unshown = false;
        Compose(0.0, NoFrame);
        return true;
    }
    const bool barShowing = bar.Opacity(now) > 0.0;
    if (finished || clock.IsPaused()) {
        if (finished && now - endAt >= EndHoldMs)
            Game::CloseMainWindow();
        // The bar fades on a picture that stands still.
        if (!barShowing)
            return false;
        Platform::Sleep(LongestWaitMs);
        Compose(0.0, NoFrame);
        return true;
    }
    if (!player.HasNextFrame()) {
        player.Finish();
        Compose(0.0, NoFrame); // what the last inputs changed, drawn once
        finished = true;
        endAt = now;
        return false;
    }
    const double due = clock.DueMs(now);
    const double next = playedMs + player.NextFrameMs();
    if (due < next) {
        const double factor = CReplayClock::Factors[clock.GetSpeed()];
        Platform::Sleep(std::min(LongestWaitMs, static_cast<std::uint32_t>((next - due) / factor)));
        return true;
    }
    // As many recorded frames as the time gone by demands, the last one shown:
    // a game recorded at a faster refresh than this screen's keeps its pace,
    // and a faster speed shows fewer of them. The others are drawn unseen, so
    // what moves with each drawing (the stars' twinkle) moves as it did, but
    // at the fastest speed, which only makes them. A frame kept as a snapshot
    // is shown. A machine too slow to keep up still shows a picture now and
    // then, and hears the live keys.
    const bool fastest = clock.GetSpeed() == CReplayClock::FastestSpeed;
    const std::uint32_t budget = fastest ? FastestBatchMs : LongestCatchUpMs;
    for (;;) {
        playedMs += player.NextFrameMs();
        const double frameMs = player.Step();
        NoteDivergence();
        const std::size_t made = player.GetFramesMade() - 1;
        if (!player.HasNextFrame() || playedMs + player.NextFrameMs() > due || app.IsFrameWanted(made) ||
            Platform::TimeGetTime() - now >= budget) {
            Compose(frameMs, made);
            return true;
        }
        if (!fastest)
            app.DrawFrame(frameMs);
    }
}

CReplayBar::State CReplayShow::BarState() const
{
    CReplayBar::State state;
    state.atMs = playedMs;
    state.totalMs = player.TotalMs();
    for (std::size_t start : player.GetLevelStarts())
        state.levelMs.push_back(player.MsAfter(start));
    state.speed = CReplayClock::SpeedName(clock.GetSpeed());
    state.paused = clock.IsPaused();
    return state;
}

void CReplayShow::Compose(double frameMs, std::size_t frame)
{
    app.DrawFrame(frameMs);
    if (CSurface* back = app.display.GetBack()) {
        DrawMarker(*back);
        app.LookAtFrame(frame, *back);
        bar.Draw(*back, app.smallFont, app.screenWidth, app.screenHeight, BarState(), Platform::TimeGetTime());
    }
    app.DrawComfortNotice();
    if (app.display.Flip() == DDERR_SURFACELOST)
        app.display.Restore();
}

void CReplayShow::DrawMarker(CSurface& back)
{
    CDC* dc = nullptr;
    if (back.GetDC(dc) != DD_OK || !dc)
        return;
    dc->SetBkMode(TRANSPARENT);
    {
        CTextPen pen(*dc, app.smallFont, MarkerColour);
        pen.Write(MarkerMargin, app.screenHeight - MarkerRise, MarkerText);
    }
    back.ReleaseDC(dc);
}

void CReplayShow::NoteDivergence()
{
    if (divergenceSaid || !WentItsOwnWay())
        return;
    divergenceSaid = true;
    Platform::PrintError("from frame " + std::to_string(player.GetFirstDivergence()) +
                         " on, this game does not play the replay as it was recorded");
}
