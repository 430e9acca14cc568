#pragma once
#include <array>
#include <cstdint>

class CDC;

// One pixel a star lights, in a grey level.
struct StarPixel {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::uint8_t grey = 0;
};

// One background star: a fixed point that twinkles by two grey levels each
// time it is drawn, climbing to about 222 and sinking to about 98. About one
// star in eight is a bright centre with four dimmer neighbours.
class CStar {
public:
    static constexpr std::int32_t TwinkleStep = 2;
    static constexpr std::int32_t TwinkleHigh = 220;
    static constexpr std::int32_t TwinkleLow = 100;

    // A star at a random place on the screen, from five draws of the game's
    // shared generator.
    CStar();
    // A star from five draws (0..32767) already made, in the order: column,
    // row, size, brightness, direction.
    static CStar FromDraws(const std::array<std::int32_t, 5>& draws, std::int32_t width, std::int32_t height);
    // A star exactly as one stood before, for a replay.
    static CStar Restored(std::int32_t x, std::int32_t y, std::int16_t size, std::int32_t brightness, bool rising)
    {
        return CStar(x, y, size, brightness, rising);
    }

    // One step of the twinkle, made once per drawn frame.
    void Twinkle();
    // Twinkles and lights the star's pixels in its grey; the context clips
    // what lies off the surface.
    void Draw(CDC& dc);

    // The pixels the star lights now: the centre first, then, for a large star,
    // right, left, below and above at half the brightness. Some may lie off
    // the screen; drawing clips them.
    struct Pixels {
        std::array<StarPixel, 5> pixel;
        int count = 0;
    };
    Pixels GetPixels() const;

    std::int32_t GetX() const { return x; }
    std::int32_t GetY() const { return y; }
    std::int16_t GetSize() const { return size; }
    std::int32_t GetBrightness() const { return brightness; }
    bool IsRising() const { return rising; }

private:
    CStar(std::int32_t x, std::int32_t y, std::int16_t size, std::int32_t brightness, bool rising);

    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int16_t size = 1;
    std::int32_t brightness = TwinkleLow;
    bool rising = false;
};
