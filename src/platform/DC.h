#pragma once
#include "platform/DrawTypes.h"

#include <cstdint>
#include <string>

class CBitmap;
class CFont;

struct SIZE {
    std::int32_t cx = 0;
    std::int32_t cy = 0;
};

// A drawing context on a 16-bit surface: pixels, rectangles, the ellipse,
// stretched bitmaps and text. Everything is clipped to the surface. A new
// context draws text in black on an opaque white background in the stock
// font, outlines in black and fills in white, as a fresh context does.
class CDC {
public:
    CDC(std::uint16_t* bits, std::int32_t pitchInPixels, std::int32_t width, std::int32_t height);

    // The colour actually set, or CLR_INVALID off the surface.
    COLORREF SetPixel(std::int32_t x, std::int32_t y, COLORREF colour);
    COLORREF GetPixel(std::int32_t x, std::int32_t y) const;

    void FillRect(const RECT& rect, COLORREF colour);
    // A one-pixel border just inside the rectangle.
    void FrameRect(const RECT& rect, COLORREF colour);
    // An ellipse inside the box: outlined with the pen, filled with the brush.
    bool Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom);
    // Copies a part of a bitmap, stretched to the destination size.
    bool StretchBlt(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height, const CBitmap& source,
                    std::int32_t sourceX, std::int32_t sourceY, std::int32_t sourceWidth, std::int32_t sourceHeight);

    // Copies a width x height picture already in the surface's 16-bit format,
    // row after row, to (x, y).
    void CopyPixels(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                    const std::uint16_t* source);

    // Each returns what was chosen before.
    CFont* SelectObject(CFont* font);
    COLORREF SetTextColor(COLORREF colour);
    COLORREF SetBkColor(COLORREF colour);
    int SetBkMode(int mode);

    // Writes text with its top-left corner at (x, y).
    bool TextOut(std::int32_t x, std::int32_t y, const std::string& text);
    SIZE GetTextExtent(const std::string& text) const;

private:
    std::uint16_t& At(std::int32_t x, std::int32_t y) const { return bits[y * pitch + x]; }
    bool OnSurface(std::int32_t x, std::int32_t y) const { return x >= 0 && y >= 0 && x < width && y < height; }
    CFont& TextFont() const;
    void Blend(std::int32_t x, std::int32_t y, COLORREF colour, std::uint8_t coverage);

    std::uint16_t* bits;
    std::int32_t pitch;
    std::int32_t width;
    std::int32_t height;
    CFont* font = nullptr;
    COLORREF textColour = RGB(0, 0, 0);
    COLORREF bkColour = RGB(255, 255, 255);
    int bkMode = OPAQUE;
    COLORREF penColour = RGB(0, 0, 0);
    COLORREF brushColour = RGB(255, 255, 255);
};
