#pragma once
#include <cstdint>

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
constexpr std::int32_t FW_HEAVY = 900;
constexpr std::uint8_t ANSI_CHARSET = 0;
constexpr std::uint8_t OUT_TT_PRECIS = 4;
constexpr std::uint8_t FF_MODERN = 0x30;

// A font object: empty until a font is made from a request.
class CFont {
public:
    CFont() = default;
    CFont(const CFont&) = delete;
    CFont& operator=(const CFont&) = delete;
    ~CFont() { DeleteObject(); }

    bool CreateFontIndirect(const LOGFONT& request);
    void DeleteObject();
    bool HasHandle() const { return created; }
    const LOGFONT& GetRequest() const { return logFont; }

private:
    LOGFONT logFont;
    bool created = false;
};
