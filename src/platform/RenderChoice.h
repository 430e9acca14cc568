#pragma once
#include <string>

// How the game's picture reaches the screen. A GPU's OpenGL driver presents it
// for next to nothing; where the only OpenGL is a software rasteriser, drawing
// through it costs several times more than SDL's own software renderer writing
// straight into the window (shared memory on X11), and loads some 60 MB of
// libraries besides. The choice is made once, before the window is created,
// so that the window is made the way its renderer needs it.
struct RenderChoice {
    std::string driver;             // SDL's render driver to ask for; empty: SDL's own order
    bool openGlWindow = false;      // the window is made for OpenGL (the renderer would remake it otherwise)
    bool plainFramebuffer = false;  // the software renderer writes to the window itself, not through OpenGL
    bool askForVsync = false;       // worth asking the renderer to wait for the display
};

// What the choice depends on, read from the machine and the environment.
struct RenderSituation {
    std::string videoDriver;         // SDL's video driver: "x11", "wayland", "dummy", ...
    std::string requestedDriver;     // SDL_RENDER_DRIVER as the player set it, or empty
    std::string requestedAcceleration; // SDL_FRAMEBUFFER_ACCELERATION as the player set it, or empty
    bool gpuRenderNode = false;      // a GPU's render node (/dev/dri/renderD*) can be opened
    bool softwareGlForced = false;   // LIBGL_ALWAYS_SOFTWARE or a software Gallium driver is asked for
};

namespace Platform {
RenderChoice ChooseRenderer(const RenderSituation& situation);
// The situation of this run; SDL's video must have been started.
RenderSituation CurrentRenderSituation();
// The choice for this run, made on first use and kept.
const RenderChoice& RendererForThisRun();
// Whether an OpenGL renderer's own description names a software rasteriser.
bool IsSoftwareRasteriser(const std::string& glRenderer);
} // namespace Platform
