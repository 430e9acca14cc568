#include "support/VirtualPad.h"

#include <cstring>

namespace qvtest {

namespace {

int Attach(const PadLayout& layout)
{
    SDL_VirtualJoystickDesc desc;
    std::memset(&desc, 0, sizeof desc);
    desc.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
    desc.type = layout.standard ? SDL_JOYSTICK_TYPE_GAMECONTROLLER : SDL_JOYSTICK_TYPE_UNKNOWN;
    desc.naxes = static_cast<Uint16>(layout.axes);
    desc.nbuttons = static_cast<Uint16>(layout.buttons);
    desc.nhats = static_cast<Uint16>(layout.hats);
    desc.vendor_id = layout.vendor;
    desc.product_id = layout.product;
    desc.name = layout.name;
    return SDL_JoystickAttachVirtualEx(&desc);
}

} // namespace

VirtualPad::VirtualPad(const PadLayout& padLayout) : layout(padLayout)
{
    const int index = Attach(layout);
    if (index < 0)
        return;
    joystick = SDL_JoystickOpen(index);
    id = SDL_JoystickInstanceID(joystick);
    if (layout.standard) {
        Set(SDL_CONTROLLER_AXIS_TRIGGERLEFT, 0);
        Set(SDL_CONTROLLER_AXIS_TRIGGERRIGHT, 0);
    }
}

std::string VirtualPad::GuidOf(const PadLayout& layout)
{
    const int index = Attach(layout);
    if (index < 0)
        return {};
    char text[33] = {};
    SDL_JoystickGetGUIDString(SDL_JoystickGetDeviceGUID(index), text, sizeof text);
    SDL_JoystickDetachVirtual(index);
    return text;
}

int VirtualPad::DeviceIndex() const
{
    for (int i = 0; i < SDL_NumJoysticks(); ++i)
        if (SDL_JoystickGetDeviceInstanceID(i) == id)
            return i;
    return -1;
}

void VirtualPad::Unplug()
{
    if (!joystick)
        return;
    const int index = DeviceIndex();
    SDL_JoystickClose(joystick);
    joystick = nullptr;
    if (index >= 0)
        SDL_JoystickDetachVirtual(index);
}

// A standard pad's triggers are raw axes over the whole range, released at the bottom.
void VirtualPad::Set(SDL_GameControllerAxis axis, Sint16 value)
{
    const bool trigger = axis == SDL_CONTROLLER_AXIS_TRIGGERLEFT || axis == SDL_CONTROLLER_AXIS_TRIGGERRIGHT;
    SetAxis(axis, trigger ? static_cast<Sint16>(value * 2 - 32768) : value);
}

void VirtualPad::SetButton(int index, bool down)
{
    SDL_JoystickSetVirtualButton(joystick, index, down ? SDL_PRESSED : SDL_RELEASED);
}

void VirtualPad::SetAxis(int index, Sint16 value)
{
    SDL_JoystickSetVirtualAxis(joystick, index, value);
}

void VirtualPad::SetHat(int index, Uint8 value)
{
    SDL_JoystickSetVirtualHat(joystick, index, value);
}

} // namespace qvtest
