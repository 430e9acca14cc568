#include "core/LinkedList.h"
#include "world/GameObject.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

struct Obj : CGameObject {
    explicit Obj(int x)
    {
        CVector v;
        v.Set(x, 0, 0, 0);
        SetVector(v);
    }
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
    Obj* Make(int x)
    {
        objects.push_back(std::make_unique<Obj>(x));
        return objects.back().get();
    }
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
    // Walks both ways and checks the links, owners and count agree.
    void ExpectConsistent() const
    {
        int n = 0;
        const CLinkedItem* prev = nullptr;
        bool middleSeen = list.GetMiddle() == nullptr;
        for (const CLinkedItem* it = list.GetHead(); it; it = it->GetNext()) {
            EXPECT_EQ(it->GetPrev(), prev);
            EXPECT_EQ(it->GetOwner(), &list);
            middleSeen |= it == list.GetMiddle();
            prev = it;
            ++n;
        }
        EXPECT_EQ(prev, list.GetTail());
        EXPECT_EQ(n, list.GetCount());
        EXPECT_TRUE(middleSeen);
    }

    std::vector<std::unique_ptr<Obj>> objects;
    CLinkedList list;
};

TEST_F(ListTest, FirstNodeIsHeadMiddleAndTail)
{
    Obj* a = Add(10);
    EXPECT_EQ(list.GetHead(), a->Node());
    EXPECT_EQ(list.GetMiddle(), a->Node());
    EXPECT_EQ(list.GetTail(), a->Node());
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(list.GetMidOffset(), 0);
}

TEST_F(ListTest, SecondInsertRebalancesBeforeCounting)
{
    Add(10);
    Add(20);
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(list.GetMidOffset(), 0); // Rebalance saw a count of 1
}

TEST_F(ListTest, SortedInsertKeepsOrderAndEqualKeysInArrivalOrder)
{
    Obj* first5 = Add(5);
    Add(50);
    Add(1);
    Obj* second5 = Add(5);
    Add(30);
    Obj* third5 = Add(5);
    Add(40);
    Add(-3);
    EXPECT_EQ(Keys(), (std::vector<int>{-3, 1, 5, 5, 5, 30, 40, 50}));
    auto order = Order();
    EXPECT_EQ(order[2], first5);
    EXPECT_EQ(order[3], second5);
    EXPECT_EQ(order[4], third5);
    ExpectConsistent();
}

TEST_F(ListTest, MiddleStaysNearTheMiddleThroughInsertsAndRemoves)
{
    std::vector<Obj*> added;
    for (int i = 0; i < 40; ++i)
        added.push_back(Add((i * 37) % 101));
    ExpectConsistent();
    auto position = [&] {
        int i = 0;
        for (CLinkedItem* it = list.GetHead(); it != list.GetMiddle(); it = it->GetNext())
            ++i;
        return i;
    };
    EXPECT_NEAR(position(), list.GetCount() / 2, 3);
    EXPECT_LE(std::abs(list.GetMidOffset()), 2);
    for (int i = 0; i < 30; i += 2)
        list.Remove(added[i]->Node());
    ExpectConsistent();
    EXPECT_EQ(list.GetCount(), 25);
    EXPECT_NEAR(position(), list.GetCount() / 2, 4);
}

TEST_F(ListTest, RemovingTheOnlyNodeEmptiesEverything)
{
    Obj* a = Add(10);
    list.Remove(a->Node());
    EXPECT_EQ(list.GetHead(), nullptr);
    EXPECT_EQ(list.GetMiddle(), nullptr);
    EXPECT_EQ(list.GetTail(), nullptr);
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.GetMidOffset(), 0);
    EXPECT_EQ(a->Node()->GetOwner(), nullptr);
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
    EXPECT_EQ(two.GetCount(), 1);
}

TEST_F(ListTest, RemoveOfAForeignNodeChangesNothing)
{
    Obj* a = Add(1);
    CLinkedList other;
    Obj* b = Make(2);
    other.Insert(b->Node());
    list.Remove(b->Node());
    EXPECT_EQ(other.GetCount(), 1);
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(b->Node()->GetOwner(), &other);
    EXPECT_EQ(list.GetHead(), a->Node());
}

TEST_F(ListTest, InsertMovesANodeBetweenLists)
{
    Add(1);
    Obj* b = Add(2);
    CLinkedList other;
    other.Insert(b->Node());
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(other.GetCount(), 1);
    EXPECT_EQ(b->Node()->GetOwner(), &other);
    list.Insert(list.GetHead()); // already here: nothing happens
    EXPECT_EQ(list.GetCount(), 1);
}

TEST_F(ListTest, UnsortedListKeepsArrivalOrderAndItsFirstMiddle)
{
    list.SetSorted(false);
    Obj* a = Add(30);
    Add(10);
    Add(20);
    Add(5);
    EXPECT_EQ(Keys(), (std::vector<int>{30, 10, 20, 5}));
    EXPECT_EQ(list.GetMiddle(), a->Node());
    EXPECT_EQ(list.GetMidOffset(), 0);
}

TEST_F(ListTest, ResortMovesAGrownKeyPastItsSuccessorsKeepingPositions)
{
    Obj* a = Add(1);
    Add(2);
    Add(3);
    Add(10);
    Add(11);
    const auto countPos = [&](const CLinkedItem* target) {
        int i = 0;
        for (CLinkedItem* it = list.GetHead(); it && it != target; it = it->GetNext())
            ++i;
        return i;
    };
    const int middlePos = countPos(list.GetMiddle());
    const int offset = list.GetMidOffset();
    a->MoveTo(5);
    list.Resort(a->Node());
    EXPECT_EQ(Keys(), (std::vector<int>{2, 3, 5, 10, 11}));
    EXPECT_EQ(Order()[2], a);
    EXPECT_EQ(countPos(list.GetMiddle()), middlePos);
    EXPECT_EQ(list.GetMidOffset(), offset);
    EXPECT_EQ(list.GetTail()->GetData()->GetX(), 11);
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
    Add(1);
    Obj* b = Add(2);
    Add(3);
    objects.erase(objects.begin() + 1);
    (void)b;
    EXPECT_EQ(Keys(), (std::vector<int>{1, 3}));
    ExpectConsistent();
}

} // namespace
