#include "support/BitmapFiles.h"

#include <fstream>

namespace qvtest {
namespace {

void Put(std::vector<std::uint8_t>& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

std::vector<std::uint8_t> Headers(int width, int height, int bits, std::uint32_t tableEntries,
                                  std::uint32_t coloursUsed, std::uint32_t pixelBytes)
{
    const std::uint32_t offset = 14 + 40 + tableEntries * 4;
    std::vector<std::uint8_t> out;
    out.push_back('B');
    out.push_back('M');
    Put(out, offset + pixelBytes, 4);
    Put(out, 0, 4);
    Put(out, offset, 4);
    Put(out, 40, 4);
    Put(out, static_cast<std::uint32_t>(width), 4);
    Put(out, static_cast<std::uint32_t>(height), 4);
    Put(out, 1, 2);
    Put(out, static_cast<std::uint32_t>(bits), 2);
    Put(out, 0, 4); // no compression
    Put(out, pixelBytes, 4);
    Put(out, 2835, 4);
    Put(out, 2835, 4);
    Put(out, coloursUsed, 4);
    Put(out, 0, 4);
    return out;
}

int RowBytes(int width, int bits)
{
    return (width * bits / 8 + 3) & ~3;
}

} // namespace

std::vector<std::uint8_t> Bitmap24(int width, int height, const PixelColour& colourAt)
{
    const int row = RowBytes(width, 24);
    auto out = Headers(width, height, 24, 0, 0, static_cast<std::uint32_t>(row * height));
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x) {
            const COLORREF c = colourAt(x, y);
            out.push_back(GetBValue(c));
            out.push_back(GetGValue(c));
            out.push_back(GetRValue(c));
        }
        out.resize(out.size() + static_cast<std::size_t>(row - width * 3), 0);
    }
    return out;
}

std::vector<std::uint8_t> Bitmap8(int width, int height, const std::vector<COLORREF>& colours,
                                  bool statesColoursUsed)
{
    const int row = RowBytes(width, 8);
    const auto entries = static_cast<std::uint32_t>(colours.size());
    auto out = Headers(width, height, 8, entries, statesColoursUsed ? entries : 0,
                       static_cast<std::uint32_t>(row * height));
    for (COLORREF c : colours) {
        out.push_back(GetBValue(c));
        out.push_back(GetGValue(c));
        out.push_back(GetRValue(c));
        out.push_back(0);
    }
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
