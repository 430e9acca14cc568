#pragma once
#include <cstddef>
#include <cstdint>

// Each target takes one input the way a player's file would reach the game,
// and must never crash, hang or leak whatever the bytes are. The libFuzzer
// entry points and the regression test both call these.
namespace qvfuzz {

int FuzzSettings(const std::uint8_t* data, std::size_t size);

} // namespace qvfuzz
