// The generator as a whole: the same bytes on every run.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "AssetGenerator.h"
#include "GameDataFiles.h"

namespace {

namespace fs = std::filesystem;

class TempDir {
public:
    explicit TempDir(const std::string& name) : path(fs::temp_directory_path() / (name + std::to_string(::getpid()))) {
        fs::remove_all(path);
    }
    ~TempDir() { fs::remove_all(path); }
    fs::path path;
};

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
    TempDir first("qv-assets-a-"), second("qv-assets-b-");
    ASSERT_TRUE(assetgen::AssetGenerator::Generate(first.path.string()).ok);
    ASSERT_TRUE(assetgen::AssetGenerator::Generate(second.path.string()).ok);
    const auto a = Contents(first.path), b = Contents(second.path);
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
    TempDir blocker("qv-assets-file-");
    { std::ofstream(blocker.path) << "not a folder"; }
    const auto result = assetgen::AssetGenerator::Generate((blocker.path / "game").string());
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.error.empty());
}

