#pragma once
#include <cairo.h>

#include "Colour.h"
#include "Image.h"

namespace assetgen {

// A transparent Cairo drawing surface with its context. For sprites the
// origin is put at the centre and one unit is the sprite's radius, so the
// painters draw in sizes that do not depend on the frame size.
class CairoCanvas {
public:
    CairoCanvas(int width, int height);
    ~CairoCanvas();
    CairoCanvas(const CairoCanvas&) = delete;
    CairoCanvas& operator=(const CairoCanvas&) = delete;

    cairo_t* Context() { return cr; }
    cairo_surface_t* Surface() { return surface; }

    // Centre origin; one unit reaches the frame's edge less a margin that
    // keeps antialiased edges inside the frame.
    void UseUnitSpace(double marginPixels);
    Image ToImage() const;

    static void SetColour(cairo_t* cr, const Colour& c, double alpha = 1.0);
    // Fills (and clears) the current path with light falling from the top left of the
    // screen, whatever way the path itself was turned.
    static void FillLit(cairo_t* cr, const Colour& lit, const Colour& shade);
    // A soft round glow: colour at the centre fading to nothing at radius.
    // A higher halfway level gives a fuller, brighter disc.
    static void Glow(cairo_t* cr, double x, double y, double radius, const Colour& c, double alpha,
                     double halfwayLevel = 0.45);

private:
    cairo_surface_t* surface;
    cairo_t* cr;
};

}  // namespace assetgen
