// Gamepads seen from the platform: SDL's pretend pads in, key messages out.
// Every control is bound to a key of its own, so the messages tell exactly
// which controls went down and up.
#include "platform/App.h"
#include "platform/Clock.h"
#include "platform/Gamepads.h"
#include "platform/MessageQueue.h"
#include "platform/Volume.h"
#include "platform/Window.h"
#include "support/TestApp.h"
#include "support/VirtualPad.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

namespace {

using qvtest::VirtualPad;

constexpr UINT FirstKey = 0xC0; // past every key the game knows

// Each control's name, in the order of PadControl, and the button that works it.
const std::pair<const char*, SDL_GameControllerButton> Controls[] = {
    {"Up", SDL_CONTROLLER_BUTTON_DPAD_UP},       {"Down", SDL_CONTROLLER_BUTTON_DPAD_DOWN},
    {"Left", SDL_CONTROLLER_BUTTON_DPAD_LEFT},   {"Right", SDL_CONTROLLER_BUTTON_DPAD_RIGHT},
    {"South", SDL_CONTROLLER_BUTTON_A},          {"East", SDL_CONTROLLER_BUTTON_B},
    {"West", SDL_CONTROLLER_BUTTON_X},           {"North", SDL_CONTROLLER_BUTTON_Y},
    {"Start", SDL_CONTROLLER_BUTTON_START},      {"Back", SDL_CONTROLLER_BUTTON_BACK},
    {"LeftShoulder", SDL_CONTROLLER_BUTTON_LEFTSHOULDER}, {"RightShoulder", SDL_CONTROLLER_BUTTON_RIGHTSHOULDER},
    {"LeftTrigger", SDL_CONTROLLER_BUTTON_INVALID},       {"RightTrigger", SDL_CONTROLLER_BUTTON_INVALID},
};

PadKeys OwnKey(PadControl control)
{
    return {{}, FirstKey + static_cast<UINT>(control)};
}

class GamepadsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        Platform::StartSdl();
        // The dummy driver's window never has the focus, which would hide the pads.
        SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
        CMessageQueue::Instance().Clear();
    }

    // The pads started, with one plugged in and seen.
    void Start(CGamepads::Binder binder = OwnKey)
    {
        pads = std::make_unique<CGamepads>(std::move(binder));
        ASSERT_TRUE(pads->Start()) << SDL_GetError();
        pad = std::make_unique<VirtualPad>();
        Pump();
    }

    // Hands SDL's waiting events to the pads; the key messages they posted,
    // as "+Name" for a key going down and "-Name" for one coming up.
    std::string Pump()
    {
        SDL_Event event;
        while (SDL_PollEvent(&event))
            pads->HandleEvent(event, &window);
        pads->Repeat(&window);
        return Posted();
    }

    static std::string Posted()
    {
        std::ostringstream text;
        while (auto msg = CMessageQueue::Instance().Take()) {
            if (msg->message != WM_KEYDOWN && msg->message != WM_KEYUP)
                continue;
            const auto control = static_cast<std::size_t>(msg->wParam - FirstKey);
            text << (text.tellp() > 0 ? " " : "") << (msg->message == WM_KEYDOWN ? "+" : "-")
                 << (control < std::size(Controls) ? Controls[control].first : std::to_string(msg->wParam));
        }
        return text.str();
    }

    qvtest::FakeClock clock;
    CPlatformWnd window; // a target for the messages; never shown
    std::unique_ptr<CGamepads> pads;
    std::unique_ptr<VirtualPad> pad;
};

