// The art as the game will load it: every sprite the game binds by name is
// listed, every frame file is there at its listed size, and no pixel that is
// meant to show turns into the transparent colour on a 16-bit screen.
#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "GameDataFiles.h"
#include "display/SpriteSet.h"
#include "platform/Surface.h"
#include "support/DisplayApp.h"

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

SurfacePtr Load(const std::string& file) {
    return SurfacePtr(SDL_LoadBMP((GameDir() / file).string().c_str()), SDL_FreeSurface);
}

// The pixels of a picture, as 0xRRGGBB.
std::vector<Uint32> Pixels(SDL_Surface* picture) {
    SurfacePtr rgb(SDL_ConvertSurfaceFormat(picture, SDL_PIXELFORMAT_RGB888, 0), SDL_FreeSurface);
    std::vector<Uint32> pixels;
    for (int y = 0; y < rgb->h; ++y)
        for (int x = 0; x < rgb->w; ++x)
            pixels.push_back(reinterpret_cast<const Uint32*>(static_cast<const Uint8*>(rgb->pixels) + y * rgb->pitch)[x] & 0xFFFFFF);
    return pixels;
}

}  // namespace

TEST(SpriteList, ListsEveryBoundSpriteOnceWithItsCollisionSizeAndMotion) {
    std::map<std::string, std::vector<SpriteLine>> listed;
    for (const auto& s : Sprites()) listed[s.name].push_back(s);
    for (const auto& [name, bound] : kBoundSprites) {
        SCOPED_TRACE(name);
        ASSERT_EQ(listed[name].size(), 1u);
        const SpriteLine& s = listed[name][0];
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
    const SpriteLine& explosion = listed["explosion"][0];
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
            // A visible pixel that the game packs to 0 would vanish into the colour key.
            int visible = 0, holes = 0;
            for (Uint32 p : Pixels(frame.get())) {
                visible += p != 0;
                holes += p != 0 && Platform::PackRgb565(RGB(p >> 16, (p >> 8) & 0xFF, p & 0xFF)) == 0;
            }
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
    const auto blankPixels = Pixels(blank.get()), titlePixels = Pixels(title.get());
    EXPECT_EQ(std::count(blankPixels.begin(), blankPixels.end(), 0u), 1024 * 768);
    EXPECT_GT(titlePixels.size() - std::count(titlePixels.begin(), titlePixels.end(), 0u), 1024u * 768 / 2);
}

// The game itself, started on the generated data, finds every sprite it binds
// and places every frame on a page: nothing is drawn as a placeholder.
TEST(GeneratedCatalogue, LoadsEverySpriteTheGameBindsWithoutPlaceholders) {
    qvtest::DisplayApp t;
    for (const char* item : {"sprite.ini", "art"}) std::filesystem::create_symlink(GameDir() / item, item);
    ASSERT_TRUE(t.Start());
    ASSERT_FALSE(t->sprites.GetEntries().empty());
    for (const CSprite& entry : t->sprites.GetEntries()) {
        SCOPED_TRACE(entry.name);
        EXPECT_FALSE(entry.frames.empty());
        for (const CSpriteFrame& frame : entry.frames) EXPECT_NE(frame.surface, nullptr);
    }
}
