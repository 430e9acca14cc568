#include "Noise.h"

#include <cmath>
#include <utility>

#include "Random.h"

namespace assetgen {

namespace {

double Fade(double t) { return t * t * (3.0 - 2.0 * t); }
double Lerp(double a, double b, double t) { return a + (b - a) * t; }

}  // namespace

Noise::Noise(uint32_t seed) {
    Random random(seed);
    for (int i = 0; i < 256; ++i) {
        permutation[i] = static_cast<uint8_t>(i);
        values[i] = random.Signed();
    }
    for (int i = 255; i > 0; --i) std::swap(permutation[i], permutation[random.Next() % (i + 1)]);
    for (int i = 0; i < 256; ++i) permutation[i + 256] = permutation[i];
}

double Noise::Lattice(int x, int y, int z) const {
    return values[permutation[permutation[permutation[x & 255] + (y & 255)] + (z & 255)]];
}

double Noise::At(double x, double y, double z) const {
    const double fx = std::floor(x), fy = std::floor(y), fz = std::floor(z);
    const int ix = static_cast<int>(fx), iy = static_cast<int>(fy), iz = static_cast<int>(fz);
    const double tx = Fade(x - fx), ty = Fade(y - fy), tz = Fade(z - fz);
    auto plane = [&](int zz) {
        const double a = Lerp(Lattice(ix, iy, zz), Lattice(ix + 1, iy, zz), tx);
        const double b = Lerp(Lattice(ix, iy + 1, zz), Lattice(ix + 1, iy + 1, zz), tx);
        return Lerp(a, b, ty);
    };
    return Lerp(plane(iz), plane(iz + 1), tz);
}

double Noise::Fractal(double x, double y, double z, int octaves) const {
    double sum = 0.0, amplitude = 1.0, scale = 1.0, norm = 0.0;
    for (int i = 0; i < octaves; ++i) {
        sum += amplitude * At(x * scale, y * scale, z * scale);
        norm += amplitude;
        amplitude *= 0.5;
        scale *= 2.0;
    }
    return sum / norm;
}

}  // namespace assetgen
