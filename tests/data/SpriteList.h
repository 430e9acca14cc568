#pragma once
// "sprite.ini" as the game's catalogue reads it: lines split at line feeds,
// "!" comments, fields split at single blanks (an empty field reads 0), and
// frame files named from the direction and frame counts.
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace qvdata {

struct SpriteLine {
    std::string name;
    int width = 0, height = 0, directions = 0, frameCount = 0, frameTime = 0;

    std::vector<std::string> FrameFiles() const {
        std::vector<std::string> files;
        if (directions == 0 && frameCount == 0) return {"art/" + name + ".bmp"};
        for (int i = 0; i < (directions > 0 ? directions : 1); ++i) {
            if (frameCount == 0) files.push_back("art/" + name + "_" + std::to_string(i) + ".bmp");
            for (int k = 0; k < frameCount; ++k)
                files.push_back("art/" + name + "_" + std::to_string(i) + "_" + std::to_string(k) + ".bmp");
        }
        return files;
    }
};

inline std::vector<SpriteLine> ParseSpriteList(const std::string& text) {
    std::vector<SpriteLine> sprites;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line, '\n')) {
        if (line.empty() || line[0] == '!') continue;
        std::vector<std::string> fields;
        size_t start = 0;
        for (size_t blank; (blank = line.find(' ', start)) != std::string::npos; start = blank + 1)
            fields.push_back(line.substr(start, blank - start));
        fields.push_back(line.substr(start));
        auto number = [&](size_t i) { return i < fields.size() ? std::atoi(fields[i].c_str()) : 0; };
        SpriteLine s{fields[0], number(1), number(2), number(3), 0, 0};
        if (fields.size() >= 6) {
            s.frameCount = number(4);
            s.frameTime = number(5);
        }
        if (fields.size() >= 3 && !s.name.empty() && s.width >= 1 && s.height >= 1) sprites.push_back(s);
    }
    return sprites;
}

}  // namespace qvdata
