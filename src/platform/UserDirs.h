#pragma once
#include <string>

namespace Platform {

// The folder for the player's configuration, as the XDG base directory rules
// give it: $XDG_CONFIG_HOME when it is an absolute path, else ~/.config, with
// the home folder from $HOME when that is absolute, else from the user
// database. Empty when there is no home to be found.
std::string ConfigHome();

// The player's pictures folder, as the XDG user directories give it:
// $XDG_PICTURES_DIR when it is absolute, else the folder user-dirs.dirs in the
// configuration folder names, else ~/Pictures. Empty when there is no home.
std::string PicturesFolder();
// The pictures folder a user-dirs.dirs text names ("$HOME/..." or an
// absolute path, in double quotes), or empty.
std::string PicturesFolderIn(const std::string& userDirsText, const std::string& home);

} // namespace Platform
