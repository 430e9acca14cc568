// The menus, the high-score table and the settings file they are kept in.
#include "app/GameWnd.h"
#include "frontend/HighScoreTable.h"
#include "frontend/MenuSystem.h"
#include "platform/Console.h"
#include "platform/FileStore.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const std::string DefaultOptionLines =
    "Start Level = 1\r\nMusic = On\r\nSound FX = On\r\nBackground Stars = On\r\nShip/Turrent Stats = On\r\n";

std::string EmptyLines(int n)
{
    std::string lines;
    while (n-- > 0)
        lines += "\r\n";
    return lines;
}

void WriteSettings(const std::string& text) { std::ofstream(CMenuSystem::SettingsFile, std::ios::binary) << text; }

std::string Read(const char* file = CMenuSystem::SettingsFile)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Each entry as "name|score".
std::vector<std::string> Table(const CHighScoreTable& table)
{
    std::vector<std::string> entries;
    for (int i = 0; i < CHighScoreTable::Size; ++i)
        entries.push_back(table.GetName(i) + "|" + std::to_string(table.GetScore(i)));
    return entries;
}

const std::vector<std::string> EmptyTable(10, "|0");
const std::string AnnsTable = "High Scores\r\nANN = 5200\r\n" + EmptyLines(9);

TEST(HighScoreInsertion, TiesGoBelowTheLastEntryDropsOutAndZeroNeverEnters)
{
    const std::vector<std::int32_t> full{90, 80, 70, 60, 50, 40, 30, 20, 10, 5};
    const struct {
        std::vector<std::int32_t> scores;
        std::int32_t score;
        int at; // where it entered, nameless, pushing the rest down; -1: not at all
    } cases[] = {
        {{900, 500, 500, 100, 9, 8, 7, 6, 5, 4}, 500, 3}, {full, 5, -1}, {full, 6, 9}, {{}, 0, -1}, {{}, 1, 0},
    };
    for (const auto& c : cases) {
        CHighScoreTable table;
        for (std::size_t i = 0; i < c.scores.size(); ++i)
            table.SetEntry(static_cast<int>(i), "P" + std::to_string(i), c.scores[i]);
        std::vector<std::string> after = Table(table);
        if (c.at >= 0) {
            after.insert(after.begin() + c.at, "|" + std::to_string(c.score));
            after.pop_back();
        }
        EXPECT_EQ(table.Insert(c.score), c.at >= 0) << c.score;
        EXPECT_EQ(table.GetEditIndex(), c.at >= 0 ? c.at : CHighScoreTable::NotEditing) << c.score;
        EXPECT_EQ(table.IsEditing(), c.at >= 0) << c.score;
        EXPECT_EQ(Table(table), after) << c.score;
    }
}

class MenuSystemTest : public ::testing::Test {
protected:
    CMenuSystem& Menus() { return t->menus; }
    void Press(UINT key, int times = 1)
    {
        while (times-- > 0)
            Menus().OnKey(key, true);
    }
    std::string Selected() { return Menus().GetCurrentPage().GetSelectedItem().label; }

    qvtest::TestApp t;
};

