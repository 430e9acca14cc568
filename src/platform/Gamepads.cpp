#include "platform/Gamepads.h"

#include "platform/Clock.h"
#include "platform/MessageQueue.h"
#include "platform/Volume.h"

#include <SDL.h>

#include <cstdlib>
#include <utility>

int CAxisSwitch::Read(int value)
{
    const int magnitude = std::abs(value);
    const int towards = value < 0 ? -1 : 1;
    if (side != 0 && (magnitude < OffBelow || towards != side))
        side = 0;
    if (side == 0 && magnitude >= OnFrom)
        side = towards;
    return side;
}

namespace {

enum PadSource : int {
    DpadUp,
    DpadDown,
    DpadLeft,
    DpadRight,
    StickUp,
    StickDown,
    StickLeft,
    StickRight,
    SouthButton,
    EastButton,
    WestButton,
    NorthButton,
    StartButton,
    BackButton,
    LeftShoulderButton,
    RightShoulderButton,
    LeftTriggerAxis,
    RightTriggerAxis,
    NoSource,
};

} // namespace

struct CGamepads::Pad {
    SDL_GameController* controller = nullptr;
    SDL_JoystickID id = -1;
    std::map<Source, Held> held;
    CAxisSwitch stickX;
    CAxisSwitch stickY;
    CAxisSwitch leftTrigger;
    CAxisSwitch rightTrigger;
};

namespace {

PadControl ControlOf(int source)
{
    constexpr PadControl controls[] = {
        PadControl::Up,    PadControl::Down,  PadControl::Left,         PadControl::Right,
        PadControl::Up,    PadControl::Down,  PadControl::Left,         PadControl::Right,
        PadControl::South, PadControl::East,  PadControl::West,         PadControl::North,
        PadControl::Start, PadControl::Back,  PadControl::LeftShoulder, PadControl::RightShoulder,
        PadControl::LeftTrigger, PadControl::RightTrigger,
    };
    return controls[source];
}

bool IsDirection(int source)
{
    return source <= StickRight;
}

// Later than (or as late as) the moment, across the clock's wrap.
bool IsDue(std::uint32_t now, std::uint32_t moment)
{
    return static_cast<std::int32_t>(now - moment) >= 0;
}

void Post(HWND window, UINT message, UINT key)
{
    if (window)
        CMessageQueue::Instance().Post({window, message, key, 0});
}

} // namespace

CGamepads::CGamepads(Binder bindControl) : binder(std::move(bindControl)) {}

CGamepads::~CGamepads()
{
    for (const auto& pad : pads)
        SDL_GameControllerClose(pad->controller);
    pads.clear();
    if (started)
        SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER);
}

bool CGamepads::Start()
{
    if (!started)
        started = SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER) == 0;
    return started;
}

void CGamepads::HandleEvent(const SDL_Event& event, HWND window)
{
    switch (event.type) {
    case SDL_CONTROLLERDEVICEADDED:
        Open(event.cdevice.which);
        break;
    case SDL_CONTROLLERDEVICEREMOVED:
        Close(event.cdevice.which, window);
        break;
    case SDL_CONTROLLERBUTTONDOWN:
    case SDL_CONTROLLERBUTTONUP:
        if (Pad* pad = Find(event.cbutton.which))
            OnButton(*pad, event.cbutton.button, event.type == SDL_CONTROLLERBUTTONDOWN, window);
        break;
    case SDL_CONTROLLERAXISMOTION:
        if (Pad* pad = Find(event.caxis.which))
            OnAxis(*pad, event.caxis.axis, event.caxis.value, window);
        break;
    default:
        break;
    }
}

void CGamepads::Open(int deviceIndex)
{
    SDL_GameController* controller = SDL_GameControllerOpen(deviceIndex);
    if (!controller)
        return;
    const SDL_JoystickID id = SDL_JoystickInstanceID(SDL_GameControllerGetJoystick(controller));
    if (Find(id)) { // announced twice: SDL counts the opens, so give this one back
        SDL_GameControllerClose(controller);
        return;
    }
    auto pad = std::make_unique<Pad>();
    pad->controller = controller;
    pad->id = id;
    pads.push_back(std::move(pad));
}

void CGamepads::Close(std::int32_t instanceId, HWND window)
{
    Pad* pad = Find(instanceId);
    if (!pad)
        return;
    while (!pad->held.empty())
        Release(*pad, pad->held.begin()->first, window);
    SDL_GameControllerClose(pad->controller);
    std::erase_if(pads, [pad](const std::unique_ptr<Pad>& p) { return p.get() == pad; });
}

CGamepads::Pad* CGamepads::Find(std::int32_t instanceId)
{
    for (const auto& pad : pads)
        if (pad->id == instanceId)
            return pad.get();
    return nullptr;
}

