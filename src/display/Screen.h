#pragma once
#include <cstdint>

class CDisplay;
class CSpriteList;
class CSpriteSet;

// The screen the game draws on and what draws on it. The application object
// owns them all; the layers below it reach them only through here.
std::int16_t ScreenWidth();
std::int16_t ScreenHeight();
std::int16_t ScreenBitsPerPixel();
CDisplay& TheDisplay();
CSpriteSet& TheSprites();
// Every sprite instance in use, so a restore or a new game can reach them all.
CSpriteList& LiveSprites();
