#pragma once
// Types, flags and result codes of the drawing side of the platform layer:
// rectangles, colours, palette entries and the surface operations' codes.
// The values are the Windows ones, so the game compares against the same numbers.
#include "platform/Types.h"

#include <cstdint>

using COLORREF = std::uint32_t; // 0x00BBGGRR

constexpr COLORREF RGB(std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    return static_cast<COLORREF>(r) | (static_cast<COLORREF>(g) << 8) | (static_cast<COLORREF>(b) << 16);
}
constexpr std::uint8_t GetRValue(COLORREF c) { return static_cast<std::uint8_t>(c & 0xFF); }
constexpr std::uint8_t GetGValue(COLORREF c) { return static_cast<std::uint8_t>((c >> 8) & 0xFF); }
constexpr std::uint8_t GetBValue(COLORREF c) { return static_cast<std::uint8_t>((c >> 16) & 0xFF); }

constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;

// A rectangle that includes its left and top edges and excludes its right and bottom.
struct RECT {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

    std::int32_t Width() const { return right - left; }
    std::int32_t Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    friend bool operator==(const RECT&, const RECT&) = default;
};

// The overlap of two rectangles; an empty rectangle (all zero) when they do not meet.
RECT IntersectRect(const RECT& a, const RECT& b);

struct PALETTEENTRY {
    std::uint8_t peRed = 0;
    std::uint8_t peGreen = 0;
    std::uint8_t peBlue = 0;
    std::uint8_t peFlags = 0;
};

// Background modes of text.
constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;

// Surface description flags and capabilities.
constexpr std::uint32_t DDSD_CAPS = 0x00000001;
constexpr std::uint32_t DDSD_HEIGHT = 0x00000002;
constexpr std::uint32_t DDSD_WIDTH = 0x00000004;
constexpr std::uint32_t DDSD_BACKBUFFERCOUNT = 0x00000020;
constexpr std::uint32_t DDSCAPS_BACKBUFFER = 0x00000004;
constexpr std::uint32_t DDSCAPS_COMPLEX = 0x00000008;
constexpr std::uint32_t DDSCAPS_FLIP = 0x00000010;
constexpr std::uint32_t DDSCAPS_OFFSCREENPLAIN = 0x00000040;
constexpr std::uint32_t DDSCAPS_PRIMARYSURFACE = 0x00000200;
constexpr std::uint32_t DDSCAPS_VIDEOMEMORY = 0x00004000;

// Cooperative levels.
constexpr std::uint32_t DDSCL_FULLSCREEN = 0x00000001;
constexpr std::uint32_t DDSCL_EXCLUSIVE = 0x00000010;

// Copies, fills, flips, keys and locks.
constexpr std::uint32_t DDBLT_COLORFILL = 0x00000400;
constexpr std::uint32_t DDBLT_KEYSRC = 0x00008000;
constexpr std::uint32_t DDBLT_WAIT = 0x01000000;
constexpr std::uint32_t DDBLTFAST_NOCOLORKEY = 0x00000000;
constexpr std::uint32_t DDBLTFAST_SRCCOLORKEY = 0x00000001;
constexpr std::uint32_t DDBLTFAST_WAIT = 0x00000010;
constexpr std::uint32_t DDFLIP_WAIT = 0x00000001;
constexpr std::uint32_t DDCKEY_SRCBLT = 0x00000008;
constexpr std::uint32_t DDLOCK_WAIT = 0x00000001;
constexpr std::uint32_t DDPCAPS_8BIT = 0x00000004;

// Result codes of the display and its surfaces.
constexpr Result DDERR_INVALIDPARAMS = 0x80070057;
constexpr Result DDERR_OUTOFMEMORY = 0x8007000E;
constexpr Result DDERR_INVALIDMODE = 0x88760078;
constexpr Result DDERR_INVALIDRECT = 0x88760096;
constexpr Result DDERR_NOCOLORKEY = 0x887600D7;
constexpr Result DDERR_NOTFOUND = 0x887600FF;
constexpr Result DDERR_NOEXCLUSIVEMODE = 0x887600E1;
constexpr Result DDERR_NOHWND = 0x88760235;
constexpr Result DDERR_SURFACEBUSY = 0x887601AE;
constexpr Result DDERR_NOTLOCKED = 0x88760248;
constexpr Result DDERR_CANTCREATEDC = 0x88760245;
constexpr Result DDERR_DCALREADYCREATED = 0x8876026C;
constexpr Result DDERR_WASSTILLDRAWING = 0x8876021C;
constexpr Result DDERR_GENERIC = E_FAIL;
