// Gamepads: what each control stands for, where the keys go (the bindings
// alone, the game's facts in and keys out), then the game played with
// pretend pads whose events reach the main window as key messages.
#include "app/PadBindings.h"
#include "frontend/HighScoreTable.h"
#include "ship/Ship.h"
#include "support/DisplayApp.h"
#include "support/Parts.h"
#include "support/VirtualPad.h"

#include <gtest/gtest.h>

#include <span>

namespace {

using namespace qvtest;
using Context = CPadBindings::Context;

std::string Describe(const PadKeys& keys)
{
    auto name = [](UINT key) -> std::string {
        return key == VK_BACK ? "Back" : key == VK_RETURN ? "Enter" : key == VK_SPACE ? "Space" : std::string(1, char(key));
    };
    std::string text;
    for (UINT key : keys.taps)
        text += "tap " + name(key) + " ";
    return keys.hold ? text + "hold " + name(keys.hold) : text;
}

// The lasers in the order they were fitted, one control each; a control with
// no laser left, or one a thumb slips onto in flight, sends nothing.
TEST(PadBindings, FireControlsFollowTheFittedLasers)
{
    CPadBindings bindings;
    EXPECT_EQ(Describe(bindings.Bind(PadControl::LeftTrigger, {Context::Flight, "", {'F', 'Q', '7'}})), "");
    EXPECT_EQ(Describe(bindings.Bind(PadControl::East, {Context::Flight, "", {'F'}})), "");
    auto fired = [&](std::span<const PadControl> controls) {
        std::string held;
        for (PadControl control : controls)
            held += Describe(bindings.Bind(control, {Context::Flight, "", {'F', 'D', 'S', 'A', 'G'}})) + ",";
        return held;
    };
    EXPECT_EQ(fired(CPadBindings::FireControls), "hold F,hold D,hold S,hold A,hold G,");

    // The player's own fire controls, in the lasers' order; a bad line changes nothing.
    const PadControl asked[] = {PadControl::North, PadControl::RightShoulder, PadControl::South};
    const struct {
        const char* line;
        const char* problem;
        const char* fired; // by the controls asked
    } choices[] = {
        {"North, South", "", "hold F,,hold D,"},
        {"North, Up", "no control a laser may fire from is called \"Up\"", "hold F,,hold D,"},
        {"RightShoulder,South,RightShoulder", "RightShoulder is named twice", "hold F,,hold D,"},
        {" RightShoulder ", "", ",hold F,,"},
    };
    for (const auto& c : choices) {
        EXPECT_EQ(bindings.TakeFireControls(c.line), c.problem) << c.line;
        EXPECT_EQ(fired(asked), c.fired) << c.line;
    }
}

// Name entry by a pad: Up and Down turn the character at the end of the name
// through A-Z, 0-9 and the blank; Right keeps it and starts the next; East
// takes one back; South or Start finish. Each is the keys a keyboard would
// send, and a name changed behind the dial is never overwritten.
TEST(NameDial, UpAndDownTurnTheLastCharacterAndRightKeepsIt)
{
    CPadBindings bindings;
    CHighScoreTable table;
    table.Insert(10);
    auto name = [&] { return table.GetName(0); };
    // The keys a control sends, taken by the score table's name.
    auto press = [&](PadControl control) {
        const PadKeys keys = bindings.Bind(control, {Context::NameEntry, name(), {}});
        for (UINT key : keys.taps)
            table.EnterNameKey(static_cast<std::uint8_t>(key), true);
        table.EnterNameKey(static_cast<std::uint8_t>(keys.hold), true);
        return Describe(keys);
    };
    using enum PadControl;
    const struct {
        PadControl control;
        const char* sent;
        const char* name;
    } steps[] = {
        {Up, "tap A ", "A"}, {Up, "tap Back tap B ", "B"}, {Right, "", "B"},
        {Down, "tap 9 ", "B9"}, // a fresh place reads as the blank, after 9
        {Down, "tap Back tap 8 ", "B8"}, {Right, "", "B8"}, {Up, "tap A ", "B8A"},
        {Down, "tap Back tap Space ", "B8 "}, {Up, "tap Back tap A ", "B8A"}, // A and the blank turn into each other
        {East, "hold Back", "B8"}, {Up, "tap A ", "B8A"}, // after a deletion the next place is fresh
        {Left, "", "B8A"}, {RightShoulder, "", "B8A"}, {South, "hold Enter", "B8A"}, {Start, "hold Enter", "B8A"},
    };
    for (const auto& step : steps) {
        EXPECT_EQ(press(step.control), step.sent) << &step - steps;
        EXPECT_EQ(name(), step.name) << &step - steps;
    }

    bindings = CPadBindings();
    table.Insert(20);
    press(Up);
    table.EnterNameKey('Z', true); // the keyboard typed on
    EXPECT_EQ(press(Up), "tap A ");
    EXPECT_EQ(name(), "AZA");
    table.Insert(30);
    for (int i = 0; i < 29; ++i)
        table.EnterNameKey('X', true);
    press(Up);
    EXPECT_EQ(press(Up), "tap Back tap B "); // the thirtieth character turns
    press(Right);
    EXPECT_EQ(press(Up), "tap A "); // no room: the game refuses it
    EXPECT_EQ(press(Up), "tap A "); // and the full name's last letter stays as it was
    EXPECT_EQ(name(), std::string(29, 'X') + "B");
}

class GamepadPlayTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(t.Start());
        // The dummy driver's window never has the focus, which would hide the pads.
        SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
        ASSERT_TRUE(t->StartGamepads());
        pad = std::make_unique<VirtualPad>();
        Pump();
        ASSERT_EQ(t->GetGamepads()->Count(), 1u);
    }

    void Pump() { static_cast<CPlatformApp&>(*t).PumpMessages(); }
    // Presses or lets go of a control and lets the game take what it sent.
    void Set(SDL_GameControllerButton button, bool down)
    {
        pad->Set(button, down);
        Pump();
    }
    void Click(SDL_GameControllerButton button)
    {
        Set(button, true);
        Set(button, false);
    }
    CShip& Player() { return *t->world.GetPlayer(); }
    std::string HeldKeys()
    {
        const auto& held = Player().GetHeldKeys();
        return {held.begin(), held.end()};
    }

    DisplayApp t;
    std::unique_ptr<VirtualPad> pad;
};

