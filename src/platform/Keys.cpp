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
    case SDLK_PAGEUP: return VK_PRIOR;
    case SDLK_PAGEDOWN: return VK_NEXT;
    case SDLK_PLUS:
    case SDLK_EQUALS: // the plus key's own, unshifted
    case SDLK_KP_PLUS: return VK_OEM_PLUS;
    case SDLK_MINUS:
    case SDLK_KP_MINUS: return VK_OEM_MINUS;
    case SDLK_COMMA: return VK_OEM_COMMA;
    case SDLK_PERIOD:
    case SDLK_KP_PERIOD: return VK_OEM_PERIOD;
    case SDLK_LEFTBRACKET: return VK_OEM_4;
    case SDLK_RIGHTBRACKET: return VK_OEM_6;
    default: return 0;
    }
}

SDL_Keycode KeyCodeNamed(const std::string& name)
{
    const SDL_Keycode key = name.empty() ? SDLK_UNKNOWN : SDL_GetKeyFromName(name.c_str());
    return key == SDLK_UNKNOWN ? 0 : key;
}

bool IsWatchingKey(UINT key)
{
    switch (key) {
    case VK_PRIOR:
    case VK_NEXT:
    case VK_OEM_PLUS:
    case VK_OEM_COMMA:
    case VK_OEM_MINUS:
    case VK_OEM_PERIOD:
    case VK_OEM_4:
    case VK_OEM_6: return true;
    default: return false;
    }
}

} // namespace Platform
