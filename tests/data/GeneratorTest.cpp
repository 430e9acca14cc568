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

TEST(AssetGenerator, TwoRunsWriteIdenticalFilesMatchingTheBuiltGameData) {
    qvtest::ScopedWorkDir scratch;
    ASSERT_TRUE(assetgen::AssetGenerator::Generate("first").ok);
    ASSERT_TRUE(assetgen::AssetGenerator::Generate("second").ok);
    const auto a = Contents("first"), b = Contents("second");
    EXPECT_GT(a.size(), 300u);
    EXPECT_TRUE(a == b);
    // The build ran the generator as a separate program: same bytes again.
    const auto built = Contents(qvdata::GameDir());
    for (const auto& [name, bytes] : a) {
        const auto it = built.find(name);
        ASSERT_NE(it, built.end()) << name;
        EXPECT_TRUE(it->second == bytes) << name;
    }
}

TEST(AssetGenerator, ReportsAFolderItCannotCreate) {
    qvtest::ScopedWorkDir scratch;
    std::ofstream("blocker") << "not a folder";
    const auto result = assetgen::AssetGenerator::Generate("blocker/game");
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.error.empty());
}

