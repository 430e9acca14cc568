#pragma once
#include "SpritePainter.h"

namespace assetgen {

// The heavy mine: a gunmetal sphere bristling with spikes that slowly turn,
// with a red warning lamp that throbs.
class SpikedMinePainter : public SpritePainter {
public:
    Image Paint(const FrameInfo& info) const override;
};

}  // namespace assetgen
