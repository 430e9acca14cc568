#include "platform/Volume.h"

#include "platform/AudioDevice.h"

#include <algorithm>
#include <atomic>

namespace {

// Read by the audio thread at every chunk.
std::atomic<int>& stepOf(VolumeChannel channel)
{
    static std::atomic<int> music{Platform::VolumeSteps};
    static std::atomic<int> effects{Platform::VolumeSteps};
    return channel == VolumeChannel::Music ? music : effects;
}

std::function<void(VolumeChannel, int)>& volumeListener()
{
    static std::function<void(VolumeChannel, int)> listener;
    return listener;
}

} // namespace

namespace Platform {

float VolumeGain(int step)
{
    const float share = static_cast<float>(ClampedVolume(step)) / VolumeSteps;
    return share * share;
}

int ClampedVolume(int step)
{
    return std::clamp(step, 0, VolumeSteps);
}

const char* VolumeChannelName(VolumeChannel channel)
{
    return channel == VolumeChannel::Music ? "music" : "effects";
}

void SetVolume(VolumeChannel channel, int step)
{
    stepOf(channel) = ClampedVolume(step);
    if (channel == VolumeChannel::Effects)
        CAudioDevice::Instance().ApplyEffectVolume();
}

int GetVolume(VolumeChannel channel)
{
    return stepOf(channel);
}

void StepVolume(VolumeChannel channel, int delta)
{
    SetVolume(channel, GetVolume(channel) + delta);
    if (volumeListener())
        volumeListener()(channel, GetVolume(channel));
}

void SetVolumeListener(std::function<void(VolumeChannel, int)> listener)
{
    volumeListener() = std::move(listener);
}

} // namespace Platform
