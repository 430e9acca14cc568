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

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <set>
#include <vector>
#include <sstream>

namespace {

using qvtest::PadLayout;
using qvtest::VirtualPad;

constexpr UINT FirstKey = 0xC0; // past every key the game knows

const char* const ControlNames[] = {"Up",    "Down", "Left", "Right",         "South",          "East",        "West",
                                    "North", "Start", "Back", "LeftShoulder", "RightShoulder", "LeftTrigger", "RightTrigger"};

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

    void Start(CGamepads::Binder binder = OwnKey)
    {
        pads = std::make_unique<CGamepads>(std::move(binder));
        ASSERT_TRUE(pads->Start()) << SDL_GetError();
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

    // The same, sorted, where SDL's order among several changes does not matter.
    std::string PumpSorted()
    {
        std::istringstream words(Pump());
        std::multiset<std::string> sorted{std::istream_iterator<std::string>(words), {}};
        std::string text;
        for (const std::string& word : sorted)
            text += (text.empty() ? "" : " ") + word;
        return text;
    }

    static std::string Posted()
    {
        std::ostringstream text;
        while (auto msg = CMessageQueue::Instance().Take()) {
            if (msg->message != WM_KEYDOWN && msg->message != WM_KEYUP)
                continue;
            const auto control = static_cast<std::size_t>(msg->wParam - FirstKey);
            text << (text.tellp() > 0 ? " " : "") << (msg->message == WM_KEYDOWN ? "+" : "-")
                 << (control < std::size(ControlNames) ? ControlNames[control] : std::to_string(msg->wParam));
        }
        return text.str();
    }

    qvtest::FakeClock clock;
    CPlatformWnd window; // a target for the messages; never shown
    std::unique_ptr<CGamepads> pads;
};

// The stick turns a direction on from half way out and off only once back
// under 30 %, so a stick resting near either threshold does not chatter.
TEST_F(GamepadsTest, StickDirectionsHaveADeadZoneWithHysteresis)
{
    Start();
    VirtualPad pad;
    Pump();
    auto stick = [&](SDL_GameControllerAxis axis, Sint16 value) {
        pad.Set(axis, value);
        return Pump();
    };
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OnFrom - 1), "");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OnFrom), "+Right");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, 32767), "");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OffBelow), "");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OnFrom - 1), "");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OffBelow - 1), "-Right");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, CAxisSwitch::OffBelow), ""); // back out, but not far enough
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, -CAxisSwitch::OnFrom), "+Left");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, 32767), "-Left +Right"); // flicked across in one reading
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, 0), "-Right");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTY, -32768), "+Up"); // the stick's y grows downward
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTY, 20000), "-Up +Down");
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, -20000), "+Left"); // a diagonal holds both
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTY, -CAxisSwitch::OffBelow + 1), "-Down");
    pad.Set(SDL_CONTROLLER_BUTTON_GUIDE, true);
    pad.Set(SDL_CONTROLLER_BUTTON_LEFTSTICK, true);
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_RIGHTX, 32767), ""); // nothing in this game
}

// A key stays down while any control of any pad holds it; a pad unplugged
// lets go of all it held, and one plugged in during play works at once.
TEST_F(GamepadsTest, KeysStayHeldWhileAnyPadHoldsThemAndUnpluggingLetsGo)
{
    Start([](PadControl control) {
        // Both shoulders fire the same key, as two lasers on one key do.
        return control == PadControl::LeftShoulder ? OwnKey(PadControl::RightShoulder) : OwnKey(control);
    });
    auto first = std::make_unique<VirtualPad>();
    Pump();
    first->Set(SDL_CONTROLLER_BUTTON_DPAD_LEFT, true);
    first->Set(SDL_CONTROLLER_AXIS_LEFTX, -32768);
    first->Set(SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, true);
    first->Set(SDL_CONTROLLER_BUTTON_LEFTSHOULDER, true);
    EXPECT_EQ(PumpSorted(), "+Left +RightShoulder");
    first->Set(SDL_CONTROLLER_BUTTON_DPAD_LEFT, false);
    first->Set(SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, false);
    EXPECT_EQ(Pump(), "");

    VirtualPad second({.vendor = 0x1209, .product = 0x0002, .name = "Second Pad"});
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
    EXPECT_EQ(PumpSorted(), "-Left -South");
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
    VirtualPad pad;
    Pump();
    pad.Set(SDL_CONTROLLER_BUTTON_DPAD_DOWN, true);
    pad.Set(SDL_CONTROLLER_BUTTON_A, true);
    EXPECT_EQ(PumpSorted(), "+Down +South");
    clock.Advance(CGamepads::RepeatDelayMs - 1);
    EXPECT_EQ(Pump(), "");
    clock.Advance(1);
    EXPECT_EQ(Pump(), "+Down");
    clock.Advance(CGamepads::RepeatIntervalMs);
    EXPECT_EQ(Pump(), "+Down");
    pad.Set(SDL_CONTROLLER_BUTTON_DPAD_DOWN, false);
    clock.Advance(CGamepads::RepeatIntervalMs);
    EXPECT_EQ(Pump(), "-Down");

    pad.Set(SDL_CONTROLLER_BUTTON_DPAD_UP, true);
    EXPECT_EQ(Pump(), "+North -North");
    clock.Advance(CGamepads::RepeatDelayMs);
    EXPECT_EQ(Pump(), "+North -North");
    EXPECT_EQ(asked, 2);
    pad.Set(SDL_CONTROLLER_BUTTON_DPAD_UP, false);
    EXPECT_EQ(Pump(), "");
}

