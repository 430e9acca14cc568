#pragma once
// The bitmap services: drawing a bitmap file into a surface, making the
// palette from a bitmap file, and the surface values of colours and keys.
#include "platform/DisplayDevice.h"

#include <cstdint>
#include <string>

// Draws the file stretched to width x height with its top-left corner at (x, y).
// 0, or the loader's error code: 2 missing file, 3 missing folder, 13 not a bitmap.
// A file is decoded once at each size and kept in the surfaces' format, so
// drawing it again (every sprite frame after a restore) reads nothing but the
// file's date and size, by which a file changed on disk is read anew.
Result DrawBitmapFile(CSurface* surface, const std::string& path, std::int32_t width, std::int32_t height,
                      std::int32_t x, std::int32_t y);

// How many bitmap files have been read and decoded so far.
std::size_t BitmapFilesDecoded();
// Lets go of every decoded bitmap, so the next draw of each reads its file.
void ForgetDecodedBitmaps();

// The palette made from a bitmap file's colour table, over a default colour
// cube; null when the device cannot make one.
PalettePtr LoadPalette(CDisplayDevice* device, const std::string& path);

// The value a colour has on the surface (0xFFFFFFFF, CLR_INVALID, for the value
// already in the top-left pixel); 0xFFFFFFFF when the surface cannot be read.
std::uint32_t MatchColour(CSurface* surface, COLORREF colour);

// Makes the colour the surface's source colour key.
Result SetColourKey(CSurface* surface, COLORREF colour);
