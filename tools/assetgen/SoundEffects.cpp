#include "SoundEffects.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "LowPass.h"
#include "Oscillator.h"
#include "Random.h"

namespace assetgen {

namespace {

constexpr double kRate = SoundEffects::kSampleRate;
constexpr uint32_t kNoiseSeed = 0xB00Bu;
// Every sound ends with a short fade so it never stops on a click.
constexpr double kEndFade = 0.02;

size_t Samples(double seconds) { return static_cast<size_t>(seconds * kRate); }
double TimeOf(size_t i) { return i / kRate; }
double MidiHz(double key) { return 440.0 * std::pow(2.0, (key - 69.0) / 12.0); }

double Attack(double t, double seconds) { return t < seconds ? t / seconds : 1.0; }

double EndFade(double t, double length) {
    return std::clamp((length - t) / kEndFade, 0.0, 1.0);
}

// One voice of the start-up chord: two detuned saws that glide up into
// their note and brighten as a filter opens.
void AddChordVoice(std::vector<float>& out, double key, double start, double length) {
    Oscillator a(kRate, 0.0), b(kRate, 0.37);
    LowPass filter(kRate);
    for (size_t i = Samples(start); i < out.size(); ++i) {
        const double t = TimeOf(i), local = t - start;
        const double glide = std::min(1.0, local / 0.30);
        const double hz = MidiHz(key - 5.0 * (1.0 - glide) * (1.0 - glide));
        const double raw = 0.5 * (a.Saw(hz * 1.004) + b.Saw(hz * 0.996));
        const double cutoff = 300.0 + 5200.0 * std::pow(std::min(1.0, t / length), 0.7);
        const double release = std::clamp((length - t) / 0.55, 0.0, 1.0);
        out[i] += static_cast<float>(filter.Process(raw, cutoff) * Attack(local, 0.10) * release * release);
    }
}

void AddBell(std::vector<float>& out, double hz, double start, double decay, double level = 1.0) {
    // Slightly inharmonic partials give the metallic shimmer of a bell.
    constexpr std::array<double, 3> kRatios{1.0, 2.0, 3.01};
    constexpr std::array<double, 3> kLevels{1.0, 0.35, 0.15};
    for (size_t p = 0; p < kRatios.size(); ++p) {
        Oscillator osc(kRate);
        for (size_t i = Samples(start); i < out.size(); ++i) {
            const double local = TimeOf(i) - start;
            const double env = Attack(local, 0.004) * std::exp(-local / (decay / kRatios[p]));
            out[i] += static_cast<float>(level * kLevels[p] * env * osc.Sine(hz * kRatios[p]));
        }
    }
}

void FinishWithFade(std::vector<float>& out) {
    const double length = TimeOf(out.size());
    for (size_t i = 0; i < out.size(); ++i) out[i] *= static_cast<float>(EndFade(TimeOf(i), length));
}

// A falling laser tone: frequency sweeps exponentially from high to low.
double Sweep(double t, double length, double fromHz, double toHz) {
    return fromHz * std::pow(toHz / fromHz, std::min(1.0, t / length));
}

}  // namespace

std::vector<float> SoundEffects::StartupChord() {
    constexpr double kLength = 1.8;
    constexpr std::array<double, 8> kKeys{45, 52, 57, 61, 64, 69, 73, 76};  // A major, low to high
    std::vector<float> out(Samples(kLength));
    for (size_t n = 0; n < kKeys.size(); ++n) AddChordVoice(out, kKeys[n], 0.08 * n, kLength);
    // A soft chime over the first, low voices, so the sound starts bright
    // enough for small speakers; a high shimmer crowns the chord once it has built.
    AddBell(out, MidiHz(81), 0.0, 0.35, 0.4);
    AddBell(out, MidiHz(93), 0.70, 0.6);
    FinishWithFade(out);
    return out;
}

std::vector<float> SoundEffects::PickupChime() {
    constexpr double kLength = 0.6;
    constexpr std::array<double, 4> kKeys{88, 92, 95, 100};  // E6 G#6 B6 E7
    std::vector<float> out(Samples(kLength));
    for (size_t n = 0; n < kKeys.size(); ++n) AddBell(out, MidiHz(kKeys[n]), 0.055 * n, 0.16);
    FinishWithFade(out);
    return out;
}

std::vector<float> SoundEffects::Explosion() {
    constexpr double kLength = 1.1;
    std::vector<float> out(Samples(kLength));
    Random noise(kNoiseSeed);
    LowPass roar(kRate), crackleTone(kRate), snapDark(kRate);
    Oscillator thump(kRate);
    for (size_t i = 0; i < out.size(); ++i) {
        const double t = TimeOf(i);
        const double white = noise.Signed();
        // The blast's crack: noise above about 1 kHz, gone within a few tens of milliseconds.
        const double snap = (white - snapDark.Process(white, 1000.0)) * Attack(t, 0.002) * std::exp(-t / 0.03);
        // The roar starts bright and darkens into a rumble as it dies.
        const double cutoff = 300.0 + 3000.0 * std::exp(-t / 0.25);
        const double body = roar.Process(white, cutoff) * 2.0 * Attack(t, 0.003) * std::exp(-t / 0.34);
        const double boom = thump.Sine(Sweep(t, 0.35, 140.0, 45.0)) * std::exp(-t / 0.12);
        // Sparse crackles, thinning out and quietening as the blast dies.
        const double liveliness = std::exp(-t / 0.18);
        const bool crack = noise.Unit() < 0.004 * liveliness;
        const double crackle = crackleTone.Process(crack ? noise.Signed() * 5.0 * liveliness : 0.0, 2400.0);
        out[i] = static_cast<float>(std::tanh(1.5 * (body + 0.35 * boom + 0.4 * snap + crackle)));
    }
    FinishWithFade(out);
    return out;
}

std::vector<float> SoundEffects::PlayerShot() {
    constexpr double kLength = 0.16;
    std::vector<float> out(Samples(kLength));
    Oscillator square(kRate), body(kRate);
    LowPass soften(kRate);
    for (size_t i = 0; i < out.size(); ++i) {
        const double t = TimeOf(i);
        const double hz = Sweep(t, kLength, 1900.0, 380.0);
        const double tone = 0.6 * square.Square(hz) + 0.5 * body.Sine(hz);
        out[i] = static_cast<float>(soften.Process(tone, 7000.0) * Attack(t, 0.002) * std::exp(-t / 0.07));
    }
    FinishWithFade(out);
    return out;
}

std::vector<float> SoundEffects::EnemyShot() {
    constexpr double kLength = 0.28;
    constexpr double kBuzzHz = 38.0;
    std::vector<float> out(Samples(kLength));
    Oscillator saw(kRate), buzz(kRate);
    LowPass soften(kRate);
    Random grit(kNoiseSeed + 1);
    for (size_t i = 0; i < out.size(); ++i) {
        const double t = TimeOf(i);
        const double hz = Sweep(t, kLength, 720.0, 110.0);
        const double tone = saw.Saw(hz) * (0.55 + 0.45 * buzz.Sine(kBuzzHz)) + 0.25 * grit.Signed() * std::exp(-t / 0.03);
        out[i] = static_cast<float>(soften.Process(tone, 3200.0) * Attack(t, 0.004) * std::exp(-t / 0.12));
    }
    FinishWithFade(out);
    return out;
}

}  // namespace assetgen
