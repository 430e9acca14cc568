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
        {StateMenu, 'A', true, false, KeyRoute::Menus},
        {StatePaused, VK_ESCAPE, false, true, KeyRoute::Menus}, // the release of the Escape that paused
        {StatePaused, VK_RETURN, true, true, KeyRoute::Menus},
        {StateDesign, VK_ESCAPE, true, true, KeyRoute::Designer},
        {StatePlaying, VK_ESCAPE, true, true, KeyRoute::Pause},
        {StatePlaying, VK_ESCAPE, true, false, KeyRoute::Pause},
        {StatePlaying, 0x2200 | VK_ESCAPE, true, true, KeyRoute::Pause}, // only the low byte counts
        {StatePlaying, VK_ESCAPE, false, true, KeyRoute::Ship},
        {StatePlaying, VK_LEFT, true, true, KeyRoute::Ship},
        {StatePlaying, VK_LEFT, true, false, KeyRoute::Dropped},
        {StatePlaying, VK_ESCAPE, false, false, KeyRoute::Dropped},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "state " << c.state << " key " << c.key << " pressed " << c.pressed);
        EXPECT_EQ(CGameApp::RouteKey(c.state, c.key, c.pressed, c.hasPlayer), c.route);
    }
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
    t->SetGameState(StatePlaying);
    window.WindowProc(WM_KEYDOWN, VK_ESCAPE, 0);
    EXPECT_EQ(t->GetGameState(), StatePaused);
    window.WindowProc(MM_MCINOTIFY, MCI_NOTIFY_ABORTED, 0);
    window.DestroyWindow();
    EXPECT_FALSE(static_cast<CPlatformApp&>(*t).PumpMessages()); // the quit message was posted
    EXPECT_EQ(t->display.Flip(), DDERR_GENERIC); // nothing left to show on, and nothing breaks
}

class ActivationTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        qvtest::WriteFile("sprite.ini", std::string("ship1 8 8\n"));
        ASSERT_TRUE(t.Start());
        ASSERT_EQ(Names(), 1u);
    }
    std::size_t Names() { return t->sprites.GetEntries().size(); }
    DisplayApp t;
};

TEST_F(ActivationTest, RegainingItRestoresReloadsAndPausesAGameInPlay)
{
    t->SetGameState(StatePlaying);
    t->OnActivate(false);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    EXPECT_EQ(Names(), 1u);
    Platform::NotifySurfacesLost();
    t->OnActivate(true);
    EXPECT_EQ(t->GetGameState(), StatePaused);
    EXPECT_EQ(Names(), 2u);
    EXPECT_EQ(t->display.GetPrimary()->IsLost(), DD_OK);
    EXPECT_EQ(t->display.GetBack()->IsLost(), DD_OK);
    for (std::int32_t state : {StateMenu, StatePaused, StateDesign}) { // only a game in play is paused
        t->SetGameState(state);
        t->OnActivate(true);
        EXPECT_EQ(t->GetGameState(), state);
    }
}

TEST_F(ActivationTest, ALostFlipIsRestoredOnceWithinTheFrame)
{
    struct Access : CGameApp {
        using CGameApp::OnIdle;
    };
    SDL_Event reset{};
    reset.type = SDL_RENDER_TARGETS_RESET; // the renderer lost what it drew on
    SDL_PushEvent(&reset);
    static_cast<CPlatformApp&>(*t).PumpMessages();
    EXPECT_EQ(t->display.GetPrimary()->IsLost(), DDERR_SURFACELOST);
    t.clock.Advance(16);
    EXPECT_TRUE(static_cast<Access&>(*t).OnIdle(0));
    EXPECT_EQ(Names(), 2u);
    EXPECT_EQ(t->display.GetPrimary()->IsLost(), DD_OK);
    t.clock.Advance(16);
    EXPECT_TRUE(static_cast<Access&>(*t).OnIdle(0));
    EXPECT_EQ(Names(), 2u);
}

} // namespace
