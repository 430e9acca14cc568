#pragma once
#include <cstdint>

// The effects the game's rules play, with their priorities: a smaller number
// is the more important sound and cuts off a less important one.
namespace SoundCues {
constexpr std::int16_t Urgent = 1;
constexpr std::int16_t Shot = 2;
constexpr const char* Pickup = "green.wav";
constexpr const char* Explosion = "explosion.wav";
constexpr const char* PlayerShot = "bullet1.wav";
constexpr const char* EnemyShot = "bullet2.wav";

// Plays one effect through the application's sound rules.
void Play(std::int16_t priority, const char* file);
} // namespace SoundCues
