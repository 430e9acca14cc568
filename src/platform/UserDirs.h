#pragma once
#include <string>

namespace Platform {

// The folder for the player's configuration, as the XDG base directory rules
// give it: $XDG_CONFIG_HOME when it is an absolute path, else ~/.config, with
// the home folder from $HOME when that is absolute, else from the user
// database. Empty when there is no home to be found.
std::string ConfigHome();

} // namespace Platform
