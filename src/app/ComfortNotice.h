#pragma once
#include <cstdint>
#include <string>

class CFont;
class CSurface;

// A word about a comfort just changed ("Scaling: sharp"), shown over the
// picture for a moment. It is no part of the game's own frame: it is drawn
// after the frame is kept and before it is shown, as the replay marker is.
class CComfortNotice {
public:
    static constexpr std::uint32_t ShowMs = 2000;

    static CComfortNotice& Instance();
    void Show(const std::string& text, std::uint32_t now);
    // The text showing at now (a millisecond clock that may wrap), or empty.
    std::string Current(std::uint32_t now) const;
    void Draw(CSurface& back, CFont& font, std::int32_t screenWidth, std::int32_t screenHeight,
              std::uint32_t now) const;

private:
    std::string text;
    std::uint32_t since = 0;
};
