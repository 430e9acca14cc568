#pragma once
#include "platform/Clock.h"
#include "platform/FramePacer.h"
#include "platform/Palette.h"
#include "platform/PictureScaler.h"
#include "platform/Surface.h"

#include <cstdint>
#include <memory>
#include <vector>

struct SDL_Renderer;
struct SDL_Texture;
class CDisplayDevice;

using DisplayDevicePtr = std::shared_ptr<CDisplayDevice>;

// The operations of the display device and its surfaces that tests can make fail.
enum class DisplayOp {
    Create,
    QueryDevice2,
    SetCooperativeLevel,
    SetDisplayMode,
    CreateSurface,
    GetAttachedSurface,
    QuerySurface2,
    CreatePalette,
    SetPalette,
    SetColorKey,
    ColourFill,
    BltFast,
    Lock,
    GetDC,
    Flip,
};

namespace Platform {
// Makes the call of op after the next `skip` ones fail with code, `times` calls in a row.
void InjectDisplayFault(DisplayOp op, Result code, int skip = 0, int times = 1);
void ClearDisplayFaults();
// The code an injected fault gives this call of op, or 0.
Result TakeDisplayFault(DisplayOp op);

// Every surface of every display device is lost: the window was minimised or
// hidden, or the renderer lost its targets or its device.
void NotifySurfacesLost();
// The window is going away: no device may draw on it any more.
void ForgetDisplayWindow(HWND window);
// The window's picture was covered or resized: the next present draws all of it.
void NotifyWindowExposed();
} // namespace Platform

// The display device: takes a window for the game's exclusive use, sets the
// game's display mode and makes surfaces and palettes. The mode becomes a
// full-screen window over which the game's picture is scaled and letterboxed
// as the scale mode says; a flip presents the back buffer at most once a
// refresh period of the display (see CFramePacer). With a GPU the picture
// goes up as a streaming texture and the GPU scales it; without one, the
// game scales what changed straight into the window's memory.
class CDisplayDevice : public std::enable_shared_from_this<CDisplayDevice> {
public:
    static Result Create(DisplayDevicePtr& out);
    CDisplayDevice(const CDisplayDevice&) = delete;
    CDisplayDevice& operator=(const CDisplayDevice&) = delete;
    ~CDisplayDevice();

    // The device's second-version interface: the same device, one more holder.
    Result QueryDevice2(DisplayDevicePtr& out);
    Result SetCooperativeLevel(HWND window, std::uint32_t flags);
    Result SetDisplayMode(std::int32_t width, std::int32_t height, std::int32_t bitsPerPixel,
                          std::int32_t refreshRate, std::uint32_t flags);
    Result CreateSurface(const SurfaceDesc& desc, SurfacePtr& out);
    Result CreatePalette(std::uint32_t caps, const CPalette::Entries& entries, PalettePtr& out);

    void MarkSurfacesLost();
    void ForgetWindow(HWND gone);
    void RedrawWhole() { scaler.Invalidate(); }

    // Keyed copies from off-screen surfaces made from now on use run-length
    // encoding when this is on. It is off: a page holds many frames, and an
    // encoded copy of one of them first walks the encoded rows above and
    // beside it, which makes a frame's sprites several times slower to draw.
    static void SetRunLengthPages(bool enable);

private:
    CDisplayDevice() = default;

    Result CreateFlippingChain(const SurfaceDesc& desc, SurfacePtr& out);
    Result MakePresenter();
    bool MakeRenderer();
    Result RemakeTexture();
    void DropPresenter();
    Result Present(SDL_Surface* picture);
    Result PresentThroughRenderer(SDL_Surface* picture);
    Result PresentInWindowMemory(SDL_Surface* picture);
    // The GPU's copy of the picture enlarged pixel for pixel, for the sharp mode.
    SDL_Texture* Enlarged(int prescale);
    // A flip's present: in its turn, no sooner than the display can show it.
    Result PresentInTurn(SDL_Surface* picture);
    double RefreshPeriod() const;
    void Forget(CSurface* surface);

    HWND window = nullptr;
    bool exclusive = false;
    std::int32_t modeWidth = 0;
    std::int32_t modeHeight = 0;
    SDL_Renderer* renderer = nullptr;
    SDL_Texture* texture = nullptr;
    SDL_Texture* enlarged = nullptr;
    int enlargedBy = 0;
    // Without a renderer: the picture is scaled into the window's own memory.
    bool inWindowMemory = false;
    CPictureScaler scaler;
    struct OutputShape {
        int width = 0, height = 0;
        std::uint32_t format = 0;
        ScaleMode mode = ScaleMode::Smooth;
        bool operator==(const OutputShape&) const = default;
    } scaledFor;
    CFramePacer pacer{Platform::PerformanceSeconds, Platform::WaitSeconds};
    std::vector<CSurface*> surfaces;

    friend class CSurface;
};
