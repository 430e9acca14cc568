#pragma once
#include "app/ReplayPlayer.h"
#include "platform/Types.h"

#include <cstddef>
#include <cstdint>

class CGameApp;
class CSurface;

// A recorded game shown in the window at the pace it was played: every
// frame composed as it was, with a small marker saying it is a replay. The
// live keyboard only stops it (Escape) or pauses it (Space); the recorded
// keys play the game. At its end the last picture stays a moment, then the
// window closes.
class CReplayShow {
public:
    static constexpr std::uint32_t EndHoldMs = 3000;
    static constexpr const char* MarkerText = "REPLAY";

    CReplayShow(CGameApp& app, CReplay replay);

    void Begin();
    void OnLiveKey(UINT key, bool pressed);
    // Makes the next frame when it is due; false while there is nothing to
    // make (paused, or over), so the program may wait for input.
    bool ShowFrame();
    bool WentItsOwnWay() const { return player.GetFirstDivergence() != CReplayPlayer::NoDivergence; }

private:
    static constexpr std::size_t NoFrame = static_cast<std::size_t>(-1);
    // Draws a frame, the marker over it, and flips; frame is the recorded
    // frame it shows, for the frame observer.
    void Compose(double frameMs, std::size_t frame);
    void DrawMarker(CSurface& back);
    void NoteDivergence();

    CGameApp& app;
    CReplayPlayer player;
    bool paused = false;
    bool finished = false;
    bool divergenceSaid = false;
    // The clock reading at which the replay's time began, moved on by pauses.
    std::uint32_t origin = 0;
    std::uint32_t pausedAt = 0;
    // The recorded time up to the last frame made.
    double playedMs = 0.0;
    std::uint32_t endAt = 0;
};
