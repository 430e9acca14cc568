#pragma once
#include "display/SpriteInstance.h"
#include "ship/Component.h"
#include "world/GameObject.h"
#include "world/World.h"

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

class CComponent;
class CSpriteList;

// The world as it stood after a frame, kept apart from the game so the game
// can be put back there: a copy of every object, with no look and in no list,
// and where each stood in the world's lists and among the live looks. The
// order of the lists decides which collision comes first, the order of the
// looks which is drawn on top, so both come back exactly.
class CWorldCheckpoint {
public:
    void Keep(const CWorld& world, CSpriteList& looks);
    // Empties the world and the looks and fills them from the checkpoint.
    void Restore(CWorld& world, CSpriteList& looks) const;

private:
    static constexpr std::int32_t None = -1;
    // A list node: an object's index times three, and which of its nodes.
    struct ListShape {
        std::vector<std::int32_t> nodes;
        std::size_t middle = 0;
        std::int16_t midOffset = 0;
        bool sorted = true;
    };
    struct Look {
        std::int32_t owner = None; // no object: a look the list alone holds
        CSpriteInstance instance;
    };
    using Components = std::vector<std::unique_ptr<CComponent>>;

    using Indices = std::unordered_map<const CGameObject*, std::int32_t>;

    static std::int32_t IndexOf(const Indices& indices, const CGameObject* object);
    static ListShape ShapeOf(const CLinkedList& list, const Indices& indices);
    static void PutBack(CLinkedList& list, const ListShape& shape, const std::vector<CGameObject*>& made);
    static Components Copies(const std::vector<CComponent*>& components);
    static void PutBack(std::vector<CComponent*>& components, const Components& copies);

    std::vector<std::unique_ptr<CGameObject>> objects;
    ListShape master;
    std::vector<ListShape> bands;
    std::vector<Look> looks;
    std::int32_t player = None;
    std::vector<std::int32_t> labels;
    std::vector<std::int32_t> actions;
    Components stock, mineKit1, mineKit2, turretKit;
    std::int32_t bandHeight = 0;
    std::int32_t score = 0;
    std::int16_t level = 0;
    double timeLeft = 0.0;
    CWorld::SpawnClock asteroidClock, mineClock, turretClock;
    bool paused = true;
    std::int32_t enemiesLeft = 0;
    std::int32_t powerupsTaken = 0;
};
