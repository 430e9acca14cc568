#pragma once
#include <cstdint>

class CShip;

// The game in progress.
class CWorld {
public:
    void Update(double /*elapsedMs*/) {}
    void SetPaused(bool isPaused) { paused = isPaused; }
    bool IsPaused() const { return paused; }
    void NewGame(std::int32_t /*level*/) {}
    void Clear() {}
    std::int32_t GetScore() const { return 0; }
    CShip* GetPlayer() const { return nullptr; }

private:
    bool paused = true;
};
