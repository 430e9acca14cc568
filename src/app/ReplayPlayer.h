#pragma once
#include "app/GameCheckpoint.h"
#include "replay/Replay.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class CGameApp;

// Plays a recorded game again through the application's own rules: it puts
// the game as the recording found it, starts it as "New Game" did, and hands
// the rules every recorded input and frame in order, checking after each
// frame that the game stands as it stood when it was recorded.
class CReplayPlayer {
public:
    static constexpr std::int64_t NoDivergence = -1;

    CReplayPlayer(CGameApp& application, CReplay recorded);

    // Starts the game as recorded; again, it starts it afresh.
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

    // Seeking: the game re-made to stand as it stood after a number of frames,
    // stepping on unseen from here or from the nearest checkpoint before.
    void SeekTo(std::size_t frames);
    // Keeps the game as it stands every CheckpointMs of recorded time the
    // first time there, so a seek re-makes at most that much. Off, a seek
    // behind starts from the beginning (and a check keeps no memory).
    static constexpr double CheckpointMs = 10000.0;
    void KeepCheckpoints() { keepingCheckpoints = true; }
    std::size_t CheckpointCount() const { return checkpoints.size(); }
    // Every frame of the recording, each frame of a run counted.
    std::size_t FrameCount() const { return entryFrame.back(); }
    double TotalMs() const { return entryMs.back(); }
    // The recorded time after a number of frames, and the most frames that
    // fit in a recorded time.
    double MsAfter(std::size_t frames) const;
    std::size_t FramesWithin(double ms) const;
    // Where each level began, as a number of frames made: a seek there shows
    // its first frame. Known up to the furthest frame made so far.
    const std::vector<std::size_t>& GetLevelStarts() const { return levelStarts; }
    // Steps on to the next level's start (or the end); true if one was found.
    bool SeekNextLevel();
    // The first frame (from 0) after which the game stood otherwise than
    // recorded, or NoDivergence.
    std::int64_t GetFirstDivergence() const { return firstDivergence; }
    // How the game stands now, against how the recording ended.
    CReplay::Summary Summary() const;
    const CReplay& GetReplay() const { return replay; }

private:
    struct Checkpoint {
        std::size_t made;
        std::size_t entry;
        std::uint32_t inRun;
        double madeMs;
        std::int32_t level;
        CGameCheckpoint game;
    };

    void ApplyHeader();
    void KeepCheckpointIfDue();
    // The last checkpoint at or before a number of frames, or null.
    const Checkpoint* CheckpointBefore(std::size_t frames) const;
    void Restore(const Checkpoint& checkpoint);
    void Deliver(std::size_t first, std::size_t end);
    void NoteLevel();

    CGameApp& app;
    CReplay replay;
    // The next frame: an entry of the recording, and which frame of its run.
    std::size_t entry = 0;
    std::uint32_t inRun = 0;
    std::size_t made = 0;
    double madeMs = 0.0;
    bool keepingCheckpoints = false;
    std::vector<Checkpoint> checkpoints;
    std::int64_t firstDivergence = NoDivergence;
    // Frames checked against the recording so far.
    std::size_t checkedFrames = 0;
    // For each entry of the recording (and its end), its first frame and
    // the recorded time before it.
    std::vector<std::size_t> entryFrame;
    std::vector<double> entryMs;
    std::vector<std::size_t> levelStarts;
    std::int32_t level = 0;
};
