#pragma once
#include "platform/Types.h"

#include <map>
#include <string>
#include <vector>

class CComforts;

// Keys of the player's own choosing that stand for the keys the game knows:
// "key-up = W" makes W steer and choose as Up does. The game's own keys keep
// working beside them. They come from the comforts file, one line for each
// key the game knows, the extra keys by name and separated by commas. A line
// naming a key no keyboard has, a key the game or another line already
// took, or a key a laser fires on when fitted is left out whole, with a word
// saying why. Letters and digits stand for others only where the game reads
// no character (see CGameApp::TranslateKey), and a laser's fire key stays
// its own.
class CKeyBindings {
public:
    // The game's keys that may have others standing for them, by their
    // comforts line.
    struct Bindable {
        const char* line;
        UINT key;
    };
    static const std::vector<Bindable>& BindableKeys();
    // Whether the game's key is one of them: a key of its own, never another's.
    static bool IsBindable(UINT key);

    // Reads every key line of the comforts; the problems are kept.
    void Load(const CComforts& comforts);
    const std::vector<std::string>& Problems() const { return problems; }

    // The game's key a keyboard key (the platform's code) stands for, or 0.
    UINT BoundTo(int keyCode) const;

private:
    bool TakeLine(const Bindable& bindable, const std::string& value);

    std::map<int, UINT> bound;
    std::vector<std::string> problems;
};
