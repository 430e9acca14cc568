#include "ColourKeyGuard.h"

#include <algorithm>

namespace assetgen {

namespace {

// Below this brightness a fringe pixel is too faint to matter: it becomes
// transparent instead of being brightened into a visible speck.
constexpr int kFaintestKept = 4;
// Brightening a dark pixel scales it so its brightest channel reaches this,
// the smallest red or blue value a 5-bit channel keeps.
constexpr int kDimmestShown = 8;

}  // namespace

bool ColourKeyGuard::SurvivesRgb565(Rgb c) {
    return (c.r >> 3) != 0 || (c.g >> 2) != 0 || (c.b >> 3) != 0;
}

Rgb ColourKeyGuard::Settle(Rgb c) {
    if (c == Rgb{} || SurvivesRgb565(c)) return c;
    const int brightest = std::max({c.r, c.g, c.b});
    if (brightest < kFaintestKept) return Rgb{};
    auto lift = [brightest](uint8_t v) {
        return static_cast<uint8_t>((v * kDimmestShown + brightest - 1) / brightest);
    };
    return Rgb{lift(c.r), lift(c.g), lift(c.b)};
}

void ColourKeyGuard::Apply(Image& image) {
    for (Rgb& pixel : image.Pixels()) pixel = Settle(pixel);
}

}  // namespace assetgen
