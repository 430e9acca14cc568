#include "display/Star.h"

#include "core/Random.h"
#include "display/Screen.h"
#include "platform/DC.h"

namespace {

// Each draw is scaled by a factor formed once in double precision, and the
// product truncates toward zero.
std::int32_t Scaled(double amount, double factor)
{
    return static_cast<std::int32_t>(amount * factor);
}

} // namespace

CStar::CStar(std::int32_t starX, std::int32_t starY, std::int16_t starSize, std::int32_t starBrightness,
             bool isRising)
    : x(starX), y(starY), size(starSize), brightness(starBrightness), rising(isRising)
{
}

CStar::CStar()
    : CStar(FromDraws({SharedRandom().Rand(), SharedRandom().Rand(), SharedRandom().Rand(), SharedRandom().Rand(), SharedRandom().Rand()},
                      ScreenWidth(), ScreenHeight()))
{
}

CStar CStar::FromDraws(const std::array<std::int32_t, 5>& draws, std::int32_t width, std::int32_t height)
{
    constexpr double Max = CRandom::Max;
    const std::int32_t starX = Scaled(static_cast<double>(draws[0]) * width, 1 / Max);
    const std::int32_t starY = Scaled(static_cast<double>(draws[1]) * height, 1 / Max);
    // A draw below 4096 (one in eight) makes a large star.
    const std::int16_t starSize = Scaled(draws[2], 8 / Max) >= 1 ? 1 : 2;
    const std::int32_t starBrightness = TwinkleLow - Scaled(draws[3], -120 / Max);
    // A draw of 16384 or more (about half) makes a rising star.
    const bool isRising = 1 - Scaled(draws[4], -6 / Max) > 3;
    return CStar(starX, starY, starSize, starBrightness, isRising);
}

void CStar::Twinkle()
{
    if (rising) {
        brightness += TwinkleStep;
        if (brightness > TwinkleHigh)
            rising = false;
    } else {
        brightness -= TwinkleStep;
        if (brightness < TwinkleLow)
            rising = true;
    }
}

CStar::Pixels CStar::GetPixels() const
{
    const auto centre = static_cast<std::uint8_t>(brightness & 0xFF);
    const auto halo = static_cast<std::uint8_t>((brightness / 2) & 0xFF);
    Pixels lit;
    lit.pixel[0] = {x, y, centre};
    lit.count = 1;
    if (size == 2) {
        lit.pixel[1] = {x + 1, y, halo};
        lit.pixel[2] = {x - 1, y, halo};
        lit.pixel[3] = {x, y + 1, halo};
        lit.pixel[4] = {x, y - 1, halo};
        lit.count = 5;
    }
    return lit;
}

void CStar::Draw(CDC& dc)
{
    Twinkle();
    const Pixels lit = GetPixels();
    for (int i = 0; i < lit.count; ++i) {
        const StarPixel& p = lit.pixel[static_cast<std::size_t>(i)];
        dc.SetPixel(p.x, p.y, RGB(p.grey, p.grey, p.grey));
    }
}
