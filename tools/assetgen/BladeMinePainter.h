#pragma once
#include "SpritePainter.h"

namespace assetgen {

// The light, quick mine: three hooked acid-yellow blades spinning round a
// violet core that blinks.
class BladeMinePainter : public SpritePainter {
public:
    Image Paint(const FrameInfo& info) const override;
};

}  // namespace assetgen
