#pragma once
#include "app/ReplayBar.h"
#include "app/ReplayClock.h"
#include "app/ReplayPlayer.h"
#include "platform/Gamepads.h"
#include "platform/Types.h"

#include <cstddef>
#include <cstdint>

class CGameApp;
class CReplayExport;
class CSurface;

// A recorded game shown in the window at the pace it was played: every
// frame composed as it was, with a small marker saying it is a replay. The
// live keyboard only stops it (Escape), pauses it (Space), sets the speed
// (- and +, 1 to 7), steps it (. and , while paused) and seeks (Left and
// Right or [ and ] by ten seconds, Page Up and Page Down by level); the
// recorded keys play the game. At its end the last picture stays a moment,
// then the window closes.
class CReplayShow {
public:
    static constexpr std::uint32_t EndHoldMs = 3000;
    static constexpr const char* MarkerText = "REPLAY";
    static constexpr double SeekStepMs = 10000.0;
    // The furthest a start may be asked for: beyond any recording's end.
    static constexpr double LongestStartSeconds = 1e9;
    static constexpr std::int32_t HighestStartLevel = 1000000;

    CReplayShow(CGameApp& app, CReplay replay);

    // Where the show starts instead of the beginning: a recorded time, or a level's start.
    void StartAtMs(double ms) { startMs = ms; }
    void StartAtLevel(std::int32_t level) { startLevel = level; }

    // Written to a video instead of shown: every picture as the window would
    // show it at the recorded pace, without the marker or the bar.
    void ExportTo(CReplayExport* video) { exporter = video; }
    // The exit status of the show: the replay's verdict, or the export's failure.
    int Status() const;

    void Begin();
    void OnLiveKey(UINT key, bool pressed);
    // The keys a gamepad's control stands for while a replay is watched.
    static PadKeys PadKeysFor(PadControl control);
    // Makes the next frame when it is due; false while there is nothing to
    // make (paused, or over), so the program may wait for input.
    bool ShowFrame();
    bool WentItsOwnWay() const { return player.GetFirstDivergence() != CReplayPlayer::NoDivergence; }

private:
    static constexpr std::size_t NoFrame = static_cast<std::size_t>(-1);
    // Draws a frame, the marker and the bar over it, and flips; frame is the
    // recorded frame it shows, for the frame observer.
    void Compose(double frameMs, std::size_t frame);
    void DrawMarker(CSurface& back);
    void NoteDivergence();

    void SetSpeed(std::size_t speed);
    void SetPaused(bool pause);
    // The game re-made to a number of frames, unseen and unheard, and shown.
    void SeekTo(std::size_t frames);
    void SeekLevel(int direction);
    void Shown(std::uint32_t now);
    CReplayBar::State BarState() const;
    // Makes the frames due for the next picture of a video, and writes it.
    void ExportPicture();
    void EndExport();

    CGameApp& app;
    CReplayPlayer player;
    CReplayClock clock;
    CReplayBar bar;
    bool finished = false;
    bool divergenceSaid = false;
    // A seek or a step made frames the window has not shown yet.
    bool unshown = false;
    // Whether the window has had a turn, and when its last one was.
    bool paced = false;
    std::uint32_t lastTurn = 0;
    // The recorded time up to the last frame made.
    double playedMs = 0.0;
    std::uint32_t endAt = 0;
    double startMs = 0.0;
    std::int32_t startLevel = 0;
    CReplayExport* exporter = nullptr;
    int exportStatus = 0;
};