// The stick turns a direction on from half way out and off only once back
// under 30 %, so a stick resting near either threshold does not chatter.
TEST_F(GamepadsTest, StickDirectionsHaveADeadZoneWithHysteresis)
{
    Start();
    auto stick = [&](SDL_GameControllerAxis axis, Sint16 value) {
        pad->Set(axis, value);
        return Pump();
    };
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OnFrom - 1), "");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OnFrom), "+Right");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OffBelow), "");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OffBelow - 1), "-Right");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OffBelow), ""); // back out, but not far enough
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, -CAxisSwitch::OnFrom), "+Left");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, 32767), "-Left +Right"); // flicked across in one reading
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, 0), "-Right");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTY, -32768), "+Up"); // the stick's y grows downward
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTY, 20000), "-Up +Down");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, -20000), "+Left"); // a diagonal holds both
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTY, -CAxisSwitch::OffBelow + 1), "-Down");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_TRIGGERLEFT, 32767), "+LeftTrigger"); // a trigger is half a stick
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_TRIGGERRIGHT, 30000), "+RightTrigger");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_TRIGGERRIGHT, 5000), "-RightTrigger");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_TRIGGERLEFT, 0), "-LeftTrigger");
    pad->Set(SDL_CONTROLLER_BUTTON_GUIDE, true);
    pad->Set(SDL_CONTROLLER_BUTTON_LEFTSTICK, true);
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_RIGHTX, 32767), ""); // nothing in this game
}

// Every button the game reads holds its own key while it is down.
TEST_F(GamepadsTest, EachButtonHoldsItsOwnKey)
{
    Start();
    for (const auto& [name, button] : Controls) {
        if (button == SDL_CONTROLLER_BUTTON_INVALID)
            continue; // the triggers are axes, with the stick
        pad->Set(button, true);
        EXPECT_EQ(Pump(), std::string("+") + name);
        pad->Set(button, false);
        EXPECT_EQ(Pump(), std::string("-") + name);
    }
}

// A key stays down while any control of any pad holds it; a pad unplugged
// lets go of all it held, and one plugged in during play works at once.
TEST_F(GamepadsTest, KeysStayHeldWhileAnyPadHoldsThemAndUnpluggingLetsGo)
{
    Start([](PadControl control) {
        // Both shoulders fire the same key, as two lasers on one key do.
        return control == PadControl::LeftShoulder ? OwnKey(PadControl::RightShoulder) : OwnKey(control);
    });
    VirtualPad* first = pad.get();
    // A second control on a held key sends nothing.
    first->Set(SDL_CONTROLLER_BUTTON_DPAD_LEFT, true);
    EXPECT_EQ(Pump(), "+Left");
    first->Set(SDL_CONTROLLER_AXIS_LEFTX, -32768);
    first->Set(SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, true);
    EXPECT_EQ(Pump(), "+RightShoulder");
    first->Set(SDL_CONTROLLER_BUTTON_LEFTSHOULDER, true);
    EXPECT_EQ(Pump(), "");
    first->Set(SDL_CONTROLLER_BUTTON_DPAD_LEFT, false);
    first->Set(SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, false);
    EXPECT_EQ(Pump(), "");

    VirtualPad second("Second Pad");
    EXPECT_EQ(Pump(), "");
    ASSERT_EQ(pads->Count(), 2u);
    second.Set(SDL_CONTROLLER_BUTTON_DPAD_LEFT, true);
    second.Set(SDL_CONTROLLER_BUTTON_A, true);
    EXPECT_EQ(Pump(), "+South");

    first->Unplug();
    EXPECT_EQ(Pump(), "-RightShoulder"); // its stick and shoulder let go; Left is still the second pad's
    EXPECT_EQ(pads->Count(), 1u);
    EXPECT_TRUE(pads->IsHeld(FirstKey + static_cast<UINT>(PadControl::Left)));
    second.Unplug();
    EXPECT_EQ(Pump(), "-South -Left");
    EXPECT_EQ(pads->Count(), 0u);

    VirtualPad again;
    Pump();
    again.Set(SDL_CONTROLLER_BUTTON_START, true);
    EXPECT_EQ(Pump(), "+Start");
    // SDL lets go of a vanishing pad's controls before it reports it gone;
    // a report that comes without them still lets go of everything.
    SDL_Event removed{};
    removed.cdevice.type = SDL_CONTROLLERDEVICEREMOVED;
    removed.cdevice.which = SDL_JoystickGetDeviceInstanceID(0);
    pads->HandleEvent(removed, &window);
    EXPECT_EQ(Posted(), "-Start");
    EXPECT_EQ(pads->Count(), 0u);
}

