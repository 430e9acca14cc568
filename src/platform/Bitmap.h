#pragma once
#include "platform/DrawTypes.h"

#include <cstdint>
#include <string>
#include <vector>

// A picture loaded from a bitmap file, each pixel a colour (0x00BBGGRR).
class CBitmap {
public:
    std::int32_t GetWidth() const { return width; }
    std::int32_t GetHeight() const { return height; }
    COLORREF GetPixel(std::int32_t x, std::int32_t y) const { return pixels[static_cast<std::size_t>(y) * width + x]; }

    void Assign(std::int32_t w, std::int32_t h, std::vector<COLORREF> colours);

private:
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<COLORREF> pixels;
};

namespace Platform {
// Loads a bitmap file stretched to width x height (the file's own size for a
// zero width or height). 0, or why not: ERROR_FILE_NOT_FOUND,
// ERROR_PATH_NOT_FOUND when the folder is missing, ERROR_INVALID_DATA when the
// file is not a bitmap that can be read.
Result LoadImageFile(const std::string& path, std::int32_t width, std::int32_t height, CBitmap& out);

// A line for a developer watching the program; the player never sees it.
void OutputDebugString(const std::string& text);
} // namespace Platform
