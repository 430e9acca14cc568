#pragma once
#include "core/Truncate.h"
#include <cstdint>
#include <string>

// Position and velocity of a moving thing, in pixels and pixels per second.
//
// Two heading conventions meet here. A direction heading h points along
// (sin h, cos h): 0 is down the screen. A facing points along (sin h, -cos h):
// 0 is up the screen, growing clockwise. ApplyThrust is told which it gets.
class CVector {
public:
    CVector() = default;

    void Set(std::int32_t x, std::int32_t y, float xSpeedIn, float ySpeedIn);

    std::int32_t GetX() const { return TruncToInt32(xPos); }
    std::int32_t GetY() const { return TruncToInt32(yPos); }
    float GetXPos() const { return xPos; }
    float GetYPos() const { return yPos; }
    float GetXSpeed() const { return xSpeed; }
    float GetYSpeed() const { return ySpeed; }
    float GetSpeed();

    void Move(std::uint32_t elapsedMs);
    void ApplyThrust(double frameTime, double thrust, double heading, std::int32_t limit, std::uint8_t directionConvention);
    void AddSpeed(float dx, float dy);
    void AddPos(float dx, float dy);

    double GetHeading() const { return HeadingOf(xSpeed, ySpeed); }
    static double HeadingOf(float dx, float dy);
    static double MirrorHeading(double heading);

    double LeadAngle(CVector target, std::int32_t iterations, std::int32_t ownSpeed);
    double InterceptAngle(CVector target, std::int32_t ignored, std::int32_t shotSpeed);

    std::string ToString() const;

private:
    // A speed of 0 stands for "my own speed", and never less than 1.
    std::int32_t SpeedOrOwn(std::int32_t speed);

    float xPos = 0.0f;
    float yPos = 0.0f;
    float xSpeed = 0.0f;
    float ySpeed = 0.0f;
    float speedCache = 0.0f;
    std::uint8_t speedStale = 1;
};
