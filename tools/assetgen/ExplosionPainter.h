#pragma once
#include <vector>

#include "Colour.h"
#include "Noise.h"
#include "SpritePainter.h"

namespace assetgen {

// A one-shot fireball: a white flash and shock ring, a churning ball that
// swells and cools from yellow through orange to red, flying sparks, and a
// last wisp of smoke. Painted pixel by pixel from turbulent noise.
class ExplosionPainter : public SpritePainter {
public:
    ExplosionPainter();
    Image Paint(const FrameInfo& info) const override;

private:
    struct Spark {
        double angle;
        double reach;
        double size;
    };

    Colour Sample(double x, double y, double t) const;
    Colour Fireball(double x, double y, double t) const;
    Colour ShockRing(double radius, double t) const;
    Colour Sparks(double x, double y, double t) const;
    static Colour Heat(double heat);

    Noise turbulence;
    std::vector<Spark> sparks;
};

}  // namespace assetgen
