#include "FuzzTargets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Target = int (*)(const std::uint8_t*, std::size_t);

// Every input kept from fuzzing (crashes found and fixed, and seeds) is fed
// again on every test run, so an old fault cannot come back unnoticed.
void RunRegressions(const std::string& folder, Target target)
{
    const fs::path dir = fs::path(QV_SOURCE_DIR) / "fuzz" / "regressions" / folder;
    ASSERT_TRUE(fs::is_directory(dir)) << dir;
    int inputs = 0;
    for (const auto& entry : fs::directory_iterator(dir)) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        SCOPED_TRACE(entry.path().string());
        target(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++inputs;
    }
    EXPECT_GT(inputs, 0);
}

TEST(FuzzRegressions, SettingsFiles)
{
    const fs::path here = fs::current_path();
    RunRegressions("settings", qvfuzz::FuzzSettings);
    fs::current_path(here);
}

} // namespace
