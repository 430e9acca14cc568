// The generator as a whole: the same bytes on every run, and the transparent
// colour guard that every sprite frame passes through.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "AssetGenerator.h"
#include "ColourKeyGuard.h"
#include "GameDataFiles.h"

namespace {

namespace fs = std::filesystem;
using assetgen::ColourKeyGuard;
using assetgen::Rgb;

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

TEST(ColourKeyGuard, SettlesEveryDarkColourToTransparentOrVisible) {
    for (int r = 0; r < 16; ++r)
        for (int g = 0; g < 8; ++g)
            for (int b = 0; b < 16; ++b) {
                const Rgb in{static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b)};
                const Rgb out = ColourKeyGuard::Settle(in);
                EXPECT_TRUE(out == Rgb{} || ColourKeyGuard::SurvivesRgb565(out)) << r << "," << g << "," << b;
                if (ColourKeyGuard::SurvivesRgb565(in)) {
                    EXPECT_TRUE(out == in);
                }
            }
    // A dim but real colour is kept and brightened, not dropped.
    EXPECT_TRUE(ColourKeyGuard::SurvivesRgb565(ColourKeyGuard::Settle(Rgb{6, 3, 1})));
    EXPECT_TRUE(ColourKeyGuard::Settle(Rgb{1, 1, 1}) == Rgb{});
}
