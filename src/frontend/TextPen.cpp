#include "frontend/TextPen.h"

#include "frontend/ScreenStyle.h"
#include "platform/DC.h"
#include "platform/Font.h"

namespace {

CTextPen::Recorder& recorder()
{
    static CTextPen::Recorder current;
    return current;
}

} // namespace

CTextPen::CTextPen(CDC& context, CFont& startFont, COLORREF startColour)
    : dc(context), previousFont(context.SelectObject(&startFont)), font(&startFont), colour(startColour)
{
    dc.SetTextColor(colour);
}

CTextPen::~CTextPen()
{
    dc.SelectObject(previousFont);
}

void CTextPen::SetFont(CFont& newFont)
{
    font = &newFont;
    dc.SelectObject(font);
}

void CTextPen::SetColour(COLORREF newColour)
{
    colour = newColour;
    dc.SetTextColor(colour);
}

void CTextPen::Write(std::int32_t x, std::int32_t y, const std::string& text)
{
    dc.TextOut(x, y, text);
    if (recorder())
        recorder()({x, y, text, colour, font});
}

void CTextPen::WriteCentred(std::int32_t left, std::int32_t right, std::int32_t y, const std::string& text)
{
    const auto textWidth = static_cast<std::int32_t>(text.size()) * font->GetRequest().lfWidth;
    Write(left + (right - left - textWidth) / 2, y, text);
}

void CTextPen::SetRecorder(Recorder newRecorder)
{
    recorder() = std::move(newRecorder);
}

void DrawBox(CDC& dc, const RECT& box)
{
    dc.FillRect(box, ScreenStyle::BoxFill);
    dc.FrameRect(box, ScreenStyle::BoxFrame);
}

std::string Labelled(const char* label, std::int32_t value)
{
    return label + std::to_string(value);
}
