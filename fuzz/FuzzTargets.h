#pragma once
#include <cstddef>
#include <cstdint>

// Each target takes one input the way a player's file would reach the game,
// and must never crash, hang or leak whatever the bytes are. The libFuzzer
// entry points and the regression test both call these.
namespace qvfuzz {

int FuzzSettings(const std::uint8_t* data, std::size_t size);

// The input as "sprite.ini", loaded, reloaded after a restore and drawn from.
// Needs a started game (see StartGame) in a folder that holds the sprite art
// (see WriteSpriteArt).
int FuzzSpriteCatalogue(const std::uint8_t* data, std::size_t size);

// The input as the palette bitmap.
int FuzzPalette(const std::uint8_t* data, std::size_t size);

// The input as a sprite frame's bitmap file, drawn into a surface.
int FuzzBitmap(const std::uint8_t* data, std::size_t size);

// The input as an effect's wave file, played through the wave player on the
// audio output (SDL's dummy driver will do).
int FuzzWave(const std::uint8_t* data, std::size_t size);

// The input as the background tune, opened, played and rendered through the
// sequencer, its end reported once if it ends.
int FuzzTune(const std::uint8_t* data, std::size_t size);

// The input as a replay file: read strictly, and what reads back is written
// again byte for byte.
int FuzzReplay(const std::uint8_t* data, std::size_t size);

// A few small frame files whose names catalogue inputs can mention: "ship"
// with four directions, "boom" with three animation frames, "rock" still.
void WriteSpriteArt();

// For the libFuzzer mains: a game of the fuzzer's own, started as the game
// starts (on SDL's dummy drivers, without the title pause), in a scratch folder
// that holds the sprite art.
void StartGame();

} // namespace qvfuzz
