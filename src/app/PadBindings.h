#pragma once
#include "platform/Gamepads.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a gamepad's controls mean, as the keyboard keys they stand for: the
// game hears only keys, so a pad plays exactly as a keyboard does.
class CPadBindings {
public:
    // Where the keys go now.
    enum class Context {
        Flight,    // a level in play: the player's ship
        Menus,     // the menus, in or out of a game
        NameEntry, // a new high score's name being typed
        Designer,  // the ship design screen
    };

    // What the game is doing when a control goes down.
    struct Facts {
        Context context = Context::Menus;
        // The name being typed, during name entry.
        std::string name;
        // The fire keys of the ship's lasers, in the order they were fitted.
        std::vector<char> fireKeys;
    };

    // The characters Up and Down turn through, in the order of Up.
    static constexpr std::string_view Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 ";
    // The fire controls, for the first fitted laser to the fifth, unless the
    // player chose others.
    static constexpr PadControl FireControls[] = {PadControl::RightShoulder, PadControl::LeftShoulder,
                                                  PadControl::RightTrigger, PadControl::LeftTrigger,
                                                  PadControl::West};
    // The comforts file's line for the player's own fire controls.
    static constexpr const char* FireControlsLine = "pad-fire";

    PadKeys Bind(PadControl control, const Facts& facts);
    // Fire controls of the player's own, by name in the lasers' order and
    // separated by commas ("North, RightShoulder"); the lasers past them fire
    // from none. Empty when taken, else why the line is left out and the
    // controls stay as they were.
    std::string TakeFireControls(const std::string& names);

private:
    PadKeys BindForNameEntry(PadControl control, const std::string& name);
    PadKeys TurnCharacter(int step, const std::string& name);

    // The character the player is choosing with Up and Down: it sits at the
    // end of the name, which is then this long. It is forgotten once the name
    // is no longer as the dial left it (the keyboard changed it, or it was full).
    struct Dial {
        std::size_t length = 0;
        std::size_t index = 0;
    };
    std::optional<Dial> dial;
    std::vector<PadControl> fireControls{std::begin(FireControls), std::end(FireControls)};
};
