#include "frontend/ShipDesigner.h"

#include "app/GameControl.h"
#include "display/Screen.h"
#include "frontend/CharacterKey.h"
#include "frontend/GameFonts.h"
#include "frontend/ScreenStyle.h"
#include "frontend/TextPen.h"
#include "platform/DC.h"
#include "ship/Ship.h"
#include "world/World.h"

#include <array>
#include <memory>
#include <string>

namespace {

constexpr std::int32_t Margin = 50;   // the screen's edge to the outer panels
constexpr std::int32_t PanelTop = 100;
constexpr std::int32_t Gap = 15;      // between two panels
// The three columns share what the margins and gaps leave of the width.
constexpr std::int32_t ColumnSpacing = 2 * Margin + 2 * Gap;
// The detail panels reach a third of the way down, and this much further.
constexpr std::int32_t DetailDrop = 30;
constexpr std::int32_t TextIndent = 10;
constexpr std::int32_t HeadingDrop = 10;
constexpr std::int32_t FirstLineDrop = 40;
constexpr std::int32_t LineStep = 15;
// A component's details fill the left column first, then go on at the top of the right one.
constexpr std::size_t DetailColumnLines = 8;

constexpr std::int32_t HelpRise = 85; // above the screen's bottom
constexpr std::int32_t TutorialRise = 70;
constexpr const char* HelpLine = "Use arrow keys to select a component then press enter of space to move it between "
                                 "lists. Press escape to begin the level.";
constexpr const char* NoShip = "No Ship!";

using TutorialHint = std::array<const char*, 3>;
// The hints for the first four levels, three lines each.
constexpr std::array<TutorialHint, 4> TutorialHints{{
    {"First step to ship design is to add an engine and at least one Jet. Components with a + before their name may be stacked",
     "meaning you can add more than one of them. Add a subspace sail to increase your top speed. In this level there will be",
     " no enemies however you will need to avoid colliding with asteroids as they damage your ship."},
    {"Now it's time to add an energy generator and laser to your ship. You can customise the fire key by pressing any",
     "alpha-numeric key when your laser is highlighted in the ship components screen. Be careful for you will encounter an enemy",
     "in this level. Keep your eye out for golden powerups in asteroids as these will give you better components next level."},
    {"When you get powerups you will get additional components after the first shield, these will be significantly better than",
     "normal and you can only get an armour compontent this way. Please read the help file for infomation on each component",
     " type. Each level the base tec level increases so you will need to update all your components reguarly."},
    {"In this level you will meet the most dangerous enemy. A good tactic against enemies is to add more than one laser and set",
     "the fire key to the same key. This will cause your lasers to fire in quick succession and makes it easer to overwhelm your",
     "enemies but be careful not to use up all your energy. This is the last tutorial level."},
}};

std::int32_t LineY(const RECT& panel, std::size_t line)
{
    return panel.top + FirstLineDrop + LineStep * static_cast<std::int32_t>(line);
}

// The component at a selection, or null when the selection lies past the list.
CComponent* Selected(const std::vector<CComponent*>& list, std::int16_t selection)
{
    return selection >= 0 && static_cast<std::size_t>(selection) < list.size() ? list[static_cast<std::size_t>(selection)]
                                                                               : nullptr;
}

// The ship's components, listed afresh each time: the ship's arrays move as it changes.
std::vector<CComponent*> FittedTo(CShip* ship)
{
    std::vector<CComponent*> fitted;
    if (ship)
        ship->ListComponents(fitted);
    return fitted;
}

// Display names, one a line; the selected one stands out while its list has the focus.
void DrawList(CTextPen& pen, const RECT& panel, const std::vector<CComponent*>& list, std::int16_t selection,
              bool focused)
{
    for (std::size_t i = 0; i < list.size(); ++i) {
        const bool highlighted = focused && static_cast<std::int16_t>(i) == selection;
        pen.SetColour(highlighted ? ScreenStyle::HighlightColour : ScreenStyle::TextColour);
        pen.Write(panel.left + TextIndent, LineY(panel, i), list[i]->GetDisplayName());
    }
    pen.SetColour(ScreenStyle::TextColour);
}

// The stat lines of one component, in two columns.
void DrawDetail(CTextPen& pen, const RECT& panel, const CComponent* component)
{
    if (!component)
        return;
    std::vector<std::string> lines;
    component->AppendStatLines(lines);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const bool leftColumn = i < DetailColumnLines;
        const std::int32_t x = leftColumn ? panel.left + TextIndent : panel.left + panel.Width() / 2;
        pen.Write(x, LineY(panel, leftColumn ? i : i - DetailColumnLines), lines[i]);
    }
}

} // namespace

