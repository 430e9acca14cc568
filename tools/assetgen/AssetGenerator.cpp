#include "AssetGenerator.h"

#include <filesystem>
#include <functional>
#include <vector>

#include "BmpWriter.h"
#include "DataFile.h"
#include "PaletteBitmap.h"
#include "SoundEffects.h"
#include "SpriteCatalogue.h"
#include "TitleScreen.h"
#include "Tune.h"
#include "TuneFont.h"
#include "WavWriter.h"

namespace assetgen {

namespace {

// Sounds peak a little below full scale so that nothing clips on playback.
constexpr double kSoundPeak = 0.89;

AssetGenerator::Result Save(const std::string& path, const std::vector<uint8_t>& bytes) {
    if (DataFile::Write(path, bytes)) return {};
    return {false, "cannot write " + path};
}

}  // namespace

AssetGenerator::Result AssetGenerator::Generate(const std::string& gameDir) {
    const std::string artDir = gameDir + "/art";
    std::error_code error;
    std::filesystem::create_directories(artDir, error);
    if (error) return {false, "cannot create " + artDir + ": " + error.message()};
    for (auto step : {WriteSprites, WriteSounds, WriteMusic}) {
        const Result result = step(gameDir);
        if (!result.ok) return result;
    }
    return WritePictures(artDir);
}

AssetGenerator::Result AssetGenerator::WriteSprites(const std::string& gameDir) {
    const SpriteCatalogue catalogue = SpriteCatalogue::Game();
    if (!DataFile::Write(gameDir + "/sprite.ini", catalogue.IniText())) return {false, "cannot write sprite.ini"};
    for (const SpriteEntry& entry : catalogue.Entries()) {
        const std::vector<std::string> files = SpriteCatalogue::FrameFiles(entry);
        const std::vector<Image> frames = SpriteCatalogue::RenderFrames(entry);
        for (size_t i = 0; i < files.size(); ++i) {
            const Result result = Save(gameDir + "/art/" + files[i], BmpWriter::Encode24(frames[i]));
            if (!result.ok) return result;
        }
    }
    return {};
}

AssetGenerator::Result AssetGenerator::WritePictures(const std::string& artDir) {
    Result result = Save(artDir + "/palette.bmp", PaletteBitmap::Encode());
    if (result.ok) result = Save(artDir + "/blank.bmp", BmpWriter::Encode24(Image(kScreenWidth, kScreenHeight)));
    if (result.ok)
        result = Save(artDir + "/title_screen.bmp", BmpWriter::Encode24(TitleScreen::Paint(kScreenWidth, kScreenHeight)));
    return result;
}

AssetGenerator::Result AssetGenerator::WriteSounds(const std::string& gameDir) {
    using Maker = std::function<std::vector<float>()>;
    const std::vector<std::pair<const char*, Maker>> sounds{
        {"startup.wav", SoundEffects::StartupChord}, {"green.wav", SoundEffects::PickupChime},
        {"explosion.wav", SoundEffects::Explosion},  {"bullet1.wav", SoundEffects::PlayerShot},
        {"bullet2.wav", SoundEffects::EnemyShot},
    };
    for (const auto& [name, make] : sounds) {
        const auto pcm = WavWriter::ToPcm(make(), kSoundPeak);
        const Result result = Save(gameDir + "/" + name, WavWriter::Encode(pcm, SoundEffects::kSampleRate));
        if (!result.ok) return result;
    }
    return {};
}

AssetGenerator::Result AssetGenerator::WriteMusic(const std::string& gameDir) {
    const Result result = Save(gameDir + "/background.mid", Tune::Compose());
    return result.ok ? Save(gameDir + "/background.sf2", TuneFont::Build()) : result;
}

}  // namespace assetgen
