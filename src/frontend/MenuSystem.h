#pragma once
#include "platform/Types.h"

#include <cstdint>

// The menus, the options and the high scores.
class CMenuSystem {
public:
    void OnKey(UINT /*key*/, bool /*pressed*/) {}
    std::int32_t GetStartLevel() const { return 1; }
    void AddHighScore(std::int32_t /*score*/) {}
    bool IsMusicOn() const { return true; }
    bool IsSoundOn() const { return true; }
    bool IsStarsOn() const { return true; }
    bool IsStatsOn() const { return false; }
};
