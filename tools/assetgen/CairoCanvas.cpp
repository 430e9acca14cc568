#include "CairoCanvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace assetgen {

namespace {

// Direction of the light in unit space: from the top left toward the bottom right.
constexpr double kLightSpan = 0.85;

}  // namespace

CairoCanvas::CairoCanvas(int width, int height)
    : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)), cr(cairo_create(surface)) {
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_BEST);
}

CairoCanvas::~CairoCanvas() {
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
}

void CairoCanvas::UseUnitSpace(double marginPixels) {
    const double w = cairo_image_surface_get_width(surface);
    const double h = cairo_image_surface_get_height(surface);
    const double scale = std::max(0.5, std::min(w, h) / 2.0 - marginPixels);
    cairo_identity_matrix(cr);
    cairo_translate(cr, w / 2.0, h / 2.0);
    cairo_scale(cr, scale, scale);
}

Image CairoCanvas::ToImage() const { return Image::FromCairo(surface); }

void CairoCanvas::SetColour(cairo_t* cr, const Colour& c, double alpha) {
    cairo_set_source_rgba(cr, c.r, c.g, c.b, alpha);
}

void CairoCanvas::FillLit(cairo_t* cr, const Colour& lit, const Colour& shade) {
    cairo_save(cr);
    // Undo any turn but keep the unit scale: the path stays where it was
    // built, while the gradient is laid out in screen directions.
    cairo_matrix_t m;
    cairo_get_matrix(cr, &m);
    const double scale = std::hypot(m.xx, m.yx);
    cairo_identity_matrix(cr);
    cairo_translate(cr, m.x0, m.y0);
    cairo_scale(cr, scale, scale);
    cairo_pattern_t* gradient = cairo_pattern_create_linear(-kLightSpan, -kLightSpan, kLightSpan, kLightSpan);
    cairo_pattern_add_color_stop_rgb(gradient, 0.0, lit.r, lit.g, lit.b);
    cairo_pattern_add_color_stop_rgb(gradient, 1.0, shade.r, shade.g, shade.b);
    cairo_set_source(cr, gradient);
    cairo_fill(cr);
    cairo_pattern_destroy(gradient);
    cairo_restore(cr);
}

void CairoCanvas::Glow(cairo_t* cr, double x, double y, double radius, const Colour& c, double alpha,
                       double halfwayLevel) {
    cairo_pattern_t* gradient = cairo_pattern_create_radial(x, y, 0.0, x, y, radius);
    cairo_pattern_add_color_stop_rgba(gradient, 0.0, c.r, c.g, c.b, alpha);
    cairo_pattern_add_color_stop_rgba(gradient, 0.45, c.r, c.g, c.b, alpha * halfwayLevel);
    cairo_pattern_add_color_stop_rgba(gradient, 1.0, c.r, c.g, c.b, 0.0);
    cairo_set_source(cr, gradient);
    cairo_arc(cr, x, y, radius, 0.0, 2.0 * std::numbers::pi);
    cairo_fill(cr);
    cairo_pattern_destroy(gradient);
}

}  // namespace assetgen
