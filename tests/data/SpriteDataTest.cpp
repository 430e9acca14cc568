// The art as the game will load it: every sprite the game binds by name is
// listed, every frame file is there at its listed size, and no pixel that is
// meant to show turns into the transparent colour on a 16-bit screen.
#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "GameDataFiles.h"
#include "SpriteList.h"

namespace {

using qvdata::GameDir;
using SurfacePtr = std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)>;

// The collision radius of each object that shows the sprite; the game draws a
// sprite centred on its object using half the frame width as the radius.
const std::map<std::string, int> kBoundSprites{
    {"ship1", 14},     {"turrent1", 13}, {"asteroid1", 7}, {"asteroid3", 10},
    {"asteroid4", 13}, {"spacemine1", 9}, {"spacemine2", 9}, {"explosion", 0},
    {"bullet1", 2},    {"bullet2", 2},   {"shrap", 2},     {"gold", 7},
};
constexpr int kExplosionLifetimeMs = 875;
constexpr int kMinimumDirections = 36;

std::vector<qvdata::SpriteLine> Sprites() {
    const auto bytes = qvdata::ReadBytes(GameDir() / "sprite.ini");
    return qvdata::ParseSpriteList(std::string(bytes.begin(), bytes.end()));
}

qvdata::SpriteLine Find(const std::string& name) {
    for (const auto& s : Sprites())
        if (s.name == name) return s;
    return {};
}

SurfacePtr Load(const std::filesystem::path& path) {
    return SurfacePtr(SDL_LoadBMP(path.string().c_str()), SDL_FreeSurface);
}

SurfacePtr Convert(SDL_Surface* s, Uint32 format) {
    return SurfacePtr(SDL_ConvertSurfaceFormat(s, format, 0), SDL_FreeSurface);
}

Uint32 PixelAt(const SDL_Surface* s, int x, int y) {
    const auto* row = static_cast<const Uint8*>(s->pixels) + y * s->pitch;
    if (s->format->BytesPerPixel == 2) return reinterpret_cast<const Uint16*>(row)[x];
    return reinterpret_cast<const Uint32*>(row)[x] & 0x00FFFFFF;
}

// The visible pixels' extremes, to tell which way a frame points.
struct Extent {
    int top = 1 << 20, right = -1;
    int topColumnSum = 0, topCount = 0, rightRowSum = 0, rightCount = 0;
};

Extent Measure(SDL_Surface* frame) {
    auto rgb = Convert(frame, SDL_PIXELFORMAT_RGB888);
    Extent e;
    for (int y = 0; y < rgb->h; ++y)
        for (int x = 0; x < rgb->w; ++x)
            if (PixelAt(rgb.get(), x, y) != 0) {
                e.top = std::min(e.top, y);
                e.right = std::max(e.right, x);
            }
    for (int y = 0; y < rgb->h; ++y)
        for (int x = 0; x < rgb->w; ++x) {
            if (PixelAt(rgb.get(), x, y) == 0) continue;
            if (y == e.top) {
                e.topColumnSum += x;
                ++e.topCount;
            }
            if (x == e.right) {
                e.rightRowSum += y;
                ++e.rightCount;
            }
        }
    return e;
}

}  // namespace

TEST(SpriteList, ListsEveryBoundSpriteOnceWithItsCollisionSize) {
    const auto sprites = Sprites();
    for (const auto& [name, radius] : kBoundSprites) {
        SCOPED_TRACE(name);
        const auto count = std::count_if(sprites.begin(), sprites.end(), [&wanted = name](auto& s) { return s.name == wanted; });
        ASSERT_EQ(count, 1);
        const auto s = Find(name);
        EXPECT_EQ(s.width, s.height);
        if (radius > 0) {
            EXPECT_EQ(s.width / 2, radius);
        }
    }
}

TEST(SpriteList, ShipsTurnSmoothlyAndEffectsAnimateInTime) {
    for (const char* name : {"ship1", "turrent1"}) {
        const auto s = Find(name);
        EXPECT_GE(s.directions, kMinimumDirections) << name;
        // Whole-degree steps, so every facing maps onto a frame.
        EXPECT_EQ(360 % s.directions, 0) << name;
    }
    for (const char* name : {"asteroid1", "asteroid3", "asteroid4", "spacemine1", "spacemine2", "gold", "explosion"}) {
        const auto s = Find(name);
        EXPECT_GE(s.frameCount, 2) << name;
        EXPECT_GT(s.frameTime, 0) << name;
    }
    const auto explosion = Find("explosion");
    EXPECT_LT(explosion.frameCount * explosion.frameTime, kExplosionLifetimeMs);
}

