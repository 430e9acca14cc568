#pragma once
#include "platform/Surface.h"

#include <cstdint>
#include <string>
#include <vector>

class CSpriteInstance;

// One image of a sprite: where it lies on a page. A frame whose file could
// not be loaded has no surface and is drawn as a placeholder.
struct CSpriteFrame {
    CSurface* surface = nullptr; // borrowed from the page
    RECT source;
};

// One catalogue entry.
struct CSprite {
    std::vector<CSpriteFrame> frames; // all frames of direction 0, then of direction 1, ...
    std::string name;
    std::int32_t directions = 0;
    std::int32_t frameTime = 0;
    std::int32_t frameCount = 0;
};

// One shelf of a page.
struct CSpriteRow {
    std::int32_t height = 0;
    std::int32_t usedWidth = 0;
    std::int32_t top = 0;
};

struct CSpritePage {
    SurfacePtr surface;
    std::vector<CSpriteRow> rows;
};

// A sprite line of "sprite.ini".
struct SpriteLine {
    std::string name;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t directions = 0;
    std::int32_t frameCount = 0;
    std::int32_t frameTime = 0;
    friend bool operator==(const SpriteLine&, const SpriteLine&) = default;
};

// The catalogue of every image the game draws, read from "sprite.ini". The
// frames of all sprites are packed shelf by shelf into screen-sized pages.
class CSpriteSet {
public:
    static constexpr const char* CatalogueFile = "sprite.ini";
    static constexpr const char* ArtFolder = "art/";

    // Reads "sprite.ini" and appends an entry for each sprite line. Without
    // the file nothing is added and every object shows its placeholder.
    void Load();
    void RestorePages();
    void ReleaseSurfaces();
    // Binds the instance to the first entry of that exact name; false when there is none.
    bool Find(const std::string& name, CSpriteInstance& instance) const;
    void AddSprite(const SpriteLine& line);

    const CSprite* GetEntry(std::int32_t index) const;
    const std::vector<CSprite>& GetEntries() const { return entries; }
    const std::vector<CSpritePage>& GetPages() const { return pages; }

    // The sprite lines of a catalogue text, in order.
    static std::vector<SpriteLine> ParseCatalogue(const std::string& text);
    // Whether a line's frames stay within what one line may cost; traces a line refused.
    static bool FitsBudget(const SpriteLine& line);
    // The frame files of a sprite, in the order its frames are stored.
    static std::vector<std::string> FrameFiles(const std::string& name, std::int32_t directions,
                                               std::int32_t frameCount);

private:
    struct Shelf {
        std::size_t page = 0;
        std::size_t row = 0;
    };
    bool AddPage();
    bool ChooseShelf(std::int32_t width, std::int32_t height, Shelf& shelf) const;
    bool AddRow(std::int32_t height, std::size_t page, Shelf& shelf);
    std::size_t LastPageWithRows() const;
    bool Fits(const CSpritePage& page, std::int32_t height) const;
    CSpriteRow& RowOf(const Shelf& shelf) { return pages[shelf.page].rows[shelf.row]; }

    std::vector<CSprite> entries;
    std::vector<CSpritePage> pages;
};
