#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class CFont;
class CSurface;

// The thin bar along the bottom of a replay being watched: where the picture
// stands in the whole recording, where each level began, the speed and
// whether it is paused. It comes up with the viewer's keys and fades out
// when they rest; it is drawn over the picture, which stays the rules' own.
class CReplayBar {
public:
    static constexpr std::uint32_t ShowMs = 3000;
    static constexpr std::uint32_t FadeMs = 1000;

    struct State {
        double atMs = 0.0;
        double totalMs = 0.0;
        // Where the levels began, in recorded milliseconds.
        std::vector<double> levelMs;
        std::string speed;
        bool paused = false;
    };

    void Wake(std::uint32_t now);
    // How much of the bar shows: 1 fully, 0 not at all.
    double Opacity(std::uint32_t now) const;
    void Draw(CSurface& back, CFont& font, std::int32_t screenWidth, std::int32_t screenHeight, const State& state,
              std::uint32_t now) const;
    // The words beside the bar, such as "2x  paused  1:05 / 3:20".
    static std::string Caption(const State& state);

private:
    bool woken = false;
    std::uint32_t since = 0;
};
