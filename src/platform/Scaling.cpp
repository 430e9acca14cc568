#include "platform/Scaling.h"

#include <algorithm>
#include <array>
#include <atomic>

namespace {

struct NamedMode {
    ScaleMode mode;
    const char* name;
};

constexpr std::array<NamedMode, 3> Modes{{
    {ScaleMode::Integer, "integer"},
    {ScaleMode::Smooth, "smooth"},
    {ScaleMode::Sharp, "sharp"},
}};

std::atomic<ScaleMode>& currentMode()
{
    static std::atomic<ScaleMode> mode{ScaleMode::Smooth};
    return mode;
}

std::function<void(ScaleMode)>& modeListener()
{
    static std::function<void(ScaleMode)> listener;
    return listener;
}

} // namespace

namespace Platform {

PictureFit FitPicture(ScaleMode mode, int pictureWidth, int pictureHeight, int outputWidth, int outputHeight)
{
    PictureFit fit;
    if (pictureWidth <= 0 || pictureHeight <= 0 || outputWidth <= 0 || outputHeight <= 0)
        return fit;
    const int whole = std::min(outputWidth / pictureWidth, outputHeight / pictureHeight);
    if (mode == ScaleMode::Integer && whole >= 1) {
        fit.width = whole * pictureWidth;
        fit.height = whole * pictureHeight;
    } else if (static_cast<long long>(outputWidth) * pictureHeight <= static_cast<long long>(outputHeight) * pictureWidth) {
        // The output is narrower than the picture's shape: bars above and below.
        fit.width = outputWidth;
        fit.height = static_cast<int>((static_cast<long long>(outputWidth) * pictureHeight + pictureWidth / 2) / pictureWidth);
    } else {
        fit.height = outputHeight;
        fit.width = static_cast<int>((static_cast<long long>(outputHeight) * pictureWidth + pictureHeight / 2) / pictureHeight);
    }
    fit.width = std::max(fit.width, 1);
    fit.height = std::max(fit.height, 1);
    fit.x = (outputWidth - fit.width) / 2;
    fit.y = (outputHeight - fit.height) / 2;
    fit.prescale = mode == ScaleMode::Smooth ? 1 : std::max(whole, 1);
    return fit;
}

std::optional<ScaleMode> ScaleModeNamed(const std::string& name)
{
    for (const NamedMode& m : Modes)
        if (name == m.name)
            return m.mode;
    return std::nullopt;
}

const char* ScaleModeName(ScaleMode mode)
{
    for (const NamedMode& m : Modes)
        if (m.mode == mode)
            return m.name;
    return "";
}

ScaleMode NextScaleMode(ScaleMode mode)
{
    for (std::size_t i = 0; i < Modes.size(); ++i)
        if (Modes[i].mode == mode)
            return Modes[(i + 1) % Modes.size()].mode;
    return Modes.front().mode;
}

void SetScaleMode(ScaleMode mode) { currentMode() = mode; }
ScaleMode GetScaleMode() { return currentMode(); }

void SetScaleModeListener(std::function<void(ScaleMode)> listener) { modeListener() = std::move(listener); }

void StepScaleMode()
{
    const ScaleMode next = NextScaleMode(GetScaleMode());
    SetScaleMode(next);
    if (modeListener())
        modeListener()(next);
}

} // namespace Platform
