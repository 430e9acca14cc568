#include "display/Bitmaps.h"

#include "core/ByteStream.h"
#include "platform/Bitmap.h"
#include "platform/DC.h"
#include "platform/FileBytes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t FileHeaderBytes = 14;
constexpr std::size_t InfoHeaderBytes = 40;
constexpr std::uint32_t ExpectedInfoHeaderSize = 40;
constexpr int MaxPalettedBits = 8;

// Entry i of the default palette: three bits of red, three of green, two of blue.
CPalette::Entries ColourCube()
{
    CPalette::Entries entries;
    for (int i = 0; i < CPalette::Size; ++i) {
        entries[i].peRed = static_cast<std::uint8_t>(((i >> 5) & 7) * 255 / 7);
        entries[i].peGreen = static_cast<std::uint8_t>(((i >> 2) & 7) * 255 / 7);
        entries[i].peBlue = static_cast<std::uint8_t>((i & 3) * 255 / 3);
        entries[i].peFlags = 0;
    }
    return entries;
}

// How many entries of the bitmap's colour table are colours.
int ColourTableSize(const std::array<std::uint8_t, InfoHeaderBytes>& info)
{
    const std::uint32_t headerSize = static_cast<std::uint32_t>(LittleAt(&info[0], 4));
    const std::uint32_t bitsPerPixel = static_cast<std::uint32_t>(LittleAt(&info[14], 2));
    const std::uint32_t coloursUsed = static_cast<std::uint32_t>(LittleAt(&info[32], 4));
    if (headerSize != ExpectedInfoHeaderSize || bitsPerPixel > MaxPalettedBits)
        return 0;
    const std::uint32_t n = coloursUsed != 0 ? coloursUsed : (1u << bitsPerPixel);
    return static_cast<int>(std::min<std::uint32_t>(n, CPalette::Size));
}

// A bitmap file as it was drawn: stretched to one size, in the surfaces' format.
struct DecodedBitmap {
    std::filesystem::file_time_type written;
    std::uintmax_t bytes = 0;
    std::vector<std::uint16_t> pixels;
};

using DecodedKey = std::tuple<std::string, std::int32_t, std::int32_t>;

std::map<DecodedKey, DecodedBitmap>& decodedBitmaps()
{
    static std::map<DecodedKey, DecodedBitmap> bitmaps;
    return bitmaps;
}

std::size_t& decodeCount()
{
    static std::size_t count = 0;
    return count;
}

// The file at path stretched to width x height, decoded now or earlier; 0 or
// the loader's error code.
Result DecodedPicture(const std::string& path, std::int32_t width, std::int32_t height, const DecodedBitmap*& out)
{
    namespace fs = std::filesystem;
    std::error_code problem;
    const fs::path file = fs::absolute(path, problem);
    const auto written = fs::last_write_time(file, problem);
    const auto bytes = problem ? 0 : fs::file_size(file, problem);
    const DecodedKey key{file.string(), width, height};
    auto& bitmaps = decodedBitmaps();
    if (!problem) {
        auto kept = bitmaps.find(key);
        if (kept != bitmaps.end() && kept->second.written == written && kept->second.bytes == bytes) {
            out = &kept->second;
            return 0;
        }
    }
    bitmaps.erase(key);
    CBitmap image;
    ++decodeCount();
    if (const Result error = Platform::LoadImageFile(path, width, height, image))
        return error;
    // Kept also when the file's date could not be read; it is then never taken as current.
    DecodedBitmap& decoded = bitmaps[key];
    decoded = {written, bytes, {}};
    decoded.pixels.reserve(static_cast<std::size_t>(width) * height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            decoded.pixels.push_back(Platform::PackRgb565(image.GetPixel(x, y)));
    out = &decoded;
    return 0;
}

} // namespace

std::size_t BitmapFilesDecoded()
{
    return decodeCount();
}

void ForgetDecodedBitmaps()
{
    decodedBitmaps().clear();
}

Result DrawBitmapFile(CSurface* surface, const std::string& path, std::int32_t width, std::int32_t height,
                      std::int32_t x, std::int32_t y)
{
    const DecodedBitmap* picture = nullptr;
    if (width <= 0 || height <= 0) {
        // The loader's own size; a copy of no size draws nothing.
        CBitmap image;
        const Result error = Platform::LoadImageFile(path, width, height, image);
        if (error)
            Platform::OutputDebugString("handle is null\n");
        return error;
    }
    if (const Result error = DecodedPicture(path, width, height, picture)) {
        Platform::OutputDebugString("handle is null\n");
        return error;
    }
    CDC* dc = nullptr;
    if (surface && surface->GetDC(dc) == DD_OK) {
        dc->CopyPixels(x, y, width, height, picture->pixels.data());
        surface->ReleaseDC(dc);
    }
    return 0;
}

PalettePtr LoadPalette(CDisplayDevice* device, const std::string& path)
{
    CPalette::Entries entries = ColourCube();
    std::ifstream file;
    if (Platform::IsReadableFile(path, Platform::MaxPictureFileBytes))
        file.open(path, std::ios::binary);
    if (file) {
        std::array<std::uint8_t, FileHeaderBytes> fileHeader{};
        std::array<std::uint8_t, InfoHeaderBytes> info{};
        std::array<std::uint8_t, CPalette::Size * 4> table{};
        file.read(reinterpret_cast<char*>(fileHeader.data()), fileHeader.size());
        file.read(reinterpret_cast<char*>(info.data()), info.size());
        file.read(reinterpret_cast<char*>(table.data()), table.size());
        // The bytes read go straight into the entries; where the file ended, the cube stays.
        const auto tableBytes = static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0));
        std::memcpy(entries.data(), table.data(), tableBytes);
        // The file's colours are blue, green, red; the palette's red, green, blue.
        const int n = ColourTableSize(info);
        for (int i = 0; i < n; ++i)
            std::swap(entries[i].peRed, entries[i].peBlue);
    }
    PalettePtr palette;
    if (!device || device->CreatePalette(DDPCAPS_8BIT, entries, palette) != DD_OK)
        return nullptr;
    return palette;
}

std::uint32_t MatchColour(CSurface* surface, COLORREF colour)
{
    if (!surface)
        return CLR_INVALID;
    const bool setsPixel = colour != CLR_INVALID;
    COLORREF remembered = 0;
    bool changed = false;
    CDC* dc = nullptr;
    if (setsPixel && surface->GetDC(dc) == DD_OK) {
        remembered = dc->GetPixel(0, 0);
        dc->SetPixel(0, 0, colour);
        surface->ReleaseDC(dc);
        changed = true;
    }

    std::uint32_t value = CLR_INVALID;
    LockedSurface memory;
    Result locked = surface->Lock(memory);
    while (locked == DDERR_WASSTILLDRAWING)
        locked = surface->Lock(memory);
    if (locked == DD_OK) {
        std::uint32_t firstWord = 0;
        std::memcpy(&firstWord, memory.pixels, sizeof firstWord);
        const int bits = memory.bitsPerPixel;
        value = bits < 32 ? firstWord & ((1u << bits) - 1) : firstWord;
        surface->Unlock();
    }

    if (changed && surface->GetDC(dc) == DD_OK) {
        dc->SetPixel(0, 0, remembered);
        surface->ReleaseDC(dc);
    }
    return value;
}

Result SetColourKey(CSurface* surface, COLORREF colour)
{
    if (!surface)
        return DDERR_INVALIDPARAMS;
    const std::uint32_t key = MatchColour(surface, colour);
    return surface->SetColorKey(DDCKEY_SRCBLT, key, key);
}
