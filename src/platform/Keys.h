#pragma once
#include "platform/Types.h"

#include <SDL_keycode.h>

namespace Platform {
// The virtual-key code for an SDL key, or 0 for a key the game has no code for.
UINT VirtualKeyFor(SDL_Keycode key);
} // namespace Platform
