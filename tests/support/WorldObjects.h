#pragma once
#include "app/GameApp.h"
#include "ship/Ship.h"
#include "world/GameObject.h"

#include <cstdint>

namespace qvtest {

// A plain game object at a place, of a size.
struct OpenObject : CGameObject {
    OpenObject(std::int32_t x, std::int32_t y, std::int32_t r = 1)
    {
        vector.Set(x, y, 0.0f, 0.0f);
        radius = r;
    }
};

// A ship with its fields open to the test.
struct OpenShip : CShip {
    using CShip::energy, CShip::facing, CShip::radius, CShip::spaceLeft, CShip::team, CShip::thinkTimer, CShip::vector;
};

// Sets a vector in one call.
inline CVector At(std::int32_t x, std::int32_t y, float xSpeed = 0.0f, float ySpeed = 0.0f)
{
    CVector v;
    v.Set(x, y, xSpeed, ySpeed);
    return v;
}

// Counts the objects in the world's master list.
inline std::int32_t CountObjects(const CWorld& world, std::int32_t type)
{
    std::int32_t n = 0;
    for (CLinkedItem* node = world.GetMasterList().GetHead(); node; node = node->GetNext())
        if (node->GetData()->GetType() == type)
            ++n;
    return n;
}

} // namespace qvtest
