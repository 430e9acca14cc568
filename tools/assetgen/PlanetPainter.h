#pragma once
#include <cairo.h>

namespace assetgen {

// A banded gas giant, lit from the top left with a glowing atmosphere at its
// rim, painted pixel by pixel over whatever the surface already shows.
class PlanetPainter {
public:
    static void Paint(cairo_surface_t* surface, double centreX, double centreY, double radius);
};

}  // namespace assetgen
