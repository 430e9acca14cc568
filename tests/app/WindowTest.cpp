#include "app/GameWnd.h"
#include "support/DisplayApp.h"

#include <SDL.h>
#include <gtest/gtest.h>

namespace {

using qvtest::DisplayApp;

TEST(KeyRouting, EachStateSendsKeysToItsReceiver)
{
    struct Case {
        std::int32_t state;
        UINT key;
        bool pressed;
        bool hasPlayer;
        KeyRoute route;
    };
    const Case cases[] = {
        {StatePaused, VK_ESCAPE, false, true, KeyRoute::Menus}, // the release of the Escape that paused
        {StateDesign, VK_ESCAPE, true, true, KeyRoute::Designer},
        {StatePlaying, VK_ESCAPE, true, false, KeyRoute::Pause},
        {StatePlaying, 0x2200 | VK_ESCAPE, true, true, KeyRoute::Pause}, // only the low byte counts
        {StatePlaying, VK_ESCAPE, false, true, KeyRoute::Ship},
        {StatePlaying, VK_LEFT, true, false, KeyRoute::Dropped},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CGameApp::RouteKey(c.state, c.key, c.pressed, c.hasPlayer), c.route) << &c - cases;
}

TEST(GameWindow, HidesThePointerAndHandsOnActivationAndDestruction)
{
    DisplayApp t;
    ASSERT_TRUE(t.Start());
    CGameWnd& window = *t->mainWnd;
    EXPECT_EQ(window.WindowProc(WM_SETCURSOR, 0, 0), 1);
    window.WindowProc(WM_ACTIVATEAPP, 0, 0);
    EXPECT_EQ(t->active, 0);
    window.WindowProc(WM_ACTIVATEAPP, 7, 0);
    EXPECT_EQ(t->active, 1);
    window.DestroyWindow();
    EXPECT_FALSE(static_cast<CPlatformApp&>(*t).PumpMessages()); // the quit message was posted
    EXPECT_EQ(t->display.Flip(), DDERR_GENERIC); // nothing left to show on, and nothing breaks
}

// Regaining the focus restores and reloads what was lost and pauses a game in
// play; a flip that finds its surfaces lost restores them once within the frame.
TEST(Activation, LostSurfacesAreRestoredOnRegainingTheFocusOrOnceWithinAFrame)
{
    DisplayApp t;
    qvtest::WriteFile("sprite.ini", std::string("ship1 8 8\n"));
    ASSERT_TRUE(t.Start());
    auto names = [&] { return t->sprites.GetEntries().size(); };
    ASSERT_EQ(names(), 1u);
    t->SetGameState(StatePlaying);
    t->OnActivate(false);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    Platform::NotifySurfacesLost();
    t->OnActivate(true);
    EXPECT_EQ(t->GetGameState(), StatePaused);
    EXPECT_EQ(names(), 2u);
    EXPECT_EQ(t->display.GetBack()->IsLost(), DD_OK);
    t->SetGameState(StateDesign); // only a game in play is paused
    t->OnActivate(true);
    EXPECT_EQ(t->GetGameState(), StateDesign);

    struct Access : CGameApp {
        using CGameApp::OnIdle;
    };
    // What the window's start brought is handled first: newer SDLs report the
    // focus a window gets on opening, which restores and reloads as above.
    static_cast<CPlatformApp&>(*t).PumpMessages();
    t.clock.Advance(16);
    static_cast<Access&>(*t).OnIdle(0);
    const std::size_t before = names();
    SDL_Event reset{};
    reset.type = SDL_RENDER_TARGETS_RESET; // the renderer lost what it drew on
    SDL_PushEvent(&reset);
    static_cast<CPlatformApp&>(*t).PumpMessages();
    EXPECT_EQ(t->display.GetPrimary()->IsLost(), DDERR_SURFACELOST);
    for (int frame = 0; frame < 2; ++frame) {
        t.clock.Advance(16);
        EXPECT_TRUE(static_cast<Access&>(*t).OnIdle(0));
        EXPECT_EQ(names(), before + 1);
    }
    EXPECT_EQ(t->display.GetPrimary()->IsLost(), DD_OK);
}

} // namespace
