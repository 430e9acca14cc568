#include "PlanetPainter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "Colour.h"
#include "Noise.h"
#include "Vec3.h"

namespace assetgen {

namespace {

constexpr uint32_t kSeed = 77u;
constexpr double kTilt = 0.35;        // radians the bands lean
constexpr double kBandFrequency = 16.0;
constexpr double kAmbient = 0.05;
const Vec3 kLight = Vec3{-0.62, -0.68, 0.38}.Normalised();
constexpr Colour kDeep = Colour::Bytes(10, 40, 90);
constexpr Colour kTeal = Colour::Bytes(50, 140, 165);
constexpr Colour kPale = Colour::Bytes(200, 232, 240);
constexpr Colour kAir = Colour::Bytes(90, 190, 255);

Colour Bands(const Noise& noise, const Vec3& n) {
    const double c = std::cos(kTilt), s = std::sin(kTilt);
    const double latitude = n.y * c + n.x * s;
    const double swirl = noise.Fractal(n.x * 3.0 + 10.0, n.y * 3.0, n.z * 3.0, 5);
    const double band = 0.5 + 0.5 * std::sin(latitude * kBandFrequency + 3.0 * swirl);
    const double haze = 0.5 + 0.5 * noise.Fractal(n.x * 9.0, n.y * 9.0, n.z * 9.0 + 4.0, 3);
    const Colour base = kDeep.Mix(kTeal, band);
    return base.Mix(kPale, std::clamp((band - 0.75) * 2.0 + (haze - 0.5) * 0.6, 0.0, 0.8));
}

Colour Lit(const Noise& noise, double dx, double dy) {
    const double nz = std::sqrt(std::max(0.0, 1.0 - dx * dx - dy * dy));
    const Vec3 n{dx, dy, nz};
    const double diffuse = std::max(0.0, n.Dot(kLight));
    const double rim = std::pow(1.0 - nz, 3.0);
    return Bands(noise, n) * (kAmbient + diffuse) + kAir * (rim * (0.25 + 0.9 * diffuse));
}

Rgb Unpack(uint32_t p) {
    return Rgb{static_cast<uint8_t>(p >> 16), static_cast<uint8_t>(p >> 8), static_cast<uint8_t>(p)};
}

uint32_t Pack(const Colour& c) {
    const Rgb p = c.ToRgb();
    return 0xFF000000u | (uint32_t{p.r} << 16) | (uint32_t{p.g} << 8) | p.b;
}

}  // namespace

void PlanetPainter::Paint(cairo_surface_t* surface, double cx, double cy, double r) {
    cairo_surface_flush(surface);
    const Noise noise(kSeed);
    const int w = cairo_image_surface_get_width(surface), h = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    unsigned char* data = cairo_image_surface_get_data(surface);
    const int top = std::max(0, static_cast<int>(cy - r - 1.0));
    for (int y = top; y < h; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(data + static_cast<size_t>(y) * stride);
        for (int x = 0; x < w; ++x) {
            const double dx = (x + 0.5 - cx) / r, dy = (y + 0.5 - cy) / r;
            const double distance = std::sqrt(dx * dx + dy * dy);
            // Antialiased limb: the share of the pixel the disc covers.
            const double cover = std::clamp((1.0 - distance) * r + 0.5, 0.0, 1.0);
            if (cover <= 0.0) continue;
            const Rgb under = Unpack(row[x]);
            const Colour behind = Colour::Bytes(under.r, under.g, under.b);
            row[x] = Pack(behind.Mix(Lit(noise, dx / std::max(distance, 1.0), dy / std::max(distance, 1.0)), cover));
        }
    }
    cairo_surface_mark_dirty(surface);
}

}  // namespace assetgen
