#pragma once
#include <string>

class CSpriteInstance;

// The catalogue of every image the game draws, read from "sprite.ini".
class CSpriteSet {
public:
    void Load() {}
    void RestorePages() {}
    void ReleaseSurfaces() {}
    // Binds the instance to the first entry of that exact name; false when there is none.
    bool Find(const std::string& /*name*/, CSpriteInstance& /*instance*/) { return false; }
};
