#include "platform/Bitmap.h"

#include <SDL.h>

#include <filesystem>
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

} // namespace

namespace Platform {

Result LoadImageFile(const std::string& path, std::int32_t width, std::int32_t height, CBitmap& out)
{
    std::error_code ignored;
    const std::filesystem::path file(path);
    if (!std::filesystem::exists(file, ignored))
        return MissingFileCode(file);
    if (!std::filesystem::is_regular_file(file, ignored))
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
    SDL_LockSurface(rgb);
    for (std::int32_t y = 0; y < h; ++y) {
        const std::int64_t sy = static_cast<std::int64_t>(y) * rgb->h / h;
        const auto* row = reinterpret_cast<const Uint32*>(static_cast<const Uint8*>(rgb->pixels) + sy * rgb->pitch);
        for (std::int32_t x = 0; x < w; ++x)
            colours[static_cast<std::size_t>(y) * w + x] = row[static_cast<std::int64_t>(x) * rgb->w / w] & 0xFFFFFF;
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
