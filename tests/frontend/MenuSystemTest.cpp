#include "app/GameWnd.h"
#include "frontend/HighScoreTable.h"
#include "frontend/MenuSystem.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace qvtest;

CHighScoreTable TableOf(const std::vector<std::int32_t>& scores)
{
    CHighScoreTable table;
    for (std::size_t i = 0; i < scores.size(); ++i)
        table.SetEntry(static_cast<int>(i), "P" + std::to_string(i), scores[i]);
    return table;
}

std::string Entries(const CHighScoreTable& table)
{
    std::string entries;
    for (int i = 0; i < CHighScoreTable::Size; ++i)
        entries += table.GetName(i) + ":" + std::to_string(table.GetScore(i)) + " ";
    return entries;
}

void Type(CHighScoreTable& table, const std::vector<UINT>& keys, bool pressed = true)
{
    for (UINT key : keys)
        table.EnterNameKey(static_cast<std::uint8_t>(key), pressed);
}

TEST(HighScoreInsertion, TiesGoBelowTheLastEntryDropsOutAndZeroNeverEnters)
{
    CHighScoreTable table = TableOf({900, 500, 500, 100, 9, 8, 7, 6, 5, 4});
    ASSERT_TRUE(table.Insert(500));
    EXPECT_EQ(table.GetEditIndex(), 3);
    EXPECT_EQ(Entries(table), "P0:900 P1:500 P2:500 :500 P3:100 P4:9 P5:8 P6:7 P7:6 P8:5 ");

    CHighScoreTable tenth = TableOf({90, 80, 70, 60, 50, 40, 30, 20, 10, 5});
    EXPECT_FALSE(tenth.Insert(5)); // equal to the last: not entered
    EXPECT_FALSE(tenth.IsEditing());
    ASSERT_TRUE(tenth.Insert(6));
    EXPECT_EQ(tenth.GetEditIndex(), 9);
    EXPECT_EQ(Entries(tenth), "P0:90 P1:80 P2:70 P3:60 P4:50 P5:40 P6:30 P7:20 P8:10 :6 ");

    CHighScoreTable zeros;
    EXPECT_FALSE(zeros.Insert(0));
    ASSERT_TRUE(zeros.Insert(1));
    EXPECT_EQ(Entries(zeros), ":1 :0 :0 :0 :0 :0 :0 :0 :0 :0 ");
}

TEST(NameEntry, TypedKeysUpToThirtyCharacters)
{
    CHighScoreTable table;
    table.Insert(10);
    Type(table, {'A', VK_SPACE, '7', VK_LEFT, '.', 0xC0, 0});
    Type(table, {'B'}, false); // key-ups type nothing
    EXPECT_EQ(table.GetName(0), "A 7");
    Type(table, {VK_BACK, VK_BACK, VK_BACK, VK_BACK}); // one more than there is
    EXPECT_EQ(table.GetName(0), "");
    for (int i = 0; i < 31; ++i)
        Type(table, {static_cast<UINT>('A' + i % 26)});
    EXPECT_EQ(table.GetName(0), "ABCDEFGHIJKLMNOPQRSTUVWXYZABCD");
}

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
    Press(VK_ESCAPE); // the cursor is where it was next time
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

} // namespace
