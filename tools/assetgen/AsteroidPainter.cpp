#include "AsteroidPainter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Random.h"

namespace assetgen {

namespace {

constexpr int kBumps = 9;
constexpr int kCraters = 11;
constexpr int kRaysPerSide = 3;  // rays per pixel = kRaysPerSide squared
constexpr double kMarginPixels = 0.3;
constexpr int kMaxMarchSteps = 48;
constexpr double kMarchShare = 0.6;    // of the outside distance, a safe step for smooth bumps
constexpr double kMinMarchStep = 0.02;
constexpr double kCraterReach = 2.0;   // in crater radii
constexpr int kRefineSteps = 6;
constexpr double kNormalStep = 0.004;
constexpr double kAmbient = 0.16;
constexpr int kShapeSamples = 4000;
const Vec3 kLight = Vec3{-0.55, -0.62, 0.56}.Normalised();  // top left, toward the viewer

Vec3 RandomDirection(Random& random) {
    // Uniform on the sphere: uniform height, uniform longitude.
    const double z = random.Signed();
    const double a = random.Range(0.0, 2.0 * std::numbers::pi);
    const double s = std::sqrt(1.0 - z * z);
    return {s * std::cos(a), s * std::sin(a), z};
}

Vec3 FibonacciDirection(int i, int count) {
    const double golden = std::numbers::pi * (3.0 - std::sqrt(5.0));
    const double z = 1.0 - 2.0 * (i + 0.5) / count;
    const double s = std::sqrt(1.0 - z * z);
    return {s * std::cos(golden * i), s * std::sin(golden * i), z};
}

}  // namespace

AsteroidPainter::AsteroidPainter(uint32_t seed, Colour litColour, Colour shadeColour)
    : mottling(seed * 7919u + 13u), lit(litColour), shade(shadeColour) {
    Random random(seed);
    for (int i = 0; i < kBumps; ++i)
        bumps.push_back({RandomDirection(random), random.Range(-0.22, 0.26), random.Range(2.0, 7.0)});
    // Craters spread evenly over the surface, with some jitter, so every
    // side that turns to the viewer shows a few.
    for (int i = 0; i < kCraters; ++i) {
        const Vec3 spot = (FibonacciDirection(i, kCraters) + RandomDirection(random) * 0.35).Normalised();
        craters.push_back({spot, std::cos(random.Range(0.18, 0.42)), random.Range(0.05, 0.11)});
    }
    axis = Vec3{random.Range(0.2, 0.5), 1.0, random.Range(0.2, 0.6)}.Normalised();
    // Real asteroids are seldom round: stretch each one into a potato.
    stretch = Vec3{random.Range(1.05, 1.3), random.Range(0.8, 0.95), random.Range(0.85, 1.0)};
    largestRadius = FindLargestRadius();
}

double AsteroidPainter::CraterDepthAt(const Vec3& d) const {
    double depth = 0.0;
    for (const Crater& c : craters) {
        const double u2 = (1.0 - d.Dot(c.direction)) / (1.0 - c.cosRadius);
        if (u2 > kCraterReach * kCraterReach) continue;  // too far for bowl or rim to matter
        const double u = std::sqrt(std::max(0.0, u2));
        if (u < 1.0) depth -= c.depth * (1.0 - u * u);
        // A raised rim just outside the bowl.
        const double rim = (u - 1.0) / 0.25;
        depth += 0.35 * c.depth * std::exp(-rim * rim);
    }
    return depth;
}

double AsteroidPainter::Radius(const Vec3& d) const {
    double r = 1.0;
    for (const Bump& b : bumps) r += b.height * std::exp(b.sharpness * (d.Dot(b.direction) - 1.0));
    return r + CraterDepthAt(d);
}

double AsteroidPainter::FindLargestRadius() const {
    double largest = 0.0;
    for (int i = 0; i < kShapeSamples; ++i) {
        const Vec3 d = FibonacciDirection(i, kShapeSamples);
        const Vec3 reach{d.x * stretch.x, d.y * stretch.y, d.z * stretch.z};
        largest = std::max(largest, Radius(d) * reach.Length());
    }
    return largest * 1.01;
}

double AsteroidPainter::Surface(const Vec3& p) const {
    const Vec3 q{p.x / stretch.x, p.y / stretch.y, p.z / stretch.z};
    const double len = q.Length();
    if (len < 1e-9) return -1.0;
    return len - Radius(q * (1.0 / len));
}

double AsteroidPainter::SurfaceInView(const Vec3& p, double turn) const {
    return Surface(p.Rotated(axis, -turn));
}

AsteroidPainter::Hit AsteroidPainter::CastRay(double x, double y, double turn) const {
    const double r2 = largestRadius * largestRadius - x * x - y * y;
    if (r2 <= 0.0) return {};
    const double zEnter = std::sqrt(r2);
    // March toward the rock in steps scaled by how far outside the surface
    // the point is, then narrow the crossing down by halving.
    double zOutside = zEnter;
    double outside = SurfaceInView({x, y, zOutside}, turn);
    for (int step = 0; step < kMaxMarchSteps && zOutside > -zEnter; ++step) {
        const double z = zOutside - std::max(outside * kMarchShare, kMinMarchStep);
        const double there = SurfaceInView({x, y, z}, turn);
        if (there > 0.0) {
            zOutside = z;
            outside = there;
            continue;
        }
        double zInside = z;
        for (int i = 0; i < kRefineSteps; ++i) {
            const double mid = 0.5 * (zOutside + zInside);
            (SurfaceInView({x, y, mid}, turn) > 0.0 ? zOutside : zInside) = mid;
        }
        return {true, {x, y, 0.5 * (zOutside + zInside)}};
    }
    return {};
}

Colour AsteroidPainter::Shade(const Vec3& p, double turn) const {
    auto g = [&](const Vec3& q) { return SurfaceInView(q, turn); };
    const double e = kNormalStep;
    const Vec3 normal = Vec3{g(p + Vec3{e, 0, 0}) - g(p - Vec3{e, 0, 0}), g(p + Vec3{0, e, 0}) - g(p - Vec3{0, e, 0}),
                             g(p + Vec3{0, 0, e}) - g(p - Vec3{0, 0, e})}
                            .Normalised();
    const double diffuse = std::max(0.0, normal.Dot(kLight));
    const Vec3 turned = p.Rotated(axis, -turn);
    const Vec3 body = Vec3{turned.x / stretch.x, turned.y / stretch.y, turned.z / stretch.z}.Normalised();
    const double speckle = mottling.Fractal(body.x * 3.0, body.y * 3.0, body.z * 3.0, 3);
    const double albedo = std::clamp(0.82 + 0.30 * speckle + 1.6 * std::min(0.0, CraterDepthAt(body)), 0.45, 1.1);
    const Colour surface = shade.Mix(lit, std::clamp(diffuse * 1.1, 0.0, 1.0));
    return surface * (albedo * (kAmbient + (1.0 - kAmbient) * std::sqrt(diffuse)));
}

Image AsteroidPainter::Paint(const FrameInfo& info) const {
    const double turn = 2.0 * std::numbers::pi * info.Phase();
    const double scale = (std::min(info.width, info.height) / 2.0 - kMarginPixels) / largestRadius;
    Image image(info.width, info.height);
    constexpr double kRays = kRaysPerSide * kRaysPerSide;
    for (int py = 0; py < info.height; ++py) {
        for (int px = 0; px < info.width; ++px) {
            Colour sum;
            for (int sy = 0; sy < kRaysPerSide; ++sy) {
                for (int sx = 0; sx < kRaysPerSide; ++sx) {
                    const double x = (px + (sx + 0.5) / kRaysPerSide - info.width / 2.0) / scale;
                    const double y = (py + (sy + 0.5) / kRaysPerSide - info.height / 2.0) / scale;
                    const Hit hit = CastRay(x, y, turn);
                    if (hit.found) sum = sum + Shade(hit.point, turn);
                }
            }
            image.Set(px, py, (sum * (1.0 / kRays)).ToRgb());
        }
    }
    return image;
}

}  // namespace assetgen
