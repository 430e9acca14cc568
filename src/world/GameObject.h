#pragma once
#include "core/LinkedList.h"
#include "core/Vector.h"

#include <cstdint>

// Base of everything in the world's master list.
// (The object's full behaviour arrives with the game world.)
class CGameObject {
public:
    CGameObject();
    CGameObject(const CGameObject&) = delete;
    CGameObject& operator=(const CGameObject&) = delete;
    virtual ~CGameObject();

    std::int32_t GetX() const { return vector.GetX(); }
    std::int32_t GetY() const { return vector.GetY(); }
    CVector GetVector() const { return vector; }
    void SetVector(const CVector& v) { vector = v; }

    CLinkedItem* GetMasterItem() const { return masterItem; }
    CLinkedItem* GetBandItem() const { return bandItem; }

protected:
    CVector vector;
    CLinkedItem* masterItem;
    CLinkedItem* bandItem;
    CLinkedItem* bandItem2;
};
