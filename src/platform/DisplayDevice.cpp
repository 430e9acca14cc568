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

void NotifyWindowExposed()
{
    for (CDisplayDevice* device : liveDevices())
        device->RedrawWhole();
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
    if (enlarged)
        SDL_DestroyTexture(enlarged);
    if (texture)
        SDL_DestroyTexture(texture);
    if (renderer)
        SDL_DestroyRenderer(renderer);
    enlarged = nullptr;
    enlargedBy = 0;
    texture = nullptr;
    renderer = nullptr;
    inWindowMemory = false;
    scaledFor = {};
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
    if (!renderer && !inWindowMemory) {
        if (SDL_GetRenderer(sdlWindow))
            return DDERR_NOEXCLUSIVEMODE; // someone else draws on this window
        if (!MakeRenderer())
            return DDERR_GENERIC;
    }
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

// Whether SDL gives this window memory of its own to draw in, shown without
// OpenGL (X11's shared memory, or the headless drivers' plain memory).
bool HasWindowMemory(SDL_Window* window)
{
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0"); // a player's own setting still wins
    return SDL_GetWindowSurface(window) != nullptr;
}

// The output's colour for each of the picture's 16-bit (5-6-5) values.
std::vector<std::uint32_t> OutputColours(const SDL_PixelFormat* format)
{
    std::vector<std::uint32_t> colours(1u << 16);
    for (std::uint32_t v = 0; v < colours.size(); ++v) {
        const std::uint32_t r = v >> 11 & 0x1F, g = v >> 5 & 0x3F, b = v & 0x1F;
        colours[v] = SDL_MapRGB(format, static_cast<Uint8>(r << 3 | r >> 2), static_cast<Uint8>(g << 2 | g >> 4),
                                static_cast<Uint8>(b << 3 | b >> 2));
    }
    return colours;
}

SDL_Rect ToSdl(const PictureFit& fit)
{
    return {fit.x, fit.y, fit.width, fit.height};
}

} // namespace

bool CDisplayDevice::MakeRenderer()
{
    SDL_Window* sdlWindow = window->GetSdlWindow();
    const RenderChoice& choice = Platform::RendererForThisRun();
    // SDL's software renderer would scale the whole picture every frame;
    // scaling only what changed ourselves costs a fraction of that.
    if (choice.driver == "software" && choice.plainFramebuffer && HasWindowMemory(sdlWindow))
        return inWindowMemory = true;
    renderer = CreateRenderer(sdlWindow, choice.driver, choice.plainFramebuffer, choice.askForVsync);
    // A GPU device does not promise a GPU driver behind OpenGL: when the
    // picture would be drawn by a software rasteriser after all, SDL's own
    // software renderer does the same for a fraction of the work.
    if (renderer && choice.driver.empty() && Platform::IsSoftwareRasteriser(OpenGlRendererName(renderer))) {
        SDL_DestroyRenderer(renderer);
        renderer = nullptr;
        if (HasWindowMemory(sdlWindow))
            return inWindowMemory = true;
        renderer = CreateRenderer(sdlWindow, "software", true, false);
    }
    return renderer != nullptr;
}

Result CDisplayDevice::RemakeTexture()
{
    scaler.Invalidate();
    if (!renderer)
        return DD_OK;
    if (enlarged)
        SDL_DestroyTexture(enlarged);
    enlarged = nullptr;
    enlargedBy = 0;
    if (texture)
        SDL_DestroyTexture(texture);
    texture = SDL_CreateTexture(renderer, SDL_PIXELFORMAT_RGB565, SDL_TEXTUREACCESS_STREAMING, modeWidth, modeHeight);
    return texture ? DD_OK : DDERR_OUTOFMEMORY;
}

Result CDisplayDevice::Present(SDL_Surface* picture)
{
    return inWindowMemory ? PresentInWindowMemory(picture) : PresentThroughRenderer(picture);
}

