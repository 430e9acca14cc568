#pragma once
#include <string>

namespace assetgen {

// Writes the game's whole working directory: the sprite list, the art
// folder (sprite frames, palette, blank and title pictures), the sound
// effects, the background tune and the sound font it is played with. The
// same bytes come out on every run.
class AssetGenerator {
public:
    struct Result {
        bool ok = true;
        std::string error;
    };

    static constexpr int kScreenWidth = 1024;
    static constexpr int kScreenHeight = 768;

    static Result Generate(const std::string& gameDir);

private:
    static Result WriteSprites(const std::string& gameDir);
    static Result WritePictures(const std::string& artDir);
    static Result WriteSounds(const std::string& gameDir);
    static Result WriteMusic(const std::string& gameDir);
};

}  // namespace assetgen
