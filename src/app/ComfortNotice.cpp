#include "app/ComfortNotice.h"

#include "frontend/TextPen.h"
#include "platform/DC.h"
#include "platform/Surface.h"

namespace {

// Opposite the replay marker, in its colour and size.
constexpr std::int32_t Margin = 8;
constexpr std::int32_t Rise = 18;
constexpr std::int32_t CharacterWidth = 7;
constexpr COLORREF NoticeColour = RGB(150, 150, 150);

} // namespace

CComfortNotice& CComfortNotice::Instance()
{
    static CComfortNotice notice;
    return notice;
}

void CComfortNotice::Show(const std::string& newText, std::uint32_t now)
{
    text = newText;
    since = now;
}

std::string CComfortNotice::Current(std::uint32_t now) const
{
    return now - since < ShowMs ? text : std::string();
}

void CComfortNotice::Draw(CSurface& back, CFont& font, std::int32_t screenWidth, std::int32_t screenHeight,
                          std::uint32_t now) const
{
    const std::string shown = Current(now);
    CDC* dc = nullptr;
    if (shown.empty() || back.GetDC(dc) != DD_OK || !dc)
        return;
    dc->SetBkMode(TRANSPARENT);
    {
        CTextPen pen(*dc, font, NoticeColour);
        const auto width = static_cast<std::int32_t>(shown.size()) * CharacterWidth;
        pen.Write(screenWidth - Margin - width, screenHeight - Rise, shown);
    }
    back.ReleaseDC(dc);
}
