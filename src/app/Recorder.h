#pragma once
#include "replay/Replay.h"

#include <cstdint>
#include <string>
#include <thread>

// Keeps the game being played as a replay, from the start of a new game to
// its end: the high-score entry done after the ship was lost, another new
// game begun in its place, or the program's end. The finished replay goes to
// "last-game.qvr" in the game's folder and to the file the player named.
class CRecorder {
public:
    static constexpr const char* LastGameFile = "last-game.qvr";

    CRecorder() = default;
    CRecorder(const CRecorder&) = delete;
    CRecorder& operator=(const CRecorder&) = delete;
    ~CRecorder() { WaitForSaves(); }

    // Off while a replay is shown or checked: those games are not the player's.
    void SetEnabled(bool on) { enabled = on; }
    bool IsEnabled() const { return enabled; }
    // Where --record keeps the replay as well; empty for nowhere else.
    void SetRecordFile(std::string path) { recordFile = std::move(path); }
    // Where the last game goes; empty to keep it nowhere.
    void SetLastGameFile(std::string path) { lastGameFile = std::move(path); }

    bool IsRecording() const { return recording; }
    void Begin(CReplay::Header header);
    void Input(std::uint32_t message, std::uint32_t wParam);
    // Takes back the input just recorded: the key that abandoned this game
    // for a new one belongs to neither.
    void DropLastInput();
    void Frame(double elapsedMs, std::uint32_t stateHash, bool idle);
    // Ends the recording with how the game stands and saves it beside the
    // frame loop, which a slow disk must not hold up; a save that fails is
    // said on stderr.
    void End(CReplay::Summary summary);
    // Returns once the last finished game is on disk.
    void WaitForSaves();

    // The game being recorded, and the last one finished.
    const CReplay& GetReplay() const { return replay; }
    const CReplay& GetFinished() const { return finished; }

private:
    static void Save(const std::string& path, const std::string& bytes);

    CReplay replay;
    CReplay finished;
    bool enabled = true;
    bool recording = false;
    std::string recordFile;
    std::string lastGameFile = LastGameFile;
    std::thread saving;
};
