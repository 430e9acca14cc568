#pragma once
#include <cairo.h>

#include "SpritePainter.h"

namespace assetgen {

// The gold token: a thick coin with an embossed star, spinning about its
// upright axis, with a glint as its face turns toward the light.
class CoinPainter : public SpritePainter {
public:
    Image Paint(const FrameInfo& info) const override;

private:
    static void Edge(cairo_t* cr, double squeeze, double shift);
    static void Face(cairo_t* cr, double squeeze, double shift);
    static void Star(cairo_t* cr, double squeeze, double shift);
};

}  // namespace assetgen
