#include "ContactSheet.h"

#include <cairo.h>

#include <algorithm>
#include <string>

#include "CairoCanvas.h"

namespace assetgen {

namespace {

constexpr int kSheetWidth = 1200;
constexpr int kMargin = 16;
constexpr int kGap = 4;
constexpr int kLabelHeight = 26;
constexpr int kSectionGap = 14;
constexpr double kLabelSize = 14.0;
constexpr Colour kBackground = Colour::Bytes(22, 24, 34);
constexpr Colour kLabel = Colour::Bytes(200, 210, 230);

int Zoom(const SpriteEntry& e) { return e.width <= 8 ? 6 : (e.width <= 20 ? 3 : 2); }
int Cell(const SpriteEntry& e) { return e.width * Zoom(e) + kGap; }
int PerRow(const SpriteEntry& e) { return std::max(1, (kSheetWidth - 2 * kMargin + kGap) / Cell(e)); }

int SectionHeight(const SpriteEntry& e) {
    const int rows = (e.FramesStored() + PerRow(e) - 1) / PerRow(e);
    return kLabelHeight + rows * (e.height * Zoom(e) + kGap) + kSectionGap;
}

std::string Caption(const SpriteEntry& e) {
    std::string text = e.name + "   " + std::to_string(e.width) + " x " + std::to_string(e.height);
    if (e.directions > 0) text += ",  " + std::to_string(e.directions) + " directions";
    if (e.frameCount > 0)
        text += ",  " + std::to_string(e.frameCount) + " frames of " + std::to_string(e.frameTime) + " ms";
    return text;
}

void DrawFrame(cairo_t* cr, const Image& frame, int x, int y, int zoom) {
    cairo_surface_t* pixels = cairo_image_surface_create(CAIRO_FORMAT_RGB24, frame.Width(), frame.Height());
    auto* data = cairo_image_surface_get_data(pixels);
    const int stride = cairo_image_surface_get_stride(pixels);
    for (int py = 0; py < frame.Height(); ++py) {
        auto* row = reinterpret_cast<uint32_t*>(data + static_cast<size_t>(py) * stride);
        for (int px = 0; px < frame.Width(); ++px) {
            const Rgb c = frame.At(px, py);
            row[px] = (uint32_t{c.r} << 16) | (uint32_t{c.g} << 8) | c.b;
        }
    }
    cairo_surface_mark_dirty(pixels);
    cairo_save(cr);
    cairo_translate(cr, x, y);
    cairo_scale(cr, zoom, zoom);
    cairo_set_source_surface(cr, pixels, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_NEAREST);
    cairo_paint(cr);
    cairo_restore(cr);
    cairo_surface_destroy(pixels);
}

int DrawSection(cairo_t* cr, const SpriteEntry& e, int top) {
    CairoCanvas::SetColour(cr, kLabel);
    cairo_move_to(cr, kMargin, top + kLabelSize + 4);
    cairo_show_text(cr, Caption(e).c_str());
    const std::vector<Image> frames = SpriteCatalogue::RenderFrames(e);
    const int zoom = Zoom(e);
    for (size_t i = 0; i < frames.size(); ++i) {
        const int column = static_cast<int>(i) % PerRow(e);
        const int row = static_cast<int>(i) / PerRow(e);
        DrawFrame(cr, frames[i], kMargin + column * Cell(e), top + kLabelHeight + row * (e.height * zoom + kGap),
                  zoom);
    }
    return top + SectionHeight(e);
}

}  // namespace

bool ContactSheet::Write(const SpriteCatalogue& catalogue, const std::string& pngPath) {
    int height = kMargin;
    for (const SpriteEntry& e : catalogue.Entries()) height += SectionHeight(e);
    CairoCanvas canvas(kSheetWidth, height + kMargin);
    cairo_t* cr = canvas.Context();
    CairoCanvas::SetColour(cr, kBackground);
    cairo_paint(cr);
    cairo_select_font_face(cr, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_set_font_size(cr, kLabelSize);
    int top = kMargin;
    for (const SpriteEntry& e : catalogue.Entries()) top = DrawSection(cr, e, top);
    return cairo_surface_write_to_png(canvas.Surface(), pngPath.c_str()) == CAIRO_STATUS_SUCCESS;
}

}  // namespace assetgen
