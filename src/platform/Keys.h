#pragma once
#include "platform/Types.h"

#include <SDL_keycode.h>

namespace Platform {
// The virtual-key code for an SDL key, or 0 for a key the game has no code for.
UINT VirtualKeyFor(SDL_Keycode key);
// Whether a key is one only a replay's viewer hears (speed, step, seek).
bool IsWatchingKey(UINT key);
} // namespace Platform
