#include "TurretPainter.h"

#include <cmath>
#include <numbers>

#include "CairoCanvas.h"
#include "TurnedSpace.h"

namespace assetgen {

namespace {

constexpr double kMarginPixels = 0.4;
constexpr int kBaseSides = 8;
constexpr double kBaseRadius = 0.80;
constexpr double kDomeRadius = 0.36;
constexpr Colour kArmourLit = Colour::Bytes(236, 92, 104);
constexpr Colour kArmourShade = Colour::Bytes(92, 18, 40);
constexpr Colour kPlateLit = Colour::Bytes(150, 40, 70);
constexpr Colour kPlateShade = Colour::Bytes(58, 12, 34);
constexpr Colour kBarrelLit = Colour::Bytes(220, 220, 232);
constexpr Colour kBarrelShade = Colour::Bytes(70, 72, 92);
constexpr Colour kMuzzle = Colour::Bytes(255, 220, 90);
constexpr Colour kDomeLit = Colour::Bytes(255, 236, 150);
constexpr Colour kDomeShade = Colour::Bytes(210, 70, 10);
constexpr Colour kRivet = Colour::Bytes(255, 200, 80);

void Polygon(cairo_t* cr, int sides, double radius, double turn) {
    for (int i = 0; i < sides; ++i) {
        const double a = turn + 2.0 * std::numbers::pi * i / sides;
        cairo_line_to(cr, radius * std::sin(a), -radius * std::cos(a));
    }
    cairo_close_path(cr);
}

}  // namespace

Image TurretPainter::Paint(const FrameInfo& info) const {
    CairoCanvas canvas(info.width, info.height);
    canvas.UseUnitSpace(kMarginPixels);
    cairo_t* cr = canvas.Context();
    Base(cr, info.facing);
    Barrels(cr, info.facing);
    Dome(cr, info.facing);
    return canvas.ToImage();
}

void TurretPainter::Base(cairo_t* cr, double facing) {
    const double halfSide = std::numbers::pi / kBaseSides;
    {
        TurnedSpace turned(cr, facing);
        Polygon(cr, kBaseSides, kBaseRadius, halfSide);
    }
    CairoCanvas::FillLit(cr, kArmourLit, kArmourShade);
    {
        TurnedSpace turned(cr, facing);
        Polygon(cr, kBaseSides, kBaseRadius * 0.72, halfSide);
    }
    CairoCanvas::FillLit(cr, kPlateShade, kPlateLit);
    TurnedSpace turned(cr, facing);
    for (int i = 0; i < 4; ++i) {
        const double a = std::numbers::pi / 4.0 + i * std::numbers::pi / 2.0;
        CairoCanvas::Glow(cr, 0.66 * std::sin(a), -0.66 * std::cos(a), 0.14, kRivet, 1.0);
    }
}

void TurretPainter::Barrels(cairo_t* cr, double facing) {
    for (double side : {-1.0, 1.0}) {
        {
            TurnedSpace turned(cr, facing);
            cairo_rectangle(cr, side * 0.17 - 0.08, -0.98, 0.16, 0.90);
        }
        CairoCanvas::FillLit(cr, kBarrelLit, kBarrelShade);
        TurnedSpace turned(cr, facing);
        CairoCanvas::Glow(cr, side * 0.17, -0.94, 0.14, kMuzzle, 1.0);
    }
}

void TurretPainter::Dome(cairo_t* cr, double facing) {
    {
        TurnedSpace turned(cr, facing);
        cairo_arc(cr, 0.0, 0.0, kDomeRadius, 0.0, 2.0 * std::numbers::pi);
    }
    CairoCanvas::FillLit(cr, kDomeLit, kDomeShade);
}

}  // namespace assetgen
