#include "app/PadBindings.h"

#include <algorithm>
#include <sstream>

namespace {

struct NamedControl {
    PadControl control;
    const char* name;
};

// The controls a laser may fire from: every one that steers, pauses or sets
// the volume (Back) is the game's own.
constexpr NamedControl FireControlNames[] = {
    {PadControl::South, "South"},
    {PadControl::East, "East"},
    {PadControl::West, "West"},
    {PadControl::North, "North"},
    {PadControl::LeftShoulder, "LeftShoulder"},
    {PadControl::RightShoulder, "RightShoulder"},
    {PadControl::LeftTrigger, "LeftTrigger"},
    {PadControl::RightTrigger, "RightTrigger"},
};

PadKeys Hold(UINT key)
{
    return {{}, key};
}

UINT ArrowKeyOf(PadControl control)
{
    switch (control) {
    case PadControl::Up: return VK_UP;
    case PadControl::Down: return VK_DOWN;
    case PadControl::Left: return VK_LEFT;
    case PadControl::Right: return VK_RIGHT;
    default: return 0;
    }
}

} // namespace

PadKeys CPadBindings::Bind(PadControl control, const Facts& facts)
{
    if (facts.context == Context::NameEntry)
        return BindForNameEntry(control, facts.name);
    dial.reset();
    if (const UINT arrow = ArrowKeyOf(control))
        return Hold(arrow);
    if (facts.context == Context::Flight) {
        // Start pauses; East is no Escape here, so a slip of the thumb never stops the level.
        if (control == PadControl::Start)
            return Hold(VK_ESCAPE);
        for (std::size_t i = 0; i < fireControls.size() && i < facts.fireKeys.size(); ++i)
            if (control == fireControls[i])
                return Hold(static_cast<unsigned char>(facts.fireKeys[i]));
        return {};
    }
    switch (control) {
    case PadControl::South: return Hold(VK_RETURN);
    case PadControl::East:
    case PadControl::Start: return Hold(VK_ESCAPE);
    default: return {};
    }
}

std::string CPadBindings::TakeFireControls(const std::string& names)
{
    std::vector<PadControl> chosen;
    std::istringstream list(names);
    for (std::string name; std::getline(list, name, ',');) {
        name.erase(0, name.find_first_not_of(" \t"));
        name.erase(name.find_last_not_of(" \t") + 1);
        const auto named = std::find_if(std::begin(FireControlNames), std::end(FireControlNames),
                                        [&](const NamedControl& n) { return name == n.name; });
        if (named == std::end(FireControlNames))
            return "no control a laser may fire from is called \"" + name + "\"";
        if (std::find(chosen.begin(), chosen.end(), named->control) != chosen.end())
            return name + " is named twice";
        chosen.push_back(named->control);
    }
    fireControls = std::move(chosen);
    return "";
}

PadKeys CPadBindings::BindForNameEntry(PadControl control, const std::string& name)
{
    switch (control) {
    case PadControl::Up: return TurnCharacter(1, name);
    case PadControl::Down: return TurnCharacter(-1, name);
    case PadControl::Right: dial.reset(); return {}; // the character stays; the next one starts afresh
    case PadControl::East: dial.reset(); return Hold(VK_BACK);
    case PadControl::South:
    case PadControl::Start: dial.reset(); return Hold(VK_RETURN);
    default: return {};
    }
}

// Replaces the character being chosen by its neighbour in the alphabet, or
// adds a first one. A fresh place counts as the blank at the alphabet's end,
// so Up starts at A and Down at 9.
PadKeys CPadBindings::TurnCharacter(int step, const std::string& name)
{
    const bool turning = dial && name.size() == dial->length && name.back() == Alphabet[dial->index];
    const std::size_t count = Alphabet.size();
    const std::size_t from = turning ? dial->index : count - 1;
    const std::size_t index = static_cast<std::size_t>(static_cast<int>(from + count) + step) % count;
    PadKeys keys;
    if (turning)
        keys.taps.push_back(VK_BACK);
    keys.taps.push_back(static_cast<unsigned char>(Alphabet[index])); // letters, digits and the blank are their own keys
    dial = Dial{turning ? name.size() : name.size() + 1, index};
    return keys;
}
