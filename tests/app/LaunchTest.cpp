#include "app/KeyBindings.h"
#include "app/Launch.h"
#include "platform/Keys.h"
#include "platform/UserDirs.h"
#include "support/AudioFiles.h"
#include "support/BitmapFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>

namespace {

namespace fs = std::filesystem;
using Platform::WindowMode;
using qvtest::ScopedEnv;

TEST(LaunchCommandLine, EachOptionAndEachMistake)
{
    constexpr LaunchAction Play = LaunchAction::Play, Bad = LaunchAction::BadUsage;
    struct Case {
        std::vector<std::string> args;
        LaunchAction action;
        bool trace = false;
        std::optional<WindowMode> mode = {};
        std::string record = {};
    };
    const Case cases[] = {
        {{}, Play},
        {{"--trace", "--windowed"}, Play, true, WindowMode::Windowed},
        {{"--fullscreen"}, Play, false, WindowMode::FullScreen},
        {{"--windowed", "--help"}, LaunchAction::ShowHelp, false, WindowMode::Windowed},
        {{"--version", "--help"}, LaunchAction::ShowHelp},
        {{"--version"}, LaunchAction::ShowVersion},
        {{"-h"}, Bad},
        {{"--windowed", "--fullscreen"}, Bad},
        {{"--trace=1"}, Bad},
        {{"quelvarion.ini"}, Bad},
        {{"--scale=sharp", "--windowed"}, Play, false, WindowMode::Windowed},
        {{"--scale=huge"}, Bad},
        // A value follows its option or an equals sign, whatever it looks like.
        {{"--record", "a.qvr", "--trace"}, Play, true, {}, "a.qvr"},
        {{"--record=--trace"}, Play, false, {}, "--trace"},
        {{"--trace", "--record"}, Bad},
        {{"--replay", "a.qvr", "--from", "12.5", "--level", "3"}, LaunchAction::WatchReplay},
        {{"--from", "12"}, Bad},
        {{"--replay", "a.qvr", "--from", "-1"}, Bad},
        {{"--replay", "a.qvr", "--from", "nan"}, Bad},
        {{"--replay", "a.qvr", "--level", "0"}, Bad},
        {{"--replay", "a.qvr", "--level", "2x"}, Bad},
    };
    for (const Case& c : cases) {
        const LaunchRequest request = CLaunch::ReadCommandLine(c.args);
        const auto row = &c - cases;
        EXPECT_EQ(request.action, c.action) << row;
        EXPECT_EQ(request.error.empty(), c.action != Bad) << row;
        if (c.action != Bad) {
            EXPECT_EQ(request.trace, c.trace) << row;
            EXPECT_EQ(request.windowMode, c.mode) << row;
            EXPECT_EQ(request.recordFile, c.record) << row;
        }
    }
    EXPECT_EQ(CLaunch::ReadCommandLine({"--trace", "--record"}).error, "option '--record' needs a FILE");
    EXPECT_EQ(CLaunch::ReadCommandLine({"--scale", "integer"}).scaleMode, ScaleMode::Integer);
    const LaunchRequest later = CLaunch::ReadCommandLine({"--replay", "a.qvr", "--from=90", "--level=4"});
    EXPECT_EQ(later.fromSeconds, 90.0);
    EXPECT_EQ(later.fromLevel, 4);
}

// A comfort changed rewrites its own line and nothing else: what the player
// wrote by hand, and what a newer game wrote, stay.
TEST(Comforts, ChangesTouchOnlyTheirOwnLine)
{
    CComforts comforts;
    comforts.Parse("# my comforts\n  scale =  integer \nvolume-music = 7\nscale=sharp\nnot a setting\n\n");
    EXPECT_EQ(comforts.Get("scale"), "sharp"); // the last word counts
    EXPECT_EQ(comforts.Get("volume-music"), "7");
    EXPECT_EQ(comforts.Get("missing"), "");
    EXPECT_EQ(comforts.Problems(), std::vector<std::string>{"line 5: \"not a setting\" is not name = value"});
    comforts.Set("scale", "smooth");
    comforts.Set("screenshots", "on");
    EXPECT_EQ(comforts.Text(), "# my comforts\nscale = integer\nvolume-music = 7\nscale = smooth\nnot a setting\n\n"
                               "screenshots = on\n");
}

// Each key line binds all its keys or, with a word why, none; the other
// lines stand. Letters a laser gets when fitted, and the game's own keys,
// are never another key's.
TEST(KeyBindings, LinesBindTheirKeysOrAreLeftOutWhole)
{
    struct Case {
        const char* text;
        std::map<std::string, UINT> bound; // key name -> the game's key it sends
        std::vector<std::string> problems;
    };
    const Case cases[] = {
        {"key-up = W, Keypad 8\nkey-left = q\nkey-escape = P", {{"W", VK_UP}, {"Keypad 8", VK_UP}, {"Q", VK_LEFT}, {"P", VK_ESCAPE}}, {}},
        {"key-up = Up, I", {{"I", VK_UP}, {"Up", 0}}, {}}, // the key itself needs no binding
        {"key-up = I, Nosuchkey\nkey-down = K",
         {{"I", 0}, {"K", VK_DOWN}},
         {"key-up: no key is called \"Nosuchkey\"; the line is left out"}},
        {"key-left = J, A\nkey-right = L", {{"J", 0}, {"L", VK_RIGHT}}, {"key-left: A is a key a laser fires on; the line is left out"}},
        {"key-up = I\nkey-down = I, K", {{"I", VK_UP}, {"K", 0}}, {"key-down: I is taken already; the line is left out"}},
        {"key-enter = Escape", {{"Escape", 0}}, {"key-enter: Escape is taken already; the line is left out"}},
        {"key-space = ,", {}, {"key-space: no key is called \"\"; the line is left out"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        CComforts comforts;
        comforts.Parse(c.text);
        CKeyBindings bindings;
        bindings.Load(comforts);
        for (const auto& [name, key] : c.bound)
            EXPECT_EQ(bindings.BoundTo(Platform::KeyCodeNamed(name)), key) << name;
        EXPECT_EQ(bindings.Problems(), c.problems);
    }
}

TEST(LaunchFolder, GameDataIsTheCatalogueOrTheArtFolder)
{
    qvtest::ScopedWorkDir dir;
    EXPECT_FALSE(CLaunch::HoldsGameData("."));
    fs::create_directory("sprite.ini"); // a folder of that name is no catalogue
    EXPECT_FALSE(CLaunch::HoldsGameData("."));
    fs::create_directory("art");
    EXPECT_TRUE(CLaunch::HoldsGameData("."));
    qvtest::WriteFile("other/sprite.ini", std::string("ship1 8 8\n"));
    EXPECT_TRUE(CLaunch::HoldsGameData("other"));
}

// The configuration folder is XDG_CONFIG_HOME when that is absolute, else
// HOME's .config, else the user database's home's; the window mode is kept
// under it and read back.
TEST(LaunchWindowMode, KeptUnderTheXdgConfigurationFolderAndReadBack)
{
    qvtest::ScopedWorkDir dir;
    const std::string home = dir.Path().string();
    {
        ScopedEnv config("XDG_CONFIG_HOME", ""), homeVar("HOME", "ann"); // not absolute
        const std::string found = Platform::ConfigHome();
        EXPECT_TRUE(found.empty() || (found.front() == '/' && found.ends_with("/.config"))) << found;
    }
    ScopedEnv homeVar("HOME", home);
    for (const char* ignored : {"", "relative/config"}) {
        ScopedEnv config("XDG_CONFIG_HOME", ignored);
        EXPECT_EQ(CLaunch::WindowModePath(), home + "/.config/quelvarion/window-mode") << ignored;
    }
    ScopedEnv config("XDG_CONFIG_HOME", home + "/cfg");
    const std::string path = CLaunch::WindowModePath();
    EXPECT_EQ(path, home + "/cfg/quelvarion/window-mode");
    EXPECT_EQ(CLaunch::ReadWindowMode(path), std::nullopt);
    EXPECT_FALSE(fs::exists(path)); // reading makes nothing

    CLaunch::RememberWindowMode(path, WindowMode::Windowed);
    EXPECT_EQ(CLaunch::ReadWindowMode(path), WindowMode::Windowed);
    EXPECT_EQ(fs::status(home + "/cfg/quelvarion").permissions(), fs::perms::owner_all);
    CLaunch::RememberWindowMode(path, WindowMode::FullScreen);
    EXPECT_EQ(CLaunch::ReadWindowMode(path), WindowMode::FullScreen);
    qvtest::WriteFile(path, std::string("sideways\n"));
    EXPECT_EQ(CLaunch::ReadWindowMode(path), std::nullopt);
}

// The pictures folder as xdg-user-dirs writes it; the last word on it counts.
TEST(UserDirs, PicturesFolderFromUserDirsFile)
{
    const std::pair<const char*, const char*> cases[] = {
        {"# written by xdg-user-dirs-update\nXDG_PICTURES_DIR=\"$HOME/Bilder\"\n", "/home/ann/Bilder"},
        {"XDG_PICTURES_DIR=\"/srv/pics\"\nXDG_MUSIC_DIR=\"$HOME/Music\"", "/srv/pics"},
        {"XDG_PICTURES_DIR=\"$HOME/a\"\nXDG_PICTURES_DIR=\"$HOME/b\"", "/home/ann/b"},
        {"XDG_PICTURES_DIR=\"relative\"\nXDG_PICTURES_DIR=$HOME/unquoted\n", ""},
    };
    for (const auto& [text, folder] : cases)
        EXPECT_EQ(Platform::PicturesFolderIn(text, "/home/ann"), folder) << text;
    qvtest::ScopedWorkDir dir;
    ScopedEnv home("HOME", "/home/ann"), pictures("XDG_PICTURES_DIR", "");
    ::unsetenv("XDG_PICTURES_DIR"); // not even empty; put back as it was at the end
    ScopedEnv config("XDG_CONFIG_HOME", dir.Path().string()); // with no user-dirs.dirs in it
    EXPECT_EQ(Platform::PicturesFolder(), "/home/ann/Pictures");
}

} // namespace
