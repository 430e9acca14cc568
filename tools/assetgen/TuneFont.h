#pragma once
#include <cstdint>
#include <vector>

namespace assetgen {

// The sound font the background tune is played with: the five instruments
// of its parts (warm pad, square lead, synth bass, calliope, crystal) and a
// drum kit, all synthesised here, so the tune sounds the same on every
// machine and costs the synthesiser well under a megabyte.
//
// Every General MIDI program answers with the nearest of the five, and
// every drum key with the nearest drum, so a tune a player puts in the
// tune's place is heard too, if plainly.
class TuneFont {
public:
    static constexpr uint32_t kSampleRate = 44100;

    static std::vector<uint8_t> Build();
};

}  // namespace assetgen
