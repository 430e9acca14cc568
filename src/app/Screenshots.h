#pragma once
#include <condition_variable>
#include <cstdint>
#include <ctime>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class CSurface;

// Pictures of the game's frame, exactly as composed, kept as PNG files in
// the player's pictures folder (Quelvarion/ inside it). The frame loop only
// copies the frame; turning it into a file happens on a thread of its own,
// started with the first picture, so that taking one never holds a frame up.
// What became of each picture comes back as a word for the comfort notice.
class CScreenshots {
public:
    static constexpr const char* FolderName = "Quelvarion";

    CScreenshots() = default;
    // Waits for the pictures still being written.
    ~CScreenshots();
    CScreenshots(const CScreenshots&) = delete;
    CScreenshots& operator=(const CScreenshots&) = delete;

    // Where the pictures go: the pictures folder's own, or the game's folder
    // where there is no home.
    static std::string Folder();
    // The file name for a picture taken at a time; the second and later
    // pictures of one second are numbered.
    static std::string FileName(const std::tm& when, int number);

    // Copies the frame and hands it to the writer.
    void Take(CSurface& frame);
    // Writes the frame into folder, under a name no other picture has, and
    // says how it went.
    struct Frame {
        std::vector<std::uint16_t> pixels; // 5-6-5, row after row
        int width = 0;
        int height = 0;
        std::time_t when = 0;
    };
    static std::string Write(const Frame& frame, const std::string& folder);
    // The words about pictures written since last asked, oldest first.
    std::vector<std::string> TakeOutcomes();
    // Blocks until every picture handed over is written.
    void Finish();

private:
    void WriteWaiting();

    std::mutex lock;
    std::condition_variable changed;
    std::deque<Frame> waiting;
    std::vector<std::string> outcomes;
    bool writing = false;
    bool stopping = false;
    std::thread writer;
};
