#pragma once
#include "platform/Types.h"

#include <cstdint>

// The menus, the options and the high scores.
class CMenuSystem {
public:
    void OnKey(UINT /*key*/, bool /*pressed*/) {}
    std::int32_t GetStartLevel() const { return 1; }
    void AddHighScore(std::int32_t /*score*/) {}
    bool IsMusicOn() const { return musicOn; }
    bool IsSoundOn() const { return soundOn; }
    void SetMusicOn(bool on) { musicOn = on; }
    void SetSoundOn(bool on) { soundOn = on; }
    bool IsStarsOn() const { return true; }
    bool IsStatsOn() const { return false; }

private:
    bool musicOn = true;
    bool soundOn = true;
};
