#include "core/LinkedList.h"
#include "world/GameObject.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

struct Obj : CGameObject {
    explicit Obj(int x) { MoveTo(x); }
    void MoveTo(int x)
    {
        CVector v;
        v.Set(x, 0, 0, 0);
        SetVector(v);
    }
    CLinkedItem* Node() const { return GetMasterItem(); }
};

class ListTest : public ::testing::Test {
protected:
    Obj* Add(int x)
    {
        Obj* o = objects.emplace_back(std::make_unique<Obj>(x)).get();
        list.Insert(o->Node());
        return o;
    }
    std::vector<Obj*> Order() const
    {
        std::vector<Obj*> out;
        for (CLinkedItem* it = list.GetHead(); it; it = it->GetNext())
            out.push_back(static_cast<Obj*>(it->GetData()));
        return out;
    }
    int PositionOf(const CLinkedItem* target) const
    {
        int i = 0;
        for (CLinkedItem* it = list.GetHead(); it && it != target; it = it->GetNext())
            ++i;
        return i;
    }
    // Walks the list and checks the links, owners, count and middle agree.
    void ExpectConsistent() const
    {
        int n = 0;
        const CLinkedItem* prev = nullptr;
        for (const CLinkedItem* it = list.GetHead(); it; it = it->GetNext(), ++n) {
            EXPECT_TRUE(it->GetPrev() == prev && it->GetOwner() == &list) << n;
            prev = it;
        }
        EXPECT_EQ(prev, list.GetTail());
        EXPECT_EQ(n, list.GetCount());
        EXPECT_LE(PositionOf(list.GetMiddle()), list.GetMiddle() ? n - 1 : n);
    }

    std::vector<std::unique_ptr<Obj>> objects;
    CLinkedList list;
};

TEST_F(ListTest, SortedInsertKeepsOrderAndEqualKeysInArrivalOrder)
{
    std::vector<Obj*> fives;
    for (int x : {5, 50, 1, 5, 30, 5, 40, -3})
        if (Obj* o = Add(x); x == 5)
            fives.push_back(o);
    const auto order = Order();
    std::vector<int> keys;
    for (Obj* o : order)
        keys.push_back(o->GetX());
    EXPECT_EQ(keys, (std::vector<int>{-3, 1, 5, 5, 5, 30, 40, 50}));
    EXPECT_EQ(std::vector<Obj*>(order.begin() + 2, order.begin() + 5), fives);
    ExpectConsistent();
}

TEST_F(ListTest, MiddleStaysNearTheMiddleThroughInsertsAndRemoves)
{
    std::vector<Obj*> added;
    for (int i = 0; i < 40; ++i)
        added.push_back(Add((i * 37) % 101));
    EXPECT_NEAR(PositionOf(list.GetMiddle()), list.GetCount() / 2, 3);
    EXPECT_LE(std::abs(list.GetMidOffset()), 2);
    for (int i = 0; i < 30; i += 2)
        list.Remove(added[i]->Node());
    ExpectConsistent();
    EXPECT_EQ(list.GetCount(), 25);
    EXPECT_NEAR(PositionOf(list.GetMiddle()), list.GetCount() / 2, 4);
}

TEST_F(ListTest, RemovingTheMiddleMovesItForwardOrBackAtTheTailAndTheLastLeavesItEmpty)
{
    Obj* high = Add(5);
    Add(1); // goes in front: the middle is now the tail
    list.Remove(high->Node());
    EXPECT_EQ(list.GetMiddle(), list.GetHead());
    list.Remove(list.GetHead());
    ExpectConsistent();
    EXPECT_EQ(list.GetMiddle(), nullptr);

    for (int x : {1, 2, 3, 4})
        Add(x);
    ASSERT_EQ(list.GetMiddle(), Order()[1]->Node());
    list.Remove(list.GetMiddle());
    EXPECT_EQ(list.GetMiddle(), Order()[1]->Node()); // the 3, which moved up
    ExpectConsistent();
}

TEST_F(ListTest, ResortMovesAChangedKeyPastItsNeighboursKeepingPositions)
{
    Obj* a = Add(1);
    for (int x : {2, 3, 10, 11})
        Add(x);
    const int middlePos = PositionOf(list.GetMiddle());
    const int offset = list.GetMidOffset();
    a->MoveTo(5);
    list.Resort(a->Node());
    EXPECT_EQ(Order()[2], a);
    EXPECT_EQ(PositionOf(list.GetMiddle()), middlePos);
    EXPECT_EQ(list.GetMidOffset(), offset);
    a->MoveTo(3); // equal keys are not passed
    list.Resort(a->Node());
    EXPECT_EQ(Order()[2], a);
    ExpectConsistent();
}

TEST_F(ListTest, SwapOfNonAdjacentNodesExchangesThemCompletely)
{
    std::vector<Obj*> o;
    for (int x : {1, 2, 3, 4, 5})
        o.push_back(Add(x));
    list.SwapItems(o[1]->Node(), o[3]->Node());
    list.SwapItems(o[0]->Node(), o[4]->Node()); // head and tail follow the positions
    EXPECT_EQ(Order(), (std::vector<Obj*>{o[4], o[3], o[2], o[1], o[0]}));
    ExpectConsistent();
}

} // namespace
