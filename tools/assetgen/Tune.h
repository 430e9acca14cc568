#pragma once
#include <cstdint>
#include <vector>

namespace assetgen {

class MidiWriter;

// The background tune: 32 bars in A minor at 100 beats a minute (76.8 s),
// warm pad, square-wave arpeggio, synth bass, a calliope lead and light
// drums. It starts and ends on A minor with a thin texture, so the game's
// restart from the top sounds like the next bar rather than a seam.
class Tune {
public:
    static constexpr uint32_t kTicksPerQuarter = 480;
    static constexpr uint32_t kMicrosPerQuarter = 600000;  // 100 beats a minute
    static constexpr int kBars = 32;

    static std::vector<uint8_t> Compose();
    // Bars firstBar to firstBar + bars - 1 alone, as a tune of their own: a
    // short loop of the real thing, for tests that need the tune's end soon.
    static std::vector<uint8_t> Excerpt(int firstBar, int bars);

private:
    static std::vector<uint8_t> Compose(MidiWriter& midi);
    static void Pad(MidiWriter& midi);
    static void Arpeggio(MidiWriter& midi);
    static void Bass(MidiWriter& midi);
    static void Lead(MidiWriter& midi);
    static void Bells(MidiWriter& midi);
    static void Drums(MidiWriter& midi);
};

}  // namespace assetgen
