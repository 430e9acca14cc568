#include "world/WorldCheckpoint.h"

#include "display/SpriteList.h"
#include "ship/Component.h"
#include "ship/Ship.h"
#include "world/GameObject.h"

namespace {
constexpr std::int32_t NodesPerObject = 3; // the master list's, and the two bands'

CLinkedItem* NodeOf(const CGameObject& object, std::int32_t which)
{
    switch (which) {
    case 0: return object.GetMasterItem();
    case 1: return object.GetBandItem();
    default: return object.GetBandItem2();
    }
}

std::int32_t WhichNode(const CLinkedItem* node)
{
    const CGameObject& object = *node->GetData();
    return node == object.GetMasterItem() ? 0 : node == object.GetBandItem() ? 1 : 2;
}
} // namespace

std::int32_t CWorldCheckpoint::IndexOf(const Indices& indices, const CGameObject* object)
{
    const auto found = indices.find(object);
    return found == indices.end() ? None : found->second;
}

CWorldCheckpoint::ListShape CWorldCheckpoint::ShapeOf(const CLinkedList& list, const Indices& indices)
{
    ListShape shape;
    shape.sorted = list.IsSorted();
    shape.midOffset = list.GetMidOffset();
    for (const CLinkedItem* node = list.GetHead(); node; node = node->GetNext()) {
        const std::int32_t index = IndexOf(indices, node->GetData());
        if (index == None)
            continue;
        if (node == list.GetMiddle())
            shape.middle = shape.nodes.size();
        shape.nodes.push_back(index * NodesPerObject + WhichNode(node));
    }
    return shape;
}

CWorldCheckpoint::Components CWorldCheckpoint::Copies(const std::vector<CComponent*>& components)
{
    Components copies;
    for (const CComponent* component : components)
        if (auto copy = CComponent::MakeCopy(*component))
            copies.push_back(std::move(copy));
    return copies;
}

void CWorldCheckpoint::Keep(const CWorld& world, CSpriteList& liveLooks)
{
    objects.clear();
    Indices indices;
    auto keep = [&](const CGameObject* object) {
        if (object && indices.emplace(object, static_cast<std::int32_t>(objects.size())).second)
            objects.emplace_back(object->Clone());
    };
    // The world owns what its master list holds; nothing else is kept.
    for (const CLinkedItem* node = world.masterList.GetHead(); node; node = node->GetNext())
        keep(node->GetData());

    master = ShapeOf(world.masterList, indices);
    bands.clear();
    for (const CLinkedList& band : world.bands)
        bands.push_back(ShapeOf(band, indices));

    std::unordered_map<const CSpriteInstance*, std::int32_t> lookOwners;
    for (const auto& [object, index] : indices)
        if (object->GetSprite())
            lookOwners.emplace(object->GetSprite(), index);
    looks.clear();
    for (const CSpriteInstance* look : liveLooks) {
        const auto owner = lookOwners.find(look);
        looks.push_back({owner == lookOwners.end() ? None : owner->second, *look});
    }

    player = IndexOf(indices, world.player);
    labels.clear();
    actions.clear();
    for (const CGameObject* object : world.labelList)
        if (const std::int32_t index = IndexOf(indices, object); index != None)
            labels.push_back(index);
    for (const CGameObject* object : world.actionList)
        if (const std::int32_t index = IndexOf(indices, object); index != None)
            actions.push_back(index);

    stock = Copies(world.stock);
    mineKit1 = Copies(world.mineKit1);
    mineKit2 = Copies(world.mineKit2);
    turretKit = Copies(world.turretKit);
    bandHeight = world.bandHeight;
    score = world.score;
    level = world.level;
    timeLeft = world.timeLeft;
    asteroidClock = world.asteroidClock;
    mineClock = world.mineClock;
    turretClock = world.turretClock;
    paused = world.paused;
    enemiesLeft = world.enemiesLeft;
    powerupsTaken = world.powerupsTaken;
}

void CWorldCheckpoint::PutBack(CLinkedList& list, const ListShape& shape, const std::vector<CGameObject*>& made)
{
    std::vector<CLinkedItem*> order;
    order.reserve(shape.nodes.size());
    for (const std::int32_t node : shape.nodes)
        order.push_back(NodeOf(*made[static_cast<std::size_t>(node / NodesPerObject)], node % NodesPerObject));
    list.Restore(order, shape.middle, shape.midOffset, shape.sorted);
}

void CWorldCheckpoint::PutBack(std::vector<CComponent*>& components, const Components& copies)
{
    for (const auto& copy : copies)
        components.push_back(CComponent::MakeCopy(*copy).release());
}

void CWorldCheckpoint::Restore(CWorld& world, CSpriteList& liveLooks) const
{
    world.Clear();
    liveLooks.DeleteAll();
    std::vector<CGameObject*> made;
    made.reserve(objects.size());
    for (const auto& object : objects)
        made.push_back(object->Clone());
    // Every object made is owned by the master list from here, as the world's are.
    PutBack(world.masterList, master, made);
    for (std::size_t i = 0; i < bands.size(); ++i)
        PutBack(world.bands[i], bands[i], made);
    for (const Look& look : looks) {
        if (look.owner == None)
            liveLooks.Add(new CSpriteInstance(look.instance));
        else
            made[static_cast<std::size_t>(look.owner)]->ShowLook(look.instance);
    }

    world.player = player == None ? nullptr : static_cast<CShip*>(made[static_cast<std::size_t>(player)]);
    for (const std::int32_t index : labels)
        world.labelList.push_back(made[static_cast<std::size_t>(index)]);
    for (const std::int32_t index : actions)
        world.actionList.push_back(made[static_cast<std::size_t>(index)]);

    PutBack(world.stock, stock);
    PutBack(world.mineKit1, mineKit1);
    PutBack(world.mineKit2, mineKit2);
    PutBack(world.turretKit, turretKit);
    world.bandHeight = bandHeight;
    world.score = score;
    world.level = level;
    world.timeLeft = timeLeft;
    world.asteroidClock = asteroidClock;
    world.mineClock = mineClock;
    world.turretClock = turretClock;
    world.paused = paused;
    world.enemiesLeft = enemiesLeft;
    world.powerupsTaken = powerupsTaken;
}
