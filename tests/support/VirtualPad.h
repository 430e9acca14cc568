#pragma once
#include <SDL.h>

#include <string>

namespace qvtest {

// The shape of a pretend gamepad. A standard one is mapped by SDL itself, its
// raw buttons and axes numbered as SDL's controller buttons and axes; any other
// is a plain joystick until a mapping names it.
struct PadLayout {
    bool standard = true;
    int axes = SDL_CONTROLLER_AXIS_MAX;
    int buttons = SDL_CONTROLLER_BUTTON_DPAD_RIGHT + 1;
    int hats = 0;
    Uint16 vendor = 0x1209;
    Uint16 product = 0x0001;
    const char* name = "Test Pad";
};

// A gamepad SDL believes is plugged in, from construction until Unplug or
// destruction. Its controls change at SDL's next look at its events; the
// triggers of a standard pad start released.
class VirtualPad {
public:
    explicit VirtualPad(const PadLayout& layout = {});
    ~VirtualPad() { Unplug(); }
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;

    // The GUID SDL gives a pad of this layout (by plugging one in for a moment).
    static std::string GuidOf(const PadLayout& layout);

    void Unplug();

    // A standard pad's button or axis.
    void Set(SDL_GameControllerButton button, bool down) { SetButton(button, down); }
    void Set(SDL_GameControllerAxis axis, Sint16 value);
    // Raw controls.
    void SetButton(int index, bool down);
    void SetAxis(int index, Sint16 value);
    void SetHat(int index, Uint8 value);

private:
    int DeviceIndex() const;

    PadLayout layout;
    SDL_Joystick* joystick = nullptr;
    SDL_JoystickID id = -1;
};

} // namespace qvtest
