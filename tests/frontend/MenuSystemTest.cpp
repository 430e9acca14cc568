#include "app/GameWnd.h"
#include "frontend/MenuSystem.h"
#include "support/BitmapFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using qvtest::TestApp;

class MenuSystemTest : public ::testing::Test {
protected:
    CMenuSystem& Menus() { return t->menus; }
    void Press(UINT key) { Menus().OnKey(key, true); }
    void PressTimes(UINT key, int times)
    {
        for (int i = 0; i < times; ++i)
            Press(key);
    }
    std::string Selected() { return Menus().GetCurrentPage().GetSelectedItem().label; }

    TestApp t;
};

TEST_F(MenuSystemTest, TheMainMenuSelectionWrapsBothWays)
{
    EXPECT_EQ(Selected(), "New Game");
    Press(VK_UP);
    EXPECT_EQ(Selected(), "Exit Game");
    Press(VK_DOWN);
    EXPECT_EQ(Selected(), "New Game");
    PressTimes(VK_DOWN, 4);
    EXPECT_EQ(Selected(), "High Scores");
    Menus().OnKey(0x100 | VK_DOWN, true); // only the key's low byte counts
    EXPECT_EQ(Selected(), "Exit Game");
    Menus().OnKey(VK_DOWN, false); // key-ups do nothing
    EXPECT_EQ(Selected(), "Exit Game");
}

TEST_F(MenuSystemTest, EntriesOpenTheirScreensAndEscapeComesBack)
{
    const std::vector<std::pair<int, std::int32_t>> screens{{1, ScreenHelp}, {2, ScreenAbout}, {3, ScreenOptions},
                                                            {4, ScreenHighScores}};
    for (const auto& [downs, screen] : screens) {
        PressTimes(VK_DOWN, downs);
        Press(VK_SPACE);
        EXPECT_EQ(Menus().GetScreen(), screen);
        Menus().OnKey(VK_ESCAPE, false);
        EXPECT_EQ(Menus().GetScreen(), screen);
        Press(VK_ESCAPE);
        EXPECT_EQ(Menus().GetScreen(), ScreenMainMenu);
        PressTimes(VK_UP, downs);
    }
    Press(VK_ESCAPE); // nothing to resume and nowhere to go back to
    EXPECT_EQ(Menus().GetScreen(), ScreenMainMenu);
    EXPECT_EQ(t->GetGameState(), StateMenu);
    EXPECT_EQ(Selected(), "New Game");
}

TEST_F(MenuSystemTest, OptionsStayInTheirBounds)
{
    Menus().DoAction(ActionShowOptions);
    Press(VK_UP); // the cursor does not wrap
    Press(VK_LEFT);
    EXPECT_EQ(Menus().GetStartLevel(), 1);
    PressTimes(VK_RIGHT, 12);
    EXPECT_EQ(Menus().GetStartLevel(), 10);

    Press(VK_DOWN);
    PressTimes(VK_RIGHT, 3); // a switch flips either way
    Press(VK_LEFT);
    Menus().OnKey(VK_RIGHT, false);
    EXPECT_TRUE(Menus().IsMusicOn());
    PressTimes(VK_DOWN, 5);
    Press(VK_LEFT);
    EXPECT_FALSE(Menus().IsStatsOn());
    EXPECT_EQ(Menus().GetStartLevel(), 10);

    // Side arrows do nothing elsewhere, and the cursor is where it was next time.
    Press(VK_ESCAPE);
    Press(VK_RIGHT);
    EXPECT_FALSE(Menus().IsStatsOn());
    Menus().DoAction(ActionShowOptions);
    EXPECT_EQ(Menus().GetOptionsCursor(), 4);
}

TEST(MenuOptionsFromTheFile, AStartLevelOutOfRangeStandsUntilTheArrowsBringItBack)
{
    qvtest::ScopedWorkDir dir;
    std::ofstream(CMenuSystem::SettingsFile) << "Start Level = 25\r\n";
    auto app = std::make_unique<CGameApp>();
    CMenuSystem& menus = app->menus;
    EXPECT_EQ(menus.GetStartLevel(), 25);
    menus.DoAction(ActionShowOptions);
    menus.OnKey(VK_RIGHT, true);
    EXPECT_EQ(menus.GetStartLevel(), 25);
    menus.OnKey(VK_LEFT, true);
    EXPECT_EQ(menus.GetStartLevel(), 24);
    menus.OnKey(VK_RIGHT, true);
    EXPECT_EQ(menus.GetStartLevel(), 24);
}

TEST_F(MenuSystemTest, EscapeOnTheMainMenuResumesAPausedGame)
{
    Press(VK_RETURN); // "New Game"
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    t->OnKey(VK_ESCAPE, true);
    ASSERT_EQ(t->GetGameState(), StatePaused);

    Menus().DoAction(ActionShowHelp);
    Press(VK_ESCAPE); // first back to the main menu
    EXPECT_EQ(t->GetGameState(), StatePaused);
    EXPECT_EQ(Menus().GetScreen(), ScreenMainMenu);
    Press(VK_ESCAPE);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    EXPECT_FALSE(t->world.IsPaused());
}

TEST_F(MenuSystemTest, AFinishedGameTakesItsNameBeforeAnyMenuKey)
{
    Menus().AddHighScore(300);
    EXPECT_EQ(Menus().GetScreen(), ScreenHighScores);
    for (UINT key : {UINT('J'), UINT('O'), VK_DOWN, VK_SPACE, UINT('3'), VK_BACK})
        Press(key);
    EXPECT_EQ(Menus().GetHighScores().GetName(0), "JO ");
    EXPECT_EQ(Selected(), "New Game"); // the arrow went to the name, not the menu
    EXPECT_EQ(t->GetGameState(), StateMenu);
    Press(VK_ESCAPE);
    EXPECT_FALSE(Menus().GetHighScores().IsEditing());
    EXPECT_EQ(Menus().GetScreen(), ScreenHighScores); // Escape ended the name only

    // A score that makes no entry still shows the table.
    Press(VK_ESCAPE);
    Menus().AddHighScore(0);
    EXPECT_EQ(Menus().GetScreen(), ScreenHighScores);
    EXPECT_FALSE(Menus().GetHighScores().IsEditing());

    // Enter here repeats the selected main-menu entry, which starts a game at once.
    Press(VK_RETURN);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    t->GameOver();
    EXPECT_EQ(Menus().GetScreen(), ScreenHighScores);
}

TEST_F(MenuSystemTest, ExitGameClosesTheMainWindow)
{
    Menus().DoAction(ActionExitGame); // no window yet: nothing happens
    Platform::StartSdl();
    qvtest::WriteBlankArt();
    ASSERT_TRUE(t->InitInstance());
    Press(VK_UP);
    ASSERT_EQ(Selected(), "Exit Game");
    Press(VK_RETURN);
    EXPECT_FALSE(static_cast<CPlatformApp&>(*t).PumpMessages());
    EXPECT_EQ(t->GetMainWindowHandle(), nullptr);
}

} // namespace
