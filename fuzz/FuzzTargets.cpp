#include "FuzzTargets.h"

#include "frontend/MenuSystem.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace qvfuzz {
namespace {

// The targets read and write files relative to the working directory, so
// they run in a scratch folder of their own.
void EnterScratchFolder()
{
    static const bool entered = [] {
        const auto dir = std::filesystem::temp_directory_path() / ("qvfuzz-" + std::to_string(::getpid()));
        std::filesystem::create_directories(dir);
        std::filesystem::current_path(dir);
        return true;
    }();
    (void)entered;
}

void Check(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

int FuzzSettings(const std::uint8_t* data, std::size_t size)
{
    EnterScratchFolder();
    static CMenuSystem menus;
    menus.ApplySettingsText(std::string(reinterpret_cast<const char*>(data), size));
    // Whatever was read, what the game writes reads back to itself.
    const std::string saved = menus.SettingsText();
    menus.ApplySettingsText(saved);
    Check(menus.SettingsText() == saved);
    return 0;
}

} // namespace qvfuzz
