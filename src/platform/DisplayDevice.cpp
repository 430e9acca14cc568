#include "platform/DisplayDevice.h"

#include "platform/Clock.h"
#include "platform/Window.h"

#include <SDL.h>

#include <algorithm>

namespace {

struct Fault {
    DisplayOp op;
    Result code;
    int skip;
    int times;
};

std::vector<Fault>& faults()
{
    static std::vector<Fault>& list = *new std::vector<Fault>; // see liveDevices
    return list;
}

std::vector<CDisplayDevice*>& liveDevices()
{
    // Never destroyed: the application object, a global made before this list,
    // lets go of its device from its own destructor, after the list would be gone.
    static std::vector<CDisplayDevice*>& devices = *new std::vector<CDisplayDevice*>;
    return devices;
}

bool& runLengthPages()
{
    static bool enabled = false;
    return enabled;
}

// Used when the desktop does not say how often it refreshes.
constexpr int DefaultRefreshHz = 60;

} // namespace

namespace Platform {

void InjectDisplayFault(DisplayOp op, Result code, int skip, int times)
{
    faults().push_back({op, code, skip, times});
}

void ClearDisplayFaults()
{
    faults().clear();
}

Result TakeDisplayFault(DisplayOp op)
{
    auto& list = faults();
    for (auto it = list.begin(); it != list.end(); ++it) {
        if (it->op != op)
            continue;
        if (it->skip > 0) {
            --it->skip;
            return 0;
        }
        const Result code = it->code;
        if (--it->times <= 0)
            list.erase(it);
        return code;
    }
    return 0;
}

void NotifySurfacesLost()
{
    for (CDisplayDevice* device : liveDevices())
        device->MarkSurfacesLost();
}

void ForgetDisplayWindow(HWND window)
{
    for (CDisplayDevice* device : liveDevices())
        device->ForgetWindow(window);
}

} // namespace Platform

Result CDisplayDevice::Create(DisplayDevicePtr& out)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::Create))
        return fault;
    out.reset(new CDisplayDevice());
    liveDevices().push_back(out.get());
    return DD_OK;
}

CDisplayDevice::~CDisplayDevice()
{
    std::erase(liveDevices(), this);
    for (CSurface* surface : surfaces)
        surface->Detach();
    DropPresenter();
}

void CDisplayDevice::DropPresenter()
{
    if (texture)
        SDL_DestroyTexture(texture);
    if (renderer)
        SDL_DestroyRenderer(renderer);
    texture = nullptr;
    renderer = nullptr;
}

void CDisplayDevice::ForgetWindow(HWND gone)
{
    if (window != gone)
        return;
    // The renderer belongs to the window: it goes first. What was drawn stays
    // in the surfaces; nothing is shown any more.
    DropPresenter();
    window = nullptr;
    exclusive = false;
}

Result CDisplayDevice::QueryDevice2(DisplayDevicePtr& out)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::QueryDevice2))
        return fault;
    out = shared_from_this(); // the same device under its newer interface
    return DD_OK;
}

Result CDisplayDevice::SetCooperativeLevel(HWND newWindow, std::uint32_t flags)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::SetCooperativeLevel))
        return fault;
    const bool wantsExclusive = (flags & (DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN)) == (DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN);
    if (wantsExclusive && (!newWindow || !newWindow->GetSdlWindow()))
        return DDERR_NOHWND;
    window = newWindow;
    exclusive = wantsExclusive;
    return DD_OK;
}

Result CDisplayDevice::SetDisplayMode(std::int32_t width, std::int32_t height, std::int32_t bitsPerPixel,
                                      std::int32_t /*refreshRate*/, std::uint32_t /*flags*/)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::SetDisplayMode))
        return fault;
    if (!exclusive || !window || !window->GetSdlWindow())
        return DDERR_NOEXCLUSIVEMODE;
    if (width <= 0 || height <= 0 || bitsPerPixel != CSurface::BitsPerPixel)
        return DDERR_INVALIDMODE;
    // The mode is a picture of this size scaled over the whole desktop, or
    // over a window of the player's choice, so the player's real display mode
    // is never changed.
    window->ApplyWindowMode();
    modeWidth = width;
    modeHeight = height;
    return DD_OK;
}

Result CDisplayDevice::CreateSurface(const SurfaceDesc& desc, SurfacePtr& out)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::CreateSurface))
        return fault;
    if (!(desc.flags & DDSD_CAPS))
        return DDERR_INVALIDPARAMS;
    if (desc.caps & DDSCAPS_PRIMARYSURFACE)
        return CreateFlippingChain(desc, out);
    if (!(desc.flags & DDSD_WIDTH) || !(desc.flags & DDSD_HEIGHT) || desc.width <= 0 || desc.height <= 0)
        return DDERR_INVALIDPARAMS;
    auto surface = std::make_shared<CSurface>(this, desc.width, desc.height, desc.caps);
    if (!surface->pixels)
        return DDERR_OUTOFMEMORY;
    surface->SetRunLengthEncoded(runLengthPages() && (desc.caps & DDSCAPS_OFFSCREENPLAIN));
    surfaces.push_back(surface.get());
    out = surface;
    return DD_OK;
}

