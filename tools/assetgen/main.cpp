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
                 "       quelvarion_assetgen --icon <file.png>\n"
                 "       quelvarion_assetgen --tune-excerpt <file.mid> <first-bar> <bars>\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--contact-sheet") == 0) {
        if (assetgen::ContactSheet::Write(assetgen::SpriteCatalogue::Game(), argv[2])) return 0;
        std::fprintf(stderr, "quelvarion_assetgen: cannot write %s\n", argv[2]);
        return 1;
    }
    if (argc == 3 && std::strcmp(argv[1], "--icon") == 0) {
        if (assetgen::AppIcon::Write(argv[2])) return 0;
        std::fprintf(stderr, "quelvarion_assetgen: cannot write %s\n", argv[2]);
        return 1;
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
