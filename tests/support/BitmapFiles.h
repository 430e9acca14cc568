#pragma once
#include "platform/DrawTypes.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace qvtest {

using PixelColour = std::function<COLORREF(int x, int y)>;

// A 24-bit bitmap file image: bottom-up rows padded to four bytes.
std::vector<std::uint8_t> Bitmap24(int width, int height, const PixelColour& colourAt);
// An 8-bit bitmap file image with a colour table of `colours` (its size in
// the colours-used field), every pixel index 0.
std::vector<std::uint8_t> Bitmap8(int width, int height, const std::vector<COLORREF>& colours);

void WriteFile(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes);
void WriteFile(const std::filesystem::path& path, const std::string& text);
void WriteBitmap(const std::filesystem::path& path, int width, int height, const PixelColour& colourAt);

// The least data the display needs to start: a black "art/blank.bmp".
void WriteBlankArt();

} // namespace qvtest
