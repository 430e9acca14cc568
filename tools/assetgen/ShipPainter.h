#pragma once
#include <cairo.h>

#include "SpritePainter.h"

namespace assetgen {

// The player's fighter: a silver-blue delta with a cyan canopy and twin
// engines, drawn nose up and turned to each facing.
class ShipPainter : public SpritePainter {
public:
    Image Paint(const FrameInfo& info) const override;

    // Draws the ship in unit space (nose at y = -1) on any context; the
    // title screen uses it at a large size. Facing turns it clockwise.
    static void Draw(cairo_t* cr, double facing, double engineGlow);

private:
    static void Wings(cairo_t* cr, double facing);
    static void Hull(cairo_t* cr, double facing);
    static void Canopy(cairo_t* cr, double facing);
    static void Engines(cairo_t* cr, double facing, double engineGlow);
    static void Lights(cairo_t* cr, double facing);
};

}  // namespace assetgen
