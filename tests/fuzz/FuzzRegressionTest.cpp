#include "FuzzTargets.h"

#include "support/AudioFiles.h"
#include "support/DisplayApp.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Target = int (*)(const std::uint8_t*, std::size_t);

// Every input kept from fuzzing (crashes found and fixed, and seeds) is fed
// again on every test run, so an old fault cannot come back unnoticed. The
// targets abort on a broken rule, which fails the test. A folder of inputs
// with no target here fails too, rather than being passed over.
TEST(FuzzRegressions, EveryKeptInputOfEveryTarget)
{
    qvtest::AudioScope audio;
    qvtest::DisplayApp game; // the sprite catalogues are loaded into a started game
    qvfuzz::WriteSpriteArt();
    ASSERT_TRUE(game.Start());
    const std::map<std::string, Target> targets{
        {"settings", qvfuzz::FuzzSettings}, {"palette", qvfuzz::FuzzPalette}, {"bitmap", qvfuzz::FuzzBitmap},
        {"wave", qvfuzz::FuzzWave},         {"tune", qvfuzz::FuzzTune},       {"replay", qvfuzz::FuzzReplay},
        {"sprites", qvfuzz::FuzzSpriteCatalogue},
    };
    const fs::path here = fs::current_path();
    std::map<std::string, int> inputs;
    for (const auto& folder : fs::directory_iterator(fs::path(QV_SOURCE_DIR) / "fuzz" / "regressions")) {
        const std::string name = folder.path().filename().string();
        ASSERT_TRUE(targets.count(name)) << "no target for " << folder.path();
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
            SCOPED_TRACE(entry.path().string());
            targets.at(name)(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            fs::current_path(here);
            ++inputs[name];
        }
    }
    for (const auto& [name, target] : targets)
        EXPECT_GT(inputs[name], 0) << name;
}

} // namespace
