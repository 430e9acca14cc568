#include "TitleScreen.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "CairoCanvas.h"
#include "Noise.h"
#include "PlanetPainter.h"
#include "Random.h"
#include "ShipPainter.h"

namespace assetgen {

namespace {

constexpr const char* kName = "Quelvarion";
constexpr const char* kTagline = "SPACE  COMBAT";
constexpr const char* kFontFamily = "DejaVu Sans";
constexpr uint32_t kStarSeed = 1987u;
constexpr uint32_t kNebulaSeed = 4242u;
constexpr int kFaintStars = 900;
constexpr int kBrightStars = 36;
constexpr double kTitleSize = 112.0;
constexpr double kTitleTracking = 10.0;  // extra pixels between letters
constexpr double kTitleBaseline = 250.0;
constexpr double kTitleSlant = -0.18;
constexpr double kShipRadius = 118.0;
constexpr double kShipFacing = std::numbers::pi * 0.22;
constexpr Colour kSpace = Colour::Bytes(3, 4, 12);
constexpr Colour kNebulaViolet = Colour::Bytes(120, 40, 160);
constexpr Colour kNebulaTeal = Colour::Bytes(20, 110, 150);
constexpr Colour kGlowCyan = Colour::Bytes(60, 200, 255);
constexpr Colour kTaglineColour = Colour::Bytes(150, 200, 235);

double Cloud(const Noise& noise, double x, double y, double offset) {
    const double n = noise.Fractal(x, y, offset, 5);
    return std::pow(std::max(0.0, n + 0.1), 1.6);
}

void StarSpikes(cairo_t* cr, double x, double y, double length, double alpha) {
    cairo_set_line_width(cr, 1.0);
    for (int i = 0; i < 2; ++i) {
        const double dx = i == 0 ? length : 0.0, dy = i == 0 ? 0.0 : length;
        cairo_pattern_t* ray = cairo_pattern_create_linear(x - dx, y - dy, x + dx, y + dy);
        cairo_pattern_add_color_stop_rgba(ray, 0.0, 0.8, 0.9, 1.0, 0.0);
        cairo_pattern_add_color_stop_rgba(ray, 0.5, 0.8, 0.9, 1.0, alpha);
        cairo_pattern_add_color_stop_rgba(ray, 1.0, 0.8, 0.9, 1.0, 0.0);
        cairo_set_source(cr, ray);
        cairo_move_to(cr, x - dx, y - dy);
        cairo_line_to(cr, x + dx, y + dy);
        cairo_stroke(cr);
        cairo_pattern_destroy(ray);
    }
}

// Lays the name out letter by letter so the tracking can be opened up.
void NamePath(cairo_t* cr, double left) {
    double x = left;
    for (const char* c = kName; *c != '\0'; ++c) {
        const char letter[2] = {*c, '\0'};
        cairo_text_extents_t ext;
        cairo_text_extents(cr, letter, &ext);
        cairo_move_to(cr, x, kTitleBaseline);
        cairo_text_path(cr, letter);
        x += ext.x_advance + kTitleTracking;
    }
}

double NameWidth(cairo_t* cr) {
    double width = -kTitleTracking;
    for (const char* c = kName; *c != '\0'; ++c) {
        const char letter[2] = {*c, '\0'};
        cairo_text_extents_t ext;
        cairo_text_extents(cr, letter, &ext);
        width += ext.x_advance + kTitleTracking;
    }
    return width;
}

cairo_pattern_t* ChromeGradient(double top, double bottom) {
    // Bright sky above a dark horizon line, a glowing floor below: the
    // classic arcade chrome.
    cairo_pattern_t* g = cairo_pattern_create_linear(0.0, top, 0.0, bottom);
    cairo_pattern_add_color_stop_rgb(g, 0.00, 1.00, 1.00, 1.00);
    cairo_pattern_add_color_stop_rgb(g, 0.45, 0.62, 0.86, 1.00);
    cairo_pattern_add_color_stop_rgb(g, 0.52, 0.10, 0.22, 0.55);
    cairo_pattern_add_color_stop_rgb(g, 0.60, 0.25, 0.45, 0.85);
    cairo_pattern_add_color_stop_rgb(g, 1.00, 0.75, 0.95, 1.00);
    return g;
}

}  // namespace

Image TitleScreen::Paint(int width, int height) {
    CairoCanvas canvas(width, height);
    Nebula(canvas.Surface());
    cairo_t* cr = canvas.Context();
    Stars(cr, width, height);
    Planet(cr, width, height);
    Ship(cr, width, height);
    Title(cr, width);
    Subtitle(cr, width);
    return canvas.ToImage();
}

void TitleScreen::Nebula(cairo_surface_t* surface) {
    const Noise noise(kNebulaSeed);
    const int w = cairo_image_surface_get_width(surface), h = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    unsigned char* data = cairo_image_surface_get_data(surface);
    for (int y = 0; y < h; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(data + static_cast<size_t>(y) * stride);
        for (int x = 0; x < w; ++x) {
            const double u = x / 300.0, v = y / 300.0;
            const Colour c = kSpace + kNebulaViolet * (0.9 * Cloud(noise, u, v, 0.5)) +
                             kNebulaTeal * (0.7 * Cloud(noise, u + 5.2, v + 1.3, 7.5));
            const Rgb p = c.ToRgb();
            row[x] = 0xFF000000u | (uint32_t{p.r} << 16) | (uint32_t{p.g} << 8) | p.b;
        }
    }
    cairo_surface_mark_dirty(surface);
}

void TitleScreen::Stars(cairo_t* cr, int width, int height) {
    Random random(kStarSeed);
    for (int i = 0; i < kFaintStars; ++i) {
        const double x = random.Range(0, width), y = random.Range(0, height);
        const double brightness = std::pow(random.Unit(), 2.5);
        const double tint = random.Signed() * 0.15;
        cairo_set_source_rgba(cr, 0.85 - tint, 0.88, 0.95 + tint, 0.25 + 0.75 * brightness);
        cairo_arc(cr, x, y, 0.45 + 0.8 * brightness, 0.0, 2.0 * std::numbers::pi);
        cairo_fill(cr);
    }
    for (int i = 0; i < kBrightStars; ++i) {
        const double x = random.Range(0, width), y = random.Range(0, height);
        const double size = random.Range(3.0, 8.0);
        CairoCanvas::Glow(cr, x, y, size, Colour::Bytes(200, 225, 255), 0.9);
        StarSpikes(cr, x, y, size * 2.4, 0.7);
    }
}

void TitleScreen::Planet(cairo_t* cr, int width, int height) {
    const double cx = width * 0.86, cy = height * 1.28, r = height * 0.62;
    // The atmosphere's halo first; the planet's body then covers its inner part.
    cairo_pattern_t* halo = cairo_pattern_create_radial(cx, cy, r * 0.96, cx, cy, r * 1.10);
    cairo_pattern_add_color_stop_rgba(halo, 0.0, 0.45, 0.85, 1.0, 0.85);
    cairo_pattern_add_color_stop_rgba(halo, 1.0, 0.10, 0.30, 0.80, 0.0);
    cairo_set_source(cr, halo);
    cairo_arc(cr, cx, cy, r * 1.10, 0.0, 2.0 * std::numbers::pi);
    cairo_fill(cr);
    cairo_pattern_destroy(halo);
    PlanetPainter::Paint(cairo_get_target(cr), cx, cy, r);
}

void TitleScreen::Ship(cairo_t* cr, int width, int height) {
    cairo_save(cr);
    cairo_translate(cr, width * 0.30, height * 0.68);
    cairo_scale(cr, kShipRadius, kShipRadius);
    cairo_rotate(cr, kShipFacing);
    for (double side : {-1.0, 1.0}) Flame(cr, side * 0.10);
    cairo_rotate(cr, -kShipFacing);
    ShipPainter::Draw(cr, kShipFacing, 1.0);
    cairo_restore(cr);
}

void TitleScreen::Flame(cairo_t* cr, double x) {
    // A long tapering plume behind one nozzle, white-hot at its root.
    constexpr double kRoot = 0.78, kLength = 1.5, kHalfWidth = 0.085;
    cairo_move_to(cr, x - kHalfWidth, kRoot);
    cairo_curve_to(cr, x - kHalfWidth * 1.4, kRoot + kLength * 0.3, x - kHalfWidth * 0.3, kRoot + kLength * 0.8, x,
                   kRoot + kLength);
    cairo_curve_to(cr, x + kHalfWidth * 0.3, kRoot + kLength * 0.8, x + kHalfWidth * 1.4, kRoot + kLength * 0.3,
                   x + kHalfWidth, kRoot);
    cairo_close_path(cr);
    cairo_pattern_t* heat = cairo_pattern_create_linear(0.0, kRoot, 0.0, kRoot + kLength);
    cairo_pattern_add_color_stop_rgba(heat, 0.0, 1.0, 1.0, 0.9, 1.0);
    cairo_pattern_add_color_stop_rgba(heat, 0.2, 1.0, 0.8, 0.35, 0.9);
    cairo_pattern_add_color_stop_rgba(heat, 0.6, 1.0, 0.4, 0.1, 0.45);
    cairo_pattern_add_color_stop_rgba(heat, 1.0, 0.9, 0.2, 0.05, 0.0);
    cairo_set_source(cr, heat);
    cairo_fill(cr);
    cairo_pattern_destroy(heat);
    CairoCanvas::Glow(cr, x, kRoot + 0.15, 0.45, Colour::Bytes(255, 150, 60), 0.6);
}

void TitleScreen::Title(cairo_t* cr, int width) {
    cairo_select_font_face(cr, kFontFamily, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_matrix_t font;
    cairo_matrix_init(&font, kTitleSize, 0.0, kTitleSlant * kTitleSize, kTitleSize, 0.0, 0.0);
    cairo_set_font_matrix(cr, &font);
    const double left = (width - NameWidth(cr)) / 2.0;
    // Layered strokes, widest and faintest first, make the neon halo.
    for (int i = 0; i < 6; ++i) {
        NamePath(cr, left);
        CairoCanvas::SetColour(cr, kGlowCyan, 0.05 + 0.05 * i);
        cairo_set_line_width(cr, 26.0 - 4.0 * i);
        cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
        cairo_stroke(cr);
    }
    NamePath(cr, left);
    cairo_pattern_t* chrome = ChromeGradient(kTitleBaseline - kTitleSize * 0.76, kTitleBaseline);
    cairo_set_source(cr, chrome);
    cairo_fill_preserve(cr);
    cairo_pattern_destroy(chrome);
    cairo_set_source_rgb(cr, 0.85, 0.97, 1.0);
    cairo_set_line_width(cr, 1.6);
    cairo_stroke(cr);
}

void TitleScreen::Subtitle(cairo_t* cr, int width) {
    cairo_select_font_face(cr, kFontFamily, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_set_font_size(cr, 22.0);
    std::string spaced;
    for (const char* c = kTagline; *c != '\0'; ++c) {
        spaced += *c;
        if (c[1] != '\0') spaced += ' ';
    }
    cairo_text_extents_t ext;
    cairo_text_extents(cr, spaced.c_str(), &ext);
    const double x = (width - ext.x_advance) / 2.0, y = kTitleBaseline + 62.0;
    CairoCanvas::SetColour(cr, kTaglineColour);
    cairo_move_to(cr, x, y);
    cairo_show_text(cr, spaced.c_str());
    cairo_set_line_width(cr, 1.5);
    for (double side : {-1.0, 1.0}) {
        const double start = side < 0 ? x - 24.0 : x + ext.x_advance + 24.0;
        cairo_move_to(cr, start, y - 8.0);
        cairo_line_to(cr, start + side * 160.0, y - 8.0);
    }
    cairo_stroke(cr);
}

}  // namespace assetgen