// Back held with the D-pad steps the volumes, and the game hears no key of it.
TEST_F(GamepadsTest, BackWithTheDpadStepsTheVolumes)
{
    Platform::SetVolume(VolumeChannel::Music, 5);
    Platform::SetVolume(VolumeChannel::Effects, 5);
    Start();
    VirtualPad pad;
    Pump();
    pad.Set(SDL_CONTROLLER_BUTTON_BACK, true);
    EXPECT_EQ(Pump(), "+Back");
    for (auto button : {SDL_CONTROLLER_BUTTON_DPAD_UP, SDL_CONTROLLER_BUTTON_DPAD_LEFT, SDL_CONTROLLER_BUTTON_DPAD_LEFT}) {
        pad.Set(button, true);
        EXPECT_EQ(Pump(), "");
        pad.Set(button, false);
        EXPECT_EQ(Pump(), "");
    }
    EXPECT_EQ(Platform::GetVolume(VolumeChannel::Music), 6);
    EXPECT_EQ(Platform::GetVolume(VolumeChannel::Effects), 3);
    pad.Set(SDL_CONTROLLER_BUTTON_BACK, false);
    pad.Set(SDL_CONTROLLER_BUTTON_DPAD_UP, true);
    EXPECT_EQ(Pump(), "-Back +Up");
    Platform::SetVolume(VolumeChannel::Music, Platform::VolumeSteps);
    Platform::SetVolume(VolumeChannel::Effects, Platform::VolumeSteps);
}

// The real message loop: the pads start once the application has started,
// and what they press reaches the window procedure as key messages.
TEST(GamepadsInTheLoop, RunStartsThePadsAndTheirKeysReachTheWindowProcedure)
{
    struct RecordingWnd : CPlatformWnd {
        LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
        {
            if (message == WM_KEYDOWN || message == WM_KEYUP)
                keys.push_back((message == WM_KEYDOWN ? "+" : "-") + std::to_string(wParam));
            return DefWindowProc(message, wParam, lParam);
        }
        std::vector<std::string> keys;
    };
    struct LoopApp : CPlatformApp {
        bool InitInstance() override
        {
            startedEarly = GetGamepads() != nullptr;
            Platform::RegisterClass("GamepadLoopTest", 0);
            window.CreateEx(0, "GamepadLoopTest", "Gamepads", 0, 0, 0, 64, 64);
            SetMainWnd(&window);
            return true;
        }
        bool OnIdle(long) override
        {
            switch (idles++) {
            case 0: pad = std::make_unique<VirtualPad>(); break;
            case 1: pad->Set(SDL_CONTROLLER_BUTTON_A, true); break;
            case 2: pad->Unplug(); break;
            default: Platform::PostQuitMessage(0); break;
            }
            return true;
        }
        PadKeys BindPadControl(PadControl control) override
        {
            return control == PadControl::South ? PadKeys{{}, VK_RETURN} : PadKeys{};
        }
        RecordingWnd window;
        std::unique_ptr<VirtualPad> pad;
        bool startedEarly = true;
        int idles = 0;
    };
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    CMessageQueue::Instance().Clear();
    LoopApp app;
    EXPECT_EQ(app.Run(), 0);
    EXPECT_FALSE(app.startedEarly);
    ASSERT_NE(app.GetGamepads(), nullptr);
    EXPECT_EQ(app.window.keys, (std::vector<std::string>{"+13", "-13"}));
    app.window.DestroyWindow();
}

// SDL's own mapping for a controller plugged in by USB, or "" when it has none.
std::string BuiltInMapping(Uint16 vendor, Uint16 product)
{
    char guid[33];
    std::snprintf(guid, sizeof guid, "03000000%02x%02x0000%02x%02x000000000000", vendor & 0xFF, vendor >> 8,
                  product & 0xFF, product >> 8);
    char* mapping = SDL_GameControllerMappingForGUID(SDL_JoystickGetGUIDFromString(guid));
    std::string text = mapping ? mapping : "";
    SDL_free(mapping);
    return text;
}