TEST_F(GamepadPlayTest, InFlightThePadSteersFiresEachLaserAndPauses)
{
    t->NewGame();
    CLaser lasers[] = {Laser({}), Laser({}), Laser({})};
    for (CLaser& laser : lasers)
        Player().AddComponent(&laser);
    std::vector<CComponent*> fitted;
    Player().ListComponents(fitted);
    for (CComponent* c : fitted) // the second laser fitted gets a fire key of the player's own
        if (c->GetKind() == KindLaser && static_cast<CLaser*>(c)->GetFireKey() == 'D')
            static_cast<CLaser*>(c)->SetFireKey('7');

    // B starts the level from the design screen; the shoulder pressed in the
    // same instant already finds the level in play and fires.
    t->SetGameState(StateDesign);
    pad->Set(SDL_CONTROLLER_BUTTON_B, true);
    Set(SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, true);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    EXPECT_EQ(HeldKeys(), "F");
    Set(SDL_CONTROLLER_BUTTON_B, false);
    Set(SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, false);

    Set(SDL_CONTROLLER_BUTTON_DPAD_LEFT, true);
    pad->Set(SDL_CONTROLLER_AXIS_LEFTY, -32768);
    Pump();
    EXPECT_EQ(Player().GetTurnInput(), -1);
    EXPECT_EQ(Player().GetThrustInput(), 1);
    Set(SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, true);
    Set(SDL_CONTROLLER_BUTTON_LEFTSHOULDER, true);
    pad->Set(SDL_CONTROLLER_AXIS_TRIGGERRIGHT, 32767);
    pad->Set(SDL_CONTROLLER_AXIS_TRIGGERLEFT, 32767); // no fourth laser
    Set(SDL_CONTROLLER_BUTTON_X, true);
    EXPECT_EQ(HeldKeys(), "F7S");
    Set(SDL_CONTROLLER_BUTTON_B, true); // B is no pause in flight
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    Set(SDL_CONTROLLER_BUTTON_LEFTSHOULDER, false);
    EXPECT_EQ(HeldKeys(), "FS");

    Set(SDL_CONTROLLER_BUTTON_DPAD_LEFT, false);
    pad->Set(SDL_CONTROLLER_AXIS_LEFTY, 0);
    Pump();
    EXPECT_EQ(Player().GetTurnInput(), 0);
    EXPECT_EQ(Player().GetThrustInput(), 0);

    Click(SDL_CONTROLLER_BUTTON_START);
    EXPECT_EQ(t->GetGameState(), StatePaused);
    Click(SDL_CONTROLLER_BUTTON_START);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
}

// The dial itself is NameDial's; here its keys reach the name, a held
// control turns on, and the menus have the pad again once the name is in:
// it chooses, takes and goes back there and on the design screen.
TEST_F(GamepadPlayTest, ANewHighScoreIsNamedWithThePadAndThenThePadHasTheMenus)
{
    t->menus.AddHighScore(500);
    ASSERT_TRUE(t->menus.IsEnteringName());
    auto name = [&] { return t->menus.GetHighScores().GetName(0); };
    Click(SDL_CONTROLLER_BUTTON_DPAD_UP);
    Click(SDL_CONTROLLER_BUTTON_DPAD_RIGHT);
    Set(SDL_CONTROLLER_BUTTON_DPAD_UP, true);
    t.clock.Advance(CGamepads::RepeatDelayMs);
    Pump(); // held, the character turns on
    Set(SDL_CONTROLLER_BUTTON_DPAD_UP, false);
    EXPECT_EQ(name(), "AB");
    Click(SDL_CONTROLLER_BUTTON_B);
    EXPECT_EQ(name(), "A");
    Click(SDL_CONTROLLER_BUTTON_START);
    EXPECT_FALSE(t->menus.IsEnteringName());
    EXPECT_EQ(name(), "A");
    Click(SDL_CONTROLLER_BUTTON_B); // the menus have the pad again
    EXPECT_EQ(t->menus.GetScreen(), ScreenMainMenu);
    Click(SDL_CONTROLLER_BUTTON_DPAD_DOWN);
    EXPECT_EQ(t->menus.GetCurrentPage().GetSelectedIndex(), 1); // Help
    Click(SDL_CONTROLLER_BUTTON_A);
    EXPECT_EQ(t->menus.GetScreen(), ScreenHelp);
    Click(SDL_CONTROLLER_BUTTON_B);
    EXPECT_EQ(t->menus.GetScreen(), ScreenMainMenu);

    t->NewGame();
    t->world.AddToStock(Engine(100));
    t->SetGameState(StateDesign);
    Click(SDL_CONTROLLER_BUTTON_A);
    std::vector<CComponent*> fitted;
    Player().ListComponents(fitted);
    EXPECT_EQ(fitted.size(), 1u); // the engine on offer was fitted
    Click(SDL_CONTROLLER_BUTTON_DPAD_RIGHT);
    EXPECT_EQ(t->designer.GetFocus(), CShipDesigner::FocusShip); // B starting the level is the flight test's
}

} // namespace
