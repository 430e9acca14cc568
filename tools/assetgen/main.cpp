#include <cstdio>
#include <cstring>
#include <string>

#include "AppIcon.h"
#include "AssetGenerator.h"
#include "ContactSheet.h"
#include "SpriteCatalogue.h"

namespace {

int Usage() {
    std::fprintf(stderr,
                 "usage: quelvarion_assetgen <game-dir>\n"
                 "       quelvarion_assetgen --contact-sheet <file.png>\n"
                 "       quelvarion_assetgen --icon <file.png>\n");
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
    if (argc != 2 || argv[1][0] == '-') return Usage();
    const assetgen::AssetGenerator::Result result = assetgen::AssetGenerator::Generate(argv[1]);
    if (!result.ok) {
        std::fprintf(stderr, "quelvarion_assetgen: %s\n", result.error.c_str());
        return 1;
    }
    return 0;
}
