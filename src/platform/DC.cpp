#include "platform/DC.h"

#include "platform/Bitmap.h"
#include "platform/Font.h"
#include "platform/Surface.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {
constexpr std::uint8_t FullCoverage = 255;

// The colour laid over the pixel at this coverage out of 255, each channel
// rounded down as the 5-6-5 pixel keeps it.
inline void BlendPixel(std::uint16_t& pixel, COLORREF colour, std::uint32_t coverage)
{
    const COLORREF under = Platform::UnpackRgb565(pixel);
    auto mix = [coverage](std::uint32_t over, std::uint32_t below) {
        return static_cast<std::uint8_t>((over * coverage + below * (FullCoverage - coverage)) / FullCoverage);
    };
    pixel = Platform::PackRgb565(RGB(mix(GetRValue(colour), GetRValue(under)), mix(GetGValue(colour), GetGValue(under)),
                                     mix(GetBValue(colour), GetBValue(under))));
}
} // namespace

CDC::CDC(std::uint16_t* surfaceBits, std::int32_t pitchInPixels, std::int32_t w, std::int32_t h)
    : bits(surfaceBits), pitch(pitchInPixels), width(w), height(h)
{
}

COLORREF CDC::SetPixel(std::int32_t x, std::int32_t y, COLORREF colour)
{
    if (!OnSurface(x, y))
        return CLR_INVALID;
    At(x, y) = Platform::PackRgb565(colour);
    return Platform::UnpackRgb565(At(x, y));
}

COLORREF CDC::GetPixel(std::int32_t x, std::int32_t y) const
{
    return OnSurface(x, y) ? Platform::UnpackRgb565(At(x, y)) : CLR_INVALID;
}

void CDC::FillRect(const RECT& rect, COLORREF colour)
{
    const RECT area = IntersectRect(rect, RECT{0, 0, width, height});
    if (area.IsEmpty())
        return;
    // Every row is the first one again: one row filled, the rest copied whole.
    std::uint16_t* first = &At(area.left, area.top);
    std::fill(first, first + area.Width(), Platform::PackRgb565(colour));
    for (std::int32_t y = area.top + 1; y < area.bottom; ++y)
        std::memcpy(&At(area.left, y), first, sizeof(std::uint16_t) * static_cast<std::size_t>(area.Width()));
}

void CDC::FrameRect(const RECT& rect, COLORREF colour)
{
    if (rect.IsEmpty())
        return;
    FillRect({rect.left, rect.top, rect.right, rect.top + 1}, colour);
    FillRect({rect.left, rect.bottom - 1, rect.right, rect.bottom}, colour);
    FillRect({rect.left, rect.top, rect.left + 1, rect.bottom}, colour);
    FillRect({rect.right - 1, rect.top, rect.right, rect.bottom}, colour);
}

bool CDC::Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom)
{
    if (right <= left || bottom <= top)
        return false;
    // Pixel centres inside the ellipse that fits the box; the pixels on its rim take the pen.
    const double rx = (right - left) / 2.0;
    const double ry = (bottom - top) / 2.0;
    const double cx = left + rx;
    const double cy = top + ry;
    auto inside = [&](std::int32_t x, std::int32_t y) {
        const double dx = (x + 0.5 - cx) / rx;
        const double dy = (y + 0.5 - cy) / ry;
        return dx * dx + dy * dy <= 1.0;
    };
    const std::uint16_t pen = Platform::PackRgb565(penColour);
    const std::uint16_t brush = Platform::PackRgb565(brushColour);
    for (std::int32_t y = std::max(top, 0); y < std::min(bottom, height); ++y) {
        for (std::int32_t x = std::max(left, 0); x < std::min(right, width); ++x) {
            if (!inside(x, y))
                continue;
            const bool rim = !inside(x - 1, y) || !inside(x + 1, y) || !inside(x, y - 1) || !inside(x, y + 1);
            At(x, y) = rim ? pen : brush;
        }
    }
    return true;
}

