#include "app/FrameSnapshots.h"

#include "platform/DrawTypes.h"
#include "platform/Surface.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <vector>

namespace {

void PutLittle(std::vector<char>& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>(value >> (8 * i)));
}

} // namespace

CFrameSnapshots::CFrameSnapshots()
{
    const char* list = std::getenv("QV_SNAPSHOT_FRAMES");
    const char* dir = std::getenv("QV_SNAPSHOT_DIR");
    if (!list || !dir)
        return;
    folder = dir;
    std::stringstream in(list);
    std::string item;
    while (std::getline(in, item, ','))
        if (!item.empty())
            frames.insert(std::strtoull(item.c_str(), nullptr, 10));
}

void CFrameSnapshots::Take(std::size_t frame, CSurface& picture) const
{
    if (!IsWanted(frame))
        return;
    LockedSurface locked;
    if (picture.Lock(locked) != 0)
        return;
    const std::int32_t width = picture.GetWidth();
    const std::int32_t height = picture.GetHeight();
    const std::uint32_t rowBytes = static_cast<std::uint32_t>(width) * 3;
    const std::uint32_t paddedRow = (rowBytes + 3) & ~3u;
    std::vector<char> file;
    // A bottom-up 24-bit bitmap: header, information header, rows.
    file.push_back('B');
    file.push_back('M');
    PutLittle(file, 54 + paddedRow * static_cast<std::uint32_t>(height), 4);
    PutLittle(file, 0, 4);
    PutLittle(file, 54, 4);
    PutLittle(file, 40, 4);
    PutLittle(file, static_cast<std::uint32_t>(width), 4);
    PutLittle(file, static_cast<std::uint32_t>(height), 4);
    PutLittle(file, 1, 2);
    PutLittle(file, 24, 2);
    for (int i = 0; i < 6; ++i)
        PutLittle(file, 0, 4);
    for (std::int32_t y = height - 1; y >= 0; --y) {
        const auto* row = reinterpret_cast<const std::uint16_t*>(static_cast<const char*>(locked.pixels) +
                                                                 static_cast<std::ptrdiff_t>(y) * locked.pitch);
        for (std::int32_t x = 0; x < width; ++x) {
            const COLORREF colour = Platform::UnpackRgb565(row[x]);
            file.push_back(static_cast<char>(GetBValue(colour)));
            file.push_back(static_cast<char>(GetGValue(colour)));
            file.push_back(static_cast<char>(GetRValue(colour)));
        }
        for (std::uint32_t pad = rowBytes; pad < paddedRow; ++pad)
            file.push_back(0);
    }
    picture.Unlock();
    std::ofstream(folder + "/frame-" + std::to_string(frame) + ".bmp", std::ios::binary)
        .write(file.data(), static_cast<std::streamsize>(file.size()));
}
