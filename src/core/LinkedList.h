#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class CGameObject;
class CVector;
class CLinkedList;

// One node of a CLinkedList. The game object that embeds it is its payload,
// and that object's position is the key a sorted list orders it by; the node
// is in at most one list at a time and knows which.
class CLinkedItem {
public:
    CLinkedItem(CGameObject* payload, const CVector* position) : data(payload), key(position) {}
    CLinkedItem(const CLinkedItem&) = delete;
    CLinkedItem& operator=(const CLinkedItem&) = delete;
    ~CLinkedItem();

    CGameObject* GetData() const { return data; }
    const CVector* GetKey() const { return key; }
    CLinkedItem* GetNext() const { return next; }
    CLinkedItem* GetPrev() const { return prev; }
    CLinkedList* GetOwner() const { return owner; }

    // Takes the node out of its list, if any, and joins its neighbours.
    void Unlink();

private:
    friend class CLinkedList;

    CGameObject* const data;
    const CVector* const key;
    CLinkedItem* next = nullptr;
    CLinkedItem* prev = nullptr;
    CLinkedList* owner = nullptr;
};

// The game's doubly linked list. It never owns its nodes. A sorted list keeps
// its nodes in ascending order of their payload's whole-pixel x position and
// tracks a node near its middle, so sorted insertion walks from the nearer end.
class CLinkedList {
public:
    static constexpr std::uint32_t ModeXPosition = 1;

    explicit CLinkedList(std::uint32_t keyMode = ModeXPosition) : mode(keyMode) {}
    CLinkedList(const CLinkedList&) = delete;
    CLinkedList& operator=(const CLinkedList&) = delete;
    // Frees every node still held, so a node never points at a list that is gone.
    ~CLinkedList();

    CLinkedItem* GetHead() const { return head; }
    CLinkedItem* GetTail() const { return tail; }
    CLinkedItem* GetMiddle() const { return middle; }
    std::int32_t GetCount() const { return count; }
    std::int16_t GetMidOffset() const { return midOffset; }
    bool IsSorted() const { return sorted != 0; }
    void SetSorted(bool isSorted) { sorted = isSorted ? 1 : 0; }

    void Insert(CLinkedItem* item);
    void Remove(CLinkedItem* item);
    void Resort(CLinkedItem* item);
    void SwapItems(CLinkedItem* a, CLinkedItem* b);
    void Rebalance();
    std::string Dump() const;
    // Makes this empty list hold these nodes in this order, with the node at
    // middleIndex as its middle and the balance given: the list as it stood
    // when a checkpoint of the game was kept, down to where the next sorted
    // insertion will walk from.
    void Restore(const std::vector<CLinkedItem*>& order, std::size_t middleIndex, std::int16_t balance,
                 bool isSorted);

private:
    bool IsGreater(const CLinkedItem* a, const CLinkedItem* b) const;
    bool IsLess(const CLinkedItem* a, const CLinkedItem* b) const { return IsGreater(b, a); }
    bool IsEqual(const CLinkedItem* a, const CLinkedItem* b) const;

    void InsertSorted(CLinkedItem* item);
    // Walks back from start while the nodes' keys exceed the item's, then links the item in after
    // the node where the walk stopped (or at the head when it ran off the front).
    void InsertWalkingBack(CLinkedItem* item, CLinkedItem* start);
    void LinkAfter(CLinkedItem* item, CLinkedItem* after);
    // Which way removing this non-index node moves the balance of the middle.
    std::int16_t RemovalBalance(const CLinkedItem* item) const;

    std::uint32_t mode;
    CLinkedItem* head = nullptr;
    CLinkedItem* tail = nullptr;
    CLinkedItem* middle = nullptr;
    std::int32_t count = 0;
    std::int16_t midOffset = 0;
    std::uint8_t sorted = 1;
};
