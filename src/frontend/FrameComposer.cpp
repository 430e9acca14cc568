// Composing each frame on the back surface: the cleared background, the
// stars, every object's sprite, the heads-up texts, the readouts beside the
// ships, and the menus or the design screen over everything.
#include "app/GameApp.h"

#include "display/Bitmaps.h"
#include "display/SpriteInstance.h"
#include "frontend/ScreenStyle.h"
#include "frontend/TextPen.h"
#include "platform/DC.h"
#include "platform/Surface.h"
#include "ship/Ship.h"

#include <string>

namespace {

// The heads-up texts sit this far in from the screen's top and sides.
constexpr std::int32_t HudMargin = 20;
constexpr std::int32_t HudLineStep = 14;
// The right-hand column is aligned by an estimate of each character's width
// rather than by measuring every text every frame.
constexpr std::int32_t HudCharEstimate = 7;
// The readout's numbers start this far right of a ship's bounding square.
constexpr std::int32_t ReadoutGap = 10;

constexpr COLORREF ReadoutLow = RGB(200, 0, 0);
constexpr COLORREF ReadoutMiddle = RGB(200, 200, 0);
constexpr COLORREF ReadoutHigh = RGB(0, 200, 200);

// Red below a quarter, yellow below a half, cyan from there up.
COLORREF ReadoutColour(std::int32_t current, std::int32_t maximum)
{
    // A ship with no maximum has nothing to lose: it reads as full.
    if (maximum == 0)
        return ReadoutHigh;
    const double fraction = static_cast<double>(current) / maximum;
    if (fraction < 0.25)
        return ReadoutLow;
    if (fraction < 0.5)
        return ReadoutMiddle;
    return ReadoutHigh;
}

void WriteRightColumn(CTextPen& pen, std::int32_t screenWidth, std::int32_t line, const std::string& text)
{
    const auto estimatedWidth = HudCharEstimate * static_cast<std::int32_t>(text.size());
    pen.Write(screenWidth - estimatedWidth - HudMargin, HudMargin + line * HudLineStep, text);
}

} // namespace

void CGameApp::DrawFrame(double frameMs)
{
    CSurface* back = display.GetBack();
    if (!back)
        return;
    SetColourKey(back, RGB(0, 0, 0));
    back->ColourFill(nullptr, 0);
    if (menus.IsStarsOn())
        DrawStars(*back);
    for (auto next = liveSprites.begin(); next != liveSprites.end();) {
        CSpriteInstance* instance = *next++; // a draw may not leave its own node for the walk
        instance->Draw(frameMs);
    }

    CDC* dc = nullptr;
    if (back->GetDC(dc) != DD_OK || !dc)
        return;
    dc->SetBkMode(TRANSPARENT);
    {
        CTextPen pen(*dc, textFont, ScreenStyle::TextColour);
        DrawHeadsUp(pen);
    }
    if (menus.IsStatsOn()) {
        CTextPen pen(*dc, smallFont, ScreenStyle::TextColour);
        for (CGameObject* labelled : world.GetLabelList())
            if (const auto* ship = dynamic_cast<const CShip*>(labelled))
                DrawShipStats(*ship, pen);
    }
    if (gameState == StateMenu || gameState == StatePaused)
        menus.DrawScreen(*dc);
    else if (gameState == StateDesign)
        designer.Draw(*dc);
    back->ReleaseDC(dc);
}

void CGameApp::DrawStars(CSurface& back)
{
    CDC* dc = nullptr;
    if (back.GetDC(dc) != DD_OK || !dc)
        return;
    for (CStar& star : stars)
        star.Draw(*dc);
    back.ReleaseDC(dc);
}

void CGameApp::DrawHeadsUp(CTextPen& pen)
{
    WriteRightColumn(pen, screenWidth, 0, Labelled("Level: ", world.GetLevel()));
    WriteRightColumn(pen, screenWidth, 1, Labelled("Time Left: ", world.GetTimeLeft() / 1000));
    WriteRightColumn(pen, screenWidth, 2, Labelled("Score: ", world.GetScore()));
    if (const CShip* player = world.GetPlayer()) {
        pen.Write(HudMargin, HudMargin, Labelled("Energy: ", player->GetEnergy()));
        pen.Write(HudMargin, HudMargin + HudLineStep, Labelled("Hull: ", player->GetHull()));
    }
}

void CGameApp::DrawShipStats(const CShip& ship, CTextPen& pen)
{
    const std::int32_t x = ship.GetX() + ship.GetRadius() + ReadoutGap;
    pen.SetColour(ReadoutColour(ship.GetHull(), ship.GetHullMax()));
    pen.Write(x, ship.GetY() - ship.GetRadius(), std::to_string(ship.GetHull()));
    // The energy line is lifted by the heads-up font's height, not the readout's
    // own, so it ends level with the bottom of the ship's bounding square.
    const std::int32_t energyY = ship.GetY() + ship.GetRadius() - textFont.GetRequest().lfHeight;
    pen.SetColour(ReadoutColour(ship.GetEnergy(), ship.GetEnergyMax()));
    pen.Write(x, energyY, "(" + std::to_string(ship.GetEnergy()) + ")");
}
