#pragma once
#include "Image.h"

namespace assetgen {

// What one frame shows: its size, the way the object faces (radians, 0 up
// the screen, growing clockwise, as the game turns its objects) and where
// the animation stands.
struct FrameInfo {
    int width = 0;
    int height = 0;
    double facing = 0.0;
    int frame = 0;
    int frameCount = 0;

    // 0 at the first animation frame, approaching 1 at the last; a cycle
    // that reaches 1 would repeat frame 0, so loops close without a hitch.
    double Phase() const { return frameCount > 0 ? static_cast<double>(frame) / frameCount : 0.0; }
    // 0 at the first frame and exactly 1 at the last, for one-shot effects.
    double Progress() const { return frameCount > 1 ? static_cast<double>(frame) / (frameCount - 1) : 0.0; }
};

// Paints the frames of one sprite. Pictures are flattened onto black, the
// transparent colour of the game.
class SpritePainter {
public:
    virtual ~SpritePainter() = default;
    virtual Image Paint(const FrameInfo& info) const = 0;
};

}  // namespace assetgen
