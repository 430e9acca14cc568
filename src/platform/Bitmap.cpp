#include "platform/Bitmap.h"

#include "core/ByteStream.h"
#include "platform/FileBytes.h"

#include <SDL.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

void CBitmap::Assign(std::int32_t w, std::int32_t h, std::vector<COLORREF> colours)
{
    width = w;
    height = h;
    pixels = std::move(colours);
}

namespace {

Result MissingFileCode(const std::filesystem::path& file)
{
    std::error_code ignored;
    const auto folder = file.parent_path();
    if (!folder.empty() && !std::filesystem::is_directory(folder, ignored))
        return ERROR_PATH_NOT_FOUND;
    return ERROR_FILE_NOT_FOUND;
}

// Far more than any picture of the game (the screen is 1024 x 768), and few
// enough that a file claiming more is refused before memory is set aside for it.
constexpr std::int64_t MaxPicturePixels = 4096 * 4096;

constexpr std::size_t FileHeaderBytes = 14;
constexpr std::uint32_t CoreHeaderBytes = 12; // the oldest header: 16-bit sizes
constexpr std::uint32_t UncompressedRgb = 0;
constexpr std::uint32_t UncompressedBitFields = 3;

// Whether the size a bitmap file's header states is one the file can hold:
// a picture of at most MaxPicturePixels, and an uncompressed one whose rows
// fit in the file. A header that cannot be read is left to the decoder.
bool PlausibleSize(const std::filesystem::path& file)
{
    std::array<std::uint8_t, 34> head{};
    std::ifstream in(file, std::ios::binary);
    in.read(reinterpret_cast<char*>(head.data()), head.size());
    if (in.gcount() < static_cast<std::streamsize>(FileHeaderBytes + CoreHeaderBytes))
        return true;
    const std::uint8_t* info = head.data() + FileHeaderBytes;
    // Sizes are signed in the newer headers: a negative height is a top-down picture.
    const auto signedAt = [&](int at) -> std::int64_t { return static_cast<std::int32_t>(LittleAt(info + at, 4)); };
    const auto unsignedAt = [&](int at, int bytes) { return static_cast<std::int64_t>(LittleAt(info + at, bytes)); };
    const bool core = LittleAt(info, 4) == CoreHeaderBytes;
    const std::int64_t width = core ? unsignedAt(4, 2) : signedAt(4);
    const std::int64_t height = core ? unsignedAt(6, 2) : signedAt(8);
    const std::int64_t bits = unsignedAt(core ? 10 : 14, 2);
    const std::int64_t compression = core ? UncompressedRgb : unsignedAt(16, 4);
    const std::int64_t rows = std::llabs(height);
    if (width <= 0 || rows == 0)
        return true; // the decoder refuses these itself
    if (width * rows > MaxPicturePixels)
        return false;
    if (compression != UncompressedRgb && compression != UncompressedBitFields)
        return true;
    std::error_code ignored;
    const std::int64_t rowBytes = (width * bits + 31) / 32 * 4;
    return rowBytes * rows <= static_cast<std::int64_t>(std::filesystem::file_size(file, ignored));
}

} // namespace

namespace Platform {

Result LoadImageFile(const std::string& path, std::int32_t width, std::int32_t height, CBitmap& out)
{
    std::error_code ignored;
    const std::filesystem::path file(path);
    if (!std::filesystem::exists(file, ignored))
        return MissingFileCode(file);
    if (!IsReadableFile(path, MaxPictureFileBytes) || !PlausibleSize(file))
        return ERROR_INVALID_DATA;

    SDL_Surface* loaded = SDL_LoadBMP(path.c_str());
    if (!loaded)
        return ERROR_INVALID_DATA;
    SDL_Surface* rgb = SDL_ConvertSurfaceFormat(loaded, SDL_PIXELFORMAT_XBGR8888, 0);
    SDL_FreeSurface(loaded);
    if (!rgb)
        return ERROR_INVALID_DATA;

    // The loader's own stretch: each target pixel takes the source pixel under it.
    const std::int32_t w = width > 0 ? width : rgb->w;
    const std::int32_t h = height > 0 ? height : rgb->h;
    std::vector<COLORREF> colours(static_cast<std::size_t>(w) * h);
    std::vector<std::int32_t> column(static_cast<std::size_t>(w));
    for (std::int32_t x = 0; x < w; ++x)
        column[static_cast<std::size_t>(x)] = static_cast<std::int32_t>(static_cast<std::int64_t>(x) * rgb->w / w);
    SDL_LockSurface(rgb);
    COLORREF* next = colours.data();
    for (std::int32_t y = 0; y < h; ++y) {
        const std::int64_t sy = static_cast<std::int64_t>(y) * rgb->h / h;
        const auto* row = reinterpret_cast<const Uint32*>(static_cast<const Uint8*>(rgb->pixels) + sy * rgb->pitch);
        for (const std::int32_t sx : column)
            *next++ = row[sx] & 0xFFFFFF;
    }
    SDL_UnlockSurface(rgb);
    SDL_FreeSurface(rgb);
    out.Assign(w, h, std::move(colours));
    return 0;
}

void OutputDebugString(const std::string& text)
{
    SDL_LogDebug(SDL_LOG_CATEGORY_APPLICATION, "%s", text.c_str());
}

} // namespace Platform
