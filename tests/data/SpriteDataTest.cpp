// The art as the game will load it: every sprite the game binds by name is
// listed, every frame file is there at its listed size, and no pixel that is
// meant to show turns into the transparent colour on a 16-bit screen.
#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "GameDataFiles.h"
#include "display/SpriteSet.h"

namespace {

using qvdata::GameDir;
using SurfacePtr = std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)>;

// The collision radius of each object that shows the sprite (the game draws a
// sprite centred on its object using half the frame width as the radius), and
// whether it turns to face its heading ('t') or animates ('a').
struct Bound {
    int radius;
    char motion;
};
const std::map<std::string, Bound> kBoundSprites{
    {"ship1", {14, 't'}},      {"turrent1", {13, 't'}},   {"asteroid1", {7, 'a'}}, {"asteroid3", {10, 'a'}},
    {"asteroid4", {13, 'a'}},  {"spacemine1", {9, 'a'}},  {"spacemine2", {9, 'a'}}, {"explosion", {0, 'a'}},
    {"bullet1", {2, ' '}},     {"bullet2", {2, ' '}},     {"shrap", {2, ' '}},     {"gold", {7, 'a'}},
};
constexpr int kExplosionLifetimeMs = 875;

// The catalogue read by the game's own reader.
std::vector<SpriteLine> Sprites() {
    const auto bytes = qvdata::ReadBytes(GameDir() / "sprite.ini");
    return CSpriteSet::ParseCatalogue(std::string(bytes.begin(), bytes.end()));
}

SpriteLine Find(const std::string& name) {
    for (const auto& s : Sprites())
        if (s.name == name) return s;
    return {};
}

SurfacePtr Load(const std::string& file) {
    return SurfacePtr(SDL_LoadBMP((GameDir() / file).string().c_str()), SDL_FreeSurface);
}

SurfacePtr Convert(SDL_Surface* s, Uint32 format) {
    return SurfacePtr(SDL_ConvertSurfaceFormat(s, format, 0), SDL_FreeSurface);
}

Uint32 PixelAt(const SDL_Surface* s, int x, int y) {
    const auto* row = static_cast<const Uint8*>(s->pixels) + y * s->pitch;
    if (s->format->BytesPerPixel == 2) return reinterpret_cast<const Uint16*>(row)[x];
    return reinterpret_cast<const Uint32*>(row)[x] & 0x00FFFFFF;
}

// Calls back with each pixel of a picture, as 0xRRGGBB.
void EachPixel(SDL_Surface* picture, const std::function<void(int, int, Uint32)>& visit) {
    auto rgb = Convert(picture, SDL_PIXELFORMAT_RGB888);
    for (int y = 0; y < rgb->h; ++y)
        for (int x = 0; x < rgb->w; ++x) visit(x, y, PixelAt(rgb.get(), x, y));
}

}  // namespace

TEST(SpriteList, ListsEveryBoundSpriteOnceWithItsCollisionSizeAndMotion) {
    const auto sprites = Sprites();
    for (const auto& [name, bound] : kBoundSprites) {
        SCOPED_TRACE(name);
        const auto count = std::count_if(sprites.begin(), sprites.end(), [&wanted = name](auto& s) { return s.name == wanted; });
        ASSERT_EQ(count, 1);
        const auto s = Find(name);
        EXPECT_EQ(s.width, s.height);
        if (bound.radius > 0) {
            EXPECT_EQ(s.width / 2, bound.radius);
        }
        if (bound.motion == 't') {
            EXPECT_GE(s.directions, 36);
            EXPECT_EQ(360 % s.directions, 0);  // whole-degree steps, so every facing maps onto a frame
        } else if (bound.motion == 'a') {
            EXPECT_GE(s.frameCount, 2);
            EXPECT_GT(s.frameTime, 0);
        }
    }
    const auto explosion = Find("explosion");
    EXPECT_LT(explosion.frameCount * explosion.frameTime, kExplosionLifetimeMs);
}

TEST(SpriteFrames, EveryListedFrameLoadsAtItsSizeShowsSomethingAndKeepsItsPixelsAt16Bits) {
    for (const auto& s : Sprites()) {
        for (const auto& file : CSpriteSet::FrameFiles(s.name, s.directions, s.frameCount)) {
            SCOPED_TRACE(file);
            auto frame = Load(file);
            ASSERT_TRUE(frame) << SDL_GetError();
            EXPECT_EQ(frame->w, s.width);
            EXPECT_EQ(frame->h, s.height);
            // A visible pixel that packs to 0 would vanish into the colour key.
            auto screen = Convert(frame.get(), SDL_PIXELFORMAT_RGB565);
            int visible = 0, holes = 0;
            EachPixel(frame.get(), [&](int x, int y, Uint32 p) {
                visible += p != 0;
                holes += p != 0 && PixelAt(screen.get(), x, y) == 0;
            });
            EXPECT_GE(visible, 3);
            EXPECT_EQ(holes, 0);
        }
    }
}

TEST(ArtFiles, BlankIsBlackAndTitleIsAFullScreenPicture) {
    auto blank = Load("art/blank.bmp");
    auto title = Load("art/title_screen.bmp");
    ASSERT_TRUE(blank && title);
    EXPECT_TRUE(blank->w == 1024 && blank->h == 768 && title->w == 1024 && title->h == 768);
    int stray = 0, lit = 0;
    EachPixel(blank.get(), [&](int, int, Uint32 p) { stray += p != 0; });
    EachPixel(title.get(), [&](int, int, Uint32 p) { lit += p != 0; });
    EXPECT_EQ(stray, 0);
    EXPECT_GT(lit, 1024 * 768 / 2);
}
