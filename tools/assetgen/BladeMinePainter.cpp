#include "BladeMinePainter.h"

#include <cmath>
#include <numbers>

#include "CairoCanvas.h"
#include "TurnedSpace.h"

namespace assetgen {

namespace {

constexpr double kMarginPixels = 0.3;
constexpr int kBlades = 3;
constexpr Colour kBladeLit = Colour::Bytes(240, 255, 90);
constexpr Colour kBladeShade = Colour::Bytes(80, 120, 10);
constexpr Colour kHubLit = Colour::Bytes(150, 150, 170);
constexpr Colour kHubShade = Colour::Bytes(40, 36, 60);
constexpr Colour kCore = Colour::Bytes(230, 70, 255);
constexpr Colour kFlash = Colour::Bytes(255, 240, 255);
// The core flashes for this share of the cycle.
constexpr double kFlashShare = 0.25;

void Blade(cairo_t* cr) {
    // A hooked blade sweeping back from the hub, its point trailing the spin.
    cairo_move_to(cr, -0.22, -0.20);
    cairo_curve_to(cr, -0.20, -0.70, 0.25, -0.95, 0.62, -0.78);
    cairo_curve_to(cr, 0.30, -0.70, 0.10, -0.45, 0.24, -0.14);
    cairo_close_path(cr);
}

void Blades(cairo_t* cr, double turn) {
    for (int i = 0; i < kBlades; ++i) {
        {
            TurnedSpace turned(cr, turn + 2.0 * std::numbers::pi * i / kBlades);
            Blade(cr);
        }
        CairoCanvas::FillLit(cr, kBladeLit, kBladeShade);
    }
}

}  // namespace

Image BladeMinePainter::Paint(const FrameInfo& info) const {
    CairoCanvas canvas(info.width, info.height);
    canvas.UseUnitSpace(kMarginPixels);
    cairo_t* cr = canvas.Context();
    const double phase = info.Phase();
    // One blade spacing per cycle keeps the spin seamless.
    Blades(cr, phase * 2.0 * std::numbers::pi / kBlades);
    cairo_arc(cr, 0.0, 0.0, 0.42, 0.0, 2.0 * std::numbers::pi);
    CairoCanvas::FillLit(cr, kHubLit, kHubShade);
    const bool flashing = phase < kFlashShare;
    CairoCanvas::Glow(cr, 0.0, 0.0, flashing ? 0.62 : 0.40, kCore, 1.0);
    CairoCanvas::Glow(cr, 0.0, 0.0, flashing ? 0.30 : 0.14, flashing ? kFlash : kCore, 1.0);
    return canvas.ToImage();
}

}  // namespace assetgen
