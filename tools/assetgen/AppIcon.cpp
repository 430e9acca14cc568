#include "AppIcon.h"

#include <cairo.h>

#include <cmath>

#include "ShipPainter.h"

namespace assetgen {
namespace {

constexpr double kCorner = 22.0;
constexpr double kShipScale = 46.0;
constexpr double kShipFacing = 0.6; // climbing to the right, as on the title screen

void RoundedTile(cairo_t* cr, double size)
{
    const double r = kCorner;
    cairo_new_sub_path(cr);
    cairo_arc(cr, size - r, r, r, -M_PI / 2, 0);
    cairo_arc(cr, size - r, size - r, r, 0, M_PI / 2);
    cairo_arc(cr, r, size - r, r, M_PI / 2, M_PI);
    cairo_arc(cr, r, r, r, M_PI, 3 * M_PI / 2);
    cairo_close_path(cr);
}

}  // namespace

bool AppIcon::Write(const std::string& pngPath)
{
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, Size, Size);
    cairo_t* cr = cairo_create(surface);

    RoundedTile(cr, Size);
    cairo_pattern_t* sky = cairo_pattern_create_radial(Size * 0.5, Size * 0.45, 8, Size * 0.5, Size * 0.5, Size * 0.75);
    cairo_pattern_add_color_stop_rgb(sky, 0.0, 0.10, 0.14, 0.32);
    cairo_pattern_add_color_stop_rgb(sky, 1.0, 0.02, 0.03, 0.08);
    cairo_set_source(cr, sky);
    cairo_fill(cr);
    cairo_pattern_destroy(sky);

    cairo_save(cr);
    cairo_translate(cr, Size * 0.5, Size * 0.52);
    cairo_scale(cr, kShipScale, kShipScale);
    ShipPainter::Draw(cr, kShipFacing, 1.0);
    cairo_restore(cr);

    cairo_destroy(cr);
    const bool written = cairo_surface_write_to_png(surface, pngPath.c_str()) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return written;
}

}  // namespace assetgen
