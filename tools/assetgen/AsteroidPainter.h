#pragma once
#include <cstdint>
#include <vector>

#include "Colour.h"
#include "Noise.h"
#include "SpritePainter.h"
#include "Vec3.h"

namespace assetgen {

// A lumpy, cratered rock that tumbles about a tilted axis. The shape is a
// sphere pushed in and out by bumps and craters; each pixel is ray-cast and
// lit from the top left, several rays a pixel for smooth edges. One full
// turn spans the animation, so the loop closes seamlessly.
class AsteroidPainter : public SpritePainter {
public:
    AsteroidPainter(uint32_t seed, Colour lit, Colour shade);
    Image Paint(const FrameInfo& info) const override;

private:
    struct Bump {
        Vec3 direction;
        double height;
        double sharpness;
    };
    struct Crater {
        Vec3 direction;
        double cosRadius;
        double depth;
    };
    struct Hit {
        bool found = false;
        Vec3 point;
    };

    double Radius(const Vec3& direction) const;
    double Surface(const Vec3& bodyPoint) const;
    double SurfaceInView(const Vec3& viewPoint, double turn) const;
    Hit CastRay(double x, double y, double turn) const;
    Colour Shade(const Vec3& viewPoint, double turn) const;
    double CraterDepthAt(const Vec3& direction) const;
    double FindLargestRadius() const;

    std::vector<Bump> bumps;
    std::vector<Crater> craters;
    Noise mottling;
    Vec3 axis;
    Vec3 stretch;
    Colour lit;
    Colour shade;
    double largestRadius = 1.0;
};

}  // namespace assetgen
