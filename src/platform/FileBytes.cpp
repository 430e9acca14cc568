#include "platform/FileBytes.h"

#include <algorithm>
#include <fstream>

namespace Platform {

std::optional<std::vector<std::uint8_t>> ReadFileAtMost(const std::string& path, std::size_t limit)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return std::nullopt;
    std::vector<std::uint8_t> bytes;
    char chunk[16384];
    while (bytes.size() <= limit && in) {
        in.read(chunk, static_cast<std::streamsize>(std::min(sizeof chunk, limit + 1 - bytes.size())));
        bytes.insert(bytes.end(), chunk, chunk + in.gcount());
    }
    return bytes;
}

} // namespace Platform
