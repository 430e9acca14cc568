#include "ExplosionPainter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Random.h"

namespace assetgen {

namespace {

constexpr uint32_t kSeed = 0x5EED0F1Eu;
constexpr int kSparks = 14;
constexpr int kSamplesPerSide = 3;
constexpr double kMarginPixels = 0.5;
constexpr double kRingLasts = 0.45;  // share of the animation the shock ring shows
constexpr Colour kSmoke = Colour::Bytes(86, 70, 66);
constexpr Colour kEmber = Colour::Bytes(150, 20, 6);
constexpr Colour kOrange = Colour::Bytes(255, 110, 16);
constexpr Colour kYellow = Colour::Bytes(255, 215, 80);
constexpr Colour kWhite = Colour::Bytes(255, 255, 235);
constexpr Colour kRing = Colour::Bytes(255, 190, 120);
constexpr Colour kSpark = Colour::Bytes(255, 235, 140);

double SmoothStep(double edge0, double edge1, double x) {
    const double t = std::clamp((x - edge0) / (edge1 - edge0), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

}  // namespace

ExplosionPainter::ExplosionPainter() : turbulence(kSeed) {
    Random random(kSeed);
    for (int i = 0; i < kSparks; ++i)
        sparks.push_back({random.Range(0.0, 2.0 * std::numbers::pi), random.Range(0.75, 1.0), random.Range(0.03, 0.05)});
}

Colour ExplosionPainter::Heat(double heat) {
    // Black-body-like ramp: smoke, embers, orange, yellow, white.
    if (heat < 0.25) return kSmoke.Mix(kEmber, heat / 0.25);
    if (heat < 0.5) return kEmber.Mix(kOrange, (heat - 0.25) / 0.25);
    if (heat < 0.75) return kOrange.Mix(kYellow, (heat - 0.5) / 0.25);
    return kYellow.Mix(kWhite, std::min(1.0, (heat - 0.75) / 0.25));
}

Colour ExplosionPainter::Fireball(double x, double y, double t) const {
    const double ballRadius = 0.22 + 0.52 * (1.0 - std::pow(1.0 - t, 2.4));
    // Coarse churn ruffles the outline; fine churn makes the billows inside.
    const double churn = turbulence.Fractal(x * 2.4 + 7.0, y * 2.4 + 3.0, t * 1.6, 4);
    const double billow = turbulence.Fractal(x * 5.0 - 4.0, y * 5.0 + 9.0, t * 2.5 + 11.0, 3);
    const double d = std::hypot(x, y) / ballRadius + churn * (0.45 + 0.35 * t);
    const double density = 1.0 - SmoothStep(0.6, 1.0, d);
    if (density <= 0.0) return {};
    const double cooling = std::pow(1.0 - t, 1.1);
    const double heat = std::clamp(cooling * (1.35 - 0.85 * d + 0.9 * billow), 0.0, 1.0);
    // Late on, the thin edges of the smoke fade away entirely.
    const double opacity = density * (1.0 - SmoothStep(0.55, 1.0, t) * (0.5 + 0.5 * d));
    return Heat(heat) * std::max(0.0, opacity);
}

Colour ExplosionPainter::ShockRing(double radius, double t) const {
    if (t >= kRingLasts) return {};
    const double ringRadius = 0.25 + 0.72 * (t / kRingLasts);
    const double offset = (radius - ringRadius) / 0.05;
    return kRing * (std::exp(-offset * offset) * (1.0 - t / kRingLasts) * 0.9);
}

Colour ExplosionPainter::Sparks(double x, double y, double t) const {
    // Each spark is a short streak along its flight, from where it was a
    // moment ago to where it is now.
    Colour sum;
    const double head = std::pow(t, 0.45), tail = std::pow(std::max(0.0, t - 0.08), 0.45);
    const double fade = 1.0 - SmoothStep(0.5, 0.95, t);
    if (fade <= 0.0) return sum;
    for (const Spark& s : sparks) {
        const double dx = std::sin(s.angle), dy = -std::cos(s.angle);
        const double along = std::clamp(x * dx + y * dy, s.reach * tail, s.reach * head);
        const double px = x - dx * along, py = y - dy * along;
        const double d2 = (px * px + py * py) / (s.size * s.size);
        sum = sum + kSpark * (std::exp(-d2) * fade);
    }
    return sum;
}

Colour ExplosionPainter::Sample(double x, double y, double t) const {
    const Colour fire = Fireball(x, y, t);
    return fire + ShockRing(std::hypot(x, y), t) + Sparks(x, y, t);
}

Image ExplosionPainter::Paint(const FrameInfo& info) const {
    const double t = info.Progress();
    const double scale = std::min(info.width, info.height) / 2.0 - kMarginPixels;
    Image image(info.width, info.height);
    constexpr double kSamples = kSamplesPerSide * kSamplesPerSide;
    for (int py = 0; py < info.height; ++py) {
        for (int px = 0; px < info.width; ++px) {
            Colour sum;
            for (int sy = 0; sy < kSamplesPerSide; ++sy) {
                for (int sx = 0; sx < kSamplesPerSide; ++sx) {
                    const double x = (px + (sx + 0.5) / kSamplesPerSide - info.width / 2.0) / scale;
                    const double y = (py + (sy + 0.5) / kSamplesPerSide - info.height / 2.0) / scale;
                    sum = sum + Sample(x, y, t);
                }
            }
            image.Set(px, py, (sum * (1.0 / kSamples)).ToRgb());
        }
    }
    return image;
}

}  // namespace assetgen
