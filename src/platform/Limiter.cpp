#include "platform/Limiter.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double LookAheadSeconds = 0.0015;
constexpr double ReleaseSeconds = 0.1;

} // namespace

CLimiter::CLimiter(int sampleRate)
    : lookAhead(std::max<std::size_t>(1, static_cast<std::size_t>(sampleRate * LookAheadSeconds))),
      releasePerFrame(1.0 / (ReleaseSeconds * sampleRate)), delayed(2 * lookAhead, 0.0f),
      needs(lookAhead + 1, 1.0f), holds(lookAhead, 1.0f), holdSum(static_cast<double>(lookAhead))
{
}

void CLimiter::Process(float* stereo, std::size_t frames)
{
    for (std::size_t f = 0; f < frames; ++f) {
        float* frame = stereo + 2 * f;
        const float peak = std::max(std::fabs(frame[0]), std::fabs(frame[1]));
        const float need = peak > Ceiling ? Ceiling / peak : 1.0f;
        const float g = ProcessGain(need);
        // Out goes the frame that came in a look-ahead ago; in goes this one.
        float* slot = delayed.data() + 2 * (at % lookAhead);
        const float left = slot[0], right = slot[1];
        slot[0] = frame[0];
        slot[1] = frame[1];
        frame[0] = std::clamp(left * g, -Ceiling, Ceiling);
        frame[1] = std::clamp(right * g, -Ceiling, Ceiling);
        ++at;
    }
}

// The gain for the frame leaving the look-ahead. Each hold is the smallest
// need among the look-ahead's frames when it was taken; the frame leaving
// was among them for every hold still counted, so their mean never exceeds
// its need, and the mean of the holds slides rather than jumps. The release
// only slows the climb back.
float CLimiter::ProcessGain(float need)
{
    // Most frames need nothing: while none in the look-ahead does, the
    // smallest need is 1 without looking at them.
    float& slot = needs[at % needs.size()];
    needing += (need < 1.0f) - (slot < 1.0f);
    slot = need;
    const float hold = needing ? *std::min_element(needs.begin(), needs.end()) : 1.0f;
    float& oldest = holds[at % lookAhead];
    holdSum += static_cast<double>(hold) - oldest;
    oldest = hold;
    const float smooth = static_cast<float>(holdSum / static_cast<double>(lookAhead));
    gain = std::min({smooth, static_cast<float>(gain + releasePerFrame), 1.0f});
    return gain;
}
