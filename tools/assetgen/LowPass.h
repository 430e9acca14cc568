#pragma once
#include <cmath>
#include <numbers>

namespace assetgen {

// Two one-pole low-pass stages in a row (12 dB an octave), with a cutoff
// that may move every sample.
class LowPass {
public:
    explicit LowPass(double sampleRate) : rate(sampleRate) {}

    double Process(double x, double cutoffHz) {
        const double a = 1.0 - std::exp(-2.0 * std::numbers::pi * cutoffHz / rate);
        first += a * (x - first);
        second += a * (first - second);
        return second;
    }

private:
    double rate;
    double first = 0.0;
    double second = 0.0;
};

}  // namespace assetgen
