#pragma once
#include "app/GameApp.h"

#include <cstdint>

class CShip;

// Plays the game without a display or sound: the real application object,
// world and game states, fed with key events and frame times. Tests, soak
// runs and benchmarks drive whole games through it.
class CGameDriver {
public:
    explicit CGameDriver(CGameApp& application) : app(application) {}

    void Seed(std::uint32_t seed) { app.SeedRandom(seed); }
    // A new game whose first real level is startLevel, already in play.
    void StartGame(std::int32_t startLevel) { app.StartGameAt(startLevel); }

    // Keys reach the game as the main window's messages do.
    void Key(UINT key, bool pressed) { app.OnKeyMessage(key, pressed); }
    void Press(UINT key)
    {
        Key(key, true);
        Key(key, false);
    }
    // One frame of the given length: the world advances while a level is played.
    void Frame(double elapsedMs) { app.AdvanceFrame(elapsedMs); }

    // On the design screen, with its keys: takes everything off the ship,
    // giving it back to the offer, and fits the offer again, best kinds first.
    void Refit();
    // Leaves the design screen for the next level.
    void StartLevel() { Press(VK_ESCAPE); }

    std::int32_t GetGameState() const { return app.GetGameState(); }
    CWorld& World() const { return app.world; }
    CShip* Player() const { return app.world.GetPlayer(); }

private:
    CGameApp& app;
};
