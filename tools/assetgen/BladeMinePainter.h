#pragma once
#include "SpritePainter.h"

// The light, quick mine: three hooked acid-yellow blades spinning round a
// violet core that blinks.
class BladeMinePainter : public SpritePainter {
public:
    Image Paint(const FrameInfo& info) const override;
};