// The main menu's selection wraps both ways; the options stay in their bounds.
TEST_F(MenuSystemTest, TheMainMenuWrapsAndTheOptionsStayInTheirBounds)
{
    Press(VK_UP);
    EXPECT_EQ(Selected(), "Exit Game");
    Press(VK_DOWN);
    EXPECT_EQ(Selected(), "New Game");
    Press(VK_DOWN, 4);
    Menus().OnKey(0x100 | VK_DOWN, true); // only the key's low byte counts
    Menus().OnKey(VK_DOWN, false);        // key-ups do nothing
    EXPECT_EQ(Selected(), "Exit Game");

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

// A finished game's name takes letters, digits and blanks up to thirty
// characters, before any menu key: arrows and other keys type nothing, nor
// do key-ups.
TEST_F(MenuSystemTest, AFinishedGameTakesItsNameBeforeAnyMenuKey)
{
    Menus().AddHighScore(300);
    for (UINT key : {UINT('J'), UINT('O'), VK_DOWN, VK_SPACE, UINT('3'), VK_LEFT, UINT('.'), 0xC0u, 0u})
        Press(key);
    Menus().OnKey('B', false);
    auto name = [&] { return Menus().GetHighScores().GetName(0); };
    EXPECT_EQ(name(), "JO 3");
    EXPECT_EQ(Selected(), "New Game"); // the arrow went to the name, not the menu
    Press(VK_BACK, 5); // one more than there is
    EXPECT_EQ(name(), "");
    for (int i = 0; i < 31; ++i)
        Press(static_cast<UINT>('A' + i % 26));
    EXPECT_EQ(name(), "ABCDEFGHIJKLMNOPQRSTUVWXYZABCD");
    Press(VK_ESCAPE);
    EXPECT_FALSE(Menus().GetHighScores().IsEditing());
    EXPECT_EQ(Menus().GetScreen(), ScreenHighScores); // Escape ended the name only

    // Enter here repeats the selected main-menu entry, which starts a game at once.
    Press(VK_RETURN);
    EXPECT_EQ(t->GetGameState(), StatePlaying);
    t->GameOver();
    EXPECT_EQ(Menus().GetScreen(), ScreenHighScores); // a score that makes no entry still shows the table
}

class SettingsFileTest : public ::testing::Test {
protected:
    qvtest::ScopedWorkDir dir;
};

// Option lines are found by name in any order, among comments and bare line
// feeds, and only a capital "On" counts; the table needs all ten lines after
// its header, and they are entries whatever they hold.
TEST_F(SettingsFileTest, OptionLinesAreFoundByNameAndTheTableNeedsAllTenLines)
{
    const struct {
        std::string text;
        const char* switches; // music, sound, stars, stats
        std::int32_t startLevel;
        std::vector<std::string> table;
    } cases[] = {
        {"Music = Off", "0111", 1, EmptyTable},
        {"! Music = On\n\nSound FX = on\nmy Background Stars\nStart Level =  -7x\nMusic = Off\n"
         "Start Level\nShip/Turrent Stats = Onward\nStart Level = 99999999999",
         "0001", 2147483647, EmptyTable},
        {DefaultOptionLines + "High Scores\r\nANN = 5\r\n" + EmptyLines(8), "1111", 1, EmptyTable},
        {"High Scores\r\nBob=120\r\nMusic = Off\r\nBob = 120\r\n\r\n! x = 4\r\nStart Level = 9\r\n"
         "=7\r\n\r\n\r\nEVE = -30\r\nSound FX = Off\r\n",
         "1011", 1, {"Bob|120", "Music |0", "Bob |120", "|0", "! x |4", "Start Level |9", "|7", "|0", "|0", "EVE |-30"}},
    };
    for (const auto& c : cases) {
        WriteSettings(c.text);
        CMenuSystem menus;
        const std::string switches{char('0' + menus.IsMusicOn()), char('0' + menus.IsSoundOn()),
                                   char('0' + menus.IsStarsOn()), char('0' + menus.IsStatsOn())};
        EXPECT_EQ(switches, c.switches) << c.text;
        EXPECT_EQ(menus.GetStartLevel(), c.startLevel) << c.text;
        EXPECT_EQ(Table(menus.GetHighScores()), c.table) << c.text;
    }
}

// A start level beyond the options' range, as the file gave it, stands until
// the arrows bring it back.
TEST_F(SettingsFileTest, AStartLevelOutOfRangeStandsUntilTheArrowsBringItBack)
{
    WriteSettings("Start Level = 25\r\n");
    const auto app = std::make_unique<CGameApp>();
    CMenuSystem& menus = app->menus;
    menus.DoAction(ActionShowOptions);
    menus.OnKey(VK_RIGHT, true);
    EXPECT_EQ(menus.GetStartLevel(), 25);
    menus.OnKey(VK_LEFT, true);
    menus.OnKey(VK_RIGHT, true);
    EXPECT_EQ(menus.GetStartLevel(), 24);
}

TEST_F(SettingsFileTest, AMissingFileIsCreatedEmptyAndWrittenWholeAtTheEnd)
{
    {
        CMenuSystem menus;
        EXPECT_EQ(fs::file_size(CMenuSystem::SettingsFile), 0u);
        menus.AddHighScore(5200);
        for (char key : std::string("ANN\r"))
            menus.OnKey(static_cast<UINT>(key), true);
        menus.AddHighScore(40); // left without a name
        menus.OnKey(VK_ESCAPE, true);
        menus.SetOptionOn(OptionMusic, false);
    }
    std::string expected = DefaultOptionLines + AnnsTable;
    expected.replace(expected.find("Music = On"), 10, "Music = Off");
    EXPECT_EQ(Read(), expected);
    // The blank before "=" stays in memory; the nameless score is gone.
    EXPECT_EQ(Table(CMenuSystem().GetHighScores())[0], "ANN |5200");
    EXPECT_EQ(Read(), expected);
}

TEST_F(SettingsFileTest, ASaveThatFailsMidwayLeavesTheOldFile)
{
    const std::string old = DefaultOptionLines + AnnsTable;
    WriteSettings(old);
    // Writes half of what it is given, then reports a full disk.
    Platform::SetFileWriteHandler([](int fd, const void* data, std::size_t size) -> long {
        if (::write(fd, data, size / 2) >= 0)
            errno = ENOSPC;
        return -1;
    });
    std::vector<std::string> said;
    Platform::SetErrorLineHandler([&](const std::string& line) { said.push_back(line); });
    CMenuSystem().SetOptionOn(OptionMusic, false);
    Platform::SetFileWriteHandler(nullptr);
    Platform::SetErrorLineHandler(nullptr);
    EXPECT_EQ(Read(), old);
    EXPECT_EQ(said, std::vector<std::string>{"options and high scores not saved to " + CMenuSystem::SettingsPath() +
                                             ": the disk is full (free some space)"});
    EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 1); // no half-written leftovers
}

