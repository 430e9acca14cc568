// The game played with pretend gamepads: SDL's events go through the message
// loop to the main window as key messages, and the game answers as it would
// to the keyboard.
#include "support/DisplayApp.h"
#include "support/Parts.h"
#include "support/VirtualPad.h"

#include "ship/Ship.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

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
    void Set(SDL_GameControllerButton button, bool down, VirtualPad* which = nullptr)
    {
        (which ? which : pad.get())->Set(button, down);
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

TEST_F(GamepadPlayTest, InMenusAndOnTheDesignScreenThePadChoosesTakesAndGoesBack)
{
    auto selected = [&] { return t->menus.GetCurrentPage().GetSelectedIndex(); };
    Click(SDL_CONTROLLER_BUTTON_DPAD_DOWN);
    EXPECT_EQ(selected(), 1); // Help
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
    EXPECT_EQ(t->designer.GetFocus(), CShipDesigner::FocusShip);
    Click(SDL_CONTROLLER_BUTTON_B);
    EXPECT_EQ(t->GetGameState(), StatePlaying); // B, like Escape, starts the level
}

TEST_F(GamepadPlayTest, ANewHighScoreIsNamedWithThePad)
{
    t->menus.AddHighScore(500);
    ASSERT_TRUE(t->menus.IsEnteringName());
    const auto& scores = t->menus.GetHighScores();
    auto name = [&] { return scores.GetName(0); };
    Click(SDL_CONTROLLER_BUTTON_DPAD_UP);
    Click(SDL_CONTROLLER_BUTTON_DPAD_UP);
    EXPECT_EQ(name(), "B");
    Click(SDL_CONTROLLER_BUTTON_DPAD_RIGHT);
    Click(SDL_CONTROLLER_BUTTON_DPAD_DOWN);
    EXPECT_EQ(name(), "B9");
    Click(SDL_CONTROLLER_BUTTON_B);
    EXPECT_EQ(name(), "B");
    Set(SDL_CONTROLLER_BUTTON_DPAD_UP, true);
    t.clock.Advance(CGamepads::RepeatDelayMs);
    Pump(); // held, the character turns on
    Set(SDL_CONTROLLER_BUTTON_DPAD_UP, false);
    EXPECT_EQ(name(), "BB");
    Click(SDL_CONTROLLER_BUTTON_START);
    EXPECT_FALSE(t->menus.IsEnteringName());
    EXPECT_EQ(name(), "BB");
    Click(SDL_CONTROLLER_BUTTON_B); // the menus have the pad again
    EXPECT_EQ(t->menus.GetScreen(), ScreenMainMenu);
}

} // namespace
