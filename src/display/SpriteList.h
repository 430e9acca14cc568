#pragma once
#include <cstddef>
#include <cstdint>
#include <list>

class CSpriteInstance;

// The live sprite instances in creation order, the order they are drawn in;
// the list owns them. Adding one gives a ticket by which its owner takes it
// out again in constant time, however many there are (a burst of explosions
// removes dozens in a frame). Emptying the list, as a new game does, voids
// every ticket given before: the instances they named are gone.
class CSpriteList {
public:
    using Items = std::list<CSpriteInstance*>;
    struct Ticket {
        Items::iterator at{};
        std::uint64_t round = 0; // 0: names nothing
    };

    CSpriteList() = default;
    CSpriteList(const CSpriteList&) = delete;
    CSpriteList& operator=(const CSpriteList&) = delete;
    ~CSpriteList() { DeleteAll(); }

    Ticket Add(CSpriteInstance* instance);
    // Takes the ticket's instance out and deletes it; a void ticket does nothing.
    // The ticket is void afterwards.
    void Remove(Ticket& ticket);
    // Takes out and deletes every instance, from the head.
    void DeleteAll();

    Items::iterator begin() { return items.begin(); }
    Items::iterator end() { return items.end(); }
    std::size_t size() const { return items.size(); }
    bool empty() const { return items.empty(); }

private:
    Items items;
    std::uint64_t round = 1;
};
