#include "app/GameWnd.h"
#include "frontend/MenuSystem.h"
#include "support/DisplayApp.h"
#include "support/TestApp.h"
#include "support/TextLog.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace qvtest;

class MenuSystemTest : public ::testing::Test {
protected:
    CMenuSystem& Menus() { return t->menus; }
    void Press(UINT key, int times = 1)
    {
        for (int i = 0; i < times; ++i)
            Menus().OnKey(key, true);
    }
    std::string Selected() { return Menus().GetCurrentPage().GetSelectedItem().label; }

    TestApp t;
};

TEST_F(MenuSystemTest, TheMainMenuSelectionWrapsBothWays)
{
    Press(VK_UP);
    EXPECT_EQ(Selected(), "Exit Game");
    Press(VK_DOWN);
    EXPECT_EQ(Selected(), "New Game");
    Press(VK_DOWN, 4);
    Menus().OnKey(0x100 | VK_DOWN, true); // only the key's low byte counts
    Menus().OnKey(VK_DOWN, false);        // key-ups do nothing
    EXPECT_EQ(Selected(), "Exit Game");
}

TEST_F(MenuSystemTest, OptionsStayInTheirBounds)
{
    Menus().DoAction(ActionShowOptions);
    Press(VK_UP); // the cursor does not wrap
    Press(VK_LEFT);
    EXPECT_EQ(Menus().GetStartLevel(), 1);
    Press(VK_RIGHT, 12);
    EXPECT_EQ(Menus().GetStartLevel(), 10);

    Press(VK_DOWN);
    Press(VK_RIGHT, 3); // a switch flips either way
    Press(VK_LEFT);
    EXPECT_TRUE(Menus().IsMusicOn());
    Press(VK_DOWN, 5);
    Press(VK_LEFT);
    EXPECT_FALSE(Menus().IsStatsOn());

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
    menus.DoAction(ActionShowOptions);
    menus.OnKey(VK_RIGHT, true);
    EXPECT_EQ(menus.GetStartLevel(), 25);
    menus.OnKey(VK_LEFT, true);
    menus.OnKey(VK_RIGHT, true);
    EXPECT_EQ(menus.GetStartLevel(), 24);
}

TEST_F(MenuSystemTest, AFinishedGameTakesItsNameBeforeAnyMenuKey)
{
    Menus().AddHighScore(300);
    for (UINT key : {UINT('J'), UINT('O'), VK_DOWN, VK_SPACE, UINT('3'), VK_BACK})
        Press(key);
    EXPECT_EQ(Menus().GetHighScores().GetName(0), "JO ");
    EXPECT_EQ(Selected(), "New Game"); // the arrow went to the name, not the menu
    Press(VK_ESCAPE);
    EXPECT_FALSE(Menus().GetHighScores().IsEditing());
    EXPECT_EQ(Menus().GetScreen(), ScreenHighScores); // Escape ended the name only

    // Enter here repeats the selected main-menu entry, which starts a game at once.
    Press(VK_RETURN);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    t->GameOver();
    EXPECT_EQ(Menus().GetScreen(), ScreenHighScores); // a score that makes no entry still shows the table
}

// "x,y" of a text, " lit" when highlighted, or "absent".
std::string Written(const TextLog& log, const std::string& text)
{
    const WrittenText* w = log.Find(text);
    if (!w)
        return "absent";
    return std::to_string(w->x) + "," + std::to_string(w->y) + (w->colour == RGB(250, 250, 100) ? " lit" : "");
}

TEST(MenuScreens, OptionValuesAndTheScoresAskForANameWhileOneIsTyped)
{
    DisplayApp d;
    ASSERT_TRUE(d.Start());
    TextLog log;
    CMenuSystem& menus = d->menus;
    auto draw = [&] {
        log.texts.clear();
        ScopedDC dc(d.Back());
        menus.DrawScreen(*dc.dc);
    };
    menus.DoAction(ActionShowOptions);
    menus.OnKey(VK_DOWN, true);
    menus.OnKey(VK_RIGHT, true); // music off
    draw();
    EXPECT_EQ(Written(log, "1"), "768,180");
    EXPECT_EQ(Written(log, "Off"), "768,230 lit");
    EXPECT_EQ(Written(log, "Ship/Turrent Stats"), "256,380");

    const std::string entering = "Enter your name then press enter or escape.";
    menus.OnKey(VK_ESCAPE, true);
    menus.AddHighScore(300);
    draw();
    EXPECT_EQ(log.At(240), std::vector<std::string>{"300"}); // the empty name shows nothing
    EXPECT_EQ(Written(log, entering), "50,728");
    for (UINT key : {UINT('A'), UINT('B'), VK_RETURN})
        menus.OnKey(key, true);
    draw();
    EXPECT_EQ(Written(log, "AB"), "362,240");
    EXPECT_EQ(Written(log, "300"), "662,240");
    EXPECT_EQ(Written(log, entering), "absent");
    EXPECT_EQ(Written(log, "Press escape to return to the main menu."), "50,728");
}

} // namespace
