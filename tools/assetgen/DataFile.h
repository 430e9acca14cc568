#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace assetgen {

// Writes a finished file in one go; false when it could not be written.
class DataFile {
public:
    static bool Write(const std::string& path, const std::vector<uint8_t>& bytes);
    static bool Write(const std::string& path, const std::string& text);
};

}  // namespace assetgen
