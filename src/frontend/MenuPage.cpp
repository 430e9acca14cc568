#include "frontend/MenuPage.h"

void CMenuPage::SelectNext()
{
    if (selected < Count() - 1)
        ++selected;
    else if (Count() > 0)
        selected = 0;
}

void CMenuPage::SelectPrevious()
{
    if (Count() == 0)
        return;
    if (selected < 1)
        selected = Count();
    --selected;
}

CMenuItem CMenuPage::GetSelectedItem() const
{
    if (selected < 0 || selected >= Count())
        return {};
    return items[static_cast<std::size_t>(selected)];
}
