#pragma once

// The catalogue of every image the game draws, read from "sprite.ini".
class CSpriteSet {
public:
    void Load() {}
    void RestorePages() {}
    void ReleaseSurfaces() {}
};
