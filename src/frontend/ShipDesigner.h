#pragma once
#include "platform/DrawTypes.h"
#include "platform/Types.h"

#include <cstdint>
#include <vector>

class CComponent;
class CDC;
class CShip;
class CTextPen;

// The ship design screen between levels: the components on offer on one
// side, the ship's own on the other, the ship's statistics and the details
// of the highlighted components. Components move between the two lists with
// Enter or Space; a letter or digit gives the highlighted laser its fire key;
// Escape starts the level.
class CShipDesigner {
public:
    // Which list the arrow keys and Enter work on.
    enum Focus : std::int16_t {
        FocusOffer = 1,
        FocusShip = 2,
    };

    // The five panels of the screen.
    struct Layout {
        RECT offerList;
        RECT componentList;
        RECT shipPanel;
        RECT offerDetail;
        RECT componentDetail;
    };
    static Layout ComputeLayout(std::int32_t width, std::int32_t height);

    CShipDesigner() { Reset(); }

    // Every visit starts on the offer with both lists at the top.
    void Reset();
    void Draw(CDC& dc);
    void OnKey(UINT key, bool pressed);

    std::int16_t GetFocus() const { return focus; }
    std::int16_t GetOfferSelection() const { return offerSelection; }
    std::int16_t GetComponentSelection() const { return componentSelection; }
    bool IsLayoutReady() const { return layoutReady; }
    const Layout& GetLayout() const { return layout; }

private:
    using ComponentList = std::vector<CComponent*>;

    void MoveSelection(int step, const ComponentList& offers, const ComponentList& fitted);
    void MoveBetweenLists(CShip& ship, const ComponentList& offers, const ComponentList& fitted);
    void SetFireKey(char key, const ComponentList& fitted) const;

    void DrawHeadings(CTextPen& pen, const ComponentList& offers, const ComponentList& fitted);
    void DrawStatistics(CTextPen& pen, const CShip& ship);
    void DrawTutorial(CTextPen& pen, std::int16_t level);

    bool layoutReady = false;
    Layout layout{};
    std::int16_t focus = FocusOffer;
    std::int16_t offerSelection = 0;
    std::int16_t componentSelection = 0;
};
