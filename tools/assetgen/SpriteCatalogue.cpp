#include "SpriteCatalogue.h"

#include <numbers>
#include <sstream>
#include <utility>

#include "AsteroidPainter.h"
#include "BladeMinePainter.h"
#include "CoinPainter.h"
#include "ColourKeyGuard.h"
#include "ExplosionPainter.h"
#include "ShipPainter.h"
#include "ShotPainter.h"
#include "ShrapnelPainter.h"
#include "SpikedMinePainter.h"
#include "TurretPainter.h"

namespace assetgen {

namespace {

// 72 directions: a 5-degree step, fine enough that turning looks smooth.
constexpr int kShipDirections = 72;

template <typename Painter, typename... Args>
std::shared_ptr<const SpritePainter> Make(Args&&... args) {
    return std::make_shared<const Painter>(std::forward<Args>(args)...);
}

// Frame width is twice the game object's collision radius (7 for a powerup,
// 2 for shots and debris, 9 for mines, 13 for turrets and big asteroids,
// 14 for the player's ship); odd widths keep small sprites centred.
std::vector<SpriteEntry> GameSprites() {
    const Colour rockLit = Colour::Bytes(214, 190, 160);
    return {
        {"ship1", 28, 28, kShipDirections, 0, 0, Make<ShipPainter>()},
        {"turrent1", 26, 26, kShipDirections, 0, 0, Make<TurretPainter>()},
        {"asteroid1", 14, 14, 0, 24, 100, Make<AsteroidPainter>(11u, rockLit, Colour::Bytes(70, 48, 40))},
        {"asteroid3", 20, 20, 0, 32, 100, Make<AsteroidPainter>(23u, Colour::Bytes(196, 196, 200), Colour::Bytes(52, 54, 70))},
        {"asteroid4", 26, 26, 0, 40, 110, Make<AsteroidPainter>(37u, rockLit, Colour::Bytes(62, 50, 58))},
        {"spacemine1", 18, 18, 0, 12, 80, Make<SpikedMinePainter>()},
        {"spacemine2", 18, 18, 0, 12, 50, Make<BladeMinePainter>()},
        // The explosion lives 875 ms; 13 frames of 50 ms finish inside that
        // even when each frame is held for a whole extra display refresh.
        {"explosion", 40, 40, 0, 13, 50, Make<ExplosionPainter>()},
        {"bullet1", 5, 5, 0, 4, 60,
         Make<ShotPainter>(ShotPainter::Shape::Diamond, Colour::Bytes(255, 40, 90), Colour::Bytes(255, 230, 120))},
        {"bullet2", 5, 5, 0, 4, 60,
         Make<ShotPainter>(ShotPainter::Shape::Orb, Colour::Bytes(40, 220, 255), Colour::Bytes(235, 255, 255))},
        {"shrap", 5, 5, 0, 4, 50, Make<ShrapnelPainter>()},
        {"gold", 15, 15, 0, 12, 70, Make<CoinPainter>()},
    };
}

}  // namespace

int SpriteEntry::FramesStored() const {
    return (directions > 0 ? directions : 1) * (frameCount > 0 ? frameCount : 1);
}

SpriteCatalogue SpriteCatalogue::Game() {
    SpriteCatalogue catalogue;
    catalogue.entries = GameSprites();
    return catalogue;
}

std::string SpriteCatalogue::IniText() const {
    std::ostringstream text;
    text << "! Quelvarion sprite list, made by quelvarion_assetgen.\n"
         << "! name width height [directions [frames frame-time-ms]]\n";
    for (const SpriteEntry& e : entries) {
        text << e.name << ' ' << e.width << ' ' << e.height << ' ' << e.directions;
        if (e.frameCount > 0) text << ' ' << e.frameCount << ' ' << e.frameTime;
        text << '\n';
    }
    return text.str();
}

std::vector<std::string> SpriteCatalogue::FrameFiles(const SpriteEntry& e) {
    std::vector<std::string> files;
    if (e.directions == 0 && e.frameCount == 0) return {e.name + ".bmp"};
    const int directions = e.directions > 0 ? e.directions : 1;
    for (int i = 0; i < directions; ++i) {
        if (e.frameCount == 0) {
            files.push_back(e.name + "_" + std::to_string(i) + ".bmp");
            continue;
        }
        for (int k = 0; k < e.frameCount; ++k)
            files.push_back(e.name + "_" + std::to_string(i) + "_" + std::to_string(k) + ".bmp");
    }
    return files;
}

std::vector<Image> SpriteCatalogue::RenderFrames(const SpriteEntry& e) {
    std::vector<Image> frames;
    const int directions = e.directions > 0 ? e.directions : 1;
    const int perDirection = e.frameCount > 0 ? e.frameCount : 1;
    for (int i = 0; i < directions; ++i) {
        for (int k = 0; k < perDirection; ++k) {
            FrameInfo info{e.width, e.height, 2.0 * std::numbers::pi * i / directions, k, e.frameCount};
            Image frame = e.painter->Paint(info);
            ColourKeyGuard::Apply(frame);
            frames.push_back(std::move(frame));
        }
    }
    return frames;
}

}  // namespace assetgen
