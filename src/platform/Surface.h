#pragma once
#include "platform/DrawTypes.h"

#include <cstdint>
#include <memory>

struct SDL_Surface;
class CDC;
class CDisplayDevice;
class CPalette;
class CSurface;

using SurfacePtr = std::shared_ptr<CSurface>;

// What a surface is asked to be.
struct SurfaceDesc {
    std::uint32_t flags = 0; // DDSD_*: which of the fields below are given
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t backBufferCount = 0;
    std::uint32_t caps = 0; // DDSCAPS_*
};

// The memory of a locked surface.
struct LockedSurface {
    void* pixels = nullptr;
    std::int32_t pitch = 0; // bytes from one row to the next
    std::int32_t bitsPerPixel = 0;
};

namespace Platform {
// The 16-bit 5-6-5 value of a colour, each channel truncated as the hardware
// does. Inline: text and blending ask for it for every pixel they touch.
inline std::uint16_t PackRgb565(COLORREF colour)
{
    return static_cast<std::uint16_t>(((GetRValue(colour) >> 3) << 11) | ((GetGValue(colour) >> 2) << 5) |
                                      (GetBValue(colour) >> 3));
}
// The colour a 5-6-5 value shows, low bits of each channel zero.
inline COLORREF UnpackRgb565(std::uint16_t value)
{
    return RGB(static_cast<std::uint8_t>(((value >> 11) & 0x1F) << 3),
               static_cast<std::uint8_t>(((value >> 5) & 0x3F) << 2), static_cast<std::uint8_t>((value & 0x1F) << 3));
}
} // namespace Platform

// A picture held in memory in the 16-bit 5-6-5 format: the primary surface,
// its back buffer, or an off-screen page. Operations answer with a result
// code; a lost surface answers DDERR_SURFACELOST until it is restored.
class CSurface : public std::enable_shared_from_this<CSurface> {
public:
    static constexpr std::int32_t BitsPerPixel = 16;

    CSurface(CDisplayDevice* owner, std::int32_t width, std::int32_t height, std::uint32_t caps);
    CSurface(const CSurface&) = delete;
    CSurface& operator=(const CSurface&) = delete;
    ~CSurface();

    std::int32_t GetWidth() const { return width; }
    std::int32_t GetHeight() const { return height; }
    std::uint32_t GetCaps() const { return caps; }
    bool IsPrimary() const { return (caps & DDSCAPS_PRIMARYSURFACE) != 0; }

    // The surface's second-version interface: the same surface, one more holder.
    Result QuerySurface2(SurfacePtr& out);
    // The back buffer of a flipping chain.
    Result GetAttachedSurface(std::uint32_t wantedCaps, SurfacePtr& out);

    // Source colour key (DDCKEY_SRCBLT): pixels of this value are not copied by keyed copies.
    Result SetColorKey(std::uint32_t flags, std::uint32_t lowValue, std::uint32_t highValue);
    bool HasColorKey() const { return hasKey; }
    std::uint32_t GetColorKey() const { return keyValue; }

    // Fills the area (the whole surface when null) with a 16-bit value.
    Result ColourFill(const RECT* area, std::uint32_t value);
    // Copies the source rectangle (the whole source when null) to (x, y), unclipped:
    // a rectangle that does not lie wholly on both surfaces is refused.
    Result BltFast(std::int32_t x, std::int32_t y, CSurface* source, const RECT* sourceRect, std::uint32_t flags);

    Result Lock(LockedSurface& out);
    Result Unlock();

    // A drawing context on the surface, owned by it until ReleaseDC.
    Result GetDC(CDC*& dc);
    Result ReleaseDC(CDC* dc);

    // Shows the back buffer: the primary and its back buffer exchange pictures.
    Result Flip(CSurface* target, std::uint32_t flags);
    // Attaching a palette has no effect in a 16-bit mode.
    Result SetPalette(CPalette* newPalette);

    Result IsLost() const;
    // Brings a lost surface back; its picture is gone.
    Result Restore();
    void MarkLost() { lost = true; }

    // Whether keyed copies from this surface may use run-length encoding.
    void SetRunLengthEncoded(bool enable);

    // Called when the display device goes away first: the surface stays a picture in memory.
    void Detach() { device = nullptr; }

private:
    Result CheckUsable() const;
    bool Busy() const { return locked || dc != nullptr; }
    void ApplyKey();
    void CopyRect(CSurface& source, const RECT& from, std::int32_t x, std::int32_t y, bool keyed);
    void Shown();

    CDisplayDevice* device;
    std::int32_t width;
    std::int32_t height;
    std::uint32_t caps;
    SDL_Surface* pixels = nullptr;
    SurfacePtr attached; // the back buffer of a primary surface
    std::unique_ptr<CDC> dc;
    CPalette* palette = nullptr;
    std::uint32_t keyValue = 0;
    bool hasKey = false;
    bool runLength = false;
    bool locked = false;
    bool lost = false;

    friend class CDisplayDevice;
};