TEST(SpriteFrames, EveryListedFrameLoadsAtItsSizeAndShowsSomething) {
    for (const auto& s : Sprites()) {
        for (const auto& file : s.FrameFiles()) {
            SCOPED_TRACE(file);
            auto frame = Load(GameDir() / file);
            ASSERT_TRUE(frame) << SDL_GetError();
            EXPECT_EQ(frame->w, s.width);
            EXPECT_EQ(frame->h, s.height);
            auto rgb = Convert(frame.get(), SDL_PIXELFORMAT_RGB888);
            int visible = 0;
            for (int y = 0; y < rgb->h; ++y)
                for (int x = 0; x < rgb->w; ++x) visible += PixelAt(rgb.get(), x, y) != 0;
            EXPECT_GE(visible, 3);
        }
    }
}

TEST(SpriteFrames, NoVisiblePixelTurnsIntoTheColourKeyAt16Bits) {
    for (const auto& s : Sprites()) {
        for (const auto& file : s.FrameFiles()) {
            auto frame = Load(GameDir() / file);
            ASSERT_TRUE(frame) << file;
            auto rgb = Convert(frame.get(), SDL_PIXELFORMAT_RGB888);
            auto screen = Convert(frame.get(), SDL_PIXELFORMAT_RGB565);
            int holes = 0;
            for (int y = 0; y < rgb->h; ++y)
                for (int x = 0; x < rgb->w; ++x)
                    holes += PixelAt(rgb.get(), x, y) != 0 && PixelAt(screen.get(), x, y) == 0;
            EXPECT_EQ(holes, 0) << file;
        }
    }
}

// Facing 0 is up the screen and directions go clockwise: the player's nose
// and the turret's barrels are the top of direction 0, and a quarter of the
// way round they are the right-hand edge, level with the centre.
TEST(SpriteFrames, DirectionZeroPointsUpAndDirectionsTurnClockwise) {
    for (const char* name : {"ship1", "turrent1"}) {
        SCOPED_TRACE(name);
        const auto s = Find(name);
        const double centre = (s.width - 1) / 2.0;
        auto up = Load(GameDir() / ("art/" + std::string(name) + "_0.bmp"));
        auto right = Load(GameDir() / ("art/" + std::string(name) + "_" + std::to_string(s.directions / 4) + ".bmp"));
        ASSERT_TRUE(up && right);
        const Extent a = Measure(up.get()), b = Measure(right.get());
        EXPECT_LE(a.top, 1);
        EXPECT_NEAR(static_cast<double>(a.topColumnSum) / a.topCount, centre, 2.5);
        EXPECT_GE(b.right, s.width - 2);
        EXPECT_NEAR(static_cast<double>(b.rightRowSum) / b.rightCount, centre, 2.5);
    }
}

TEST(ArtFiles, PaletteBitmapCarriesAFull256ColourTable) {
    const auto b = qvdata::ReadBytes(GameDir() / "art/palette.bmp");
    ASSERT_GE(b.size(), 14u + 40u + 1024u);
    EXPECT_EQ(qvdata::Le32(b, 14), 40u);     // plain information header
    EXPECT_EQ(qvdata::Le16(b, 28), 8u);      // 8 bits a pixel
    const uint32_t used = qvdata::Le32(b, 46);
    EXPECT_TRUE(used == 0 || used == 256) << used;
    EXPECT_EQ(qvdata::Le32(b, 10), 14u + 40u + 1024u);  // pixels follow the table
    EXPECT_TRUE(Load(GameDir() / "art/palette.bmp"));
}

TEST(ArtFiles, BlankIsBlackAndTitleIsAFullScreenPicture) {
    auto blank = Load(GameDir() / "art/blank.bmp");
    auto title = Load(GameDir() / "art/title_screen.bmp");
    ASSERT_TRUE(blank && title);
    EXPECT_EQ(blank->w, 1024);
    EXPECT_EQ(blank->h, 768);
    EXPECT_EQ(title->w, 1024);
    EXPECT_EQ(title->h, 768);
    auto black = Convert(blank.get(), SDL_PIXELFORMAT_RGB888);
    auto picture = Convert(title.get(), SDL_PIXELFORMAT_RGB888);
    int lit = 0, bright = 0;
    for (int y = 0; y < 768; ++y)
        for (int x = 0; x < 1024; ++x) {
            ASSERT_EQ(PixelAt(black.get(), x, y), 0u);
            const Uint32 p = PixelAt(picture.get(), x, y);
            lit += p != 0;
            bright += ((p >> 16) & 0xFF) > 200 && ((p >> 8) & 0xFF) > 200 && (p & 0xFF) > 200;
        }
    EXPECT_GT(lit, 1024 * 768 / 2);
    EXPECT_GT(bright, 2000);  // the lettering and the stars stand out
}
