#include "platform/Surface.h"

#include "platform/DC.h"
#include "platform/DisplayDevice.h"

#include <SDL.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

// A key outside the 16-bit range matches no pixel at all.
constexpr std::uint32_t PixelMask = 0xFFFF;

bool Contains(const CSurface& surface, const RECT& r)
{
    return r.left >= 0 && r.top >= 0 && r.right <= surface.GetWidth() && r.bottom <= surface.GetHeight();
}

} // namespace

CSurface::CSurface(CDisplayDevice* owner, std::int32_t w, std::int32_t h, std::uint32_t surfaceCaps)
    : device(owner), width(w), height(h), caps(surfaceCaps)
{
    pixels = SDL_CreateRGBSurfaceWithFormat(0, w, h, BitsPerPixel, SDL_PIXELFORMAT_RGB565);
    if (pixels)
        SDL_FillRect(pixels, nullptr, 0);
}

CSurface::~CSurface()
{
    if (device)
        device->Forget(this);
    dc.reset();
    if (pixels)
        SDL_FreeSurface(pixels);
}

Result CSurface::CheckUsable() const
{
    if (lost)
        return DDERR_SURFACELOST;
    if (Busy())
        return DDERR_SURFACEBUSY;
    return DD_OK;
}

Result CSurface::QuerySurface2(SurfacePtr& out)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::QuerySurface2))
        return fault;
    out = shared_from_this();
    return DD_OK;
}

Result CSurface::GetAttachedSurface(std::uint32_t wantedCaps, SurfacePtr& out)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::GetAttachedSurface))
        return fault;
    if (!attached || (attached->caps & wantedCaps) != wantedCaps)
        return DDERR_NOTFOUND;
    out = attached;
    return DD_OK;
}

Result CSurface::SetColorKey(std::uint32_t flags, std::uint32_t lowValue, std::uint32_t /*highValue*/)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::SetColorKey))
        return fault;
    if (flags != DDCKEY_SRCBLT)
        return DDERR_INVALIDPARAMS;
    if (hasKey && keyValue == lowValue)
        return DD_OK; // unchanged: keep whatever encoding the copies built
    hasKey = true;
    keyValue = lowValue;
    ApplyKey();
    return DD_OK;
}

void CSurface::ApplyKey()
{
    if (!pixels)
        return;
    const bool keyMatchesPixels = hasKey && keyValue <= PixelMask;
    SDL_SetColorKey(pixels, keyMatchesPixels ? SDL_TRUE : SDL_FALSE, keyValue & PixelMask);
    SDL_SetSurfaceRLE(pixels, keyMatchesPixels && runLength ? 1 : 0);
}

void CSurface::SetRunLengthEncoded(bool enable)
{
    runLength = enable;
    ApplyKey();
}

Result CSurface::ColourFill(const RECT* area, std::uint32_t value)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::ColourFill))
        return fault;
    if (Result r = CheckUsable())
        return r;
    const RECT whole{0, 0, width, height};
    const RECT r = area ? *area : whole;
    if (r.IsEmpty() || !Contains(*this, r))
        return DDERR_INVALIDRECT;
    if (!pixels)
        return DDERR_GENERIC;
    SDL_Rect fill{r.left, r.top, r.Width(), r.Height()};
    SDL_LockSurface(pixels); // undoes any run-length encoding first
    SDL_FillRect(pixels, &fill, value & PixelMask);
    SDL_UnlockSurface(pixels);
    Shown();
    return DD_OK;
}

Result CSurface::BltFast(std::int32_t x, std::int32_t y, CSurface* source, const RECT* sourceRect,
                         std::uint32_t flags)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::BltFast))
        return fault;
    if (!source)
        return DDERR_INVALIDPARAMS;
    if (Result r = CheckUsable())
        return r;
    if (source != this) {
        if (Result r = source->CheckUsable())
            return r;
    }
    const RECT from = sourceRect ? *sourceRect : RECT{0, 0, source->width, source->height};
    const RECT to{x, y, x + from.Width(), y + from.Height()};
    if (from.IsEmpty() || !Contains(*source, from) || !Contains(*this, to))
        return DDERR_INVALIDRECT;
    const bool keyed = (flags & DDBLTFAST_SRCCOLORKEY) != 0;
    if (keyed && !source->hasKey)
        return DDERR_NOCOLORKEY;
    if (!pixels || !source->pixels)
        return DDERR_GENERIC;
    CopyRect(*source, from, x, y, keyed);
    Shown();
    return DD_OK;
}

