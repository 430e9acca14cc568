#include "Tune.h"

#include <array>
#include <utility>

#include "MidiWriter.h"

namespace assetgen {

namespace {

constexpr uint32_t kBeat = Tune::kTicksPerQuarter;
constexpr uint32_t kBar = 4 * kBeat;
constexpr uint32_t kSixteenth = kBeat / 4;
constexpr uint32_t kEighth = kBeat / 2;

// General MIDI programs (counted from 0) and channels.
constexpr uint8_t kPadProgram = 89;   // Pad 2 (warm)
constexpr uint8_t kArpProgram = 80;   // Lead 1 (square)
constexpr uint8_t kBassProgram = 38;  // Synth Bass 1
constexpr uint8_t kLeadProgram = 82;  // Lead 3 (calliope)
constexpr uint8_t kBellProgram = 98;  // FX 3 (crystal)
constexpr uint8_t kPadChannel = 0, kArpChannel = 1, kBassChannel = 2, kLeadChannel = 3, kBellChannel = 4;
constexpr uint8_t kDrumChannel = 9;  // channel 10, the GM percussion channel

constexpr uint8_t kCcVolume = 7, kCcPan = 10, kCcReverb = 91, kCcChorus = 93;

// GM percussion keys.
constexpr uint8_t kKick = 36, kSnare = 40, kClosedHat = 42, kOpenHat = 46, kCrash = 49, kLowTom = 45,
                  kMidTom = 47, kHighTom = 50;

// Sections, in bars counted from 0.
constexpr int kGrooveStart = 8, kLeadStart = 16, kReprise = 24;

struct Chord {
    uint8_t bass;
    std::array<uint8_t, 3> pad;
};

constexpr Chord kAm{45, {57, 60, 64}}, kF{41, {57, 60, 65}}, kC{48, {55, 60, 64}}, kG{43, {55, 59, 62}},
    kE{40, {56, 59, 64}}, kEm{40, {55, 59, 64}}, kDm{38, {57, 62, 65}};

// One chord a bar: two statements of the theme, a climb, and a reprise that
// cadences home to A minor for the return to bar 1.
constexpr std::array<Chord, Tune::kBars> kChords{
    kAm, kF, kC, kG, kAm, kF, kG, kE,  kAm, kF, kC, kG, kAm, kF, kG, kE,
    kF,  kG, kEm, kAm, kF, kG, kE, kE, kAm, kF, kC, kG, kDm, kF, kE, kAm};

struct Phrase {
    double beat;
    double beats;
    uint8_t key;
};

// The lead, bar by bar from bar 17 (positions and lengths in beats).
const std::array<std::vector<Phrase>, 16> kMelody{{
    {{0, 1.5, 72}, {1.5, 0.5, 69}, {2, 1, 72}, {3, 1, 77}},
    {{0, 1.5, 74}, {1.5, 0.5, 71}, {2, 2, 79}},
    {{0, 1, 76}, {1, 1, 74}, {2, 1, 71}, {3, 1, 67}},
    {{0, 3, 69}, {3, 1, 72}},
    {{0, 1.5, 77}, {1.5, 0.5, 76}, {2, 1, 72}, {3, 1, 69}},
    {{0, 1.5, 74}, {1.5, 0.5, 72}, {2, 1, 71}, {3, 1, 74}},
    {{0, 2, 71}, {2, 1, 68}, {3, 1, 71}},
    {{0, 4, 76}},
    {{0, 2, 76}, {2, 1, 72}, {3, 1, 69}},
    {{0, 2, 77}, {2, 2, 81}},
    {{0, 1.5, 79}, {1.5, 0.5, 76}, {2, 2, 72}},
    {{0, 3, 74}, {3, 1, 71}},
    {{0, 2, 74}, {2, 1, 77}, {3, 1, 81}},
    {{0, 2, 81}, {2, 2, 77}},
    {{0, 2, 80}, {2, 2, 76}},
    {{0, 2, 69}},
}};

uint32_t BarStart(int bar) { return static_cast<uint32_t>(bar) * kBar; }
uint32_t Beats(double beats) { return static_cast<uint32_t>(beats * kBeat); }

void SetUpChannel(MidiWriter& midi, int track, uint8_t channel, uint8_t program, uint8_t volume, uint8_t pan,
                  uint8_t reverb) {
    midi.ProgramChange(track, 0, channel, program);
    midi.ControlChange(track, 0, channel, kCcVolume, volume);
    midi.ControlChange(track, 0, channel, kCcPan, pan);
    midi.ControlChange(track, 0, channel, kCcReverb, reverb);
}

void DrumBar(MidiWriter& midi, int track, int bar, bool snare, uint8_t hatLevel) {
    const uint32_t start = BarStart(bar);
    for (int e = 0; e < 8; ++e) {
        const uint8_t accent = (e % 2 == 0) ? hatLevel : static_cast<uint8_t>(hatLevel * 3 / 4);
        const bool open = snare && e == 7 && bar % 2 == 1;
        midi.Note(track, start + e * kEighth, kSixteenth, kDrumChannel, open ? kOpenHat : kClosedHat, accent);
    }
    midi.Note(track, start, kSixteenth, kDrumChannel, kKick, 96);
    midi.Note(track, start + 2 * kBeat, kSixteenth, kDrumChannel, kKick, 88);
    if (bar % 4 == 3) midi.Note(track, start + 2 * kBeat + kEighth * 3, kSixteenth, kDrumChannel, kKick, 70);
    if (!snare) return;
    midi.Note(track, start + kBeat, kSixteenth, kDrumChannel, kSnare, 72);
    midi.Note(track, start + 3 * kBeat, kSixteenth, kDrumChannel, kSnare, 76);
}

void TomFill(MidiWriter& midi, int track, int bar) {
    constexpr std::array<uint8_t, 8> kToms{kHighTom, kHighTom, kMidTom, kMidTom, kLowTom, kLowTom, kLowTom, kKick};
    const uint32_t start = BarStart(bar) + 2 * kBeat;
    for (size_t i = 0; i < kToms.size(); ++i)
        midi.Note(track, start + static_cast<uint32_t>(i) * kSixteenth, kSixteenth, kDrumChannel, kToms[i],
                  static_cast<uint8_t>(64 + 4 * i));
}

}  // namespace

std::vector<uint8_t> Tune::Compose() {
    MidiWriter midi(kTicksPerQuarter);
    return Compose(midi);
}

std::vector<uint8_t> Tune::Excerpt(int firstBar, int bars) {
    MidiWriter midi(kTicksPerQuarter);
    midi.SetWindow(BarStart(firstBar), BarStart(firstBar + bars));
    return Compose(midi);
}

std::vector<uint8_t> Tune::Compose(MidiWriter& midi) {
    const int conductor = midi.AddTrack("Quelvarion");
    midi.Tempo(conductor, 0, kMicrosPerQuarter);
    midi.TimeSignature(conductor, 0, 4, 2);
    Pad(midi);
    Arpeggio(midi);
    Bass(midi);
    Lead(midi);
    Bells(midi);
    Drums(midi);
    midi.SetEnd(BarStart(kBars));
    return midi.Encode();
}

void Tune::Pad(MidiWriter& midi) {
    const int track = midi.AddTrack("Pad");
    SetUpChannel(midi, track, kPadChannel, kPadProgram, 92, 64, 90);
    midi.ControlChange(track, 0, kPadChannel, kCcChorus, 60);
    for (int bar = 0; bar < kBars; ++bar) {
        const uint8_t level = bar >= kLeadStart && bar < kBars - 1 ? 58 : 70;
        for (uint8_t key : kChords[bar].pad) midi.Note(track, BarStart(bar), kBar, kPadChannel, key, level);
    }
}

void Tune::Arpeggio(MidiWriter& midi) {
    const int track = midi.AddTrack("Arpeggio");
    SetUpChannel(midi, track, kArpChannel, kArpProgram, 58, 40, 70);
    for (int bar = 0; bar < kBars; ++bar) {
        const auto& p = kChords[bar].pad;
        const std::array<uint8_t, 8> notes{p[0], p[1], p[2], static_cast<uint8_t>(p[0] + 12),
                                           p[2], p[1], static_cast<uint8_t>(p[0] + 12), p[2]};
        for (int s = 0; s < 16; ++s) {
            const uint8_t level = (s % 4 == 0) ? 78 : 58;
            midi.Note(track, BarStart(bar) + s * kSixteenth, kSixteenth * 3 / 4, kArpChannel,
                      static_cast<uint8_t>(notes[s % 8] + 12), level);
        }
    }
}

void Tune::Bass(MidiWriter& midi) {
    const int track = midi.AddTrack("Bass");
    SetUpChannel(midi, track, kBassChannel, kBassProgram, 100, 64, 30);
    // Eighth-note positions and offsets from the root: a driving, syncopated line.
    constexpr std::array<std::pair<int, int>, 6> kPattern{{{0, 0}, {2, 0}, {3, 12}, {5, 0}, {6, 7}, {7, 0}}};
    for (int bar = kGrooveStart / 2; bar < kBars; ++bar) {
        const uint8_t root = kChords[bar].bass;
        const bool sparse = bar < kGrooveStart || bar == kBars - 1;
        for (const auto& [eighth, offset] : kPattern) {
            if (sparse && eighth != 0 && eighth != 3) continue;
            midi.Note(track, BarStart(bar) + eighth * kEighth, sparse && eighth == 0 ? kBeat * 3 / 2 : kEighth * 3 / 4,
                      kBassChannel, static_cast<uint8_t>(root + offset), 96);
        }
    }
}

void Tune::Lead(MidiWriter& midi) {
    const int track = midi.AddTrack("Lead");
    SetUpChannel(midi, track, kLeadChannel, kLeadProgram, 96, 84, 80);
    for (size_t b = 0; b < kMelody.size(); ++b) {
        const int bar = kLeadStart + static_cast<int>(b);
        const uint8_t level = bar == kBars - 1 ? 64 : 92;
        for (const Phrase& n : kMelody[b])
            midi.Note(track, BarStart(bar) + Beats(n.beat), Beats(n.beats) - kSixteenth / 2, kLeadChannel, n.key,
                      level);
    }
}

void Tune::Bells(MidiWriter& midi) {
    const int track = midi.AddTrack("Bells");
    SetUpChannel(midi, track, kBellChannel, kBellProgram, 70, 100, 110);
    // Distant chimes on the fifth of the chord, every other bar of the intro.
    for (int bar = 0; bar < kGrooveStart; bar += 2)
        midi.Note(track, BarStart(bar), 2 * kBar, kBellChannel, static_cast<uint8_t>(kChords[bar].pad[2] + 24), 52);
}

void Tune::Drums(MidiWriter& midi) {
    const int track = midi.AddTrack("Drums");
    midi.ControlChange(track, 0, kDrumChannel, kCcVolume, 88);
    midi.ControlChange(track, 0, kDrumChannel, kCcReverb, 40);
    // Intro: only a soft hi-hat ticking in its second half.
    for (int bar = kGrooveStart / 2; bar < kGrooveStart; ++bar)
        for (int e = 1; e < 8; e += 2) midi.Note(track, BarStart(bar) + e * kEighth, kSixteenth, kDrumChannel, kClosedHat, 40);
    for (int bar = kGrooveStart; bar < kBars - 1; ++bar) {
        const bool backbeat = bar >= kLeadStart;
        DrumBar(midi, track, bar, backbeat, backbeat ? 70 : 58);
    }
    midi.Note(track, BarStart(kLeadStart), kBeat, kDrumChannel, kCrash, 90);
    midi.Note(track, BarStart(kReprise), kBeat, kDrumChannel, kCrash, 84);
    TomFill(midi, track, kLeadStart - 1);
    TomFill(midi, track, kBars - 2);
    // The last bar thins back out to the intro's texture.
    midi.Note(track, BarStart(kBars - 1), kSixteenth, kDrumChannel, kKick, 80);
    for (int e = 1; e < 8; e += 2)
        midi.Note(track, BarStart(kBars - 1) + e * kEighth, kSixteenth, kDrumChannel, kClosedHat, 40);
}

}  // namespace assetgen
