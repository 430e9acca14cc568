#include "app/ReplayShow.h"

#include "app/GameApp.h"
#include "frontend/TextPen.h"
#include "platform/Clock.h"
#include "platform/Console.h"
#include "platform/DC.h"
#include "platform/Surface.h"

#include <algorithm>
#include <string>

namespace {

// Long waits are taken in short pieces so the live keys stay quick.
constexpr std::uint32_t LongestWaitMs = 10;
// The longest the frames made between two pictures may take to make.
constexpr std::uint32_t LongestCatchUpMs = 100;
constexpr std::int32_t MarkerMargin = 8;
constexpr std::int32_t MarkerRise = 18;
constexpr COLORREF MarkerColour = RGB(150, 150, 150);

} // namespace

CReplayShow::CReplayShow(CGameApp& application, CReplay replay) : app(application), player(application, std::move(replay))
{
}

void CReplayShow::Begin()
{
    player.Begin();
    origin = Platform::TimeGetTime();
}

void CReplayShow::OnLiveKey(UINT key, bool pressed)
{
    if (!pressed)
        return;
    if ((key & 0xFF) == VK_ESCAPE) {
        Game::CloseMainWindow();
    } else if ((key & 0xFF) == VK_SPACE && !finished) {
        paused = !paused;
        const std::uint32_t now = Platform::TimeGetTime();
        if (paused)
            pausedAt = now;
        else
            origin += now - pausedAt;
    }
}

bool CReplayShow::ShowFrame()
{
    const std::uint32_t now = Platform::TimeGetTime();
    if (finished) {
        if (now - endAt >= EndHoldMs)
            Game::CloseMainWindow();
        return false;
    }
    if (paused)
        return false;
    if (!player.HasNextFrame()) {
        player.Finish();
        Compose(0.0, NoFrame); // what the last inputs changed, drawn once
        finished = true;
        endAt = now;
        return false;
    }
    const double sinceOrigin = static_cast<double>(now - origin);
    const double due = playedMs + player.NextFrameMs();
    if (sinceOrigin < due) {
        Platform::Sleep(std::min(LongestWaitMs, static_cast<std::uint32_t>(due - sinceOrigin)));
        return true;
    }
    // As many recorded frames as the time gone by demands, the last one shown:
    // a game recorded at a faster refresh than this screen's keeps its pace.
    // The others are drawn unseen, so what moves with each drawing (the
    // stars' twinkle) moves as it did. A frame kept as a snapshot is shown.
    // A machine too slow to keep up still shows a picture now and then, and
    // hears the live keys.
    for (;;) {
        playedMs += player.NextFrameMs();
        const double frameMs = player.Step();
        NoteDivergence();
        const std::size_t made = player.GetFramesMade() - 1;
        if (!player.HasNextFrame() || playedMs + player.NextFrameMs() > sinceOrigin || app.IsFrameWanted(made) ||
            Platform::TimeGetTime() - now >= LongestCatchUpMs) {
            Compose(frameMs, made);
            return true;
        }
        app.DrawFrame(frameMs);
    }
}

void CReplayShow::Compose(double frameMs, std::size_t frame)
{
    app.DrawFrame(frameMs);
    if (CSurface* back = app.display.GetBack()) {
        DrawMarker(*back);
        app.LookAtFrame(frame, *back);
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