void CGamepads::OnButton(Pad& pad, int button, bool down, HWND window)
{
    Source source = NoSource;
    switch (button) {
    case SDL_CONTROLLER_BUTTON_DPAD_UP: source = DpadUp; break;
    case SDL_CONTROLLER_BUTTON_DPAD_DOWN: source = DpadDown; break;
    case SDL_CONTROLLER_BUTTON_DPAD_LEFT: source = DpadLeft; break;
    case SDL_CONTROLLER_BUTTON_DPAD_RIGHT: source = DpadRight; break;
    case SDL_CONTROLLER_BUTTON_A: source = SouthButton; break;
    case SDL_CONTROLLER_BUTTON_B: source = EastButton; break;
    case SDL_CONTROLLER_BUTTON_X: source = WestButton; break;
    case SDL_CONTROLLER_BUTTON_Y: source = NorthButton; break;
    case SDL_CONTROLLER_BUTTON_START: source = StartButton; break;
    case SDL_CONTROLLER_BUTTON_BACK: source = BackButton; break;
    case SDL_CONTROLLER_BUTTON_LEFTSHOULDER: source = LeftShoulderButton; break;
    case SDL_CONTROLLER_BUTTON_RIGHTSHOULDER: source = RightShoulderButton; break;
    default: return; // the guide button, stick clicks, paddles: nothing in this game
    }
    if (down && StepsVolume(pad, source))
        return;
    if (down)
        Press(pad, source, window);
    else
        Release(pad, source, window);
}

// Back, which means nothing in the game, held with the D-pad sets the
// volume: up and down the music's, left and right the effects'.
bool CGamepads::StepsVolume(const Pad& pad, Source source)
{
    if (!pad.held.count(BackButton))
        return false;
    switch (source) {
    case DpadUp: Platform::StepVolume(VolumeChannel::Music, 1); return true;
    case DpadDown: Platform::StepVolume(VolumeChannel::Music, -1); return true;
    case DpadRight: Platform::StepVolume(VolumeChannel::Effects, 1); return true;
    case DpadLeft: Platform::StepVolume(VolumeChannel::Effects, -1); return true;
    default: return false;
    }
}

void CGamepads::OnAxis(Pad& pad, int axis, int value, HWND window)
{
    CAxisSwitch* axisSwitch = nullptr;
    Source negative = NoSource;
    Source positive = NoSource;
    switch (axis) {
    case SDL_CONTROLLER_AXIS_LEFTX: axisSwitch = &pad.stickX; negative = StickLeft; positive = StickRight; break;
    case SDL_CONTROLLER_AXIS_LEFTY: axisSwitch = &pad.stickY; negative = StickUp; positive = StickDown; break;
    case SDL_CONTROLLER_AXIS_TRIGGERLEFT: axisSwitch = &pad.leftTrigger; positive = LeftTriggerAxis; break;
    case SDL_CONTROLLER_AXIS_TRIGGERRIGHT: axisSwitch = &pad.rightTrigger; positive = RightTriggerAxis; break;
    default: return; // the right stick
    }
    const int before = axisSwitch->Side();
    const int after = axisSwitch->Read(value);
    if (after == before)
        return;
    auto sourceOf = [&](int side) { return side < 0 ? negative : side > 0 ? positive : NoSource; };
    if (sourceOf(before) != NoSource)
        Release(pad, sourceOf(before), window);
    if (sourceOf(after) != NoSource)
        Press(pad, sourceOf(after), window);
}

void CGamepads::Press(Pad& pad, Source source, HWND window)
{
    if (pad.held.count(source))
        return;
    const PadKeys keys = binder ? binder(ControlOf(source)) : PadKeys{};
    for (UINT key : keys.taps)
        Tap(key, window);
    if (keys.hold)
        HoldKey(keys.hold, window);
    // Kept even when it holds no key, so that it can repeat and be let go.
    pad.held[source] = {keys.hold, Platform::TimeGetTime() + RepeatDelayMs};
}

void CGamepads::Release(Pad& pad, Source source, HWND window)
{
    const auto found = pad.held.find(source);
    if (found == pad.held.end())
        return;
    const UINT key = found->second.key;
    pad.held.erase(found);
    if (key)
        LetGoOfKey(key, window);
}

void CGamepads::Repeat(HWND window)
{
    const std::uint32_t now = Platform::TimeGetTime();
    for (const auto& pad : pads) {
        for (auto& [source, held] : pad->held) {
            if (!IsDirection(source) || !IsDue(now, held.nextRepeat))
                continue;
            held.nextRepeat = now + RepeatIntervalMs;
            if (held.key) {
                Post(window, WM_KEYDOWN, held.key); // as a keyboard repeats a key held down
            } else if (binder) {
                for (UINT key : binder(ControlOf(source)).taps)
                    Tap(key, window);
            }
        }
    }
}

void CGamepads::Tap(UINT key, HWND window)
{
    Post(window, WM_KEYDOWN, key);
    if (!IsHeld(key))
        Post(window, WM_KEYUP, key);
}

void CGamepads::HoldKey(UINT key, HWND window)
{
    if (holders[key]++ == 0)
        Post(window, WM_KEYDOWN, key);
}

void CGamepads::LetGoOfKey(UINT key, HWND window)
{
    const auto found = holders.find(key);
    if (found == holders.end())
        return;
    if (--found->second == 0) {
        holders.erase(found);
        Post(window, WM_KEYUP, key);
    }
}
