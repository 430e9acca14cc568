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
    for (int i = 0; i < n; ++i)
        lines += "\r\n";
    return lines;
}

void WriteSettings(const std::string& text)
{
    std::ofstream(CMenuSystem::SettingsFile, std::ios::binary) << text;
}

std::string ReadSettings()
{
    std::ifstream file(CMenuSystem::SettingsFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Table(const CMenuSystem& menus)
{
    std::vector<std::string> entries;
    for (int i = 0; i < CHighScoreTable::Size; ++i)
        entries.push_back(menus.GetHighScores().GetName(i) + "|" + std::to_string(menus.GetHighScores().GetScore(i)));
    return entries;
}

const std::vector<std::string> EmptyTable(10, "|0");

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
        EXPECT_EQ(Table(menus), EmptyTable);
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

TEST_F(SettingsFileTest, TheTableNeedsAllTenLinesAfterItsHeader)
{
    WriteSettings(DefaultOptionLines + "High Scores\r\nANN = 5\r\n" + EmptyLines(8));
    {
        CMenuSystem menus;
        EXPECT_EQ(Table(menus), EmptyTable);
    }
    // The ten lines are entries whatever they hold; reading goes on after them.
    WriteSettings("High Scores\r\nBob=120\r\nMusic = Off\r\nBob = 120\r\n\r\n! x = 4\r\nStart Level = 9\r\n"
                  "=7\r\n\r\n\r\nEVE = -30\r\nSound FX = Off\r\n");
    CMenuSystem menus;
    EXPECT_EQ(Table(menus), (std::vector<std::string>{"Bob|120", "Music |0", "Bob |120", "|0", "! x |4",
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
    EXPECT_EQ(ReadSettings(), expected);
    {
        CMenuSystem menus; // the blank before "=" stays in memory; the nameless score is gone
        EXPECT_EQ(Table(menus)[0], "ANN |5200");
        EXPECT_EQ(Table(menus)[1], "|0");
    }
    EXPECT_EQ(ReadSettings(), expected);
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
    {
        CMenuSystem menus;
        menus.SetOptionOn(OptionMusic, false);
    }
    Platform::SetFileWriteHandler(nullptr);
    Platform::SetErrorLineHandler(nullptr);
    EXPECT_EQ(ReadSettings(), old);
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
        const std::string kept = c.meanwhile.empty() ? c.before : c.meanwhile;
        EXPECT_EQ(fs::exists("quelvarion.ini.bak"), c.copied) << c.what;
        EXPECT_EQ(said.size(), c.copied ? 1u : 0u) << c.what;
        if (c.copied) {
            std::ifstream copy("quelvarion.ini.bak", std::ios::binary);
            EXPECT_EQ(std::string(std::istreambuf_iterator<char>(copy), {}), kept) << c.what;
        }
    }
}

} // namespace