SDL_Texture* CDisplayDevice::Enlarged(int prescale)
{
    if (enlarged && enlargedBy == prescale)
        return enlarged;
    if (enlarged)
        SDL_DestroyTexture(enlarged);
    enlarged = SDL_CreateTexture(renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_TARGET, modeWidth * prescale,
                                 modeHeight * prescale);
    enlargedBy = enlarged ? prescale : 0;
    if (enlarged)
        SDL_SetTextureScaleMode(enlarged, SDL_ScaleModeLinear);
    return enlarged;
}

Result CDisplayDevice::PresentThroughRenderer(SDL_Surface* picture)
{
    if (!renderer || !texture || !picture)
        return DDERR_GENERIC;
    SDL_LockSurface(picture);
    SDL_UpdateTexture(texture, nullptr, picture->pixels, picture->pitch);
    SDL_UnlockSurface(picture);
    int outputWidth = 0, outputHeight = 0; // in pixels, which on a HiDPI screen are not the window's points
    SDL_GetRendererOutputSize(renderer, &outputWidth, &outputHeight);
    const ScaleMode mode = Platform::GetScaleMode();
    const PictureFit fit = Platform::FitPicture(mode, modeWidth, modeHeight, outputWidth, outputHeight);
    const bool wholeMultiple = mode != ScaleMode::Smooth && fit.width >= modeWidth;
    SDL_Texture* shown = texture;
    SDL_SetTextureScaleMode(texture, wholeMultiple ? SDL_ScaleModeNearest : SDL_ScaleModeLinear);
    if (mode == ScaleMode::Sharp && fit.prescale > 1 && Enlarged(fit.prescale) &&
        SDL_SetRenderTarget(renderer, enlarged) == 0) {
        SDL_RenderCopy(renderer, texture, nullptr, nullptr);
        SDL_SetRenderTarget(renderer, nullptr);
        shown = enlarged;
    } else if (mode == ScaleMode::Sharp) {
        SDL_SetTextureScaleMode(texture, SDL_ScaleModeLinear);
    }
    SDL_SetRenderDrawColor(renderer, 0, 0, 0, 255);
    SDL_RenderClear(renderer);
    const SDL_Rect where = ToSdl(fit);
    SDL_RenderCopy(renderer, shown, nullptr, &where);
    SDL_RenderPresent(renderer);
    return DD_OK;
}

Result CDisplayDevice::PresentInWindowMemory(SDL_Surface* picture)
{
    SDL_Window* sdlWindow = window ? window->GetSdlWindow() : nullptr;
    SDL_Surface* output = sdlWindow ? SDL_GetWindowSurface(sdlWindow) : nullptr;
    if (!output || !picture)
        return DDERR_GENERIC;
    const ScaleMode mode = Platform::GetScaleMode();
    const PictureFit fit = Platform::FitPicture(mode, modeWidth, modeHeight, output->w, output->h);
    if (output->format->BytesPerPixel != 4 || picture->format->format != SDL_PIXELFORMAT_RGB565) {
        // Not a window memory we know how to scale into: SDL's own scaling.
        SDL_Rect where = ToSdl(fit);
        SDL_FillRect(output, nullptr, 0);
        SDL_BlitScaled(picture, nullptr, output, &where);
        SDL_UpdateWindowSurface(sdlWindow);
        return DD_OK;
    }
    const OutputShape shape{output->w, output->h, output->format->format, mode};
    if (!(shape == scaledFor)) {
        scaler.Configure(fit, modeWidth, modeHeight, output->w, output->h, OutputColours(output->format));
        scaledFor = shape;
    }
    SDL_LockSurface(picture);
    SDL_LockSurface(output);
    const auto& drawn = scaler.Scale(static_cast<const std::uint16_t*>(picture->pixels), picture->pitch,
                                     static_cast<std::uint32_t*>(output->pixels), output->pitch);
    SDL_UnlockSurface(output);
    SDL_UnlockSurface(picture);
    std::vector<SDL_Rect> rects;
    rects.reserve(drawn.size());
    for (const CPictureScaler::Rect& r : drawn)
        rects.push_back({r.x, r.y, r.width, r.height});
    SDL_UpdateWindowSurfaceRects(sdlWindow, rects.data(), static_cast<int>(rects.size()));
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
