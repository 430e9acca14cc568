#pragma once
#include <cstdint>

// The on-screen side of one game object: which catalogue entry it shows,
// where its centre is, which way it faces and where its animation stands.
class CSpriteInstance {
public:
    static constexpr std::int32_t Unbound = -1;

    void Bind(std::int32_t index);
    void SetPosition(std::int32_t newX, std::int32_t newY)
    {
        x = newX;
        y = newY;
    }
    void SetRotation(std::int32_t degrees);
    void Draw(double elapsedMs);

    std::int32_t GetSpriteIndex() const { return spriteIndex; }
    std::int32_t GetAngle() const { return angle; }
    std::int32_t GetRadius() const { return radius; }
    std::int32_t GetX() const { return x; }
    std::int32_t GetY() const { return y; }

private:
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
