#pragma once
#include "Colour.h"
#include "SpritePainter.h"

namespace assetgen {

// A laser bolt a few pixels across. The player's bolt is a round pulsing orb;
// the enemies' is a spinning diamond, so the two read differently even
// before their colours are taken in.
class ShotPainter : public SpritePainter {
public:
    enum class Shape { Orb, Diamond };

    ShotPainter(Shape shape, Colour glow, Colour core);
    Image Paint(const FrameInfo& info) const override;

private:
    Shape shape;
    Colour glow;
    Colour core;
};

}  // namespace assetgen