// A save never drops what the player wrote without a copy: the file as it was
// stays beside it when the game did not take all of it, or when another
// program changed it while the game ran.
TEST_F(SettingsFileTest, WhatASaveWouldDropIsKeptInACopy)
{
    const struct {
        const char* what;
        std::string before;     // the file when the game starts
        std::string meanwhile;  // what another program writes while it runs, if anything
        bool copied;
    } cases[] = {
        {"the game's own file", DefaultOptionLines + AnnsTable, "", false},
        {"line feeds alone", "Music = On\nHigh Scores\nANN = 5200\n" + std::string(9, '\n'), "", false},
        {"a comment", "! my settings\r\n" + DefaultOptionLines + AnnsTable, "", true},
        {"a table of nine lines", DefaultOptionLines + "High Scores\r\nANN = 5200\r\n" + EmptyLines(7), "", true},
        {"changed meanwhile", DefaultOptionLines + AnnsTable, "Music = Off\r\n" + AnnsTable, true},
    };
    for (const auto& c : cases) {
        fs::remove("quelvarion.ini.bak");
        WriteSettings(c.before);
        std::vector<std::string> said;
        Platform::SetErrorLineHandler([&](const std::string& line) { said.push_back(line); });
        {
            CMenuSystem menus;
            if (!c.meanwhile.empty()) {
                fs::remove(CMenuSystem::SettingsFile); // replaced whole, as editors do
                WriteSettings(c.meanwhile);
            }
        }
        Platform::SetErrorLineHandler(nullptr);
        EXPECT_EQ(fs::exists("quelvarion.ini.bak"), c.copied) << c.what;
        EXPECT_EQ(said.size(), c.copied ? 1u : 0u) << c.what;
        if (c.copied) {
            EXPECT_EQ(Read("quelvarion.ini.bak"), c.meanwhile.empty() ? c.before : c.meanwhile) << c.what;
        }
    }
}

} // namespace
