// The game as shipped, keeping pictures of chosen frames of a recorded game
// as bitmap files, so that the end-to-end tests can compare the same frame of
// a game and of its replay pixel for pixel. Asked for by the environment:
// QV_SNAPSHOT_FRAMES, a comma-separated list of frame numbers counted from 0,
// and QV_SNAPSHOT_DIR, where <dir>/frame-<n>.bmp are written.
#include "app/FrameObserver.h"
#include "app/GameMain.h"
#include "platform/DrawTypes.h"
#include "platform/Surface.h"
#include "support/BitmapFiles.h"

#include <cstdint>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>

namespace {

class CFrameSnapshots : public CFrameObserver {
public:
    CFrameSnapshots(const char* list, const char* dir) : folder(dir)
    {
        std::stringstream in(list);
        for (std::string item; std::getline(in, item, ',');)
            if (!item.empty())
                frames.insert(std::strtoull(item.c_str(), nullptr, 10));
    }

    bool IsWanted(std::size_t frame) const override { return frames.count(frame) != 0; }

    void Look(std::size_t frame, CSurface& picture) override
    {
        LockedSurface locked;
        if (picture.Lock(locked) != 0)
            return;
        const auto* pixels = static_cast<const char*>(locked.pixels);
        qvtest::WriteBitmap(folder + "/frame-" + std::to_string(frame) + ".bmp", picture.GetWidth(),
                            picture.GetHeight(), [&](int x, int y) {
                                const auto* row = reinterpret_cast<const std::uint16_t*>(
                                    pixels + static_cast<std::ptrdiff_t>(y) * locked.pitch);
                                return Platform::UnpackRgb565(row[x]);
                            });
        picture.Unlock();
    }

private:
    std::set<std::size_t> frames;
    std::string folder;
};

} // namespace

int main()
{
    const char* list = std::getenv("QV_SNAPSHOT_FRAMES");
    const char* dir = std::getenv("QV_SNAPSHOT_DIR");
    if (!list || !dir)
        return RunGame(nullptr);
    CFrameSnapshots snapshots(list, dir);
    return RunGame(&snapshots);
}
