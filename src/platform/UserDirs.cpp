#include "platform/UserDirs.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <pwd.h>
#include <unistd.h>

namespace Platform {

namespace {

// The rules ignore a variable that is unset, empty or relative.
std::string AbsoluteFromEnvironment(const char* name)
{
    const char* value = std::getenv(name);
    return value && value[0] == '/' ? value : "";
}

std::string HomeFolder()
{
    std::string home = AbsoluteFromEnvironment("HOME");
    if (home.empty())
        if (const passwd* user = ::getpwuid(::getuid()); user && user->pw_dir && user->pw_dir[0] == '/')
            home = user->pw_dir;
    return home;
}

} // namespace

std::string ConfigHome()
{
    if (std::string config = AbsoluteFromEnvironment("XDG_CONFIG_HOME"); !config.empty())
        return config;
    const std::string home = HomeFolder();
    return home.empty() ? "" : home + "/.config";
}

std::string PicturesFolderIn(const std::string& userDirsText, const std::string& home)
{
    constexpr std::string_view Key = "XDG_PICTURES_DIR=\"";
    constexpr std::string_view HomeWord = "$HOME";
    std::istringstream lines(userDirsText);
    std::string folder;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(Key, 0) != 0 || line.size() < Key.size() + 1 || line.back() != '"')
            continue;
        const std::string value = line.substr(Key.size(), line.size() - Key.size() - 1);
        if (value.rfind(HomeWord, 0) == 0 && !home.empty())
            folder = home + value.substr(HomeWord.size());
        else if (!value.empty() && value[0] == '/')
            folder = value;
    }
    return folder;
}

std::string PicturesFolder()
{
    if (std::string pictures = AbsoluteFromEnvironment("XDG_PICTURES_DIR"); !pictures.empty())
        return pictures;
    const std::string home = HomeFolder();
    const std::string config = ConfigHome();
    if (!config.empty()) {
        std::ifstream file(config + "/user-dirs.dirs");
        std::stringstream text;
        text << file.rdbuf();
        if (std::string named = PicturesFolderIn(text.str(), home); !named.empty())
            return named;
    }
    return home.empty() ? "" : home + "/Pictures";
}

} // namespace Platform
