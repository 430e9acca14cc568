#include "support/VirtualPad.h"

namespace qvtest {

VirtualPad::VirtualPad(const char* name)
{
    SDL_VirtualJoystickDesc desc{};
    desc.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
    desc.type = SDL_JOYSTICK_TYPE_GAMECONTROLLER;
    desc.naxes = SDL_CONTROLLER_AXIS_MAX;
    desc.nbuttons = SDL_CONTROLLER_BUTTON_DPAD_RIGHT + 1;
    desc.vendor_id = 0x1209;
    desc.product_id = 0x0001;
    desc.name = name;
    const int index = SDL_JoystickAttachVirtualEx(&desc);
    if (index < 0)
        return;
    joystick = SDL_JoystickOpen(index);
    id = SDL_JoystickInstanceID(joystick);
    Set(SDL_CONTROLLER_AXIS_TRIGGERLEFT, 0);
    Set(SDL_CONTROLLER_AXIS_TRIGGERRIGHT, 0);
}

void VirtualPad::Unplug()
{
    if (!joystick)
        return;
    SDL_JoystickClose(joystick);
    joystick = nullptr;
    for (int i = 0; i < SDL_NumJoysticks(); ++i)
        if (SDL_JoystickGetDeviceInstanceID(i) == id)
            SDL_JoystickDetachVirtual(i);
}

void VirtualPad::Set(SDL_GameControllerButton button, bool down)
{
    SDL_JoystickSetVirtualButton(joystick, button, down ? SDL_PRESSED : SDL_RELEASED);
}

// A standard pad's triggers are raw axes over the whole range, released at the bottom.
void VirtualPad::Set(SDL_GameControllerAxis axis, Sint16 value)
{
    const bool trigger = axis == SDL_CONTROLLER_AXIS_TRIGGERLEFT || axis == SDL_CONTROLLER_AXIS_TRIGGERRIGHT;
    SDL_JoystickSetVirtualAxis(joystick, axis, trigger ? static_cast<Sint16>(value * 2 - 32768) : value);
}

} // namespace qvtest
