#include "ShotPainter.h"

#include <cmath>
#include <numbers>

#include "CairoCanvas.h"
#include "TurnedSpace.h"

namespace assetgen {

namespace {

constexpr double kMarginPixels = 0.1;

}  // namespace

ShotPainter::ShotPainter(Shape s, Colour g, Colour c) : shape(s), glow(g), core(c) {}

Image ShotPainter::Paint(const FrameInfo& info) const {
    CairoCanvas canvas(info.width, info.height);
    canvas.UseUnitSpace(kMarginPixels);
    cairo_t* cr = canvas.Context();
    const double phase = info.Phase();
    const double pulse = 0.5 + 0.5 * std::cos(2.0 * std::numbers::pi * phase);
    if (shape == Shape::Orb) {
        CairoCanvas::Glow(cr, 0.0, 0.0, 1.1, glow, 1.0, 0.75 + 0.15 * pulse);
        CairoCanvas::Glow(cr, 0.0, 0.0, 0.6 + 0.15 * pulse, core, 1.0, 0.8);
        return canvas.ToImage();
    }
    {
        // A quarter turn per cycle: the diamond looks the same after it.
        TurnedSpace turned(cr, phase * std::numbers::pi / 2.0);
        cairo_move_to(cr, 0.0, -1.0);
        cairo_line_to(cr, 0.75, 0.0);
        cairo_line_to(cr, 0.0, 1.0);
        cairo_line_to(cr, -0.75, 0.0);
        cairo_close_path(cr);
    }
    CairoCanvas::SetColour(cr, glow);
    cairo_fill(cr);
    CairoCanvas::Glow(cr, 0.0, 0.0, 0.45 + 0.15 * pulse, core, 1.0);
    return canvas.ToImage();
}

}  // namespace assetgen
