#include "platform/DisplayDevice.h"

#include "platform/RenderChoice.h"
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
        if (!MakeRenderer())
            return DDERR_GENERIC;
    }
    // Scaled to fit the window, with black bars where the shapes differ.
    SDL_RenderSetLogicalSize(renderer, modeWidth, modeHeight);
    return RemakeTexture();
}

namespace {

// SDL's index of a render driver by name, or -1 for SDL's own choice.
int RenderDriverIndex(const std::string& name)
{
    for (int i = 0; !name.empty() && i < SDL_GetNumRenderDrivers(); ++i) {
        SDL_RendererInfo info{};
        if (SDL_GetRenderDriverInfo(i, &info) == 0 && name == info.name)
            return i;
    }
    return -1;
}

SDL_Renderer* CreateRenderer(SDL_Window* window, const std::string& driver, bool plainFramebuffer, bool vsync)
{
    if (plainFramebuffer)
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0"); // a player's own setting still wins
    const int index = RenderDriverIndex(driver);
    SDL_Renderer* made = vsync ? SDL_CreateRenderer(window, index, SDL_RENDERER_PRESENTVSYNC) : nullptr;
    if (!made)
        made = SDL_CreateRenderer(window, index, 0);
    if (!made && index >= 0)
        made = SDL_CreateRenderer(window, -1, 0);
    return made;
}

// The description an OpenGL renderer's driver gives of itself, or empty.
std::string OpenGlRendererName(SDL_Renderer* renderer)
{
    SDL_RendererInfo info{};
    if (SDL_GetRendererInfo(renderer, &info) != 0 || std::string(info.name).rfind("opengl", 0) != 0)
        return "";
    constexpr unsigned GlRenderer = 0x1F01;
    using GetString = const unsigned char* (*)(unsigned);
    auto getString = reinterpret_cast<GetString>(SDL_GL_GetProcAddress("glGetString"));
    const unsigned char* name = getString ? getString(GlRenderer) : nullptr;
    return name ? reinterpret_cast<const char*>(name) : "";
}

} // namespace

bool CDisplayDevice::MakeRenderer()
{
    SDL_Window* sdlWindow = window->GetSdlWindow();
    const RenderChoice& choice = Platform::RendererForThisRun();
    renderer = CreateRenderer(sdlWindow, choice.driver, choice.plainFramebuffer, choice.askForVsync);
    // A GPU device does not promise a GPU driver behind OpenGL: when the
    // picture would be drawn by a software rasteriser after all, SDL's own
    // software renderer does the same for a fraction of the work.
    if (renderer && choice.driver.empty() && Platform::IsSoftwareRasteriser(OpenGlRendererName(renderer))) {
        SDL_DestroyRenderer(renderer);
        renderer = CreateRenderer(sdlWindow, "software", true, false);
    }
    return renderer != nullptr;
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

Result CDisplayDevice::PresentInTurn(SDL_Surface* picture)
{
    pacer.WaitForTurn(RefreshPeriod());
    const Result shown = Present(picture);
    pacer.Presented();
    return shown;
}

double CDisplayDevice::RefreshPeriod() const
{
    SDL_DisplayMode mode{};
    int hz = DefaultRefreshHz;
    if (window && window->GetSdlWindow() && SDL_GetWindowDisplayMode(window->GetSdlWindow(), &mode) == 0 &&
        mode.refresh_rate > 0)
        hz = mode.refresh_rate;
    return 1.0 / hz;
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
