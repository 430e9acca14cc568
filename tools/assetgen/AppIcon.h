#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace assetgen {

// The desktop icon: the player's fighter climbing across a night-blue tile.
// It is drawn in vectors on a 128-unit tile, so it comes out sharp at every
// size, and as a scalable picture too.
class AppIcon {
public:
    static constexpr int DesignSize = 128;

    static bool WritePng(const std::string& path, int size);
    static bool WriteSvg(const std::string& path);
    // The icon the program gives its window, baked into it at build time.
    static bool WriteSource(const std::string& path, int size);
    // size x size pixels as red, green, blue and alpha bytes, rows from the top.
    static std::vector<std::uint8_t> Rgba(int size);
};

}  // namespace assetgen
