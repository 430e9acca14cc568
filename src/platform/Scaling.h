#pragma once
#include <functional>
#include <optional>
#include <string>

// How the game's picture fills a screen or window of another size.
enum class ScaleMode {
    Integer, // the largest whole multiple that fits, centred: every pixel a sharp square
    Smooth,  // as large as fits, smoothly filtered
    Sharp,   // the largest whole multiple that fits, pixel for pixel, then smoothed to fit
};

// Where the picture lands in the output, in output pixels, and the whole
// multiple it is first enlarged by without filtering (1 for none).
struct PictureFit {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    int prescale = 1;
    bool operator==(const PictureFit&) const = default;
};

namespace Platform {
// Where a picture of pictureWidth x pictureHeight lands in an output of
// outputWidth x outputHeight. An output too small for one whole multiple
// gets the picture shrunk to fit, whatever the mode.
PictureFit FitPicture(ScaleMode mode, int pictureWidth, int pictureHeight, int outputWidth, int outputHeight);

std::optional<ScaleMode> ScaleModeNamed(const std::string& name);
const char* ScaleModeName(ScaleMode mode);
// The next mode in turn, as the scaling key steps through them.
ScaleMode NextScaleMode(ScaleMode mode);

// The mode the display uses from now on; windows already shown take it at
// their next picture.
void SetScaleMode(ScaleMode mode);
ScaleMode GetScaleMode();
// The scaling key: the next mode, told to the listener (which remembers it).
void StepScaleMode();
void SetScaleModeListener(std::function<void(ScaleMode)> listener);
} // namespace Platform
