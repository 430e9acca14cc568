#include "display/SpriteInstance.h"
#include "display/SpriteList.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<CSpriteInstance*> Contents(CSpriteList& list)
{
    return {list.begin(), list.end()};
}

TEST(SpriteList, ATicketTakesOutItsOwnInstanceAndKeepsTheDrawingOrder)
{
    CSpriteList list;
    std::vector<CSpriteInstance*> made;
    std::vector<CSpriteList::Ticket> tickets;
    for (int i = 0; i < 4; ++i) {
        made.push_back(new CSpriteInstance);
        tickets.push_back(list.Add(made.back()));
    }
    list.Remove(tickets[1]);
    list.Remove(tickets[3]);
    EXPECT_EQ(Contents(list), (std::vector<CSpriteInstance*>{made[0], made[2]}));
    list.Remove(tickets[1]); // spent: nothing more happens
    EXPECT_EQ(list.size(), 2u);
    made.push_back(new CSpriteInstance);
    list.Add(made.back());
    EXPECT_EQ(Contents(list), (std::vector<CSpriteInstance*>{made[0], made[2], made[4]}));
}

// A new game deletes every look before the world lets go of its objects;
// their tickets must then name nothing, even once new looks are listed.
TEST(SpriteList, EmptyingTheListVoidsEveryEarlierTicket)
{
    CSpriteList list;
    CSpriteList::Ticket old = list.Add(new CSpriteInstance);
    list.DeleteAll();
    EXPECT_TRUE(list.empty());
    auto* fresh = new CSpriteInstance;
    CSpriteList::Ticket current = list.Add(fresh);
    list.Remove(old);
    EXPECT_EQ(Contents(list), std::vector<CSpriteInstance*>{fresh});
    list.Remove(current);
    EXPECT_TRUE(list.empty());
}

} // namespace
