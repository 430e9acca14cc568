#pragma once
#include "SpritePainter.h"

namespace assetgen {

// A white-hot splinter of debris, tumbling and flickering.
class ShrapnelPainter : public SpritePainter {
public:
    Image Paint(const FrameInfo& info) const override;
};

}  // namespace assetgen
