#pragma once
#include <cstdint>

// The top-level mode of the game.
enum GameState : std::int32_t {
    StateMenu = 0,      // menu, no game running
    StatePlaying = 1,   // a level is being played
    StatePaused = 2,    // the menu over a paused game
    StateDesign = 3,    // the ship design screen between levels
};

// What the main window, the world and the screens may ask of the application:
// its state, the few moves between states and the window's messages. Nothing else of the application is visible
// through here.
namespace Game {
std::int32_t GetGameState();
void SetGameState(std::int32_t state);
void SetPause(bool pause);
void NewGame();
void GameOver();
void ApplyMusicOption();
// What the main window hands on: activation changes, keys, the tune's end.
void OnActivate(bool isActive);
void OnKey(std::uint32_t key, bool pressed);
void PlayMusic(bool restart);
// Asks the main window to close, which ends the program and saves the settings.
void CloseMainWindow();
} // namespace Game
