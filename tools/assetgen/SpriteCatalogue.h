#pragma once
#include <memory>
#include <string>
#include <vector>

#include "Image.h"
#include "SpritePainter.h"

namespace assetgen {

// One line of the game's sprite list and the painter of its frames.
struct SpriteEntry {
    std::string name;
    int width = 0;
    int height = 0;
    int directions = 0;  // 0: the sprite never turns
    int frameCount = 0;  // 0: a still picture
    int frameTime = 0;   // milliseconds each animation frame shows
    std::shared_ptr<const SpritePainter> painter;

    int FramesStored() const;
};

// Every sprite the game binds by name: sizes follow the objects' collision
// radii (a sprite's radius is half its frame width), ships turn through many
// directions, and the rest animate.
class SpriteCatalogue {
public:
    static SpriteCatalogue Game();

    const std::vector<SpriteEntry>& Entries() const { return entries; }

    // The "sprite.ini" text: comments, then one line per sprite.
    std::string IniText() const;
    // Frame file names inside the art folder, in the order the game stores
    // them: all animation frames of direction 0, then direction 1, and so on.
    static std::vector<std::string> FrameFiles(const SpriteEntry& entry);
    // The pictures in the same order, ready for the 16-bit colour key.
    static std::vector<Image> RenderFrames(const SpriteEntry& entry);

private:
    std::vector<SpriteEntry> entries;
};

}  // namespace assetgen