void CSurface::CopyRect(CSurface& source, const RECT& from, std::int32_t x, std::int32_t y, bool keyed)
{
    if (keyed && source.hasKey && source.keyValue <= PixelMask && &source != this) {
        SDL_Rect s{from.left, from.top, from.Width(), from.Height()};
        SDL_Rect d{x, y, from.Width(), from.Height()};
        SDL_LowerBlit(source.pixels, &s, pixels, &d);
        return;
    }
    // Unkeyed, or a key that matches nothing: a plain copy of the rows,
    // overlap-safe so that a surface can copy onto itself.
    SDL_LockSurface(source.pixels);
    if (&source != this)
        SDL_LockSurface(pixels);
    const int rowBytes = from.Width() * 2;
    auto* src = static_cast<std::uint8_t*>(source.pixels->pixels);
    auto* dst = static_cast<std::uint8_t*>(pixels->pixels);
    const bool upward = &source == this && y > from.top;
    for (int i = 0; i < from.Height(); ++i) {
        const int row = upward ? from.Height() - 1 - i : i;
        std::memmove(dst + (y + row) * pixels->pitch + x * 2,
                     src + (from.top + row) * source.pixels->pitch + from.left * 2, rowBytes);
    }
    if (&source != this)
        SDL_UnlockSurface(pixels);
    SDL_UnlockSurface(source.pixels);
}

Result CSurface::Lock(LockedSurface& out)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::Lock))
        return fault;
    if (Result r = CheckUsable())
        return r;
    if (!pixels || SDL_LockSurface(pixels) != 0)
        return DDERR_GENERIC;
    locked = true;
    out.pixels = pixels->pixels;
    out.pitch = pixels->pitch;
    out.bitsPerPixel = BitsPerPixel;
    return DD_OK;
}

Result CSurface::Unlock()
{
    if (!locked)
        return DDERR_NOTLOCKED;
    SDL_UnlockSurface(pixels);
    locked = false;
    Shown();
    return DD_OK;
}

Result CSurface::GetDC(CDC*& out)
{
    out = nullptr;
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::GetDC))
        return fault;
    if (dc)
        return DDERR_DCALREADYCREATED;
    if (Result r = CheckUsable())
        return r;
    if (!pixels || SDL_LockSurface(pixels) != 0)
        return DDERR_CANTCREATEDC;
    dc = std::make_unique<CDC>(static_cast<std::uint16_t*>(pixels->pixels), pixels->pitch / 2, width, height);
    out = dc.get();
    return DD_OK;
}

Result CSurface::ReleaseDC(CDC* released)
{
    if (!dc || released != dc.get())
        return DDERR_INVALIDPARAMS;
    dc.reset();
    SDL_UnlockSurface(pixels);
    Shown();
    return DD_OK;
}

Result CSurface::Flip(CSurface* /*target*/, std::uint32_t /*flags*/)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::Flip))
        return fault;
    if (!IsPrimary() || !attached)
        return DDERR_INVALIDPARAMS;
    if (lost || attached->lost)
        return DDERR_SURFACELOST;
    if (Busy() || attached->Busy())
        return DDERR_SURFACEBUSY;
    if (!device)
        return DDERR_GENERIC;
    const Result shown = device->PresentInTurn(attached->pixels);
    // What was shown becomes the primary's picture; the back buffer gets the old one.
    // Only the memory changes hands: copies from the pages keep their prepared
    // way to this destination instead of rebuilding it every frame.
    std::swap(pixels->pixels, attached->pixels->pixels);
    return shown;
}

Result CSurface::SetPalette(CPalette* newPalette)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::SetPalette))
        return fault;
    palette = newPalette;
    return DD_OK;
}

Result CSurface::IsLost() const
{
    return lost ? DDERR_SURFACELOST : DD_OK;
}

Result CSurface::Restore()
{
    if (!lost)
        return DD_OK;
    if (Busy())
        return DDERR_SURFACEBUSY;
    lost = false;
    if (pixels) {
        SDL_LockSurface(pixels);
        SDL_FillRect(pixels, nullptr, 0);
        SDL_UnlockSurface(pixels);
    }
    if (IsPrimary() && device)
        return device->RemakeTexture();
    return DD_OK;
}

void CSurface::Shown()
{
    // Whatever is drawn on the primary is on the screen at once.
    if (IsPrimary() && device)
        device->Present(pixels);
}

RECT IntersectRect(const RECT& a, const RECT& b)
{
    const RECT r{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                 std::min(a.bottom, b.bottom)};
    return r.IsEmpty() ? RECT{} : r;
}
