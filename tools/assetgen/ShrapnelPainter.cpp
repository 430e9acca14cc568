#include "ShrapnelPainter.h"

#include <cmath>
#include <numbers>

#include "CairoCanvas.h"
#include "TurnedSpace.h"

namespace assetgen {

namespace {

constexpr double kMarginPixels = 0.1;
constexpr Colour kHeat = Colour::Bytes(255, 120, 20);
constexpr Colour kHot = Colour::Bytes(255, 236, 150);

}  // namespace

Image ShrapnelPainter::Paint(const FrameInfo& info) const {
    CairoCanvas canvas(info.width, info.height);
    canvas.UseUnitSpace(kMarginPixels);
    cairo_t* cr = canvas.Context();
    const double phase = info.Phase();
    const double flicker = 0.8 + 0.2 * std::cos(2.0 * std::numbers::pi * phase);
    CairoCanvas::Glow(cr, 0.0, 0.0, 1.1, kHeat, flicker, 0.7);
    {
        // Half a turn per cycle; the splinter is symmetric under it.
        TurnedSpace turned(cr, phase * std::numbers::pi);
        cairo_move_to(cr, 0.0, -0.95);
        cairo_line_to(cr, 0.45, 0.0);
        cairo_line_to(cr, 0.0, 0.95);
        cairo_line_to(cr, -0.45, 0.0);
        cairo_close_path(cr);
    }
    CairoCanvas::SetColour(cr, kHot, flicker);
    cairo_fill(cr);
    return canvas.ToImage();
}

}  // namespace assetgen
