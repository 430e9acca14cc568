#pragma once
#include <SDL.h>

namespace qvtest {

// A standard gamepad SDL believes is plugged in, from construction until
// Unplug or destruction, mapped by SDL itself: its raw buttons and axes are
// numbered as SDL's controller buttons and axes. Its controls change at SDL's
// next look at its events; its triggers start released.
class VirtualPad {
public:
    explicit VirtualPad(const char* name = "Test Pad");
    ~VirtualPad() { Unplug(); }
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;

    void Unplug();
    void Set(SDL_GameControllerButton button, bool down);
    void Set(SDL_GameControllerAxis axis, Sint16 value);

private:
    SDL_Joystick* joystick = nullptr;
    SDL_JoystickID id = -1;
};

} // namespace qvtest
