// What each gamepad control stands for, where the keys go. No SDL here: the
// bindings are the game's facts in and keys out.
#include "app/PadBindings.h"

#include <gtest/gtest.h>

namespace {

using Context = CPadBindings::Context;
using Facts = CPadBindings::Facts;

std::string Describe(const PadKeys& keys)
{
    auto name = [](UINT key) -> std::string {
        switch (key) {
        case VK_BACK: return "Back";
        case VK_RETURN: return "Enter";
        case VK_ESCAPE: return "Esc";
        case VK_SPACE: return "Space";
        case VK_LEFT: return "Left";
        case VK_UP: return "Up";
        case VK_RIGHT: return "Right";
        case VK_DOWN: return "Down";
        default: return std::string(1, static_cast<char>(key));
        }
    };
    std::string text;
    for (UINT key : keys.taps)
        text += "tap " + name(key) + " ";
    if (keys.hold)
        text += "hold " + name(keys.hold);
    return text;
}

// The lasers in the order they were fitted, one control each; a control with
// no laser left, or one a thumb slips onto in flight, sends nothing.
TEST(PadBindings, FireControlsFollowTheFittedLasers)
{
    CPadBindings bindings;
    EXPECT_EQ(Describe(bindings.Bind(PadControl::LeftTrigger, {Context::Flight, "", {'F', 'Q', '7'}})), "");
    EXPECT_EQ(Describe(bindings.Bind(PadControl::East, {Context::Flight, "", {'F'}})), "");
    const Facts fiveLasers{Context::Flight, "", {'F', 'D', 'S', 'A', 'G'}};
    std::string fired;
    for (PadControl control : CPadBindings::FireControls)
        fired += Describe(bindings.Bind(control, fiveLasers)) + ",";
    EXPECT_EQ(fired, "hold F,hold D,hold S,hold A,hold G,");

    // The player's own fire controls, in the lasers' order; a bad line changes nothing.
    struct Choice {
        const char* line;
        const char* problem;
        const char* fired; // by North, RightShoulder, South
    };
    const Choice choices[] = {
        {"North, South", "", "hold F,,hold D,"},
        {"North, Up", "no control a laser may fire from is called \"Up\"", "hold F,,hold D,"},
        {"RightShoulder,South,RightShoulder", "RightShoulder is named twice", "hold F,,hold D,"},
        {" RightShoulder ", "", ",hold F,,"},
    };
    for (const Choice& c : choices) {
        EXPECT_EQ(bindings.TakeFireControls(c.line), c.problem) << c.line;
        fired.clear();
        for (PadControl control : {PadControl::North, PadControl::RightShoulder, PadControl::South})
            fired += Describe(bindings.Bind(control, fiveLasers)) + ",";
        EXPECT_EQ(fired, c.fired) << c.line;
    }
}

// Name entry by a pad: Up and Down turn the character at the end of the name
// through A-Z, 0-9 and the blank; Right keeps it and starts the next; East
// takes one back; South or Start finish. Each is the keys a keyboard would send.
class NameDial : public ::testing::Test {
protected:
    // Presses a control and lets the name take its keys as the game would.
    std::string Press(PadControl control)
    {
        const PadKeys keys = bindings.Bind(control, {Context::NameEntry, name, {}});
        for (UINT key : keys.taps)
            Type(key);
        if (keys.hold)
            Type(keys.hold);
        return Describe(keys);
    }
    void Type(UINT key)
    {
        if (key == VK_BACK) {
            if (!name.empty())
                name.pop_back();
        } else if (key != VK_RETURN && name.size() < 30) {
            name.push_back(static_cast<char>(key));
        }
    }
    CPadBindings bindings;
    std::string name;
};

TEST_F(NameDial, UpAndDownTurnTheLastCharacterAndRightKeepsIt)
{
    EXPECT_EQ(Press(PadControl::Up), "tap A ");
    EXPECT_EQ(Press(PadControl::Up), "tap Back tap B ");
    EXPECT_EQ(name, "B");
    Press(PadControl::Right);
    EXPECT_EQ(Press(PadControl::Down), "tap 9 "); // a fresh place reads as the blank, after 9
    EXPECT_EQ(Press(PadControl::Down), "tap Back tap 8 ");
    EXPECT_EQ(name, "B8");
    Press(PadControl::Right);
    Press(PadControl::Up);
    EXPECT_EQ(Press(PadControl::Down), "tap Back tap Space "); // A turns back to the blank
    EXPECT_EQ(Press(PadControl::Up), "tap Back tap A ");       // and the blank on to A
    EXPECT_EQ(name, "B8A");
    EXPECT_EQ(Press(PadControl::East), "hold Back");
    EXPECT_EQ(name, "B8");
    EXPECT_EQ(Press(PadControl::Up), "tap A "); // after a deletion the next place is fresh
    EXPECT_EQ(Press(PadControl::Left), "");
    EXPECT_EQ(Press(PadControl::RightShoulder), "");
    EXPECT_EQ(Press(PadControl::South), "hold Enter");
    EXPECT_EQ(Press(PadControl::Start), "hold Enter");
    EXPECT_EQ(name, "B8A");
}

TEST_F(NameDial, ANameChangedBehindTheDialIsNeverOverwritten)
{
    Press(PadControl::Up);
    Type('Z'); // the keyboard typed on
    EXPECT_EQ(Press(PadControl::Up), "tap A ");
    EXPECT_EQ(name, "AZA");

    name = std::string(29, 'X');
    Press(PadControl::Up);
    EXPECT_EQ(Press(PadControl::Up), "tap Back tap B "); // the thirtieth character turns
    Press(PadControl::Right);
    EXPECT_EQ(Press(PadControl::Up), "tap A "); // no room: the game refuses it
    EXPECT_EQ(Press(PadControl::Up), "tap A "); // and the full name's last letter stays as it was
    EXPECT_EQ(name, std::string(29, 'X') + "B");
}

} // namespace
