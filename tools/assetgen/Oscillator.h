#pragma once
#include <cmath>
#include <numbers>

namespace assetgen {

// A phase-accumulating oscillator whose frequency may change every sample
// (for sweeps and glides). Saw and square are band-limited with PolyBLEP
// corrections so high notes do not alias into harsh whistles.
class Oscillator {
public:
    explicit Oscillator(double sampleRate, double startPhase = 0.0) : rate(sampleRate), phase(startPhase) {}

    double Sine(double hz) { return std::sin(2.0 * std::numbers::pi * Advance(hz)); }

    double Saw(double hz) {
        const double dt = hz / rate;
        const double t = Advance(hz);
        return 2.0 * t - 1.0 - Blep(t, dt);
    }

    double Square(double hz) {
        const double dt = hz / rate;
        const double t = Advance(hz);
        const double half = t + 0.5 - std::floor(t + 0.5);
        return (t < 0.5 ? 1.0 : -1.0) + Blep(t, dt) - Blep(half, dt);
    }

private:
    // Returns the phase of this sample and steps on to the next.
    double Advance(double hz) {
        const double t = phase;
        phase += hz / rate;
        phase -= std::floor(phase);
        return t;
    }

    static double Blep(double t, double dt) {
        if (t < dt) {
            t /= dt;
            return t + t - t * t - 1.0;
        }
        if (t > 1.0 - dt) {
            t = (t - 1.0) / dt;
            return t * t + t + t + 1.0;
        }
        return 0.0;
    }

    double rate;
    double phase;
};

}  // namespace assetgen
