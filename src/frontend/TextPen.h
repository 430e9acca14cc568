#pragma once
#include "platform/DrawTypes.h"

#include <cstdint>
#include <functional>
#include <string>

class CDC;
class CFont;

// One text as a screen wrote it.
struct WrittenText {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::string text;
    COLORREF colour = 0;
    const CFont* font = nullptr;
};

// Writes a screen's texts on a drawing context, in one font and colour at a
// time. The context gets back the font it had when the pen goes.
class CTextPen {
public:
    CTextPen(CDC& dc, CFont& font, COLORREF colour);
    ~CTextPen();
    CTextPen(const CTextPen&) = delete;
    CTextPen& operator=(const CTextPen&) = delete;

    void SetFont(CFont& newFont);
    void SetColour(COLORREF newColour);
    void Write(std::int32_t x, std::int32_t y, const std::string& text);
    // Centred between left and right by the font's nominal character width,
    // not by the measured text, so a title stays put whatever face is found.
    void WriteCentred(std::int32_t left, std::int32_t right, std::int32_t y, const std::string& text);

    CDC& Context() { return dc; }

    // Every text any pen writes goes to the recorder too, while one is set.
    using Recorder = std::function<void(const WrittenText&)>;
    static void SetRecorder(Recorder recorder);

private:
    CDC& dc;
    CFont* previousFont;
    CFont* font;
    COLORREF colour;
};

// A label followed by a number, as the screens' statistics read.
std::string Labelled(const char* label, std::int32_t value);

// A filled rectangle with a one-pixel frame, as the screens' panels are drawn.
void DrawBox(CDC& dc, const RECT& box);