// Directions held down repeat like keys of a keyboard; buttons do not.
// A control that holds no key asks again what it means at each repeat.
TEST_F(GamepadsTest, HeldDirectionsRepeat)
{
    int asked = 0;
    Start([&](PadControl control) {
        if (control != PadControl::Up)
            return OwnKey(control);
        ++asked;
        return PadKeys{{FirstKey + static_cast<UINT>(PadControl::North)}, 0};
    });
    pad->Set(SDL_CONTROLLER_BUTTON_A, true);
    EXPECT_EQ(Pump(), "+South");
    pad->Set(SDL_CONTROLLER_BUTTON_DPAD_DOWN, true);
    EXPECT_EQ(Pump(), "+Down");
    clock.Advance(CGamepads::RepeatDelayMs - 1);
    EXPECT_EQ(Pump(), "");
    clock.Advance(1);
    EXPECT_EQ(Pump(), "+Down");
    clock.Advance(CGamepads::RepeatIntervalMs);
    EXPECT_EQ(Pump(), "+Down");
    pad->Set(SDL_CONTROLLER_BUTTON_DPAD_DOWN, false);
    clock.Advance(CGamepads::RepeatIntervalMs);
    EXPECT_EQ(Pump(), "-Down");

    pad->Set(SDL_CONTROLLER_BUTTON_DPAD_UP, true);
    EXPECT_EQ(Pump(), "+North -North");
    clock.Advance(CGamepads::RepeatDelayMs);
    EXPECT_EQ(Pump(), "+North -North");
    EXPECT_EQ(asked, 2);
    pad->Set(SDL_CONTROLLER_BUTTON_DPAD_UP, false);
    EXPECT_EQ(Pump(), "");
}

// Back held with the D-pad steps the volumes, and the game hears no key of it.
TEST_F(GamepadsTest, BackWithTheDpadStepsTheVolumes)
{
    Platform::SetVolume(VolumeChannel::Music, 5);
    Platform::SetVolume(VolumeChannel::Effects, 5);
    Start();
    pad->Set(SDL_CONTROLLER_BUTTON_BACK, true);
    EXPECT_EQ(Pump(), "+Back");
    for (auto button : {SDL_CONTROLLER_BUTTON_DPAD_UP, SDL_CONTROLLER_BUTTON_DPAD_LEFT, SDL_CONTROLLER_BUTTON_DPAD_LEFT}) {
        pad->Set(button, true);
        EXPECT_EQ(Pump(), "");
        pad->Set(button, false);
        EXPECT_EQ(Pump(), "");
    }
    EXPECT_EQ(Platform::GetVolume(VolumeChannel::Music), 6);
    EXPECT_EQ(Platform::GetVolume(VolumeChannel::Effects), 3);
    pad->Set(SDL_CONTROLLER_BUTTON_BACK, false);
    pad->Set(SDL_CONTROLLER_BUTTON_DPAD_UP, true);
    EXPECT_EQ(Pump(), "-Back +Up");
    Platform::SetVolume(VolumeChannel::Music, Platform::VolumeSteps);
    Platform::SetVolume(VolumeChannel::Effects, Platform::VolumeSteps);
}

// The real message loop starts the pads, but only once the application has
// started, so that looking for them never delays the title screen. (What they
// press reaches the game through the same pumping of messages, tested with it.)
TEST(GamepadsInTheLoop, RunStartsThePadsOnceTheApplicationHasStarted)
{
    struct LoopApp : CPlatformApp {
        bool InitInstance() override
        {
            startedEarly = GetGamepads() != nullptr;
            return true;
        }
        bool OnIdle(long) override
        {
            Platform::PostQuitMessage(0);
            return true;
        }
        bool startedEarly = true;
    };
    CMessageQueue::Instance().Clear();
    LoopApp app;
    EXPECT_EQ(app.Run(), 0);
    EXPECT_FALSE(app.startedEarly);
    EXPECT_NE(app.GetGamepads(), nullptr);
}

} // namespace
