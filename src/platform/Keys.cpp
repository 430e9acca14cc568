#include "platform/Keys.h"

#include <SDL_keyboard.h>

namespace Platform {

UINT VirtualKeyFor(SDL_Keycode key)
{
    if (key >= SDLK_a && key <= SDLK_z)
        return static_cast<UINT>('A' + (key - SDLK_a));
    if (key >= SDLK_0 && key <= SDLK_9)
        return static_cast<UINT>('0' + (key - SDLK_0));
    if (key >= SDLK_KP_1 && key <= SDLK_KP_9)
        return static_cast<UINT>('1' + (key - SDLK_KP_1));
    switch (key) {
    case SDLK_KP_0: return '0';
    case SDLK_BACKSPACE: return VK_BACK;
    case SDLK_RETURN:
    case SDLK_KP_ENTER: return VK_RETURN;
    case SDLK_ESCAPE: return VK_ESCAPE;
    case SDLK_SPACE: return VK_SPACE;
    case SDLK_LEFT: return VK_LEFT;
    case SDLK_UP: return VK_UP;
    case SDLK_RIGHT: return VK_RIGHT;
    case SDLK_DOWN: return VK_DOWN;
    default: return 0;
    }
}

SDL_Keycode KeyCodeNamed(const std::string& name)
{
    const SDL_Keycode key = name.empty() ? SDLK_UNKNOWN : SDL_GetKeyFromName(name.c_str());
    return key == SDLK_UNKNOWN ? 0 : key;
}

} // namespace Platform
