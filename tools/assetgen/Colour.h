#pragma once
#include <algorithm>
#include <cstdint>

#include "Image.h"

namespace assetgen {

// A colour in the 0..1 range per channel, used while painting.
struct Colour {
    double r = 0.0, g = 0.0, b = 0.0;

    static constexpr Colour Bytes(int red, int green, int blue) {
        return Colour{red / 255.0, green / 255.0, blue / 255.0};
    }
    Colour operator*(double k) const { return Colour{r * k, g * k, b * k}; }
    Colour operator+(const Colour& o) const { return Colour{r + o.r, g + o.g, b + o.b}; }
    Colour Mix(const Colour& o, double t) const { return *this * (1.0 - t) + o * t; }

    Rgb ToRgb() const {
        auto byte = [](double v) { return static_cast<uint8_t>(std::clamp(v, 0.0, 1.0) * 255.0 + 0.5); };
        return Rgb{byte(r), byte(g), byte(b)};
    }
};

}  // namespace assetgen
