#include "DataFile.h"

#include <fstream>

namespace assetgen {

bool DataFile::Write(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(file);
}

bool DataFile::Write(const std::string& path, const std::string& text) {
    return Write(path, std::vector<uint8_t>(text.begin(), text.end()));
}

}  // namespace assetgen
