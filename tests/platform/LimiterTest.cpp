// The limiter on the mixed output: nothing leaves above its ceiling, and
// what is under it passes untouched.
#include "platform/Limiter.h"
#include "platform/AudioChecks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

constexpr int Rate = 44100;

// Stereo frames of a sine, the right channel in opposite phase.
std::vector<float> Sine(double amplitude, double hz, std::size_t frames)
{
    std::vector<float> out(2 * frames);
    for (std::size_t f = 0; f < frames; ++f) {
        const auto value = static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * hz * f / Rate));
        out[2 * f] = value;
        out[2 * f + 1] = -value;
    }
    return out;
}

std::vector<float> Then(std::vector<float> first, const std::vector<float>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

double Loudest(const std::vector<float>& stereo, std::size_t fromFrame, std::size_t toFrame)
{
    return qvtest::Peak(stereo.begin() + 2 * fromFrame, stereo.begin() + 2 * toFrame);
}

TEST(Limiter, ABlastOverTheMusicIsTurnedDownSmoothlyToTheCeiling)
{
    CLimiter limiter(Rate);
    // Music, a blast at twice full scale that starts on its loudest sample, music again.
    std::vector<float> blast = Sine(2.0, 300.0, 2205);
    std::rotate(blast.begin(), blast.begin() + 2 * (Rate / 1200), blast.end());
    std::vector<float> signal = Then(Then(Sine(0.4, 440.0, 4410), blast), Sine(0.4, 440.0, 22050));
    const std::vector<float> input = signal;
    limiter.Process(signal.data(), signal.size() / 2);

    const std::size_t delay = limiter.DelayFrames();
    EXPECT_LE(Loudest(signal, 0, signal.size() / 2), CLimiter::Ceiling);
    EXPECT_GT(Loudest(signal, 4410 + delay, 6615 + delay), 0.95f * CLimiter::Ceiling) << "the blast is held at the ceiling";
    // The sound is scaled, never cut flat: the gain glides, by at most a
    // hundredth a frame.
    float lastGain = 1.0f;
    std::size_t lastFrame = 0;
    for (std::size_t f = delay; f < signal.size() / 2; ++f) {
        const float in = input[2 * (f - delay)];
        if (std::fabs(in) < 0.1f)
            continue;
        const float gain = signal[2 * f] / in;
        ASSERT_LE(std::fabs(gain - lastGain), 0.01f * (f - lastFrame)) << "frame " << f;
        lastGain = gain;
        lastFrame = f;
    }
    // A tenth of a second after the blast the music is itself again.
    const std::size_t recovered = 6615 + Rate / 10 + delay;
    for (std::size_t i = 2 * recovered; i < signal.size(); ++i)
        ASSERT_FLOAT_EQ(signal[i], input[i - 2 * delay]) << "frame " << i / 2;
}

TEST(Limiter, SoundUnderTheCeilingOnlyComesALittleLater)
{
    CLimiter limiter(Rate);
    std::vector<float> signal = Then(Sine(CLimiter::Ceiling, 1000.0, 3000), Sine(0.2, 50.0, 3000));
    const std::vector<float> input = signal;
    // In pieces of odd sizes, as the output hands them over.
    for (std::size_t at = 0, piece = 1; at < signal.size() / 2; at += piece, piece = piece * 3 % 1021 + 1)
        limiter.Process(signal.data() + 2 * at, std::min(piece, signal.size() / 2 - at));
    const std::size_t delay = limiter.DelayFrames();
    ASSERT_GT(delay, 0u);
    EXPECT_LT(delay, static_cast<std::size_t>(Rate / 500)) << "two milliseconds at most";
    EXPECT_EQ(Loudest(signal, 0, delay), 0.0f);
    EXPECT_EQ(std::vector<float>(signal.begin() + 2 * delay, signal.end()),
              std::vector<float>(input.begin(), input.end() - 2 * delay));
}

} // namespace
