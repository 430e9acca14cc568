#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

// The bytes of a file the player may have replaced with anything, read no
// further than one byte past the limit: enough to know that a file is too
// large, however large it is. Nothing when the file cannot be opened.
std::optional<std::vector<std::uint8_t>> ReadFileAtMost(const std::string& path, std::size_t limit);

} // namespace Platform
