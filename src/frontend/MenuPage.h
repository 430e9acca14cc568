#pragma once
#include <cstdint>
#include <string>
#include <vector>

// What choosing a menu entry does.
enum MenuAction : std::int32_t {
    ActionNone = -1,
    ActionExitGame = 0,
    ActionNewGame = 1,
    ActionShowOptions = 2,
    ActionShowHighScores = 3,
    ActionShowHelp = 4,
    ActionShowAbout = 5,
};

// One entry of a menu page.
struct CMenuItem {
    std::string label;
    std::int32_t action = ActionNone;
};

// A titled list of entries with one of them selected; the selection wraps.
class CMenuPage {
public:
    explicit CMenuPage(std::string pageTitle) : title(std::move(pageTitle)) {}

    void AddItem(std::string label, std::int32_t action) { items.push_back({std::move(label), action}); }
    void SelectNext();
    void SelectPrevious();

    // A copy of the selected entry; on a page without entries, one that does nothing.
    CMenuItem GetSelectedItem() const;
    std::int32_t GetSelectedIndex() const { return selected; }
    const std::string& GetTitle() const { return title; }
    const std::vector<CMenuItem>& GetItems() const { return items; }

private:
    std::int32_t Count() const { return static_cast<std::int32_t>(items.size()); }

    std::vector<CMenuItem> items;
    std::string title;
    std::int32_t selected = 0;
};
