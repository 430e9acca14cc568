#pragma once
#include <functional>

// The loudness of the music and of the effects, each in whole steps from
// silent to full. Full is the mix as it always was, so the limiter's
// headroom holds at every step; a step only ever makes a sound quieter, and
// never plays a sound the game has switched off.
enum class VolumeChannel { Music, Effects };

namespace Platform {
constexpr int VolumeSteps = 10;

// A step's share of full loudness. Squared, so that each step sounds about as
// much quieter as the one before.
float VolumeGain(int step);
// The step kept within 0 to VolumeSteps.
int ClampedVolume(int step);
const char* VolumeChannelName(VolumeChannel channel);

// The step a channel plays at from now on.
void SetVolume(VolumeChannel channel, int step);
int GetVolume(VolumeChannel channel);
// The volume keys and buttons: a step up or down, told to the listener
// (which remembers it and says so) even at either end.
void StepVolume(VolumeChannel channel, int delta);
void SetVolumeListener(std::function<void(VolumeChannel, int)> listener);
} // namespace Platform