CShipDesigner::Layout CShipDesigner::ComputeLayout(std::int32_t width, std::int32_t height)
{
    Layout l;
    const std::int32_t bottom = height - PanelTop;
    l.shipPanel = {Margin, PanelTop, Margin + (width - ColumnSpacing) / 3, bottom};
    l.offerDetail = {l.shipPanel.right + Gap, PanelTop, Margin + Gap + 2 * (width - ColumnSpacing) / 3,
                     DetailDrop + height / 3};
    l.offerList = {l.offerDetail.left, l.offerDetail.bottom + Gap, l.offerDetail.right, bottom};
    l.componentDetail = {l.offerDetail.right + Gap, PanelTop, width - Margin, l.offerDetail.bottom};
    l.componentList = {l.componentDetail.left, l.offerDetail.bottom + Gap, width - Margin, bottom};
    return l;
}

void CShipDesigner::Reset()
{
    focus = FocusOffer;
    offerSelection = 0;
    componentSelection = 0;
}

void CShipDesigner::OnKey(UINT key, bool pressed)
{
    if (!pressed)
        return;
    CShip* ship = TheWorld().GetPlayer();
    const ComponentList fitted = FittedTo(ship);
    const ComponentList& offers = TheWorld().GetStock();
    const auto code = static_cast<std::uint8_t>(key & 0xFF);
    switch (code) {
    case VK_UP: MoveSelection(-1, offers, fitted); break;
    case VK_DOWN: MoveSelection(+1, offers, fitted); break;
    case VK_LEFT:
    case VK_RIGHT:
        // The ship's list can only take the focus while it lists something.
        focus = focus == FocusOffer && !fitted.empty() ? FocusShip : FocusOffer;
        break;
    case VK_ESCAPE: Game::SetGameState(StatePlaying); break;
    case VK_RETURN:
    case VK_SPACE:
        if (ship)
            MoveBetweenLists(*ship, offers, fitted);
        break;
    default:
        if (IsCharacterKey(code))
            SetFireKey(static_cast<char>(code), fitted);
        break;
    }
}

// The selection stops at either end of its list.
void CShipDesigner::MoveSelection(int step, const ComponentList& offers, const ComponentList& fitted)
{
    const bool onOffer = focus == FocusOffer;
    std::int16_t& selection = onOffer ? offerSelection : componentSelection;
    const auto count = static_cast<int>(onOffer ? offers.size() : fitted.size());
    if ((step < 0 && selection > 0) || (step > 0 && selection < count - 1))
        selection = static_cast<std::int16_t>(selection + step);
}

// Fits a copy of the selected offer, which stays on offer; or gives the
// selected ship component back to the offer and takes it off the ship.
void CShipDesigner::MoveBetweenLists(CShip& ship, const ComponentList& offers, const ComponentList& fitted)
{
    if (!offers.empty() && focus == FocusOffer) {
        if (CComponent* offer = Selected(offers, offerSelection))
            ship.AddComponent(offer);
        return;
    }
    const CComponent* chosen = Selected(fitted, componentSelection);
    if (!chosen)
        return;
    // The ship's arrays change under the removal, so it works on a copy.
    const std::unique_ptr<CComponent> removed = CComponent::MakeCopy(*chosen);
    TheWorld().AddToStock(*removed);
    if (!ship.RemoveComponent(*removed))
        return;
    const bool wasLast = static_cast<std::size_t>(componentSelection) == fitted.size() - 1;
    if (!wasLast)
        return;
    if (componentSelection > 0)
        --componentSelection;
    else
        focus = FocusOffer; // the ship's list is empty now
}

