#include "FuzzTargets.h"

#include "support/AudioFiles.h"
#include "support/DisplayApp.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using qvtest::AudioScope;
using Target = int (*)(const std::uint8_t*, std::size_t);

// Every input kept from fuzzing (crashes found and fixed, and seeds) is fed
// again on every test run, so an old fault cannot come back unnoticed. The
// targets abort on a broken rule, which fails the test.
void RunRegressions(const std::string& folder, Target target)
{
    const fs::path dir = fs::path(QV_SOURCE_DIR) / "fuzz" / "regressions" / folder;
    ASSERT_TRUE(fs::is_directory(dir)) << dir;
    const fs::path here = fs::current_path();
    int inputs = 0;
    for (const auto& entry : fs::directory_iterator(dir)) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        SCOPED_TRACE(entry.path().string());
        target(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++inputs;
    }
    fs::current_path(here);
    EXPECT_GT(inputs, 0);
}

TEST(FuzzRegressions, SettingsFiles)
{
    RunRegressions("settings", qvfuzz::FuzzSettings);
}

TEST(FuzzRegressions, PaletteAndFrameBitmaps)
{
    RunRegressions("palette", qvfuzz::FuzzPalette);
    RunRegressions("bitmap", qvfuzz::FuzzBitmap);
}

TEST(FuzzRegressions, WaveFilesAndTunes)
{
    AudioScope audio;
    RunRegressions("wave", qvfuzz::FuzzWave);
    RunRegressions("tune", qvfuzz::FuzzTune);
}

TEST(FuzzRegressions, Replays)
{
    RunRegressions("replay", qvfuzz::FuzzReplay);
}

TEST(FuzzRegressions, SpriteCatalogues)
{
    qvtest::DisplayApp game;
    qvfuzz::WriteSpriteArt();
    ASSERT_TRUE(game.Start());
    RunRegressions("sprites", qvfuzz::FuzzSpriteCatalogue);
}

} // namespace
