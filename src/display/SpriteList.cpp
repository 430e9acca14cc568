#include "display/SpriteList.h"

#include "display/SpriteInstance.h"

CSpriteList::Ticket CSpriteList::Add(CSpriteInstance* instance)
{
    return {items.insert(items.end(), instance), round};
}

void CSpriteList::Remove(Ticket& ticket)
{
    if (ticket.round == round) {
        delete *ticket.at;
        items.erase(ticket.at);
    }
    ticket = {};
}

void CSpriteList::DeleteAll()
{
    while (!items.empty()) {
        CSpriteInstance* instance = items.front();
        items.pop_front();
        delete instance;
    }
    ++round;
}
