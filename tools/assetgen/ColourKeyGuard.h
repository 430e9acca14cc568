#pragma once
#include "Image.h"

namespace assetgen {

// The game draws sprites with black as the transparent colour on a 16-bit
// 5-6-5 display. A very dark pixel whose top bits are all zero would turn
// into that key and punch a hole in the sprite, so every pixel is settled
// either to pure black (a faint antialiased fringe, dropped) or to a colour
// that survives the conversion.
class ColourKeyGuard {
public:
    // True when the colour is still not black after 5-6-5 truncation.
    static bool SurvivesRgb565(Rgb colour);
    static Rgb Settle(Rgb colour);
    static void Apply(Image& image);
};

}  // namespace assetgen
