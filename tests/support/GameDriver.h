#pragma once
#include "platform/Types.h"

#include <cstdint>

class CGameApp;
class CShip;
class CWorld;

// Plays the game without a display or sound: the real application object,
// world and game states, fed with key events and frame times. Tests, soak
// runs and benchmarks drive whole games through it.
class CGameDriver {
public:
    explicit CGameDriver(CGameApp& application) : app(application) {}

    void Seed(std::uint32_t seed);
    // A new game whose first real level is startLevel, already in play.
    void StartGame(std::int32_t startLevel);

    // Keys reach the game as the main window's messages do.
    void Key(UINT key, bool pressed);
    void Press(UINT key);
    // One frame of the given length: the world advances while a level is played.
    void Frame(double elapsedMs);

    // On the design screen, with its keys: takes everything off the ship,
    // giving it back to the offer, and fits the offer again, best kinds first.
    void Refit();
    // Leaves the design screen for the next level.
    void StartLevel();

    std::int32_t GetGameState() const;
    CWorld& World() const;
    CShip* Player() const;

private:
    CGameApp& app;
};
