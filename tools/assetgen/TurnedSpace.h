#pragma once
#include <cairo.h>

namespace assetgen {

// While alive, paths are built turned clockwise by an angle (radians) about
// the current origin. Leaving the scope restores the drawing space but keeps
// the path, so a fill afterwards can light it in screen directions.
class TurnedSpace {
public:
    TurnedSpace(cairo_t* context, double angle) : cr(context) {
        cairo_save(cr);
        cairo_rotate(cr, angle);
    }
    ~TurnedSpace() { cairo_restore(cr); }
    TurnedSpace(const TurnedSpace&) = delete;
    TurnedSpace& operator=(const TurnedSpace&) = delete;

private:
    cairo_t* cr;
};

}  // namespace assetgen
