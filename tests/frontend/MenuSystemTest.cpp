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

TEST(HighScoreInsertion, TiesGoBelowTheLastEntryDropsOutAndZeroNeverEnters)
{
    const std::vector<std::int32_t> full{90, 80, 70, 60, 50, 40, 30, 20, 10, 5};
    const struct {
        std::vector<std::int32_t> scores;
        std::int32_t score;
        int at; // where it entered; -1: not at all, and the table is as it was
        std::vector<std::string> after;
    } cases[] = {
        {{900, 500, 500, 100, 9, 8, 7, 6, 5, 4}, 500, 3,
         {"P0|900", "P1|500", "P2|500", "|500", "P3|100", "P4|9", "P5|8", "P6|7", "P7|6", "P8|5"}},
        {full, 5, -1, {}}, // equal to the last
        {full, 6, 9, {"P0|90", "P1|80", "P2|70", "P3|60", "P4|50", "P5|40", "P6|30", "P7|20", "P8|10", "|6"}},
        {{}, 0, -1, {}},
        {{}, 1, 0, {"|1", "|0", "|0", "|0", "|0", "|0", "|0", "|0", "|0", "|0"}},
    };
    for (const auto& c : cases) {
        CHighScoreTable table;
        for (std::size_t i = 0; i < c.scores.size(); ++i)
            table.SetEntry(static_cast<int>(i), "P" + std::to_string(i), c.scores[i]);
        const std::vector<std::string> before = Table(table);
        EXPECT_EQ(table.Insert(c.score), c.at >= 0) << c.score;
        EXPECT_EQ(table.GetEditIndex(), c.at >= 0 ? c.at : CHighScoreTable::NotEditing) << c.score;
        EXPECT_EQ(table.IsEditing(), c.at >= 0) << c.score;
        EXPECT_EQ(Table(table), c.at >= 0 ? c.after : before) << c.score;
    }
}

TEST(NameEntry, TypedKeysUpToThirtyCharacters)
{
    CHighScoreTable table;
    table.Insert(10);
    auto type = [&](std::initializer_list<UINT> keys, bool pressed = true) {
        for (UINT key : keys)
            table.EnterNameKey(static_cast<std::uint8_t>(key), pressed);
    };
    type({'A', VK_SPACE, '7', VK_LEFT, '.', 0xC0, 0});
    type({'B'}, false); // key-ups type nothing
    EXPECT_EQ(table.GetName(0), "A 7");
    type({VK_BACK, VK_BACK, VK_BACK, VK_BACK}); // one more than there is
    EXPECT_EQ(table.GetName(0), "");
    for (int i = 0; i < 31; ++i)
        type({static_cast<UINT>('A' + i % 26)});
    EXPECT_EQ(table.GetName(0), "ABCDEFGHIJKLMNOPQRSTUVWXYZABCD");
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

class SettingsFileTest : public ::testing::Test {
protected:
    qvtest::ScopedWorkDir dir;
};

TEST_F(SettingsFileTest, OptionLinesAreFoundByNameAndOnlyACapitalOnCounts)
{
    WriteSettings("Music = Off");
    {
        CMenuSystem menus;
        EXPECT_FALSE(menus.IsMusicOn());
        EXPECT_TRUE(menus.IsSoundOn() && menus.IsStarsOn() && menus.IsStatsOn());
        EXPECT_EQ(menus.GetStartLevel(), 1);
        EXPECT_EQ(Table(menus.GetHighScores()), EmptyTable);
    }
    // Any order, comments, bare line feeds, a last line without one.
    WriteSettings("! Music = On\n\nSound FX = on\nmy Background Stars\nStart Level =  -7x\nMusic = Off\n"
                  "Start Level\nShip/Turrent Stats = Onward\nStart Level = 99999999999");
    CMenuSystem menus;
    EXPECT_FALSE(menus.IsMusicOn());
    EXPECT_FALSE(menus.IsSoundOn());
    EXPECT_FALSE(menus.IsStarsOn());
    EXPECT_TRUE(menus.IsStatsOn());
    EXPECT_EQ(menus.GetStartLevel(), 2147483647);
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

TEST_F(SettingsFileTest, TheTableNeedsAllTenLinesAfterItsHeader)
{
    WriteSettings(DefaultOptionLines + "High Scores\r\nANN = 5\r\n" + EmptyLines(8));
    EXPECT_EQ(Table(CMenuSystem().GetHighScores()), EmptyTable);
    // The ten lines are entries whatever they hold; reading goes on after them.
    WriteSettings("High Scores\r\nBob=120\r\nMusic = Off\r\nBob = 120\r\n\r\n! x = 4\r\nStart Level = 9\r\n"
                  "=7\r\n\r\n\r\nEVE = -30\r\nSound FX = Off\r\n");
    CMenuSystem menus;
    EXPECT_EQ(Table(menus.GetHighScores()), (std::vector<std::string>{"Bob|120", "Music |0", "Bob |120", "|0", "! x |4",
                                                                      "Start Level |9", "|7", "|0", "|0", "EVE |-30"}));
    EXPECT_TRUE(menus.IsMusicOn());
    EXPECT_EQ(menus.GetStartLevel(), 1);
    EXPECT_FALSE(menus.IsSoundOn());
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
    const std::string expected = "Start Level = 1\r\nMusic = Off\r\nSound FX = On\r\nBackground Stars = On\r\n"
                                 "Ship/Turrent Stats = On\r\nHigh Scores\r\nANN = 5200\r\n" + EmptyLines(9);
    EXPECT_EQ(Read(), expected);
    // The blank before "=" stays in memory; the nameless score is gone.
    EXPECT_EQ(Table(CMenuSystem().GetHighScores())[0], "ANN |5200");
    EXPECT_EQ(Table(CMenuSystem().GetHighScores())[1], "|0");
    EXPECT_EQ(Read(), expected);
}

TEST_F(SettingsFileTest, ASaveThatFailsMidwayLeavesTheOldFile)
{
    const std::string old = DefaultOptionLines + "High Scores\r\nANN = 5200\r\n" + EmptyLines(9);
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
    const std::string table = "High Scores\r\nANN = 5200\r\n" + EmptyLines(9);
    const struct {
        const char* what;
        std::string before;     // the file when the game starts
        std::string meanwhile;  // what another program writes while it runs, if anything
        bool copied;
    } cases[] = {
        {"the game's own file", DefaultOptionLines + table, "", false},
        {"line feeds alone", "Music = On\nHigh Scores\nANN = 5200\n" + std::string(9, '\n'), "", false},
        {"a comment", "! my settings\r\n" + DefaultOptionLines + table, "", true},
        {"a table of nine lines", DefaultOptionLines + "High Scores\r\nANN = 5200\r\n" + EmptyLines(7), "", true},
        {"changed meanwhile", DefaultOptionLines + table, "Music = Off\r\n" + table, true},
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
