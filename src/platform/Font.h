#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

// A font request in the shape the game's fonts are described in.
struct LOGFONT {
    std::int32_t lfHeight = 0;
    std::int32_t lfWidth = 0;
    std::int32_t lfEscapement = 0;
    std::int32_t lfOrientation = 0;
    std::int32_t lfWeight = 0;
    std::uint8_t lfItalic = 0;
    std::uint8_t lfUnderline = 0;
    std::uint8_t lfStrikeOut = 0;
    std::uint8_t lfCharSet = 0;
    std::uint8_t lfOutPrecision = 0;
    std::uint8_t lfClipPrecision = 0;
    std::uint8_t lfQuality = 0;
    std::uint8_t lfPitchAndFamily = 0;
    char lfFaceName[32] = {};
};

constexpr std::int32_t FW_NORMAL = 400;
constexpr std::int32_t FW_BOLD = 700;
constexpr std::int32_t FW_HEAVY = 900;
constexpr std::uint8_t ANSI_CHARSET = 0;
constexpr std::uint8_t OUT_TT_PRECIS = 4;
constexpr std::uint8_t FIXED_PITCH = 0x01;
constexpr std::uint8_t FF_ROMAN = 0x10;
constexpr std::uint8_t FF_SWISS = 0x20;
constexpr std::uint8_t FF_MODERN = 0x30;

// One character's picture: how much of each pixel it covers (0..255), where
// it sits relative to the pen, and how far it moves the pen.
struct Glyph {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t advance = 0;
    std::vector<std::uint8_t> coverage;
    // Per row, the columns from the first covered pixel to one past the
    // last: most of a letter's box is empty, and drawing skips it.
    struct Inked {
        std::int32_t first = 0, end = 0;
    };
    std::vector<Inked> inked;
};

// A face chosen and sized for one request. Glyphs are rendered once, on first
// use, and kept, so drawing a frame's texts costs little.
class CFontFace {
public:
    ~CFontFace();
    static std::unique_ptr<CFontFace> Make(const LOGFONT& request);

    const Glyph& GetGlyph(unsigned char ch);
    std::int32_t GetHeight() const { return height; }

private:
    CFontFace() = default;

    struct FontHandle;
    FontHandle* font = nullptr;
    std::int32_t height = 0;
    std::array<std::unique_ptr<Glyph>, 256> glyphs;
};

// A font object: empty until a font is made from a request. Making one asks
// the system for the installed face that suits the request best.
class CFont {
public:
    CFont() = default;
    CFont(const CFont&) = delete;
    CFont& operator=(const CFont&) = delete;
    ~CFont() { DeleteObject(); }

    bool CreateFontIndirect(const LOGFONT& request);
    void DeleteObject();
    bool HasHandle() const { return face != nullptr; }
    const LOGFONT& GetRequest() const { return logFont; }
    CFontFace* GetFace() const { return face.get(); }

    // The font text is drawn in when none was chosen: the system font's shape.
    static CFont& Stock();

private:
    LOGFONT logFont;
    std::unique_ptr<CFontFace> face;
};
