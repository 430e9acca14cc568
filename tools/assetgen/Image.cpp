#include "Image.h"

#include <cairo.h>

namespace assetgen {

Image::Image(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w) * h) {}

Image Image::FromCairo(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    const int w = cairo_image_surface_get_width(surface);
    const int h = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    Image image(w, h);
    for (int y = 0; y < h; ++y) {
        const auto* row = reinterpret_cast<const uint32_t*>(data + static_cast<size_t>(y) * stride);
        for (int x = 0; x < w; ++x) {
            const uint32_t argb = row[x];
            image.Set(x, y, Rgb{static_cast<uint8_t>(argb >> 16), static_cast<uint8_t>(argb >> 8),
                                static_cast<uint8_t>(argb)});
        }
    }
    return image;
}

}  // namespace assetgen