// A letter or digit becomes the fire key of the highlighted ship component,
// whichever list has the focus, when that component is a laser.
void CShipDesigner::SetFireKey(char key, const ComponentList& fitted) const
{
    CComponent* chosen = Selected(fitted, componentSelection);
    if (chosen && chosen->GetKind() == KindLaser)
        static_cast<CLaser*>(chosen)->SetFireKey(key);
}

void CShipDesigner::Draw(CDC& dc)
{
    CShip* ship = TheWorld().GetPlayer();
    const ComponentList fitted = FittedTo(ship);
    const ComponentList& offers = TheWorld().GetStock();
    if (!layoutReady) {
        layout = ComputeLayout(ScreenWidth(), ScreenHeight());
        layoutReady = true;
    }
    for (const RECT& panel : {layout.shipPanel, layout.offerDetail, layout.offerList, layout.componentDetail,
                              layout.componentList})
        DrawBox(dc, panel);

    dc.SetBkMode(TRANSPARENT);
    CTextPen pen(dc, MenuFont(), ScreenStyle::TitleColour);
    DrawHeadings(pen, offers, fitted);
    pen.SetFont(TextFont());
    pen.SetColour(ScreenStyle::TextColour);
    if (ship) {
        DrawStatistics(pen, *ship);
    } else {
        for (const RECT& panel : {layout.shipPanel, layout.componentDetail, layout.componentList})
            pen.Write(panel.left + TextIndent, LineY(panel, 0), NoShip);
    }
    DrawList(pen, layout.offerList, offers, offerSelection, focus == FocusOffer);
    DrawDetail(pen, layout.offerDetail, Selected(offers, offerSelection));
    DrawList(pen, layout.componentList, fitted, componentSelection, focus == FocusShip);
    DrawDetail(pen, layout.componentDetail, Selected(fitted, componentSelection));
    pen.Write(Margin, ScreenHeight() - HelpRise, HelpLine);
    DrawTutorial(pen, TheWorld().GetLevel());
}

void CShipDesigner::DrawHeadings(CTextPen& pen, const ComponentList& offers, const ComponentList& fitted)
{
    auto heading = [&pen](const RECT& panel, const std::string& text) {
        pen.WriteCentred(panel.left, panel.right, panel.top + HeadingDrop, text);
    };
    heading(layout.shipPanel, "Your Ship");
    if (const CComponent* offer = Selected(offers, offerSelection))
        heading(layout.offerDetail, offer->GetDisplayName());
    heading(layout.offerList, "New Components");
    if (const CComponent* component = Selected(fitted, componentSelection))
        heading(layout.componentDetail, component->GetDisplayName());
    heading(layout.componentList, "Ship Components");
}

void CShipDesigner::DrawStatistics(CTextPen& pen, const CShip& ship)
{
    const std::string lines[] = {
        Labelled("Mass: ", ship.GetDisplayMass()),
        Labelled("Space Left: ", ship.GetSpaceLeft()),
        Labelled("Speed: ", ship.GetMaxSpeed()),
        Labelled("Turn Speed: ", ship.GetDisplayTurnSpeed()),
        Labelled("Thrust: ", ship.GetDisplayThrust()),
        Labelled("Hull: ", ship.GetHullMax()),
        Labelled("Energy: ", ship.GetEnergyMax()),
        Labelled("Recharge: ", ship.GetEnergyRecharge()),
        Labelled("Shield Strength: ", ship.GetShieldStrength()),
        Labelled("Shield Energy Loss: ", ship.GetDisplayShieldLoss()) + "%",
    };
    for (std::size_t i = 0; i < std::size(lines); ++i)
        pen.Write(layout.shipPanel.left + TextIndent, LineY(layout.shipPanel, i), lines[i]);
}

void CShipDesigner::DrawTutorial(CTextPen& pen, std::int16_t level)
{
    if (level < 1 || static_cast<std::size_t>(level) > TutorialHints.size())
        return;
    const TutorialHint& hint = TutorialHints[static_cast<std::size_t>(level - 1)];
    const std::int32_t firstY = ScreenHeight() - TutorialRise;
    for (std::size_t i = 0; i < hint.size(); ++i)
        pen.Write(Margin, firstY + LineStep * static_cast<std::int32_t>(i), hint[i]);
}
