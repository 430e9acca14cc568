// The generator as a whole: the same bytes on every run.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "AssetGenerator.h"
#include "GameDataFiles.h"
#include "support/TestApp.h"

namespace {

namespace fs = std::filesystem;

std::map<std::string, std::vector<uint8_t>> Contents(const fs::path& dir) {
    std::map<std::string, std::vector<uint8_t>> files;
    for (const auto& entry : fs::recursive_directory_iterator(dir)) {
        const std::string name = fs::relative(entry.path(), dir).string();
        if (entry.is_regular_file() && name.front() != '.' && name != "quelvarion.ini")
            files[name] = qvdata::ReadBytes(entry.path());
    }
    return files;
}

}  // namespace

// The build ran the generator as a program of its own; run here again it
// writes the same files, byte for byte. A folder it cannot make is reported.
TEST(AssetGenerator, TwoRunsWriteIdenticalFilesAndAFolderItCannotMakeIsReported) {
    qvtest::ScopedWorkDir scratch;
    ASSERT_TRUE(assetgen::AssetGenerator::Generate("again").ok);
    const auto again = Contents("again"), built = Contents(qvdata::GameDir());
    EXPECT_GT(again.size(), 300u);
    EXPECT_EQ(again.size(), built.size());
    for (const auto& [name, bytes] : again) {
        const auto it = built.find(name);
        ASSERT_NE(it, built.end()) << name;
        EXPECT_TRUE(it->second == bytes) << name;
    }
    const auto blocked = assetgen::AssetGenerator::Generate("again/sprite.ini/game");
    EXPECT_FALSE(blocked.ok);
    EXPECT_FALSE(blocked.error.empty());
}
