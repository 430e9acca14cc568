#include "core/LinkedList.h"
#include "support/WorldObjects.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

using Obj = qvtest::OpenObject;

class ListTest : public ::testing::Test {
protected:
    // Inserts an object for each key, in the order given.
    std::vector<Obj*> Add(const std::vector<int>& keys)
    {
        std::vector<Obj*> added;
        for (int x : keys) {
            added.push_back(objects.emplace_back(std::make_unique<Obj>(x, 0)).get());
            list.Insert(added.back()->GetMasterItem());
        }
        return added;
    }
    std::vector<Obj*> Order() const
    {
        std::vector<Obj*> out;
        for (CLinkedItem* it = list.GetHead(); it; it = it->GetNext())
            out.push_back(static_cast<Obj*>(it->GetData()));
        return out;
    }
    int MiddlePosition() const
    {
        int i = 0;
        for (CLinkedItem* it = list.GetHead(); it && it != list.GetMiddle(); it = it->GetNext())
            ++i;
        return i;
    }
    // Walks the list and checks the links, owners, count and middle agree.
    void ExpectConsistent() const
    {
        int n = 0;
        const CLinkedItem* prev = nullptr;
        for (const CLinkedItem* it = list.GetHead(); it; prev = it, it = it->GetNext(), ++n)
            EXPECT_TRUE(it->GetPrev() == prev && it->GetOwner() == &list) << n;
        EXPECT_EQ(prev, list.GetTail());
        EXPECT_EQ(n, list.GetCount());
        EXPECT_LE(MiddlePosition(), list.GetMiddle() ? n - 1 : n);
    }

    std::vector<std::unique_ptr<Obj>> objects;
    CLinkedList list;
};

TEST_F(ListTest, SortedInsertKeepsOrderAndEqualKeysInArrivalOrder)
{
    const std::vector<Obj*> o = Add({5, 50, 1, 5, 30, 5, 40, -3});
    EXPECT_EQ(Order(), (std::vector<Obj*>{o[7], o[2], o[0], o[3], o[5], o[4], o[6], o[1]}));
    ExpectConsistent();
}

// The middle stays near the middle through inserts and removes; removing it
// moves it forward, or back at the tail, and removing the last empties it.
TEST_F(ListTest, TheMiddleFollowsInsertsAndRemoves)
{
    std::vector<int> keys;
    for (int i = 0; i < 40; ++i)
        keys.push_back((i * 37) % 101);
    const std::vector<Obj*> added = Add(keys);
    EXPECT_NEAR(MiddlePosition(), list.GetCount() / 2, 3);
    EXPECT_LE(std::abs(list.GetMidOffset()), 2);
    for (int i = 0; i < 30; i += 2)
        list.Remove(added[i]->GetMasterItem());
    ExpectConsistent();
    EXPECT_EQ(list.GetCount(), 25);
    EXPECT_NEAR(MiddlePosition(), list.GetCount() / 2, 4);

    while (list.GetCount() > 0)
        list.Remove(list.GetHead());
    Obj* high = Add({5, 1})[0]; // the 1 goes in front: the middle is now the tail
    list.Remove(high->GetMasterItem());
    EXPECT_EQ(list.GetMiddle(), list.GetHead());
    list.Remove(list.GetHead());
    ExpectConsistent();
    EXPECT_EQ(list.GetMiddle(), nullptr);

    const std::vector<Obj*> o = Add({1, 2, 3, 4});
    ASSERT_EQ(list.GetMiddle(), o[1]->GetMasterItem());
    list.Remove(list.GetMiddle());
    EXPECT_EQ(list.GetMiddle(), o[2]->GetMasterItem()); // the 3, which moved up
    ExpectConsistent();
}

TEST_F(ListTest, SwapOfNonAdjacentNodesExchangesThemCompletely)
{
    const std::vector<Obj*> o = Add({1, 2, 3, 4, 5});
    list.SwapItems(o[1]->GetMasterItem(), o[3]->GetMasterItem());
    list.SwapItems(o[0]->GetMasterItem(), o[4]->GetMasterItem()); // head and tail follow the positions
    EXPECT_EQ(Order(), (std::vector<Obj*>{o[4], o[3], o[2], o[1], o[0]}));
    ExpectConsistent();
}

} // namespace
