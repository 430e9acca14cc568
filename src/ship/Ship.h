#pragma once
#include "platform/Types.h"
#include "world/GameObject.h"

// A body that flies: the player's ship or an enemy turret.
class CShip : public CGameObject {
public:
    void PlayerKey(UINT /*key*/, bool /*pressed*/) {}
};
