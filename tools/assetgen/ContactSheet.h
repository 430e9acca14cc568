#pragma once
#include <string>

#include "SpriteCatalogue.h"

namespace assetgen {

// A picture of every frame of every sprite, magnified, with each sprite's
// name and layout written above it: a quick way to review the art.
class ContactSheet {
public:
    static bool Write(const SpriteCatalogue& catalogue, const std::string& pngPath);
};

}  // namespace assetgen
