#pragma once
#include <SDL_keycode.h>

// The keys of the comforts, which the game's own keys leave free: the volume
// keys, the scaling key and the screenshot key. The game never sees them.
namespace Platform {
// Whether the key is one of them; a press is acted on (the volume keys'
// repeats too).
bool TakeComfortKey(SDL_Keycode key, bool down, bool repeat);

// The screenshot key asks; the frame loop takes the request once the next
// frame is composed.
void RequestScreenshot();
bool TakeScreenshotRequest();
} // namespace Platform
