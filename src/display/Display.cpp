#include "display/Display.h"

#include "core/Trace.h"
#include "display/Bitmaps.h"
#include "display/Screen.h"
#include "display/SpriteSet.h"

namespace {

constexpr const char* PaletteFile = "art/palette.bmp";
constexpr const char* TitleFile = "art/title_screen.bmp";
constexpr const char* SurfaceQueryError = "Error getting DirectDraw2 Surface!";

constexpr std::uint32_t ChainCaps = DDSCAPS_PRIMARYSURFACE | DDSCAPS_FLIP | DDSCAPS_COMPLEX;

// The surface's newer interface in place of the one given up.
Result TakeSurface2(SurfacePtr& first, SurfacePtr& out)
{
    const Result r = first->QuerySurface2(out);
    first.reset();
    if (r != DD_OK)
        CTrace::TraceCode(r, SurfaceQueryError, 0);
    return r;
}

} // namespace

Result CDisplay::Init(HWND window)
{
    CTrace::Trace("Creating direct draw object", 0);
    if (Result r = CDisplayDevice::Create(ddraw))
        return r;

    CTrace::Trace("Finding DD v3 interface", 0);
    const Result queried = ddraw->QueryDevice2(ddraw2);
    ddraw.reset();
    if (queried != DD_OK)
        return queried;

    CTrace::Trace("Setting Cooperative Level, exclusive, fullscreen", 0);
    if (Result r = ddraw2->SetCooperativeLevel(window, DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN))
        return r;

    CTrace::Trace("Set Resolution", 0);
    CTrace::TraceValue(ScreenWidth(), "Screen Width", 0);
    if (Result r = ddraw2->SetDisplayMode(ScreenWidth(), ScreenHeight(), ScreenBitsPerPixel(), 0, 0))
        return r;

    SurfacePtr firstPrimary;
    if (Result r = CreateFlippingChain(firstPrimary))
        return r;
    SurfacePtr firstBack;
    if (Result r = firstPrimary->GetAttachedSurface(DDSCAPS_BACKBUFFER, firstBack))
        return r;
    if (Result r = TakeSurface2(firstPrimary, primary))
        return r;
    if (Result r = TakeSurface2(firstBack, back))
        return r;

    palette = LoadPalette(ddraw2.get(), PaletteFile);
    if (!palette)
        return DD_OK; // usable, without a palette and without clearing the back buffer
    primary->SetPalette(palette.get()); // no effect in a 16-bit mode
    return DrawScreenBitmap(back.get(), BlankFile);
}

Result CDisplay::CreateFlippingChain(SurfacePtr& first)
{
    SurfaceDesc desc;
    desc.flags = DDSD_CAPS | DDSD_BACKBUFFERCOUNT;
    desc.backBufferCount = 1;
    desc.caps = ChainCaps | DDSCAPS_VIDEOMEMORY;
    Result r = ddraw2->CreateSurface(desc, first);
    if (r == DDERR_OUTOFVIDEOMEMORY) {
        CTrace::Trace("Insuficient video memory", 0);
        desc.caps = ChainCaps;
        r = ddraw2->CreateSurface(desc, first);
    }
    return r;
}

Result CDisplay::DrawScreenBitmap(CSurface* surface, const char* path)
{
    return DrawBitmapFile(surface, path, ScreenWidth(), ScreenHeight(), 0, 0);
}

Result CDisplay::Flip()
{
    if (!primary)
        return DDERR_GENERIC;
    const Result r = primary->Flip(nullptr, DDFLIP_WAIT);
    if (r == DDERR_SURFACELOST)
        return Restore();
    return r;
}

Result CDisplay::Restore()
{
    if (primary)
        primary->Restore();
    if (back)
        back->Restore();
    CSpriteSet& sprites = TheSprites();
    sprites.RestorePages();
    sprites.Load();
    return DD_OK;
}

void CDisplay::Release()
{
    if (ddraw2) {
        primary.reset();
        back.reset();
        palette.reset();
        ddraw2.reset();
    }
    ddraw.reset();
}

SurfacePtr CDisplay::CreateOffscreenSurface()
{
    if (!ddraw2)
        return nullptr;
    SurfaceDesc desc;
    desc.flags = DDSD_CAPS | DDSD_HEIGHT | DDSD_WIDTH;
    desc.width = ScreenWidth();
    desc.height = ScreenHeight();
    desc.caps = DDSCAPS_OFFSCREENPLAIN;
    SurfacePtr first;
    if (ddraw2->CreateSurface(desc, first) != DD_OK)
        return nullptr;
    SurfacePtr surface;
    const Result queried = first->QuerySurface2(surface);
    first.reset();
    if (queried != DD_OK)
        return nullptr;
    SetColourKey(surface.get(), RGB(0, 0, 0));
    DrawScreenBitmap(surface.get(), BlankFile); // a missing blank leaves the page as it is
    return surface;
}

Result CDisplay::DrawTitleScreen()
{
    return DrawScreenBitmap(primary.get(), TitleFile);
}
