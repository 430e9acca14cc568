#pragma once
#include "replay/Replay.h"

#include <cstddef>
#include <cstdint>

class CGameApp;

// Plays a recorded game again through the application's own rules: it puts
// the game as the recording found it, starts it as "New Game" did, and hands
// the rules every recorded input and frame in order, checking after each
// frame that the game stands as it stood when it was recorded.
class CReplayPlayer {
public:
    static constexpr std::int64_t NoDivergence = -1;

    CReplayPlayer(CGameApp& application, CReplay recorded);

    void Begin();
    bool HasNextFrame() const { return entry < replay.frames.size(); }
    // The length of the next frame.
    double NextFrameMs() const { return replay.frames[entry].FrameMs(); }
    // Hands over the inputs received before the next frame, then makes the
    // frame's step of the rules (without drawing). Returns its length.
    double Step();
    // Hands over what came after the last frame.
    void Finish();

    std::size_t GetFramesMade() const { return made; }
    // The first frame (from 0) after which the game stood otherwise than
    // recorded, or NoDivergence.
    std::int64_t GetFirstDivergence() const { return firstDivergence; }
    // How the game stands now, against how the recording ended.
    CReplay::Summary Summary() const;
    const CReplay& GetReplay() const { return replay; }

private:
    void ApplyHeader();
    void Deliver(std::size_t first, std::size_t end);

    CGameApp& app;
    CReplay replay;
    // The next frame: an entry of the recording, and which frame of its run.
    std::size_t entry = 0;
    std::uint32_t inRun = 0;
    std::size_t made = 0;
    std::int64_t firstDivergence = NoDivergence;
};
