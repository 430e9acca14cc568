#include "core/LinkedList.h"

#include "core/Trace.h"
#include "core/Vector.h"

namespace {

constexpr std::int32_t ListTraceFlag = 1;
constexpr std::int32_t NotAdjacentValue = 7;

void ListTrace(const char* text)
{
    CTrace::Trace(text, ListTraceFlag);
}

std::int32_t KeyOf(const CLinkedItem* item)
{
    return item->GetKey()->GetX();
}

} // namespace

CLinkedItem::~CLinkedItem()
{
    ListTrace("Linked Item Destructor");
    Unlink();
}

void CLinkedItem::Unlink()
{
    if (owner)
        owner->Remove(this);
    if (next)
        next->prev = prev;
    if (prev)
        prev->next = next;
    next = nullptr;
    prev = nullptr;
    owner = nullptr;
}

CLinkedList::~CLinkedList()
{
    CLinkedItem* at = head;
    while (at) {
        CLinkedItem* next = at->next;
        at->next = at->prev = nullptr;
        at->owner = nullptr;
        at = next;
    }
}

bool CLinkedList::IsGreater(const CLinkedItem* a, const CLinkedItem* b) const
{
    return mode == ModeXPosition && KeyOf(a) > KeyOf(b);
}

bool CLinkedList::IsEqual(const CLinkedItem* a, const CLinkedItem* b) const
{
    return mode == ModeXPosition && KeyOf(a) == KeyOf(b);
}

void CLinkedList::Insert(CLinkedItem* item)
{
    if (item->owner == this)
        return;
    if (item->owner)
        item->owner->Remove(item);
    item->owner = this;

    if (!head) {
        item->next = item->prev = nullptr;
        head = tail = middle = item;
        midOffset = 0;
        count = 1;
        return;
    }
    if (!sorted) {
        LinkAfter(item, tail);
        ++count;
        return;
    }
    InsertSorted(item);
    Rebalance();
    ++count;
}

void CLinkedList::InsertSorted(CLinkedItem* item)
{
    if (IsLess(item, head)) {
        LinkAfter(item, nullptr);
        --midOffset;
    } else if (IsLess(item, middle)) {
        InsertWalkingBack(item, middle->prev);
        --midOffset;
    } else if (!IsLess(item, tail)) {
        LinkAfter(item, tail);
        ++midOffset;
    } else {
        InsertWalkingBack(item, tail->prev);
        ++midOffset;
    }
}

void CLinkedList::InsertWalkingBack(CLinkedItem* item, CLinkedItem* start)
{
    CLinkedItem* at = start;
    while (at && IsGreater(at, item))
        at = at->prev;
    LinkAfter(item, at);
}

void CLinkedList::LinkAfter(CLinkedItem* item, CLinkedItem* after)
{
    CLinkedItem* before = after ? after->next : head;
    item->prev = after;
    item->next = before;
    if (after)
        after->next = item;
    else
        head = item;
    if (before)
        before->prev = item;
    else
        tail = item;
}

void CLinkedList::Remove(CLinkedItem* item)
{
    if (item->owner != this)
        return;
    ListTrace("Removing Element from List");
    item->owner = nullptr;
    --count;
    bool balanceDone = !sorted;

    if (item == head) {
        ListTrace("Removing Head Element");
        if (!balanceDone)
            ++midOffset;
        head = head->next;
        balanceDone = true;
    }
    if (item == middle) {
        ListTrace("Removing Middle Element");
        if (middle->next) {
            middle = middle->next;
            if (!balanceDone)
                --midOffset;
        } else {
            middle = middle->prev;
            if (!balanceDone)
                ++midOffset;
        }
        balanceDone = true;
    }
    if (item == tail) {
        ListTrace("Removing Tail Element");
        if (!balanceDone)
            --midOffset;
        tail = tail->prev;
    } else if (!balanceDone) {
        ListTrace("Removing non index Element");
        midOffset = static_cast<std::int16_t>(midOffset + RemovalBalance(item));
    }
    item->Unlink();
    Rebalance();
}

std::int16_t CLinkedList::RemovalBalance(const CLinkedItem* item) const
{
    if (IsGreater(middle, item))
        return +1;
    if (IsGreater(item, middle))
        return -1;
    // Equal keys: the node lies before the middle when a run of equal keys leads to it.
    for (const CLinkedItem* at = item; at->next && IsEqual(at->next, at); at = at->next)
        if (at->next == middle)
            return +1;
    return -1;
}

void CLinkedList::Rebalance()
{
    if (count < 2) {
        midOffset = 0;
        return;
    }
    if (midOffset >= 2 && middle->next) {
        middle = middle->next;
        midOffset = static_cast<std::int16_t>(midOffset - 2);
    } else if (midOffset <= -2 && middle->prev) {
        middle = middle->prev;
        midOffset = static_cast<std::int16_t>(midOffset + 2);
    }
}

void CLinkedList::Resort(CLinkedItem* item)
{
    while (item->next && IsLess(item->next, item))
        SwapItems(item, item->next);
    while (item->prev && IsGreater(item->prev, item))
        SwapItems(item, item->prev);
}

void CLinkedList::SwapItems(CLinkedItem* a, CLinkedItem* b)
{
    for (CLinkedItem** position : {&head, &middle, &tail}) {
        if (*position == a)
            *position = b;
        else if (*position == b)
            *position = a;
    }
    if (a->next == b || b->next == a) {
        CLinkedItem* first = a->next == b ? a : b;
        CLinkedItem* second = a->next == b ? b : a;
        CLinkedItem* before = first->prev;
        CLinkedItem* after = second->next;
        second->prev = before;
        second->next = first;
        first->prev = second;
        first->next = after;
        if (before)
            before->next = second;
        if (after)
            after->prev = first;
        return;
    }
    CTrace::TraceValue(NotAdjacentValue, "Items are not adjacent!", ListTraceFlag);
    std::swap(a->next, b->next);
    std::swap(a->prev, b->prev);
    for (CLinkedItem* node : {a, b}) {
        if (node->next)
            node->next->prev = node;
        if (node->prev)
            node->prev->next = node;
    }
}

std::string CLinkedList::Dump() const
{
    std::string text = "\r\n";
    for (const CLinkedItem* at = head; at; at = at->next) {
        if (mode == ModeXPosition)
            text += at->GetKey()->ToString();
        if (at == head)
            text += " -- Head";
        if (at == middle)
            text += " -- Middle";
        if (at == tail)
            text += " -- Tail";
        text += "\r\n";
    }
    text += "Number: " + std::to_string(count) + "\r\n";
    text += "Mid Offset: " + std::to_string(midOffset) + "\r\n";
    return text;
}

void CLinkedList::Restore(const std::vector<CLinkedItem*>& order, std::size_t middleIndex, std::int16_t balance,
                          bool isSorted)
{
    sorted = isSorted ? 1 : 0;
    CLinkedItem* last = nullptr;
    for (CLinkedItem* item : order) {
        item->owner = this;
        item->prev = last;
        item->next = nullptr;
        if (last)
            last->next = item;
        else
            head = item;
        last = item;
    }
    tail = last;
    count = static_cast<std::int32_t>(order.size());
    middle = middleIndex < order.size() ? order[middleIndex] : nullptr;
    midOffset = balance;
}
