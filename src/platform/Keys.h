#pragma once
#include "platform/Types.h"

#include <SDL_keycode.h>

#include <string>

namespace Platform {
// The virtual-key code for an SDL key, or 0 for a key the game has no code for.
UINT VirtualKeyFor(SDL_Keycode key);
// The key a name stands for, as SDL names keys ("W", "Up", "Keypad 8",
// "Left Shift"; in any case), or 0 for a name no key has.
SDL_Keycode KeyCodeNamed(const std::string& name);
// Whether a key is one only a replay's viewer hears (speed, step, seek).
bool IsWatchingKey(UINT key);
} // namespace Platform
