#include "display/SpriteSet.h"

#include "core/Trace.h"
#include "display/Bitmaps.h"
#include "display/Display.h"
#include "display/Screen.h"
#include "platform/FileBytes.h"
#include "display/SpriteInstance.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>

namespace {

constexpr char CommentMark = '!';
constexpr char FieldSeparator = ' ';
constexpr std::size_t NameField = 0;
constexpr std::size_t WidthField = 1;
constexpr std::size_t HeightField = 2;
constexpr std::size_t DirectionsField = 3;
constexpr std::size_t FrameCountField = 4;
constexpr std::size_t FrameTimeField = 5;
// What one catalogue line may cost: the screen-sized pages its frames fill and
// the table of its frames. The whole game's sprites fill less than one page;
// a line asking for more than this (a slip of the keyboard, most likely) is
// refused rather than left to exhaust the machine.
constexpr std::int64_t SpriteLineMemoryBudget = std::int64_t{256} << 20;
// Every frame is a file to look for, found or not: tiny frames fill pages so
// slowly that a line could fit the memory and still keep the game searching
// for millions of files. The game's largest line has 72 frames.
constexpr std::int64_t SpriteLineFrameBudget = 65536;

// A decimal number as the catalogue writes it: blanks first, a sign, then
// digits up to the first other character. No digits read as 0.
std::int32_t ReadNumber(const std::string& field)
{
    std::size_t i = 0;
    while (i < field.size() && std::isspace(static_cast<unsigned char>(field[i])))
        ++i;
    bool negative = false;
    if (i < field.size() && (field[i] == '+' || field[i] == '-'))
        negative = field[i++] == '-';
    std::int64_t value = 0;
    for (; i < field.size() && std::isdigit(static_cast<unsigned char>(field[i])); ++i)
        value = std::min<std::int64_t>(value * 10 + (field[i] - '0'), std::numeric_limits<std::int32_t>::max());
    return static_cast<std::int32_t>(negative ? -value : value);
}

std::vector<std::string> SplitFields(const std::string& line)
{
    std::vector<std::string> fields(1);
    for (char c : line) {
        if (c == FieldSeparator)
            fields.emplace_back();
        else
            fields.back() += c;
    }
    return fields;
}

bool ReadSpriteLine(const std::string& line, SpriteLine& out)
{
    if (line.empty() || line[0] == CommentMark)
        return false;
    const auto fields = SplitFields(line);
    auto number = [&](std::size_t i) { return i < fields.size() ? ReadNumber(fields[i]) : 0; };
    if (fields.size() <= HeightField)
        return false;
    out.name = fields[NameField];
    out.width = number(WidthField);
    out.height = number(HeightField);
    out.directions = number(DirectionsField);
    // The animation is taken only when both its count and its time are given.
    const bool animated = fields.size() > FrameTimeField;
    out.frameCount = animated ? number(FrameCountField) : 0;
    out.frameTime = animated ? number(FrameTimeField) : 0;
    return !out.name.empty() && out.width >= 1 && out.height >= 1;
}

std::int64_t FrameCount(const SpriteLine& line)
{
    return std::int64_t{std::max(line.directions, 1)} * std::max(line.frameCount, 1);
}

// The memory a line's frames take: whole pages for frames that fit on one,
// placeholders (the table alone) for frames that do not.
std::int64_t LineMemory(const SpriteLine& line)
{
    const std::int64_t frames = FrameCount(line);
    const std::int64_t table = frames * static_cast<std::int64_t>(sizeof(CSpriteFrame));
    if (line.width > ScreenWidth() || line.height >= ScreenHeight())
        return table;
    const std::int64_t perPage = std::int64_t{ScreenWidth() / line.width} * std::max(1, ScreenHeight() / line.height);
    const std::int64_t pages = (frames + perPage - 1) / perPage;
    const std::int64_t pageBytes = std::int64_t{ScreenWidth()} * ScreenHeight() * (CSurface::BitsPerPixel / 8);
    return table + pages * pageBytes;
}

} // namespace

bool CSpriteSet::FitsBudget(const SpriteLine& line)
{
    if (FrameCount(line) > SpriteLineFrameBudget) {
        CTrace::Trace("Sprite line refused, it names more frame files than a line may: " + line.name, 0);
        return false;
    }
    if (LineMemory(line) > SpriteLineMemoryBudget) {
        CTrace::Trace("Sprite line refused, its frames would take more memory than the pages may: " + line.name, 0);
        return false;
    }
    return true;
}

