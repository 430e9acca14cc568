#include "support/DisplayApp.h"

#include "display/SpriteSet.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

// The game itself, started on the generated data, finds every sprite it binds
// and places every frame on a page: nothing is drawn as a placeholder.
TEST(GeneratedCatalogue, LoadsEverySpriteTheGameBindsWithoutPlaceholders)
{
    qvtest::DisplayApp t;
    for (const char* item : {"sprite.ini", "art"})
        fs::create_symlink(fs::path(QV_GAME_DIR) / item, item);
    ASSERT_TRUE(t.Start());

    const CSpriteSet& sprites = t->sprites;
    ASSERT_FALSE(sprites.GetEntries().empty());
    for (const CSprite& entry : sprites.GetEntries()) {
        SCOPED_TRACE(entry.name);
        EXPECT_FALSE(entry.frames.empty());
        for (const CSpriteFrame& frame : entry.frames)
            EXPECT_NE(frame.surface, nullptr);
    }
}

} // namespace
