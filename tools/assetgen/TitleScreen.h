#pragma once
#include <cairo.h>

#include "Image.h"

namespace assetgen {

// The picture on screen while the game starts: the name in large chrome
// lettering over a nebula and starfield, a planet's limb, and the player's
// ship climbing away with its engines lit.
class TitleScreen {
public:
    static Image Paint(int width, int height);

private:
    static void Nebula(cairo_surface_t* surface);
    static void Stars(cairo_t* cr, int width, int height);
    static void Planet(cairo_t* cr, int width, int height);
    static void Ship(cairo_t* cr, int width, int height);
    static void Flame(cairo_t* cr, double x);
    static void Title(cairo_t* cr, int width);
    static void Subtitle(cairo_t* cr, int width);
};

}  // namespace assetgen
