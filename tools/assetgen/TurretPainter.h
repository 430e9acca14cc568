#pragma once
#include <cairo.h>

#include "SpritePainter.h"

namespace assetgen {

// The enemy gun platform: a crimson armoured octagon with a glowing dome and
// twin barrels that point the way it faces.
class TurretPainter : public SpritePainter {
public:
    Image Paint(const FrameInfo& info) const override;

private:
    static void Barrels(cairo_t* cr, double facing);
    static void Base(cairo_t* cr, double facing);
    static void Dome(cairo_t* cr, double facing);
};

}  // namespace assetgen
