#include "platform/ComfortKeys.h"

#include "platform/Scaling.h"
#include "platform/Volume.h"

#include <atomic>

namespace {

// Each channel's pair is down, up.
struct VolumeKey {
    SDL_Keycode key;
    VolumeChannel channel;
    int delta;
};
constexpr VolumeKey VolumeKeys[] = {
    {SDLK_F5, VolumeChannel::Effects, -1},
    {SDLK_F6, VolumeChannel::Effects, 1},
    {SDLK_F7, VolumeChannel::Music, -1},
    {SDLK_F8, VolumeChannel::Music, 1},
};
constexpr SDL_Keycode ScalingKey = SDLK_F10;
constexpr SDL_Keycode ScreenshotKey = SDLK_F12;

std::atomic<bool> screenshotAsked{false};

} // namespace

namespace Platform {

bool TakeComfortKey(SDL_Keycode key, bool down, bool repeat)
{
    for (const VolumeKey& volume : VolumeKeys)
        if (key == volume.key) {
            if (down)
                StepVolume(volume.channel, volume.delta);
            return true;
        }
    const bool pressed = down && !repeat;
    if (key == ScalingKey) {
        if (pressed)
            StepScaleMode();
        return true;
    }
    if (key == ScreenshotKey) {
        if (pressed)
            RequestScreenshot();
        return true;
    }
    return false;
}

void RequestScreenshot()
{
    screenshotAsked = true;
}

bool TakeScreenshotRequest()
{
    return screenshotAsked.exchange(false);
}

} // namespace Platform
