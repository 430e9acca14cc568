#pragma once
#include "platform/Types.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

// The largest file of each kind the game reads: far above anything the game
// or its generator writes, so that only a file the player replaced with
// something else (a link to a device, a huge file) is refused.
constexpr std::size_t MaxTextFileBytes = 1u << 20;      // quelvarion.ini, window-mode, sprite.ini
constexpr std::size_t MaxPictureFileBytes = 64u << 20;  // the palette and every frame bitmap
constexpr std::size_t MaxSoundFontBytes = 1024u << 20;  // a General MIDI font the player names may be large

// Opens a file to read without ever waiting on it (a pipe, a device) and
// keeps it only when it is an ordinary file of at most cap bytes. Otherwise
// -1, and why: ERROR_FILE_NOT_FOUND, ERROR_DIRECTORY, ERROR_BAD_FILE_TYPE,
// ERROR_FILE_TOO_LARGE or what the system said.
int OpenOrdinaryFile(const std::string& path, std::size_t cap, Result& why);

// Whether path is an ordinary file of at most cap bytes, for files a library
// opens itself; a file that is there but refused is named on stderr.
bool IsReadableFile(const std::string& path, std::size_t cap);

// One line on stderr naming a file that is there but refused for what it is.
void SayNotRead(const std::string& path, Result why);

// The bytes of a file the player may have replaced with anything, at most
// limit of them. Nothing when the file cannot be opened or is refused (see
// OpenOrdinaryFile; why, when given, says which).
std::optional<std::vector<std::uint8_t>> ReadFileAtMost(const std::string& path, std::size_t limit,
                                                        Result* why = nullptr);

} // namespace Platform
