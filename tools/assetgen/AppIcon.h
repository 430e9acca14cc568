#pragma once
#include <string>

namespace assetgen {

// The desktop icon: the player's fighter climbing across a night-blue tile.
class AppIcon {
public:
    static constexpr int Size = 128;
    static bool Write(const std::string& pngPath);
};

}  // namespace assetgen
