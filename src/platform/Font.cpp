#include "platform/Font.h"

#include <SDL.h>
#include <SDL_ttf.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

struct CFontFace::FontHandle {
    TTF_Font* ttf = nullptr;
};

namespace {

// The resolution glyph sizes are worked out in: one point is one pixel.
constexpr unsigned BaseDpi = 72;
// A request heavier than the face found by at least this much is emboldened.
constexpr int EmboldenAbove = 600;

struct FaceFile {
    std::string path;
    int index = 0;
    int weight = FC_WEIGHT_REGULAR;
};

std::string FamilyFor(const LOGFONT& request)
{
    std::string faceName(request.lfFaceName, strnlen(request.lfFaceName, sizeof request.lfFaceName));
    if (!faceName.empty())
        return faceName;
    const int family = request.lfPitchAndFamily & 0xF0;
    // Only a fixed pitch asked for gets a monospaced face. The game's modern
    // fonts take the proportional face: its lines of text come out a little
    // narrower than their nominal widths, as the screens' layouts expect.
    if (request.lfPitchAndFamily & FIXED_PITCH)
        return "monospace";
    if (family == FF_ROMAN)
        return "serif";
    return "sans-serif";
}

int RequestedWeight(const LOGFONT& request)
{
    return request.lfWeight > 0 ? request.lfWeight : FW_NORMAL;
}

// Plays the font mapper: the installed face fontconfig finds closest to the request.
bool MatchFace(const LOGFONT& request, FaceFile& out)
{
    if (!FcInit())
        return false;
    FcPattern* pattern = FcPatternCreate();
    const std::string family = FamilyFor(request);
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
    FcPatternAddInteger(pattern, FC_WEIGHT, FcWeightFromOpenType(RequestedWeight(request)));
    FcPatternAddInteger(pattern, FC_SLANT, request.lfItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, pattern, &result);
    FcPatternDestroy(pattern);
    if (!match)
        return false;
    FcChar8* file = nullptr;
    bool found = FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch && file;
    if (found) {
        out.path = reinterpret_cast<const char*>(file);
        FcPatternGetInteger(match, FC_INDEX, 0, &out.index);
        FcPatternGetInteger(match, FC_WEIGHT, 0, &out.weight);
    }
    FcPatternDestroy(match);
    return found;
}

int AdvanceOf(TTF_Font* font, Uint16 ch)
{
    int minx = 0, maxx = 0, miny = 0, maxy = 0, advance = 0;
    if (TTF_GlyphMetrics(font, ch, &minx, &maxx, &miny, &maxy, &advance) != 0)
        return 0;
    return advance;
}

// Sizes the face so that a line is the requested height (a positive height
// is the whole cell, a negative one the characters alone, as the system's
// fonts take it) and, for a requested width, each character that wide.
void FitToRequest(TTF_Font* font, const LOGFONT& request)
{
    int pointSize = std::abs(request.lfHeight);
    if (pointSize == 0)
        return;
    if (request.lfHeight > 0) {
        TTF_SetFontSizeDPI(font, pointSize, BaseDpi, BaseDpi);
        const int cell = TTF_FontHeight(font);
        if (cell > 0)
            pointSize = std::max(1, (request.lfHeight * pointSize + cell / 2) / cell);
    }
    unsigned horizontalDpi = BaseDpi;
    if (request.lfWidth > 0) {
        TTF_SetFontSizeDPI(font, pointSize, BaseDpi, BaseDpi);
        if (const int natural = AdvanceOf(font, '0'); natural > 0)
            horizontalDpi = static_cast<unsigned>((BaseDpi * request.lfWidth + natural / 2) / natural);
    }
    TTF_SetFontSizeDPI(font, pointSize, std::max(1u, horizontalDpi), BaseDpi);
}

} // namespace

CFontFace::~CFontFace()
{
    if (font) {
        if (font->ttf)
            TTF_CloseFont(font->ttf);
        delete font;
    }
}

