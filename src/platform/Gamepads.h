#pragma once
#include "platform/Types.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

union SDL_Event;

// The controls of a gamepad the game can give a meaning to, by their place on
// the pad: the D-pad and the left stick are the same four directions, and the
// face buttons are named by where they sit (South is A on an Xbox pad, the
// cross on a PlayStation pad).
enum class PadControl {
    Up,
    Down,
    Left,
    Right,
    South,
    East,
    West,
    North,
    Start,
    Back,
    LeftShoulder,
    RightShoulder,
    LeftTrigger,
    RightTrigger,
};

// What pressing a control does, in keyboard keys: the taps are each pressed
// and released at once, in order; the held key goes down after them and comes
// up when the control is let go. 0 holds nothing.
struct PadKeys {
    std::vector<UINT> taps;
    UINT hold = 0;
};

// One stick axis or trigger read as a switch: off in the middle, on toward
// either end. It turns on only past half way and off only once back inside
// the inner band, so a stick resting near the threshold does not chatter.
class CAxisSwitch {
public:
    static constexpr int OnFrom = 16384;  // half of full travel
    static constexpr int OffBelow = 9830; // under 30 % of full travel

    // Reads a new axis value; the answer is -1, 0 or 1, the side it is on.
    int Read(int value);
    int Side() const { return side; }

private:
    int side = 0;
};

// Every game controller plugged in, through SDL's game controller interface
// (its mapping database, and any mappings in SDL_GAMECONTROLLERCONFIG). A
// control that goes down asks the binder what it means and posts those keys to
// the window as key messages; letting it go posts the held key's release. A
// key stays down while any control of any pad holds it, and a pad that is
// unplugged lets go of everything it held.
class CGamepads {
public:
    using Binder = std::function<PadKeys(PadControl)>;

    // Directions held down repeat like keys of a keyboard.
    static constexpr std::uint32_t RepeatDelayMs = 400;
    static constexpr std::uint32_t RepeatIntervalMs = 100;

    explicit CGamepads(Binder binder);
    ~CGamepads();
    CGamepads(const CGamepads&) = delete;
    CGamepads& operator=(const CGamepads&) = delete;

    // Starts SDL's game controller support; pads already plugged in then
    // announce themselves as new. False when it cannot start: the game is
    // then played with the keyboard alone.
    bool Start();

    // Takes an event of SDL's game controllers; other events are let be.
    void HandleEvent(const SDL_Event& event, HWND window);
    // Posts the repeats that are due, by the platform clock, for the directions held down.
    void Repeat(HWND window);

    std::size_t Count() const { return pads.size(); }
    // Whether some control holds this key down now.
    bool IsHeld(UINT key) const { return holders.count(key) != 0; }

private:
    struct Pad;
    // Where a press comes from: the D-pad and the stick may hold the same direction.
    using Source = int;
    struct Held {
        UINT key = 0;
        std::uint32_t nextRepeat = 0;
    };

    void Open(int deviceIndex);
    void Close(std::int32_t instanceId, HWND window);
    Pad* Find(std::int32_t instanceId);
    void OnButton(Pad& pad, int button, bool down, HWND window);
    bool StepsVolume(const Pad& pad, Source source);
    void OnAxis(Pad& pad, int axis, int value, HWND window);
    void Press(Pad& pad, Source source, HWND window);
    void Release(Pad& pad, Source source, HWND window);
    void Tap(UINT key, HWND window);
    void HoldKey(UINT key, HWND window);
    void LetGoOfKey(UINT key, HWND window);

    Binder binder;
    bool started = false;
    std::vector<std::unique_ptr<Pad>> pads;
    std::map<UINT, int> holders; // how many controls hold each key down
};
