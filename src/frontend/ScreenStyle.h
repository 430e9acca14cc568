#pragma once
#include "platform/DrawTypes.h"

// The colours every screen of the front end shares.
namespace ScreenStyle {
constexpr COLORREF TitleColour = RGB(180, 90, 225);   // titles and headings
constexpr COLORREF TextColour = RGB(60, 120, 120);    // plain text and the heads-up texts
constexpr COLORREF HighlightColour = RGB(250, 250, 100);
constexpr COLORREF BoxFill = RGB(0, 0, 0);
constexpr COLORREF BoxFrame = RGB(50, 50, 50);
} // namespace ScreenStyle
