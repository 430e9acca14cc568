#include "ShipPainter.h"

#include "CairoCanvas.h"
#include "TurnedSpace.h"

namespace assetgen {

namespace {

constexpr double kMarginPixels = 0.4;
constexpr Colour kHullLit = Colour::Bytes(236, 242, 252);
constexpr Colour kHullShade = Colour::Bytes(84, 98, 136);
constexpr Colour kWingLit = Colour::Bytes(96, 150, 236);
constexpr Colour kWingShade = Colour::Bytes(26, 44, 118);
constexpr Colour kStripe = Colour::Bytes(255, 196, 64);
constexpr Colour kGlassLit = Colour::Bytes(190, 255, 255);
constexpr Colour kGlassShade = Colour::Bytes(0, 110, 170);
constexpr Colour kFlame = Colour::Bytes(255, 170, 60);
constexpr Colour kFlameCore = Colour::Bytes(255, 250, 210);
constexpr Colour kOutline = Colour::Bytes(22, 30, 64);
constexpr Colour kSpine = Colour::Bytes(255, 255, 255);
constexpr double kOutlineWidth = 0.035;
constexpr Colour kPortLight = Colour::Bytes(255, 60, 60);
constexpr Colour kStarboardLight = Colour::Bytes(80, 255, 120);

void HullPath(cairo_t* cr) {
    cairo_move_to(cr, 0.0, -1.0);
    cairo_curve_to(cr, 0.12, -0.80, 0.22, -0.40, 0.25, -0.05);
    cairo_line_to(cr, 0.27, 0.56);
    cairo_line_to(cr, 0.17, 0.80);
    cairo_line_to(cr, -0.17, 0.80);
    cairo_line_to(cr, -0.27, 0.56);
    cairo_line_to(cr, -0.25, -0.05);
    cairo_curve_to(cr, -0.22, -0.40, -0.12, -0.80, 0.0, -1.0);
    cairo_close_path(cr);
}

// A fine dark seam round a part keeps the parts apart when the ship is large.
void Outline(cairo_t* cr) {
    cairo_set_line_width(cr, kOutlineWidth);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    CairoCanvas::SetColour(cr, kOutline);
    cairo_stroke(cr);
}

void WingPath(cairo_t* cr, double side) {
    cairo_move_to(cr, side * 0.20, -0.22);
    cairo_line_to(cr, side * 0.97, 0.58);
    cairo_line_to(cr, side * 0.92, 0.80);
    cairo_line_to(cr, side * 0.55, 0.66);
    cairo_line_to(cr, side * 0.22, 0.62);
    cairo_close_path(cr);
}

}  // namespace

Image ShipPainter::Paint(const FrameInfo& info) const {
    CairoCanvas canvas(info.width, info.height);
    canvas.UseUnitSpace(kMarginPixels);
    Draw(canvas.Context(), info.facing, 1.0);
    return canvas.ToImage();
}

void ShipPainter::Draw(cairo_t* cr, double facing, double engineGlow) {
    Engines(cr, facing, engineGlow);
    Wings(cr, facing);
    Hull(cr, facing);
    Canopy(cr, facing);
    Lights(cr, facing);
}

void ShipPainter::Wings(cairo_t* cr, double facing) {
    for (double side : {-1.0, 1.0}) {
        {
            TurnedSpace turned(cr, facing);
            WingPath(cr, side);
        }
        CairoCanvas::FillLit(cr, kWingLit, kWingShade);
        TurnedSpace turned(cr, facing);
        WingPath(cr, side);
        Outline(cr);
        // A gold stripe along each wing makes the heading readable at a glance.
        cairo_move_to(cr, side * 0.34, 0.06);
        cairo_line_to(cr, side * 0.86, 0.62);
        cairo_set_line_width(cr, 0.10);
        CairoCanvas::SetColour(cr, kStripe);
        cairo_stroke(cr);
    }
}

void ShipPainter::Hull(cairo_t* cr, double facing) {
    {
        TurnedSpace turned(cr, facing);
        HullPath(cr);
    }
    CairoCanvas::FillLit(cr, kHullLit, kHullShade);
    TurnedSpace turned(cr, facing);
    HullPath(cr);
    Outline(cr);
    // A bright ridge down the spine catches the light.
    cairo_move_to(cr, 0.0, -0.92);
    cairo_curve_to(cr, 0.0, -0.5, 0.0, 0.2, 0.0, 0.72);
    cairo_set_line_width(cr, 0.05);
    CairoCanvas::SetColour(cr, kSpine, 0.45);
    cairo_stroke(cr);
}

void ShipPainter::Canopy(cairo_t* cr, double facing) {
    {
        TurnedSpace turned(cr, facing);
        cairo_save(cr);
        cairo_translate(cr, 0.0, -0.36);
        cairo_scale(cr, 0.10, 0.24);
        cairo_arc(cr, 0.0, 0.0, 1.0, 0.0, 6.283185307179586);
        cairo_restore(cr);
    }
    CairoCanvas::FillLit(cr, kGlassLit, kGlassShade);
}

void ShipPainter::Engines(cairo_t* cr, double facing, double engineGlow) {
    if (engineGlow <= 0.0) return;
    TurnedSpace turned(cr, facing);
    for (double side : {-1.0, 1.0}) {
        CairoCanvas::Glow(cr, side * 0.10, 0.86, 0.20, kFlame, engineGlow);
        CairoCanvas::Glow(cr, side * 0.10, 0.82, 0.09, kFlameCore, engineGlow);
    }
}

void ShipPainter::Lights(cairo_t* cr, double facing) {
    TurnedSpace turned(cr, facing);
    CairoCanvas::Glow(cr, -0.90, 0.68, 0.13, kPortLight, 1.0);
    CairoCanvas::Glow(cr, 0.90, 0.68, 0.13, kStarboardLight, 1.0);
}

}  // namespace assetgen
