#include "support/BitmapFiles.h"

#include <fstream>

namespace qvtest {
namespace {

void Put(std::vector<std::uint8_t>& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

std::vector<std::uint8_t> Headers(int width, int height, int bits, std::uint32_t tableEntries, std::uint32_t pixelBytes)
{
    const std::uint32_t offset = 14 + 40 + tableEntries * 4;
    std::vector<std::uint8_t> out{'B', 'M'};
    // File size, reserved, pixel offset; then the 40-byte information header,
    // uncompressed, at 2835 pixels a metre.
    for (std::uint32_t field : {offset + pixelBytes, 0u, offset, 40u, static_cast<std::uint32_t>(width),
                                static_cast<std::uint32_t>(height)})
        Put(out, field, 4);
    Put(out, 1, 2);
    Put(out, static_cast<std::uint32_t>(bits), 2);
    for (std::uint32_t field : {0u, pixelBytes, 2835u, 2835u, tableEntries, 0u})
        Put(out, field, 4);
    return out;
}

int RowBytes(int width, int bits) { return (width * bits / 8 + 3) & ~3; }

// Bitmap files store blue, green, red.
std::uint32_t RgbToBgr(COLORREF c)
{
    return static_cast<std::uint32_t>(GetBValue(c) | GetGValue(c) << 8 | GetRValue(c) << 16);
}

} // namespace

std::vector<std::uint8_t> Bitmap24(int width, int height, const PixelColour& colourAt)
{
    const int row = RowBytes(width, 24);
    auto out = Headers(width, height, 24, 0, static_cast<std::uint32_t>(row * height));
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x)
            Put(out, RgbToBgr(colourAt(x, y)), 3);
        out.resize(out.size() + static_cast<std::size_t>(row - width * 3), 0);
    }
    return out;
}

std::vector<std::uint8_t> Bitmap8(int width, int height, const std::vector<COLORREF>& colours)
{
    const int row = RowBytes(width, 8);
    const auto entries = static_cast<std::uint32_t>(colours.size());
    auto out = Headers(width, height, 8, entries, static_cast<std::uint32_t>(row * height));
    for (COLORREF c : colours)
        Put(out, RgbToBgr(c), 4);
    out.resize(out.size() + static_cast<std::size_t>(row * height), 0);
    return out;
}

void WriteFile(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes)
{
    if (path.has_parent_path())
        std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                                static_cast<std::streamsize>(bytes.size()));
}

void WriteFile(const std::filesystem::path& path, const std::string& text)
{
    WriteFile(path, std::vector<std::uint8_t>(text.begin(), text.end()));
}

void WriteBitmap(const std::filesystem::path& path, int width, int height, const PixelColour& colourAt)
{
    WriteFile(path, Bitmap24(width, height, colourAt));
}

void WriteBlankArt()
{
    WriteBitmap("art/blank.bmp", 8, 8, [](int, int) { return RGB(0, 0, 0); });
}

} // namespace qvtest
