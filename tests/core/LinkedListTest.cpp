#include "core/LinkedList.h"
#include "world/GameObject.h"

#include <gtest/gtest.h>

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
    Obj* Make(int x) { return objects.emplace_back(std::make_unique<Obj>(x)).get(); }
    Obj* Add(int x)
    {
        Obj* o = Make(x);
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
    std::vector<int> Keys() const
    {
        std::vector<int> out;
        for (Obj* o : Order())
            out.push_back(o->GetX());
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
            EXPECT_EQ(it->GetPrev(), prev);
            EXPECT_EQ(it->GetOwner(), &list);
            prev = it;
        }
        EXPECT_EQ(prev, list.GetTail());
        EXPECT_EQ(n, list.GetCount());
        EXPECT_LE(PositionOf(list.GetMiddle()), list.GetMiddle() ? n - 1 : n);
    }

    std::vector<std::unique_ptr<Obj>> objects;
    CLinkedList list;
};

TEST_F(ListTest, OneAndTwoNodesAndBackToEmpty)
{
    Obj* a = Add(10);
    EXPECT_EQ(list.GetHead(), a->Node());
    EXPECT_EQ(list.GetMiddle(), a->Node());
    EXPECT_EQ(list.GetTail(), a->Node());
    Obj* b = Add(20);
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(list.GetMidOffset(), 0); // the rebalance saw a count of 1
    list.Remove(b->Node());
    list.Remove(a->Node());
    EXPECT_EQ(list.GetHead(), nullptr);
    EXPECT_EQ(list.GetMiddle(), nullptr);
    EXPECT_EQ(list.GetTail(), nullptr);
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.GetMidOffset(), 0);
    EXPECT_EQ(a->Node()->GetOwner(), nullptr);
}

TEST_F(ListTest, SortedInsertKeepsOrderAndEqualKeysInArrivalOrder)
{
    std::vector<Obj*> fives;
    for (int x : {5, 50, 1, 5, 30, 5, 40, -3})
        if (Obj* o = Add(x); x == 5)
            fives.push_back(o);
    EXPECT_EQ(Keys(), (std::vector<int>{-3, 1, 5, 5, 5, 30, 40, 50}));
    const auto order = Order();
    EXPECT_EQ(std::vector<Obj*>(order.begin() + 2, order.begin() + 5), fives);
    ExpectConsistent();
}

TEST_F(ListTest, MiddleStaysNearTheMiddleThroughInsertsAndRemoves)
{
    std::vector<Obj*> added;
    for (int i = 0; i < 40; ++i)
        added.push_back(Add((i * 37) % 101));
    ExpectConsistent();
    EXPECT_NEAR(PositionOf(list.GetMiddle()), list.GetCount() / 2, 3);
    EXPECT_LE(std::abs(list.GetMidOffset()), 2);
    for (int i = 0; i < 30; i += 2)
        list.Remove(added[i]->Node());
    ExpectConsistent();
    EXPECT_EQ(list.GetCount(), 25);
    EXPECT_NEAR(PositionOf(list.GetMiddle()), list.GetCount() / 2, 4);
}

TEST_F(ListTest, RemovingTheMiddleMovesItForwardOrBackAtTheTail)
{
    Add(1);
    Obj* b = Add(2);
    Obj* c = Add(3);
    Add(4);
    ASSERT_EQ(list.GetMiddle(), b->Node());
    list.Remove(b->Node());
    EXPECT_EQ(list.GetMiddle(), c->Node());
    ExpectConsistent();

    CLinkedList two;
    Obj* high = Make(5);
    Obj* low = Make(1);
    two.Insert(high->Node());
    two.Insert(low->Node()); // goes in front: the middle is now the tail
    ASSERT_EQ(two.GetMiddle(), two.GetTail());
    two.Remove(high->Node());
    EXPECT_EQ(two.GetMiddle(), low->Node());
}

TEST_F(ListTest, ANodeBelongsToOneListAtATime)
{
    Obj* a = Add(1);
    Obj* b = Add(2);
    CLinkedList other;
    other.Insert(b->Node()); // moves it over
    EXPECT_EQ(b->Node()->GetOwner(), &other);
    list.Remove(b->Node()); // not ours: nothing happens
    list.Insert(a->Node()); // already ours: nothing happens
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(other.GetCount(), 1);
    EXPECT_EQ(b->Node()->GetOwner(), &other);
    EXPECT_EQ(list.GetHead(), a->Node());
}

TEST_F(ListTest, UnsortedListKeepsArrivalOrderAndItsFirstMiddle)
{
    list.SetSorted(false);
    Obj* a = Add(30);
    for (int x : {10, 20, 5})
        Add(x);
    EXPECT_EQ(Keys(), (std::vector<int>{30, 10, 20, 5}));
    EXPECT_EQ(list.GetMiddle(), a->Node());
    EXPECT_EQ(list.GetMidOffset(), 0);
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
    EXPECT_EQ(Keys(), (std::vector<int>{2, 3, 5, 10, 11}));
    EXPECT_EQ(Order()[2], a);
    EXPECT_EQ(PositionOf(list.GetMiddle()), middlePos);
    EXPECT_EQ(list.GetMidOffset(), offset);
    a->MoveTo(3); // equal keys are not passed
    list.Resort(a->Node());
    EXPECT_EQ(Order()[2], a);
    a->MoveTo(0);
    list.Resort(a->Node());
    EXPECT_EQ(Order()[0], a);
    ExpectConsistent();
}

TEST_F(ListTest, SwapOfNonAdjacentNodesExchangesThemCompletely)
{
    Obj* a = Add(1);
    Obj* b = Add(2);
    Obj* c = Add(3);
    Obj* d = Add(4);
    Obj* e = Add(5);
    list.SwapItems(b->Node(), d->Node());
    EXPECT_EQ(Order(), (std::vector<Obj*>{a, d, c, b, e}));
    list.SwapItems(a->Node(), e->Node()); // head and tail follow the positions
    EXPECT_EQ(Order(), (std::vector<Obj*>{e, d, c, b, a}));
    EXPECT_EQ(list.GetHead(), e->Node());
    EXPECT_EQ(list.GetTail(), a->Node());
    ExpectConsistent();
}

TEST_F(ListTest, DumpListsVectorsWithPositionMarks)
{
    EXPECT_EQ(list.Dump(), "\r\nNumber: 0\r\nMid Offset: 0\r\n");
    Add(7);
    EXPECT_EQ(list.Dump(), "\r\nVector -- xPos:7 yPos:0 xSpeed:0 ySpeed:0 -- Head -- Middle -- Tail\r\n"
                           "Number: 1\r\nMid Offset: 0\r\n");
}

TEST_F(ListTest, DestroyingAnObjectUnlinksItsNodes)
{
    for (int x : {1, 2, 3})
        Add(x);
    objects.erase(objects.begin() + 1);
    EXPECT_EQ(Keys(), (std::vector<int>{1, 3}));
    ExpectConsistent();
}

} // namespace
