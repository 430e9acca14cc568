#include "AppIcon.h"

#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

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

void Draw(cairo_t* cr, int size)
{
    const double scale = static_cast<double>(size) / AppIcon::DesignSize;
    cairo_scale(cr, scale, scale);
    const double tile = AppIcon::DesignSize;
    RoundedTile(cr, tile);
    cairo_pattern_t* sky = cairo_pattern_create_radial(tile * 0.5, tile * 0.45, 8, tile * 0.5, tile * 0.5, tile * 0.75);
    cairo_pattern_add_color_stop_rgb(sky, 0.0, 0.10, 0.14, 0.32);
    cairo_pattern_add_color_stop_rgb(sky, 1.0, 0.02, 0.03, 0.08);
    cairo_set_source(cr, sky);
    cairo_fill(cr);
    cairo_pattern_destroy(sky);

    cairo_save(cr);
    cairo_translate(cr, tile * 0.5, tile * 0.52);
    cairo_scale(cr, kShipScale, kShipScale);
    ShipPainter::Draw(cr, kShipFacing, 1.0);
    cairo_restore(cr);
}

cairo_surface_t* Paint(int size)
{
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size);
    cairo_t* cr = cairo_create(surface);
    Draw(cr, size);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    return surface;
}

}  // namespace

bool AppIcon::WritePng(const std::string& path, int size)
{
    cairo_surface_t* surface = Paint(size);
    const bool written = cairo_surface_write_to_png(surface, path.c_str()) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return written;
}

bool AppIcon::WriteSvg(const std::string& path)
{
    cairo_surface_t* surface = cairo_svg_surface_create(path.c_str(), DesignSize, DesignSize);
    cairo_t* cr = cairo_create(surface);
    Draw(cr, DesignSize);
    cairo_destroy(cr);
    cairo_surface_finish(surface);
    const bool written = cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return written;
}

std::vector<std::uint8_t> AppIcon::Rgba(int size)
{
    cairo_surface_t* surface = Paint(size);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    std::vector<std::uint8_t> rgba;
    rgba.reserve(static_cast<std::size_t>(4 * size * size));
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            // Cairo keeps native-endian words with the colour multiplied by alpha.
            std::uint32_t word;
            std::memcpy(&word, data + y * stride + 4 * x, sizeof word);
            const std::uint32_t alpha = word >> 24;
            for (int shift : {16, 8, 0}) {
                const std::uint32_t channel = (word >> shift) & 0xFF;
                rgba.push_back(static_cast<std::uint8_t>(alpha ? std::min<std::uint32_t>(255, (channel * 255 + alpha / 2) / alpha) : 0));
            }
            rgba.push_back(static_cast<std::uint8_t>(alpha));
        }
    }
    cairo_surface_destroy(surface);
    return rgba;
}

bool AppIcon::WriteSource(const std::string& path, int size)
{
    std::FILE* file = std::fopen(path.c_str(), "w");
    if (!file) return false;
    std::fprintf(file,
                 "// Made by quelvarion_assetgen when the game is built: the icon of its window.\n"
                 "#include <cstdint>\n\n"
                 "extern const int QvWindowIconSize = %d;\n"
                 "extern const std::uint8_t QvWindowIconPixels[] = {",
                 size);
    const std::vector<std::uint8_t> rgba = Rgba(size);
    for (std::size_t i = 0; i < rgba.size(); ++i)
        std::fprintf(file, "%s%u,", i % 16 == 0 ? "\n    " : "", rgba[i]);
    std::fprintf(file, "\n};\n");
    return std::fclose(file) == 0;
}

}  // namespace assetgen
