#include "platform/UserDirs.h"

#include <cstdlib>
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

} // namespace Platform
