#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "Image.h"

namespace assetgen {

// Writes Windows bitmap files the game's loader reads: uncompressed,
// bottom-up rows padded to four bytes, a plain 40-byte information header.
class BmpWriter {
public:
    using Palette = std::array<Rgb, 256>;

    // 24 bits a pixel; used for every sprite frame and full-screen picture.
    static std::vector<uint8_t> Encode24(const Image& image);
    // 8 bits a pixel with a full 256-entry colour table; the game builds its
    // display palette from this table.
    static std::vector<uint8_t> Encode8(int width, int height, const std::vector<uint8_t>& indices,
                                        const Palette& palette);
};

}  // namespace assetgen