// Real controllers, through the mappings SDL itself keeps for them: a pretend
// pad is given the controller's raw layout and SDL's mapping of it, and each
// raw button, hat and axis the mapping names is worked as the player would.
TEST_F(GamepadsTest, KnownControllersWorkThroughSdlsOwnMappings)
{
    Start();
    struct Known {
        const char* name;
        Uint16 vendor;
        Uint16 product;
    };
    const Known controllers[] = {
        {"Xbox 360", 0x045E, 0x028E},        {"Xbox One", 0x045E, 0x02EA},
        {"DualShock 4", 0x054C, 0x05C4},     {"DualShock 4, second model", 0x054C, 0x09CC},
        {"DualSense", 0x054C, 0x0CE6},       {"Switch Pro", 0x057E, 0x2009},
        {"8BitDo SN30 Pro", 0x2DC8, 0x6001},
    };
    // SDL's name of each control, with the direction a stick is pushed.
    const std::pair<const char*, const char*> controls[] = {
        {"a", "South"}, {"b", "East"}, {"x", "West"}, {"start", "Start"}, {"leftshoulder", "LeftShoulder"},
        {"rightshoulder", "RightShoulder"}, {"lefttrigger", "LeftTrigger"}, {"righttrigger", "RightTrigger"},
        {"dpup", "Up"}, {"dpdown", "Down"}, {"dpleft", "Left"}, {"dpright", "Right"},
        {"leftx-", "Left"}, {"leftx+", "Right"}, {"lefty-", "Up"}, {"lefty+", "Down"},
    };
    // SDL 2.32 lists no Xbox One pad (it makes their mappings as they are
    // plugged in): the controllers this SDL lists are worked, all but one at least.
    std::size_t worked = 0;
    for (const Known& known : controllers) {
        SCOPED_TRACE(known.name);
        const std::string mapping = BuiltInMapping(known.vendor, known.product);
        if (mapping.empty())
            continue;
        ++worked;
        std::map<std::string, std::string> raw; // SDL's control name to the raw element: b3, a2, h0.4
        PadLayout layout{.standard = false, .axes = 0, .buttons = 0, .hats = 0, .vendor = known.vendor,
                         .product = known.product, .name = known.name};
        std::istringstream fields(mapping.substr(mapping.find(',', mapping.find(',') + 1) + 1));
        for (std::string field; std::getline(fields, field, ',');) {
            const auto colon = field.find(':');
            if (colon == std::string::npos || field.find("platform") == 0 || field.find("hint") == 0)
                continue;
            const std::string element = field.substr(colon + 1);
            const int number = std::atoi(element.c_str() + 1);
            raw[field.substr(0, colon)] = element;
            if (element[0] == 'b')
                layout.buttons = std::max(layout.buttons, number + 1);
            else if (element[0] == 'a')
                layout.axes = std::max(layout.axes, number + 1);
            else if (element[0] == 'h')
                layout.hats = std::max(layout.hats, number + 1);
            else
                ADD_FAILURE() << "a raw element this test cannot work: " << field;
        }
        const std::string guid = VirtualPad::GuidOf(layout);
        ASSERT_EQ(SDL_GameControllerAddMapping((guid + mapping.substr(mapping.find(','))).c_str()), 1);
        VirtualPad pad(layout);
        auto isTrigger = [](const std::string& control) { return control.find("trigger") != std::string::npos; };
        for (const auto& [control, element] : raw)
            if (isTrigger(control) && element[0] == 'a')
                pad.SetAxis(std::atoi(element.c_str() + 1), -32768); // a trigger at rest
        Pump();
        ASSERT_EQ(pads->Count(), 1u);
        for (const auto& [control, name] : controls) {
            std::string sdlName = control;
            int push = 0;
            if (sdlName.back() == '-' || sdlName.back() == '+') {
                push = sdlName.back() == '-' ? -1 : 1;
                sdlName.pop_back();
            }
            ASSERT_TRUE(raw.count(sdlName)) << sdlName;
            const std::string& element = raw[sdlName];
            const int number = std::atoi(element.c_str() + 1);
            auto work = [&](bool on) {
                if (element[0] == 'b')
                    pad.SetButton(number, on);
                else if (element[0] == 'h')
                    pad.SetHat(number, on ? static_cast<Uint8>(std::atoi(element.c_str() + 3)) : SDL_HAT_CENTERED);
                else if (isTrigger(sdlName))
                    pad.SetAxis(number, on ? 32767 : -32768);
                else
                    pad.SetAxis(number, static_cast<Sint16>(on ? push * 32767 : 0));
                return Pump();
            };
            EXPECT_EQ(work(true), std::string("+") + name) << control << " on " << element;
            EXPECT_EQ(work(false), std::string("-") + name) << control << " on " << element;
        }
        pad.Unplug();
        Pump();
    }
    EXPECT_GE(worked, std::size(controllers) - 1);
}

} // namespace