std::vector<SpriteLine> CSpriteSet::ParseCatalogue(const std::string& text)
{
    std::vector<SpriteLine> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        SpriteLine line;
        if (ReadSpriteLine(text.substr(start, end - start), line))
            lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

std::vector<std::string> CSpriteSet::FrameFiles(const std::string& name, std::int32_t directions,
                                                std::int32_t frameCount)
{
    const std::string stem = ArtFolder + name;
    if (directions <= 0 && frameCount <= 0)
        return {stem + ".bmp"};
    std::vector<std::string> files;
    const std::int32_t turns = directions > 0 ? directions : 1;
    for (std::int32_t i = 0; i < turns; ++i) {
        const std::string facing = stem + "_" + std::to_string(i);
        if (frameCount <= 0)
            files.push_back(facing + ".bmp");
        for (std::int32_t k = 0; k < frameCount; ++k)
            files.push_back(facing + "_" + std::to_string(k) + ".bmp");
    }
    return files;
}

void CSpriteSet::Load()
{
    if (pages.empty())
        AddPage();
    Result why = S_OK;
    const auto bytes = Platform::ReadFileAtMost(CatalogueFile, Platform::MaxTextFileBytes, &why);
    if (!bytes) {
        Platform::SayNotRead(CatalogueFile, why);
        return;
    }
    const std::string text(bytes->begin(), bytes->end());
    for (const SpriteLine& line : ParseCatalogue(text))
        if (FitsBudget(line))
            AddSprite(line);
}

void CSpriteSet::AddSprite(const SpriteLine& line)
{
    const std::int32_t w = line.width;
    const std::int32_t h = line.height;
    Shelf shelf;
    // A frame larger than a page has nowhere to go: its sprite shows placeholders.
    bool placed = w <= ScreenWidth() && h < ScreenHeight() &&
                  (ChooseShelf(w, h, shelf) || AddRow(h, LastPageWithRows(), shelf));

    CSprite entry;
    entry.name = line.name;
    entry.directions = line.directions;
    entry.frameCount = line.frameCount;
    entry.frameTime = line.frameTime;
    const auto files = FrameFiles(line.name, line.directions, line.frameCount);
    const bool singleFile = line.directions <= 0 && line.frameCount <= 0;
    for (const std::string& file : files) {
        if (!placed) {
            entry.frames.push_back({nullptr, RECT{0, 0, w, h}});
            continue;
        }
        CSpriteRow& row = RowOf(shelf);
        CSurface* surface = pages[shelf.page].surface.get();
        const RECT source{row.usedWidth, row.top, row.usedWidth + w, row.top + h};
        if (DrawBitmapFile(surface, file, w, h, row.usedWidth, row.top) != 0) {
            entry.frames.push_back({nullptr, source}); // the shelf does not advance
            continue;
        }
        entry.frames.push_back({surface, source});
        row.usedWidth += w;
        if (!singleFile && row.usedWidth > ScreenWidth() - w)
            placed = AddRow(h, shelf.page, shelf);
    }
    entries.push_back(std::move(entry));
}

bool CSpriteSet::ChooseShelf(std::int32_t w, std::int32_t h, Shelf& shelf) const
{
    bool found = false;
    for (std::size_t p = 0; p < pages.size(); ++p) {
        const auto& rows = pages[p].rows;
        for (std::size_t r = 0; r < rows.size(); ++r) {
            if (rows[r].height >= h && rows[r].usedWidth <= ScreenWidth() - w) {
                shelf = {p, r}; // a later page's row wins over an earlier one's
                found = true;
                break;
            }
        }
    }
    return found;
}

bool CSpriteSet::Fits(const CSpritePage& page, std::int32_t h) const
{
    const std::int32_t bottom = page.rows.empty() ? 0 : page.rows.back().top + page.rows.back().height;
    return bottom + h < ScreenHeight();
}

// Rows go on the page given, else on the first page after the last one that
// holds rows, made when there is none. After a restore has emptied every
// page, a reload so lays each frame exactly where the first load put it, on
// whichever page, and every bound instance keeps showing its own images.
bool CSpriteSet::AddRow(std::int32_t h, std::size_t page, Shelf& shelf)
{
    if (page >= pages.size() || !Fits(pages[page], h)) {
        page = pages.empty() ? 0 : LastPageWithRows() + (pages[LastPageWithRows()].rows.empty() ? 0 : 1);
        if (page >= pages.size() && !AddPage())
            return false;
        page = std::min(page, pages.size() - 1);
        if (!Fits(pages[page], h))
            return false;
    }
    auto& rows = pages[page].rows;
    const std::int32_t top = rows.empty() ? 0 : rows.back().top + rows.back().height;
    rows.push_back({h, 0, top});
    shelf = {page, rows.size() - 1};
    return true;
}

std::size_t CSpriteSet::LastPageWithRows() const
{
    for (std::size_t p = pages.size(); p-- > 0;)
        if (!pages[p].rows.empty())
            return p;
    return 0;
}

bool CSpriteSet::AddPage()
{
    SurfacePtr surface = TheDisplay().CreateOffscreenSurface();
    if (!surface) {
        CTrace::TraceCode(0, "NULL off screen surface returned!", 0);
        return false;
    }
    pages.push_back({std::move(surface), {}});
    return true;
}

void CSpriteSet::RestorePages()
{
    for (CSpritePage& page : pages) {
        if (page.surface)
            page.surface->Restore();
        page.rows.clear();
    }
}

void CSpriteSet::ReleaseSurfaces()
{
    for (CSpritePage& page : pages) {
        if (!page.surface)
            continue;
        // Frames only borrow their page: none may keep pointing at a released one.
        for (CSprite& entry : entries)
            for (CSpriteFrame& frame : entry.frames)
                if (frame.surface == page.surface.get())
                    frame.surface = nullptr;
        page.surface.reset();
    }
}

bool CSpriteSet::Find(const std::string& name, CSpriteInstance& instance) const
{
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].name == name) {
            instance.Bind(static_cast<std::int32_t>(i));
            return true;
        }
    }
    return false;
}

const CSprite* CSpriteSet::GetEntry(std::int32_t index) const
{
    if (index < 0 || static_cast<std::size_t>(index) >= entries.size())
        return nullptr;
    return &entries[static_cast<std::size_t>(index)];
}
