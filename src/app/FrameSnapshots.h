#pragma once
#include <cstddef>
#include <set>
#include <string>

class CSurface;

// Pictures of chosen frames of a recorded game, as composed, kept as bitmap
// files: the same frame of a game and of its replay can then be compared
// pixel for pixel. Asked for by the environment (QV_SNAPSHOT_FRAMES, a
// comma-separated list of frame numbers counted from 0, and
// QV_SNAPSHOT_DIR); without it nothing is taken.
class CFrameSnapshots {
public:
    CFrameSnapshots();
    bool IsWanted(std::size_t frame) const { return !folder.empty() && frames.count(frame) != 0; }
    // Writes the picture of a wanted frame to <folder>/frame-<n>.bmp.
    void Take(std::size_t frame, CSurface& picture) const;

private:
    std::set<std::size_t> frames;
    std::string folder;
};
