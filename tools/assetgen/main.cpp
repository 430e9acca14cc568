#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "AppIcon.h"
#include "AssetGenerator.h"
#include "ContactSheet.h"
#include "DataFile.h"
#include "SpriteCatalogue.h"
#include "Tune.h"

namespace {

int Usage() {
    std::fprintf(stderr,
                 "usage: quelvarion_assetgen <game-dir>\n"
                 "       quelvarion_assetgen --contact-sheet <file.png>\n"
                 "       quelvarion_assetgen --icon <file.png> [size]\n"
                 "       quelvarion_assetgen --icon-svg <file.svg>\n"
                 "       quelvarion_assetgen --window-icon <file.cpp> <size>\n"
                 "       quelvarion_assetgen --tune-excerpt <file.mid> <first-bar> <bars>\n");
    return 2;
}

int Written(bool written, const char* path) {
    if (written) return 0;
    std::fprintf(stderr, "quelvarion_assetgen: cannot write %s\n", path);
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--contact-sheet") == 0)
        return Written(assetgen::ContactSheet::Write(assetgen::SpriteCatalogue::Game(), argv[2]), argv[2]);
    if ((argc == 3 || argc == 4) && std::strcmp(argv[1], "--icon") == 0) {
        const int size = argc == 4 ? std::atoi(argv[3]) : assetgen::AppIcon::DesignSize;
        if (size <= 0) return Usage();
        return Written(assetgen::AppIcon::WritePng(argv[2], size), argv[2]);
    }
    if (argc == 3 && std::strcmp(argv[1], "--icon-svg") == 0)
        return Written(assetgen::AppIcon::WriteSvg(argv[2]), argv[2]);
    if (argc == 4 && std::strcmp(argv[1], "--window-icon") == 0) {
        const int size = std::atoi(argv[3]);
        if (size <= 0) return Usage();
        return Written(assetgen::AppIcon::WriteSource(argv[2], size), argv[2]);
    }
    if (argc == 5 && std::strcmp(argv[1], "--tune-excerpt") == 0) {
        const int first = std::atoi(argv[3]), bars = std::atoi(argv[4]);
        if (first < 0 || bars < 1 || first + bars > assetgen::Tune::kBars) return Usage();
        if (assetgen::DataFile::Write(argv[2], assetgen::Tune::Excerpt(first, bars))) return 0;
        std::fprintf(stderr, "quelvarion_assetgen: cannot write %s\n", argv[2]);
        return 1;
    }
    if (argc != 2 || argv[1][0] == '-') return Usage();
    const assetgen::AssetGenerator::Result result = assetgen::AssetGenerator::Generate(argv[1]);
    if (!result.ok) {
        std::fprintf(stderr, "quelvarion_assetgen: %s\n", result.error.c_str());
        return 1;
    }
    return 0;
}
