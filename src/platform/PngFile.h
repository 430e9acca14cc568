#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace Platform {
// A PNG file's bytes for a picture of 8-bit red, green and blue triples, row
// after row from the top. Empty when the sizes do not match the pixels or
// the picture cannot be compressed.
std::string PngBytes(const std::vector<std::uint8_t>& rgb, int width, int height);
} // namespace Platform
