#include "CoinPainter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "CairoCanvas.h"

namespace assetgen {

namespace {

constexpr double kMarginPixels = 0.3;
constexpr double kRadius = 0.95;
constexpr double kHalfThickness = 0.16;
constexpr int kStarPoints = 5;
constexpr Colour kGoldLit = Colour::Bytes(255, 244, 150);
constexpr Colour kGoldShade = Colour::Bytes(176, 112, 10);
constexpr Colour kEdgeLit = Colour::Bytes(220, 160, 30);
constexpr Colour kEdgeShade = Colour::Bytes(110, 66, 8);
constexpr Colour kStarLit = Colour::Bytes(255, 210, 60);
constexpr Colour kStarShade = Colour::Bytes(150, 90, 0);
constexpr Colour kGlint = Colour::Bytes(255, 255, 255);

void Ellipse(cairo_t* cr, double cx, double rx, double ry) {
    cairo_save(cr);
    cairo_translate(cr, cx, 0.0);
    cairo_scale(cr, std::max(rx, 1e-3), ry);
    cairo_arc(cr, 0.0, 0.0, 1.0, 0.0, 2.0 * std::numbers::pi);
    cairo_restore(cr);
}

}  // namespace

void CoinPainter::Edge(cairo_t* cr, double squeeze, double shift) {
    // The rim seen side-on: the band swept between the back and front faces.
    const double rx = kRadius * std::fabs(squeeze);
    cairo_rectangle(cr, -shift, -kRadius, 2.0 * shift, 2.0 * kRadius);
    Ellipse(cr, -shift, rx, kRadius);
    Ellipse(cr, shift, rx, kRadius);
    cairo_set_fill_rule(cr, CAIRO_FILL_RULE_WINDING);
    CairoCanvas::FillLit(cr, kEdgeLit, kEdgeShade);
}

void CoinPainter::Face(cairo_t* cr, double squeeze, double shift) {
    const double rx = kRadius * std::fabs(squeeze);
    Ellipse(cr, shift, rx, kRadius);
    CairoCanvas::FillLit(cr, kGoldLit, kGoldShade);
    if (std::fabs(squeeze) < 0.3) return;
    Ellipse(cr, shift, rx * 0.78, kRadius * 0.78);
    cairo_set_line_width(cr, 0.10);
    CairoCanvas::SetColour(cr, kGoldShade);
    cairo_stroke(cr);
}

void CoinPainter::Star(cairo_t* cr, double squeeze, double shift) {
    for (int i = 0; i < 2 * kStarPoints; ++i) {
        const double a = std::numbers::pi * i / kStarPoints;
        const double r = (i % 2 == 0) ? 0.58 : 0.24;
        cairo_line_to(cr, shift + r * std::sin(a) * squeeze, -r * std::cos(a));
    }
    cairo_close_path(cr);
    CairoCanvas::FillLit(cr, kStarLit, kStarShade);
}

Image CoinPainter::Paint(const FrameInfo& info) const {
    CairoCanvas canvas(info.width, info.height);
    canvas.UseUnitSpace(kMarginPixels);
    cairo_t* cr = canvas.Context();
    // Offset by half a step so no frame catches the coin exactly edge-on,
    // where it would thin to a sliver.
    const double step = info.frameCount > 0 ? 1.0 / info.frameCount : 0.0;
    const double spin = 2.0 * std::numbers::pi * (info.Phase() + 0.5 * step);
    const double squeeze = std::cos(spin);
    // The face nearer the viewer sits toward the side the coin turns to.
    const double shift = kHalfThickness * std::sin(spin);
    Edge(cr, squeeze, shift);
    Face(cr, squeeze, shift);
    if (std::fabs(squeeze) > 0.3) Star(cr, squeeze, shift);
    if (info.frame == 0) CairoCanvas::Glow(cr, -0.35, -0.45, 0.55, kGlint, 0.9);
    return canvas.ToImage();
}

}  // namespace assetgen
