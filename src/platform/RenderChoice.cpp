#include "platform/RenderChoice.h"

#include <SDL.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace {

constexpr const char* SoftwareDriver = "software";

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

std::string Environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

bool SaysYes(const std::string& value)
{
    const std::string v = Lower(value);
    return !v.empty() && v != "0" && v != "false" && v != "no";
}

bool IsOpenGlDriver(const std::string& driver)
{
    return Lower(driver).rfind("opengl", 0) == 0; // opengl, opengles2, opengles
}

// A GPU the desktop's OpenGL can use: a render node we may open, or the
// device of a driver that brings its own OpenGL.
bool HasGpuDevice()
{
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/dri", ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("renderD", 0) == 0 && ::access(entry.path().c_str(), R_OK | W_OK) == 0)
            return true;
    }
    return ::access("/dev/nvidia0", R_OK | W_OK) == 0;
}

bool SoftwareGlForced()
{
    const std::string gallium = Lower(Environment("GALLIUM_DRIVER"));
    return SaysYes(Environment("LIBGL_ALWAYS_SOFTWARE")) || gallium == "llvmpipe" || gallium == "softpipe" ||
           gallium == "swr";
}

} // namespace

namespace Platform {

RenderChoice ChooseRenderer(const RenderSituation& s)
{
    RenderChoice choice;
    const std::string video = Lower(s.videoDriver);
    const bool headless = video == "dummy" || video == "offscreen";
    // Only where SDL can write to the window without OpenGL (X11's shared
    // memory); elsewhere its software renderer would go through OpenGL too.
    const bool plainWindowMemory = headless || video == "x11";
    if (!s.requestedDriver.empty())
        choice.driver = s.requestedDriver; // the player's word goes
    else if (headless || (plainWindowMemory && (!s.gpuRenderNode || s.softwareGlForced)))
        choice.driver = SoftwareDriver;
    const bool software = Lower(choice.driver) == SoftwareDriver;
    // Left to itself, SDL's software renderer on X11 may draw the window
    // through an OpenGL texture, which is what the choice avoids; a player
    // who set the acceleration keeps what they set.
    choice.plainFramebuffer = software && s.requestedAcceleration.empty();
    const bool acceleratedFramebuffer = software && SaysYes(s.requestedAcceleration);
    choice.openGlWindow = choice.driver.empty() || IsOpenGlDriver(choice.driver) || acceleratedFramebuffer;
    if (headless)
        choice.openGlWindow = false;
    choice.askForVsync = !software;
    return choice;
}

RenderSituation CurrentRenderSituation()
{
    RenderSituation s;
    if (const char* video = SDL_GetCurrentVideoDriver())
        s.videoDriver = video;
    s.requestedDriver = Environment("SDL_RENDER_DRIVER");
    s.requestedAcceleration = Environment("SDL_FRAMEBUFFER_ACCELERATION");
    s.gpuRenderNode = HasGpuDevice();
    s.softwareGlForced = SoftwareGlForced();
    return s;
}

const RenderChoice& RendererForThisRun()
{
    static const RenderChoice choice = ChooseRenderer(CurrentRenderSituation());
    return choice;
}

bool IsSoftwareRasteriser(const std::string& glRenderer)
{
    const std::string r = Lower(glRenderer);
    for (const char* name : {"llvmpipe", "softpipe", "software rasterizer", "swrast"})
        if (r.find(name) != std::string::npos)
            return true;
    return false;
}

} // namespace Platform
