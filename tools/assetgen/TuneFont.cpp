#include "TuneFont.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <string>

#include "LowPass.h"
#include "Random.h"
#include "SoundFontWriter.h"

namespace assetgen {

namespace {

using Writer = SoundFontWriter;
using Generators = std::vector<std::pair<Writer::Generator, int16_t>>;
using Harmonics = std::function<double(int)>;  // the level of each harmonic, from 1

constexpr double kRate = TuneFont::kSampleRate;
constexpr double kPeak = 0.9 * 32767.0;
// A looped wave keeps its harmonics under this at the top of its key range,
// so that nothing folds back from above half the sample rate.
constexpr double kBrightestHz = 12000.0;
// A wave is sampled every octave, on the Cs, and plays six keys down and five up.
constexpr std::array<uint8_t, 7> kRoots{24, 36, 48, 60, 72, 84, 96};
constexpr int kKeysBelowRoot = 6, kKeysAboveRoot = 5;
constexpr uint32_t kNoiseSeed = 0x5EED;
constexpr uint8_t kPercussionRoot = 60;
constexpr uint16_t kPercussionBank = 128;

double KeyHz(double key) { return 440.0 * std::pow(2.0, (key - 69.0) / 12.0); }
size_t Points(double seconds) { return static_cast<size_t>(seconds * kRate); }
double TimeOf(size_t i) { return static_cast<double>(i) / kRate; }
int16_t Tc(double seconds) { return Writer::Timecents(seconds); }

std::vector<int16_t> ToPoints(const std::vector<double>& signal) {
    double loudest = 0.0;
    for (double v : signal) loudest = std::max(loudest, std::fabs(v));
    std::vector<int16_t> points;
    for (double v : signal) points.push_back(static_cast<int16_t>(std::lround(loudest > 0 ? v * kPeak / loudest : 0)));
    return points;
}

// One octave of a sustained instrument: a cycle of whole points, repeated,
// looped over its inner cycles. The cycle is a few cents off the key, which
// the sample's correction puts right.
Writer::Sample LoopedWave(const std::string& name, uint8_t root, const Harmonics& level) {
    const double hz = KeyHz(root);
    const auto cycle = static_cast<size_t>(std::lround(kRate / hz));
    const int harmonics = std::max(1, static_cast<int>(kBrightestHz / KeyHz(root + kKeysAboveRoot)));
    const size_t cycles = std::max<size_t>(4, 1024 / cycle + 2);
    std::vector<double> wave(cycle * cycles);
    for (int n = 1; n <= harmonics && 2 * n < static_cast<int>(cycle); ++n) {
        const double a = level(n);
        if (a == 0.0) continue;
        for (size_t i = 0; i < wave.size(); ++i)
            wave[i] += a * std::sin(2.0 * std::numbers::pi * n * static_cast<double>(i % cycle) / cycle);
    }
    Writer::Sample sample;
    sample.name = name + " " + std::to_string(root);
    sample.data = ToPoints(wave);
    sample.rate = TuneFont::kSampleRate;
    sample.rootKey = root;
    sample.correctionCents = static_cast<int8_t>(std::lround(1200.0 * std::log2(hz * cycle / kRate)));
    sample.loopStart = static_cast<uint32_t>(cycle);
    sample.loopEnd = static_cast<uint32_t>(cycle * (cycles - 1));
    return sample;
}

// An instrument of looped waves, one every octave, each zone with the same
// generators; layered with a second, detuned copy when detuneCents is set.
int AddSustained(Writer& font, const std::string& name, const Harmonics& level, const Generators& generators,
                 int16_t detuneCents = 0) {
    std::vector<Writer::Zone> zones;
    for (size_t r = 0; r < kRoots.size(); ++r) {
        Writer::Zone zone;
        zone.sample = font.AddSample(LoopedWave(name, kRoots[r], level));
        zone.lowKey = r == 0 ? 0 : static_cast<uint8_t>(kRoots[r] - kKeysBelowRoot);
        zone.highKey = r + 1 == kRoots.size() ? 127 : static_cast<uint8_t>(kRoots[r] + kKeysAboveRoot);
        zone.generators = generators;
        zone.generators.emplace_back(Writer::kSampleModes, Writer::kLoop);
        if (detuneCents == 0) {
            zones.push_back(zone);
            continue;
        }
        for (int side : {-1, 1}) {  // two voices a little apart in pitch and place
            Writer::Zone layer = zone;
            layer.generators.emplace_back(Writer::kFineTune, static_cast<int16_t>(side * detuneCents));
            layer.generators.emplace_back(Writer::kPan, static_cast<int16_t>(side * 150));
            zones.push_back(layer);
        }
    }
    return font.AddInstrument(name, zones);
}

// A one-shot drum sound, as the tune's drums strike it.
Writer::Sample Drum(const std::string& name, double seconds, const std::function<double(double, Random&)>& sound) {
    Random noise(kNoiseSeed + static_cast<uint32_t>(name.size()));
    std::vector<double> signal(Points(seconds));
    for (size_t i = 0; i < signal.size(); ++i) signal[i] = sound(TimeOf(i), noise);
    // A short fade at the end, so that the sound never stops on a click.
    const size_t fade = Points(0.01);
    for (size_t i = 0; i < fade && i < signal.size(); ++i) signal[signal.size() - 1 - i] *= static_cast<double>(i) / fade;
    Writer::Sample sample;
    sample.name = name;
    sample.data = ToPoints(signal);
    sample.rate = TuneFont::kSampleRate;
    sample.rootKey = kPercussionRoot;
    sample.loopStart = 8;
    sample.loopEnd = static_cast<uint32_t>(sample.data.size() - 8);
    return sample;
}

// A sine that falls from `from` times its pitch to it, dying away.
std::function<double(double, Random&)> Thud(double hz, double from, double fall, double decay, double noise) {
    double phase = 0.0;
    return [=](double t, Random& random) mutable {
        phase += hz * (1.0 + (from - 1.0) * std::exp(-t / fall)) / kRate;
        return (std::sin(2.0 * std::numbers::pi * phase) + noise * random.Signed() * std::exp(-t / 0.01)) *
               std::exp(-t / decay);
    };
}

// Noise between a corner and a softened top, dying away.
std::function<double(double, Random&)> Hiss(double cornerHz, double decay) {
    constexpr double kTopHz = 8000.0;
    auto dark = std::make_shared<LowPass>(kRate);
    auto soft = std::make_shared<LowPass>(kRate);
    return [=](double t, Random& random) {
        const double white = random.Signed();
        return soft->Process(white - dark->Process(white, cornerHz), kTopHz) * std::exp(-t / decay);
    };
}

int AddDrumKit(Writer& font) {
    const int kick = font.AddSample(Drum("Kick", 0.4, Thud(50.0, 3.2, 0.03, 0.14, 0.6)));
    const int tom = font.AddSample(Drum("Tom", 0.5, Thud(KeyHz(kPercussionRoot - 12), 1.5, 0.04, 0.17, 0.3)));
    const int closedHat = font.AddSample(Drum("Closed hat", 0.12, Hiss(7000.0, 0.025)));
    const int openHat = font.AddSample(Drum("Open hat", 0.6, Hiss(6000.0, 0.18)));
    const int crash = font.AddSample(Drum("Crash", 1.8, Hiss(3500.0, 0.55)));
    auto snareBody = Thud(185.0, 1.3, 0.01, 0.05, 0.0);
    auto snareRattle = Hiss(1200.0, 0.09);
    const int snare = font.AddSample(
        Drum("Snare", 0.3, [=](double t, Random& r) mutable { return 0.6 * snareBody(t, r) + snareRattle(t, r); }));

    // A drum plays out whatever the length of its note, at its own pitch;
    // only the toms follow the key.
    const Generators strike{{Writer::kReleaseVolEnv, Tc(1.0)}, {Writer::kScaleTuning, 0}};
    const Generators tuned{{Writer::kReleaseVolEnv, Tc(1.0)}, {Writer::kOverridingRootKey, kPercussionRoot - 12}};
    const auto zone = [](int sample, uint8_t low, uint8_t high, Generators generators, int16_t attenuation,
                         int16_t exclusive = 0) {
        generators.emplace_back(Writer::kInitialAttenuation, attenuation);
        if (exclusive) generators.emplace_back(Writer::kExclusiveClass, exclusive);
        return Writer::Zone{sample, low, high, generators};
    };
    constexpr int16_t kHatPair = 1;  // a closed hat cuts an open one short
    return font.AddInstrument(
        "Standard kit", {zone(kick, 0, 37, strike, 0), zone(snare, 38, 40, strike, 30), zone(tom, 41, 41, tuned, 40),
                         zone(closedHat, 42, 42, strike, 200, kHatPair), zone(tom, 43, 43, tuned, 40),
                         zone(closedHat, 44, 44, strike, 220, kHatPair), zone(tom, 45, 45, tuned, 40),
                         zone(openHat, 46, 46, strike, 200, kHatPair), zone(tom, 47, 48, tuned, 40),
                         zone(crash, 49, 49, strike, 250), zone(tom, 50, 50, tuned, 40), zone(crash, 51, 59, strike, 270),
                         zone(tom, 60, 81, tuned, 60), zone(closedHat, 82, 127, strike, 220)});
}

}  // namespace

std::vector<uint8_t> TuneFont::Build() {
    Writer font;
    // The tune's five parts, each an instrument of its own.
    const int pad = AddSustained(
        font, "Warm pad", [](int n) { return std::pow(n, -1.7); },
        {{Writer::kAttackVolEnv, Tc(0.35)}, {Writer::kReleaseVolEnv, Tc(1.4)},
         {Writer::kInitialFilterFc, Writer::AbsoluteCents(3500.0)}, {Writer::kInitialAttenuation, 220}},
        7);
    const int square = AddSustained(
        font, "Square lead", [](int n) { return n % 2 ? 1.0 / n : 0.0; },
        {{Writer::kAttackVolEnv, Tc(0.004)}, {Writer::kDecayVolEnv, Tc(0.4)}, {Writer::kSustainVolEnv, 80},
         {Writer::kReleaseVolEnv, Tc(0.12)}, {Writer::kInitialFilterFc, Writer::AbsoluteCents(9000.0)},
         {Writer::kInitialAttenuation, 60}});
    const int bass = AddSustained(
        font, "Synth bass", [](int n) { return 1.0 / n; },
        {{Writer::kAttackVolEnv, Tc(0.003)}, {Writer::kDecayVolEnv, Tc(0.5)}, {Writer::kSustainVolEnv, 100},
         {Writer::kReleaseVolEnv, Tc(0.08)}, {Writer::kInitialFilterFc, Writer::AbsoluteCents(450.0)},
         {Writer::kInitialFilterQ, 80}, {Writer::kModEnvToFilterFc, 3000}, {Writer::kAttackModEnv, Tc(0.0)},
         {Writer::kDecayModEnv, Tc(0.2)}, {Writer::kSustainModEnv, 1000}, {Writer::kInitialAttenuation, 20}});
    const int calliope = AddSustained(
        font, "Calliope", [](int n) { return n == 1 ? 1.0 : n == 2 ? 0.35 : n == 3 ? 0.12 : n == 4 ? 0.05 : 0.0; },
        {{Writer::kAttackVolEnv, Tc(0.03)}, {Writer::kReleaseVolEnv, Tc(0.15)},
         {Writer::kDelayVibLfo, Tc(0.25)}, {Writer::kFreqVibLfo, Writer::AbsoluteCents(5.5)},
         {Writer::kVibLfoToPitch, 12}, {Writer::kInitialAttenuation, 40}});
    const int crystal = AddSustained(
        font, "Crystal",
        [](int n) { return n == 1 ? 1.0 : n == 4 ? 0.45 : n == 6 ? 0.2 : n == 8 ? 0.12 : 0.0; },
        {{Writer::kAttackVolEnv, Tc(0.002)}, {Writer::kDecayVolEnv, Tc(2.5)}, {Writer::kSustainVolEnv, 1440},
         {Writer::kReleaseVolEnv, Tc(1.2)}, {Writer::kInitialAttenuation, 40}});
    const int kit = AddDrumKit(font);

    // Every General MIDI program, by its family of eight, answers with the
    // nearest of the five; the tune's own programs name theirs.
    const std::array<int, 16> families{crystal, crystal, calliope, crystal, bass, pad, pad, square,
                                       square, calliope, square, pad, crystal, crystal, crystal, pad};
    const std::array<std::pair<int, int>, 5> own{{{38, bass}, {80, square}, {82, calliope}, {89, pad}, {98, crystal}}};
    for (int program = 0; program < 128; ++program) {
        int instrument = families[program / 8];
        for (const auto& [p, i] : own)
            if (p == program) instrument = i;
        font.AddPreset("Program " + std::to_string(program), 0, static_cast<uint16_t>(program), instrument);
    }
    for (uint16_t program : {0, 8, 16, 24, 25, 32, 40, 48, 56})  // the General MIDI 2 kits
        font.AddPreset("Kit " + std::to_string(program), kPercussionBank, program, kit);
    return font.Encode("Quelvarion");
}

}  // namespace assetgen
