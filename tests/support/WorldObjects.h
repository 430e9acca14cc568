#pragma once
#include "app/GameApp.h"
#include "ship/Ship.h"
#include "world/GameObject.h"

#include <cstdint>
#include <functional>

namespace qvtest {

// A plain game object whose fields a test may set directly. It can record
// its hits and, when asked, survive them.
struct OpenObject : CGameObject {
    using CGameObject::age, CGameObject::boundsMode, CGameObject::collidable, CGameObject::contactDamage,
          CGameObject::facing, CGameObject::lifetime, CGameObject::mass, CGameObject::radius,
          CGameObject::team, CGameObject::type, CGameObject::vector;

    OpenObject(std::int32_t x, std::int32_t y, float xSpeed = 0.0f, float ySpeed = 0.0f, std::int32_t r = 1)
    {
        vector.Set(x, y, xSpeed, ySpeed);
        radius = r;
    }

    bool Update(std::int32_t elapsedMs) override
    {
        ++updates;
        if (onUpdate)
            onUpdate();
        return CGameObject::Update(elapsedMs);
    }

    void OnHit(std::int32_t damage, CGameObject* other) override
    {
        ++hits;
        lastDamage = damage;
        if (diesOnHit)
            CGameObject::OnHit(damage, other);
    }

    void Act() override
    {
        if (onAct)
            onAct();
    }

    int updates = 0;
    int hits = 0;
    std::int32_t lastDamage = -1;
    bool diesOnHit = true;
    std::function<void()> onUpdate;
    std::function<void()> onAct;
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
