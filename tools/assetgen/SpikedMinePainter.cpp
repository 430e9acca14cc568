#include "SpikedMinePainter.h"

#include <cmath>
#include <numbers>

#include "CairoCanvas.h"
#include "TurnedSpace.h"

namespace assetgen {

namespace {

constexpr double kMarginPixels = 0.3;
constexpr int kSpikes = 8;
constexpr double kBodyRadius = 0.60;
constexpr Colour kMetalLit = Colour::Bytes(200, 206, 222);
constexpr Colour kMetalShade = Colour::Bytes(48, 52, 70);
constexpr Colour kSpikeLit = Colour::Bytes(236, 236, 244);
constexpr Colour kSpikeShade = Colour::Bytes(90, 92, 110);
constexpr Colour kBand = Colour::Bytes(120, 24, 24);
constexpr Colour kLamp = Colour::Bytes(255, 40, 24);
constexpr Colour kLampCore = Colour::Bytes(255, 220, 190);

void Spikes(cairo_t* cr, double turn) {
    for (int i = 0; i < kSpikes; ++i) {
        {
            TurnedSpace turned(cr, turn + 2.0 * std::numbers::pi * i / kSpikes);
            cairo_move_to(cr, -0.13, -0.45);
            cairo_line_to(cr, 0.0, -1.0);
            cairo_line_to(cr, 0.13, -0.45);
            cairo_close_path(cr);
        }
        CairoCanvas::FillLit(cr, kSpikeLit, kSpikeShade);
    }
}

void Body(cairo_t* cr) {
    cairo_arc(cr, 0.0, 0.0, kBodyRadius, 0.0, 2.0 * std::numbers::pi);
    CairoCanvas::FillLit(cr, kMetalLit, kMetalShade);
    cairo_arc(cr, 0.0, 0.0, 0.36, 0.0, 2.0 * std::numbers::pi);
    CairoCanvas::SetColour(cr, kBand);
    cairo_fill(cr);
}

}  // namespace

Image SpikedMinePainter::Paint(const FrameInfo& info) const {
    CairoCanvas canvas(info.width, info.height);
    canvas.UseUnitSpace(kMarginPixels);
    cairo_t* cr = canvas.Context();
    const double phase = info.Phase();
    // The spikes advance one spike spacing per cycle, so the loop is seamless.
    Spikes(cr, phase * 2.0 * std::numbers::pi / kSpikes);
    Body(cr);
    const double throb = 0.5 + 0.5 * std::cos(2.0 * std::numbers::pi * phase);
    CairoCanvas::Glow(cr, 0.0, 0.0, 0.30 + 0.30 * throb, kLamp, 0.55 + 0.45 * throb);
    CairoCanvas::Glow(cr, 0.0, 0.0, 0.16, kLampCore, 0.35 + 0.65 * throb);
    return canvas.ToImage();
}

}  // namespace assetgen
