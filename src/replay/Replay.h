#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// One recorded game: what the game was started with, every frame's length as
// the frame loop handed it to the rules, every input message the main window
// received between frames, and a summary of how it ended. Given the same
// start, frames and inputs the game plays the same, so a replay can be shown
// again or checked against what the recording saw.
class CReplay {
public:
    // The format this game writes. Version 1 (no checksum, no rules version,
    // a digest without the random generator) is still read.
    static constexpr std::uint16_t FormatVersion = 2;
    static constexpr std::uint16_t FirstFormatVersion = 1;
    // The rules this game plays by. A change that makes a recorded game play
    // otherwise on purpose moves it on; replays of other rules are not
    // expected to play as recorded.
    static constexpr std::uint16_t RulesVersion = 1;
    // About 20 hours of play at 250 frames a second, 90 at 60 (pauses and
    // menus cost a few bytes however long they last); a larger file is not a
    // replay, and checking one would take too long to wait for.
    static constexpr std::size_t MaxFileBytes = 128u << 20;
    static constexpr std::size_t MaxTextBytes = 255;
    static constexpr std::size_t ScoreEntries = 10;
    static constexpr std::size_t MaxStars = 10000;

    struct HighScore {
        std::string name;
        std::int32_t score = 0;
        friend bool operator==(const HighScore&, const HighScore&) = default;
    };

    // A background star as it stood: where, how large, how bright, which way
    // its twinkle was going.
    struct Star {
        std::int32_t x = 0;
        std::int32_t y = 0;
        std::int16_t size = 1;
        std::int32_t brightness = 0;
        bool rising = false;
        friend bool operator==(const Star&, const Star&) = default;
    };

    // The game's state at the moment the game began.
    struct Header {
        std::uint16_t format = FormatVersion;
        std::string gameVersion;
        std::uint16_t rulesVersion = RulesVersion;
        std::uint32_t randomState = 0;
        std::int32_t componentSerial = 0;
        std::int32_t startLevel = 1;
        bool musicOn = true;
        bool soundOn = true;
        bool starsOn = true;
        bool statsOn = true;
        // The menus the game was started from: the screen shown and the
        // options cursor, which keys on the paused menu later depend on.
        std::int32_t menuScreen = 0;
        std::int16_t optionsCursor = 0;
        std::vector<HighScore> highScores = std::vector<HighScore>(ScoreEntries);
        // The stars twinkle once a drawn frame, so they stand as they did
        // after however long the menus were shown.
        std::vector<Star> stars;
        friend bool operator==(const Header&, const Header&) = default;
    };

    // A message as the main window received it.
    struct Input {
        std::uint32_t message = 0;
        std::uint32_t wParam = 0;
        friend bool operator==(const Input&, const Input&) = default;
    };

    // A frame, or a run of idle frames: frames made while no level was played
    // (paused, menus, the design screen), with no input between them and the
    // same state after each. The rules take no time from an idle frame, so a
    // run keeps only how long it lasted in all, for watching at its pace.
    struct Frame {
        // The frame's length; for a run, the length of all its frames.
        double elapsedMs = 0.0;
        // A digest of the game's state after the frame, for finding the first
        // frame where a replay goes its own way.
        std::uint32_t stateHash = 0;
        // How many inputs had been received when the frame was made: those
        // from the previous frame's count up to this one came before it.
        std::uint32_t inputEnd = 0;
        std::uint32_t count = 1;
        bool idle = false;
        double FrameMs() const { return elapsedMs / count; }
    };

    struct Summary {
        std::int16_t level = 0;
        std::int32_t score = 0;
        std::uint32_t frameCount = 0;
        std::uint64_t worldHash = 0;
        friend bool operator==(const Summary&, const Summary&) = default;
    };

    Header header;
    std::vector<Input> inputs;
    std::vector<Frame> frames;
    Summary summary;

    // Recording: inputs and frames in the order they happened. An idle frame
    // joins the run of idle frames before it when it can.
    void AddInput(std::uint32_t message, std::uint32_t wParam);
    void AddFrame(double elapsedMs, std::uint32_t stateHash, bool idle = false);
    // Every frame, each frame of a run counted.
    std::uint32_t FrameCount() const { return frameCount; }
    // Whether the per-frame digest covers the random generator's state (it
    // does from format 2 on).
    bool DigestCoversRandom() const { return header.format >= 2; }

    // The inputs received before entry i of frames: inputs[first, end). With i ==
    // frames.size(), those received after the last frame.
    std::size_t FirstInputBefore(std::size_t frame) const;
    std::size_t EndInputBefore(std::size_t frame) const;

    // The file's bytes, in the current format.
    std::string Encode() const;
    // Reads a whole file strictly; false, with a reason, for anything that is
    // not exactly a replay this game can read.
    static bool Decode(const std::string& bytes, CReplay& replay, std::string& error);
    // Reads and decodes the file at path.
    static bool Load(const std::string& path, CReplay& replay, std::string& error);

    // A run of idle frames read from a file, counted.
    void AddRunFrames(std::uint32_t count) { frameCount += count; }

private:
    std::uint32_t frameCount = 0;
};
