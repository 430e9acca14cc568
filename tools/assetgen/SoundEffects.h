#pragma once
#include <cstdint>
#include <vector>

namespace assetgen {

// The game's sound effects, synthesised from oscillators, filtered noise
// and envelopes. Each returns a mono signal at kSampleRate, in about
// [-1, 1]; the writer scales it to a fixed peak.
class SoundEffects {
public:
    static constexpr uint32_t kSampleRate = 44100;

    // A bright A-major chord that sweeps upward and opens out (start-up).
    static std::vector<float> StartupChord();
    // A rising bell arpeggio (gold token picked up).
    static std::vector<float> PickupChime();
    // A sharp crack, a roar that starts bright and darkens into a rumble, a
    // low thump under it and crackles: heard in full on small speakers too.
    static std::vector<float> Explosion();
    // The player's laser: a quick, high square-wave "pew".
    static std::vector<float> PlayerShot();
    // The enemies' laser: a lower, longer, buzzing sawtooth zap.
    static std::vector<float> EnemyShot();
};

}  // namespace assetgen
