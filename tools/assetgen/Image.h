#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

struct _cairo_surface;

namespace assetgen {

struct Rgb {
    uint8_t r = 0, g = 0, b = 0;
    bool operator==(const Rgb&) const = default;
};

// An opaque 24-bit picture, top row first. Sprites are painted with
// transparency and then flattened onto black, which is the game's
// transparent colour key.
class Image {
public:
    Image() = default;
    Image(int width, int height);

    // Flattens a Cairo ARGB32 surface onto black. Cairo stores colours
    // premultiplied by alpha, which is exactly "drawn over black".
    static Image FromCairo(_cairo_surface* surface);

    int Width() const { return width; }
    int Height() const { return height; }
    Rgb At(int x, int y) const { return pixels[Index(x, y)]; }
    void Set(int x, int y, Rgb colour) { pixels[Index(x, y)] = colour; }
    const std::vector<Rgb>& Pixels() const { return pixels; }
    std::vector<Rgb>& Pixels() { return pixels; }

private:
    size_t Index(int x, int y) const { return static_cast<size_t>(y) * width + x; }

    int width = 0;
    int height = 0;
    std::vector<Rgb> pixels;
};

}  // namespace assetgen
