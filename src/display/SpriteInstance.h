#pragma once
#include <cstdint>

class CSurface;
struct CSpriteFrame;

// The on-screen side of one game object: which catalogue entry it shows,
// where its centre is, which way it faces and where its animation stands.
class CSpriteInstance {
public:
    static constexpr std::int32_t Unbound = -1;

    // Takes the look of catalogue entry `index` of the game's sprites.
    void Bind(std::int32_t index);
    void SetPosition(std::int32_t newX, std::int32_t newY)
    {
        x = newX;
        y = newY;
    }
    void SetRotation(std::int32_t degrees);
    // Draws the instance onto the back buffer and moves its animation on.
    void Draw(double elapsedMs);

    std::int32_t GetSpriteIndex() const { return spriteIndex; }
    std::int32_t GetAngle() const { return angle; }
    std::int32_t GetRadius() const { return radius; }
    std::int32_t GetX() const { return x; }
    std::int32_t GetY() const { return y; }
    std::int32_t GetFrame() const { return frame; }
    double GetFrameClock() const { return frameClock; }
    // The frame of the entry that a draw now would show (facing and animation), or -1.
    std::int32_t ChosenFrameIndex() const;

private:
    void Animate(double elapsedMs);
    // False when the copy failed; a frame wholly off the screen is not a failure.
    bool CopyFrame(const CSpriteFrame& chosen, CSurface& back) const;
    void DrawPlaceholder(CSurface* back) const;

    std::int32_t rotationStep = 0;
    std::int32_t frameCount = 0;
    std::int32_t frameTime = 0;
    double frameClock = 0.0;
    std::int32_t frame = 0;
    std::int32_t radius = 16;
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t angle = 0;
    std::int32_t spriteIndex = Unbound;
};
