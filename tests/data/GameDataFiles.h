#pragma once
// Readers for the game's data files, written from the game's side of the
// format: they check the generator's output the way the game will read it.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace qvdata {

inline std::filesystem::path GameDir() { return QV_GAME_DIR; }

inline std::vector<uint8_t> ReadBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline std::string Tag(const std::vector<uint8_t>& b, size_t at) {
    return at + 4 <= b.size() ? std::string(b.begin() + at, b.begin() + at + 4) : std::string();
}

}  // namespace qvdata