std::unique_ptr<CFontFace> CFontFace::Make(const LOGFONT& request)
{
    if (!TTF_WasInit() && TTF_Init() != 0)
        return nullptr;
    FaceFile file;
    if (!MatchFace(request, file))
        return nullptr;
    TTF_Font* ttf = TTF_OpenFontIndexDPI(file.path.c_str(), std::max(1, std::abs(request.lfHeight)), file.index,
                                         BaseDpi, BaseDpi);
    if (!ttf)
        return nullptr;
    FitToRequest(ttf, request);
    int style = TTF_STYLE_NORMAL;
    if (RequestedWeight(request) >= EmboldenAbove && file.weight < FC_WEIGHT_DEMIBOLD)
        style |= TTF_STYLE_BOLD;
    if (request.lfItalic)
        style |= TTF_STYLE_ITALIC;
    if (request.lfUnderline)
        style |= TTF_STYLE_UNDERLINE;
    if (request.lfStrikeOut)
        style |= TTF_STYLE_STRIKETHROUGH;
    TTF_SetFontStyle(ttf, style);
    TTF_SetFontHinting(ttf, TTF_HINTING_NORMAL);

    std::unique_ptr<CFontFace> face(new CFontFace());
    face->font = new FontHandle{ttf};
    face->height = TTF_FontHeight(ttf);
    return face;
}

const Glyph& CFontFace::GetGlyph(unsigned char ch)
{
    auto& slot = glyphs[ch];
    if (slot)
        return *slot;
    slot = std::make_unique<Glyph>();
    // The game's texts are single bytes; those above 127 are read as Latin-1.
    const Uint16 code = ch;
    slot->advance = AdvanceOf(font->ttf, code);
    SDL_Surface* rendered = TTF_RenderGlyph_Blended(font->ttf, code, SDL_Color{255, 255, 255, 255});
    if (rendered) {
        SDL_Surface* argb = SDL_ConvertSurfaceFormat(rendered, SDL_PIXELFORMAT_ARGB8888, 0);
        SDL_FreeSurface(rendered);
        if (argb) {
            slot->width = argb->w;
            slot->height = argb->h;
            slot->coverage.resize(static_cast<std::size_t>(argb->w) * argb->h);
            SDL_LockSurface(argb);
            for (int y = 0; y < argb->h; ++y) {
                const auto* row = reinterpret_cast<const Uint32*>(static_cast<const Uint8*>(argb->pixels) + y * argb->pitch);
                for (int x = 0; x < argb->w; ++x)
                    slot->coverage[static_cast<std::size_t>(y) * argb->w + x] = static_cast<std::uint8_t>(row[x] >> 24);
            }
            SDL_UnlockSurface(argb);
            SDL_FreeSurface(argb);
        }
    }
    slot->inked.resize(static_cast<std::size_t>(slot->height));
    for (std::int32_t y = 0; y < slot->height; ++y) {
        const auto row = slot->coverage.begin() + static_cast<std::ptrdiff_t>(y) * slot->width;
        const auto end = row + slot->width;
        const auto first = std::find_if(row, end, [](std::uint8_t c) { return c != 0; });
        if (first == end)
            continue;
        const auto last = std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(first),
                                       [](std::uint8_t c) { return c != 0; });
        slot->inked[static_cast<std::size_t>(y)] = {static_cast<std::int32_t>(first - row),
                                                    static_cast<std::int32_t>(last.base() - row)};
    }
    return *slot;
}

bool CFont::CreateFontIndirect(const LOGFONT& request)
{
    DeleteObject();
    logFont = request;
    face = CFontFace::Make(request);
    return face != nullptr;
}

void CFont::DeleteObject()
{
    face.reset();
}

CFont& CFont::Stock()
{
    static CFont stock;
    if (!stock.HasHandle()) {
        LOGFONT request;
        request.lfHeight = 16;
        request.lfWeight = FW_BOLD;
        request.lfPitchAndFamily = FF_SWISS;
        stock.CreateFontIndirect(request);
    }
    return stock;
}
