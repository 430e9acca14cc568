#pragma once
#include <cstdint>
#include <vector>

#include "BmpWriter.h"

namespace assetgen {

// "palette.bmp": a 16 x 16 swatch of the game's 256-colour palette, each
// pixel showing its own entry. The game takes its display palette straight
// from the bitmap's colour table.
class PaletteBitmap {
public:
    static BmpWriter::Palette Colours();
    static std::vector<uint8_t> Encode();
};

}  // namespace assetgen