Result CDisplayDevice::CreateFlippingChain(const SurfaceDesc& desc, SurfacePtr& out)
{
    const bool flipping = (desc.caps & DDSCAPS_FLIP) && (desc.flags & DDSD_BACKBUFFERCOUNT);
    if (!flipping || desc.backBufferCount != 1)
        return DDERR_INVALIDPARAMS;
    if (!exclusive || modeWidth <= 0)
        return DDERR_NOEXCLUSIVEMODE;
    if (Result r = MakePresenter())
        return r;
    auto primary = std::make_shared<CSurface>(this, modeWidth, modeHeight, desc.caps);
    auto back = std::make_shared<CSurface>(this, modeWidth, modeHeight,
                                           DDSCAPS_BACKBUFFER | (desc.caps & DDSCAPS_VIDEOMEMORY));
    if (!primary->pixels || !back->pixels)
        return DDERR_OUTOFMEMORY;
    primary->attached = back;
    surfaces.push_back(primary.get());
    surfaces.push_back(back.get());
    out = primary;
    return DD_OK;
}

Result CDisplayDevice::MakePresenter()
{
    SDL_Window* sdlWindow = window->GetSdlWindow();
    if (!sdlWindow)
        return DDERR_NOHWND;
    if (!renderer) {
        if (SDL_GetRenderer(sdlWindow))
            return DDERR_NOEXCLUSIVEMODE; // someone else draws on this window
        SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "linear");
        renderer = SDL_CreateRenderer(sdlWindow, -1, SDL_RENDERER_PRESENTVSYNC);
        if (!renderer)
            renderer = SDL_CreateRenderer(sdlWindow, -1, 0);
        if (!renderer)
            return DDERR_GENERIC;
        SDL_RendererInfo info{};
        SDL_GetRendererInfo(renderer, &info);
        presentWaits = (info.flags & SDL_RENDERER_PRESENTVSYNC) != 0;
    }
    // Scaled to fit the window, with black bars where the shapes differ.
    SDL_RenderSetLogicalSize(renderer, modeWidth, modeHeight);
    return RemakeTexture();
}

Result CDisplayDevice::RemakeTexture()
{
    if (!renderer)
        return DD_OK;
    if (texture)
        SDL_DestroyTexture(texture);
    texture = SDL_CreateTexture(renderer, SDL_PIXELFORMAT_RGB565, SDL_TEXTUREACCESS_STREAMING, modeWidth, modeHeight);
    return texture ? DD_OK : DDERR_OUTOFMEMORY;
}

Result CDisplayDevice::Present(SDL_Surface* picture)
{
    if (!renderer || !texture || !picture)
        return DDERR_GENERIC;
    SDL_LockSurface(picture);
    SDL_UpdateTexture(texture, nullptr, picture->pixels, picture->pitch);
    SDL_UnlockSurface(picture);
    SDL_SetRenderDrawColor(renderer, 0, 0, 0, 255);
    SDL_RenderClear(renderer);
    SDL_RenderCopy(renderer, texture, nullptr, nullptr);
    SDL_RenderPresent(renderer);
    return DD_OK;
}

void CDisplayDevice::WaitForVerticalBlank()
{
    if (presentWaits)
        return; // presenting waits for the display itself
    // Without a synchronised present, wait out one refresh period so that the
    // game still runs at the display's pace.
    SDL_DisplayMode mode{};
    int hz = DefaultRefreshHz;
    if (window && window->GetSdlWindow() && SDL_GetWindowDisplayMode(window->GetSdlWindow(), &mode) == 0 &&
        mode.refresh_rate > 0)
        hz = mode.refresh_rate;
    const std::uint32_t period = static_cast<std::uint32_t>(1000 / hz);
    const std::uint32_t now = Platform::TimeGetTime();
    const std::uint32_t since = now - lastFlipMs;
    if (since < period)
        Platform::Sleep(period - since);
    lastFlipMs = Platform::TimeGetTime();
}

Result CDisplayDevice::CreatePalette(std::uint32_t caps, const CPalette::Entries& entries, PalettePtr& out)
{
    if (Result fault = Platform::TakeDisplayFault(DisplayOp::CreatePalette))
        return fault;
    if (!(caps & DDPCAPS_8BIT))
        return DDERR_INVALIDPARAMS;
    out = std::make_shared<CPalette>(entries);
    return DD_OK;
}

void CDisplayDevice::MarkSurfacesLost()
{
    for (CSurface* surface : surfaces)
        surface->MarkLost();
}

void CDisplayDevice::SetRunLengthPages(bool enable)
{
    runLengthPages() = enable;
}

void CDisplayDevice::Forget(CSurface* surface)
{
    std::erase(surfaces, surface);
}
