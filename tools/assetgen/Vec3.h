#pragma once
#include <cmath>

namespace assetgen {

struct Vec3 {
    double x = 0.0, y = 0.0, z = 0.0;

    Vec3 operator+(const Vec3& o) const { return {x + o.x, y + o.y, z + o.z}; }
    Vec3 operator-(const Vec3& o) const { return {x - o.x, y - o.y, z - o.z}; }
    Vec3 operator*(double k) const { return {x * k, y * k, z * k}; }
    double Dot(const Vec3& o) const { return x * o.x + y * o.y + z * o.z; }
    Vec3 Cross(const Vec3& o) const { return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x}; }
    double Length() const { return std::sqrt(Dot(*this)); }
    Vec3 Normalised() const {
        const double len = Length();
        return len > 0.0 ? *this * (1.0 / len) : *this;
    }
    // Rodrigues' rotation about a unit axis.
    Vec3 Rotated(const Vec3& axis, double angle) const {
        const double c = std::cos(angle), s = std::sin(angle);
        return *this * c + axis.Cross(*this) * s + axis * (axis.Dot(*this) * (1.0 - c));
    }
};

}  // namespace assetgen
