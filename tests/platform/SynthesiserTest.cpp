// Which sound font the synthesiser plays with.
#include "platform/Synthesiser.h"
#include "support/AudioFiles.h"
#include "support/BitmapFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace qvtest;

TEST(Synthesiser, ThePlayersFontsComeFirstAndAFontThatWillNotLoadFallsBackToTheGames)
{
    const std::vector<std::string> defaults = CSynthesiser::FontCandidates(nullptr);
    ASSERT_FALSE(defaults.empty());
    EXPECT_EQ(defaults.front(), "background.sf2") << "the game's own, in its folder";
    std::vector<std::string> expected{"/one.sf2", "two.sf2", "three.sf2"};
    expected.insert(expected.end(), defaults.begin(), defaults.end());
    EXPECT_EQ(CSynthesiser::FontCandidates("/one.sf2:two.sf2;;three.sf2:"), expected);

    ScopedWorkDir dir;
    std::filesystem::copy_file(QV_GAME_DIR "/background.sf2", "background.sf2");
    std::filesystem::copy_file("background.sf2", "mine.sf2");
    WriteFile("broken.sf2", "RIFF, but no sound font");
    const struct {
        const char* playerList;
        std::vector<std::string> loaded;
    } cases[] = {
        {"missing.sf2:broken.sf2", {"background.sf2"}},
        {"broken.sf2:mine.sf2", {"mine.sf2"}},
        {"mine.sf2;background.sf2", {"mine.sf2", "background.sf2"}},
    };
    for (const auto& c : cases) {
        ScopedEnv fonts("SDL_SOUNDFONTS", c.playerList);
        const auto synthesiser = CSynthesiser::Create(44100);
        ASSERT_TRUE(synthesiser) << c.playerList;
        EXPECT_EQ(synthesiser->LoadedFonts(), c.loaded) << c.playerList;
    }
}

} // namespace
