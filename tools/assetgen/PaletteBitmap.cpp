#include "PaletteBitmap.h"

namespace assetgen {

namespace {

constexpr int kSide = 16;
constexpr int kCubeLevels = 6;
constexpr int kCubeSize = kCubeLevels * kCubeLevels * kCubeLevels;  // 216
constexpr int kGreys = 256 - kCubeSize;                              // 40

uint8_t CubeLevel(int level) { return static_cast<uint8_t>(level * 255 / (kCubeLevels - 1)); }

}  // namespace

BmpWriter::Palette PaletteBitmap::Colours() {
    // A 6 x 6 x 6 colour cube, whose entry 0 is black (the transparent
    // colour), then a ramp of greys between the cube's levels.
    BmpWriter::Palette palette{};
    for (int i = 0; i < kCubeSize; ++i) {
        palette[i] = Rgb{CubeLevel(i / (kCubeLevels * kCubeLevels)), CubeLevel((i / kCubeLevels) % kCubeLevels),
                         CubeLevel(i % kCubeLevels)};
    }
    for (int i = 0; i < kGreys; ++i) {
        const auto v = static_cast<uint8_t>((i + 1) * 255 / (kGreys + 1));
        palette[kCubeSize + i] = Rgb{v, v, v};
    }
    return palette;
}

std::vector<uint8_t> PaletteBitmap::Encode() {
    std::vector<uint8_t> indices(kSide * kSide);
    for (int i = 0; i < kSide * kSide; ++i) indices[i] = static_cast<uint8_t>(i);
    return BmpWriter::Encode8(kSide, kSide, indices, Colours());
}

}  // namespace assetgen