bool CDC::StretchBlt(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h, const CBitmap& source,
                     std::int32_t sourceX, std::int32_t sourceY, std::int32_t sourceWidth, std::int32_t sourceHeight)
{
    if (w <= 0 || h <= 0 || sourceWidth <= 0 || sourceHeight <= 0)
        return false;
    const RECT area = IntersectRect({x, y, x + w, y + h}, {0, 0, width, height});
    for (std::int32_t ty = area.top; ty < area.bottom; ++ty) {
        const std::int64_t sy = sourceY + static_cast<std::int64_t>(ty - y) * sourceHeight / h;
        if (sy < 0 || sy >= source.GetHeight())
            continue;
        for (std::int32_t tx = area.left; tx < area.right; ++tx) {
            const std::int64_t sx = sourceX + static_cast<std::int64_t>(tx - x) * sourceWidth / w;
            if (sx >= 0 && sx < source.GetWidth())
                At(tx, ty) = Platform::PackRgb565(source.GetPixel(static_cast<std::int32_t>(sx), static_cast<std::int32_t>(sy)));
        }
    }
    return true;
}

void CDC::CopyPixels(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h, const std::uint16_t* source)
{
    const RECT area = IntersectRect({x, y, x + w, y + h}, {0, 0, width, height});
    for (std::int32_t ty = area.top; ty < area.bottom; ++ty) {
        const std::uint16_t* row = source + static_cast<std::ptrdiff_t>(ty - y) * w + (area.left - x);
        std::copy(row, row + area.Width(), &At(area.left, ty));
    }
}

CFont* CDC::SelectObject(CFont* newFont)
{
    return std::exchange(font, newFont);
}

COLORREF CDC::SetTextColor(COLORREF colour)
{
    return std::exchange(textColour, colour);
}

COLORREF CDC::SetBkColor(COLORREF colour)
{
    return std::exchange(bkColour, colour);
}

int CDC::SetBkMode(int mode)
{
    return std::exchange(bkMode, mode);
}

CFont& CDC::TextFont() const
{
    return font && font->HasHandle() ? *font : CFont::Stock();
}

SIZE CDC::GetTextExtent(const std::string& text) const
{
    CFontFace* face = TextFont().GetFace();
    if (!face)
        return {};
    SIZE size{0, face->GetHeight()};
    for (unsigned char ch : text)
        size.cx += face->GetGlyph(ch).advance;
    return size;
}

void CDC::Blend(std::int32_t x, std::int32_t y, COLORREF colour, std::uint8_t coverage)
{
    BlendPixel(At(x, y), colour, coverage);
}

bool CDC::TextOut(std::int32_t x, std::int32_t y, const std::string& text)
{
    CFontFace* face = TextFont().GetFace();
    if (!face)
        return false;
    if (bkMode == OPAQUE) {
        const SIZE extent = GetTextExtent(text);
        FillRect({x, y, x + extent.cx, y + extent.cy}, bkColour);
    }
    // A pixel the letter covers wholly is the text colour itself. Most edge
    // pixels lie over the ground (black, or the opaque background), so the
    // blend over it is worked out once for each coverage met.
    const std::uint16_t solid = Platform::PackRgb565(textColour);
    const std::uint16_t ground = bkMode == OPAQUE ? Platform::PackRgb565(bkColour) : 0;
    std::array<std::uint16_t, FullCoverage> overGround;
    std::array<bool, FullCoverage> known{};
    auto blendOverGround = [&](std::uint8_t c) {
        if (!known[c]) {
            overGround[c] = ground;
            BlendPixel(overGround[c], textColour, c);
            known[c] = true;
        }
        return overGround[c];
    };
    std::int32_t pen = x;
    for (unsigned char ch : text) {
        const Glyph& glyph = face->GetGlyph(ch);
        // The part of the letter on the surface.
        const std::int32_t left = std::max(0, -pen), right = std::min(glyph.width, width - pen);
        const std::int32_t top = std::max(0, -y), bottom = std::min(glyph.height, height - y);
        for (std::int32_t gy = top; gy < bottom && left < right; ++gy) {
            const Glyph::Inked& inked = glyph.inked[static_cast<std::size_t>(gy)];
            const std::int32_t from = std::max(left, inked.first), to = std::min(right, inked.end);
            if (from >= to)
                continue;
            const std::uint8_t* coverage = glyph.coverage.data() + static_cast<std::size_t>(gy) * glyph.width + from;
            std::uint16_t* row = &At(pen + from, y + gy);
            for (std::int32_t i = 0; i < to - from; ++i) {
                const std::uint8_t c = coverage[i];
                if (c == FullCoverage)
                    row[i] = solid;
                else if (c == 0)
                    continue;
                else if (row[i] == ground)
                    row[i] = blendOverGround(c);
                else
                    BlendPixel(row[i], textColour, c);
            }
        }
        pen += glyph.advance;
    }
    return true;
}
