#pragma once

class CFont;

// The application's fonts, as the screens of the front end write with them.
CFont& TitleFont();
CFont& MenuFont();
CFont& TextFont();
