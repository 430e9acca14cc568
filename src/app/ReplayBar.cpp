#include "app/ReplayBar.h"

#include "frontend/TextPen.h"
#include "platform/DC.h"
#include "platform/Surface.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::int32_t BarHeight = 3;
constexpr std::int32_t MarkHeight = 7;
constexpr std::int32_t CaptionRise = 20;
constexpr std::int32_t CaptionCharacterWidth = 7;
constexpr COLORREF TrackColour = RGB(70, 70, 70);
constexpr COLORREF PlayedColour = RGB(200, 200, 200);
constexpr COLORREF MarkColour = RGB(230, 180, 60);
constexpr COLORREF CaptionColour = RGB(200, 200, 200);

COLORREF Faded(COLORREF colour, double opacity)
{
    const auto part = [opacity](int value) { return static_cast<std::uint8_t>(value * opacity); };
    return RGB(part(GetRValue(colour)), part(GetGValue(colour)), part(GetBValue(colour)));
}

std::string Clock(double ms)
{
    const auto seconds = static_cast<long>(std::max(0.0, ms) / 1000.0);
    char text[32];
    std::snprintf(text, sizeof text, "%ld:%02ld", seconds / 60, seconds % 60);
    return text;
}

std::int32_t Across(double ms, double totalMs, std::int32_t width)
{
    if (totalMs <= 0.0)
        return 0;
    return static_cast<std::int32_t>(std::clamp(ms / totalMs, 0.0, 1.0) * (width - 1));
}

} // namespace

void CReplayBar::Wake(std::uint32_t now)
{
    woken = true;
    since = now;
}

double CReplayBar::Opacity(std::uint32_t now) const
{
    const std::uint32_t idle = now - since;
    if (!woken || idle >= ShowMs + FadeMs)
        return 0.0;
    if (idle <= ShowMs)
        return 1.0;
    return 1.0 - static_cast<double>(idle - ShowMs) / FadeMs;
}

std::string CReplayBar::Caption(const State& state)
{
    std::string caption = state.speed;
    if (state.paused)
        caption += "  paused";
    return caption + "  " + Clock(state.atMs) + " / " + Clock(state.totalMs);
}

void CReplayBar::Draw(CSurface& back, CFont& font, std::int32_t screenWidth, std::int32_t screenHeight,
                      const State& state, std::uint32_t now) const
{
    const double opacity = Opacity(now);
    CDC* dc = nullptr;
    if (opacity <= 0.0 || back.GetDC(dc) != DD_OK || !dc)
        return;
    const std::int32_t top = screenHeight - BarHeight;
    dc->FillRect({0, top, screenWidth, screenHeight}, Faded(TrackColour, opacity));
    dc->FillRect({0, top, Across(state.atMs, state.totalMs, screenWidth) + 1, screenHeight},
                 Faded(PlayedColour, opacity));
    for (double ms : state.levelMs) {
        const std::int32_t x = Across(ms, state.totalMs, screenWidth);
        dc->FillRect({x, screenHeight - MarkHeight, x + 2, screenHeight}, Faded(MarkColour, opacity));
    }
    dc->SetBkMode(TRANSPARENT);
    {
        CTextPen pen(*dc, font, Faded(CaptionColour, opacity));
        const std::string caption = Caption(state);
        const auto width = static_cast<std::int32_t>(caption.size()) * CaptionCharacterWidth;
        pen.Write((screenWidth - width) / 2, screenHeight - CaptionRise, caption);
    }
    back.ReleaseDC(dc);
}
