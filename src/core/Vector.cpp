#include "core/Vector.h"

#include "core/Truncate.h"

#include <cmath>

namespace {
constexpr double SinglePi = 3.1415927;        // pi as the single-precision value
constexpr double SingleTwoPi = 6.2831855;     // two pi as the single-precision value
constexpr double TwoPi = 6.283185307;
constexpr double Pi = 3.1415926535;
constexpr int InterceptIterations = 20;
constexpr double InterceptTolerance = 0.001;
} // namespace

void CVector::Set(std::int32_t x, std::int32_t y, float xSpeedIn, float ySpeedIn)
{
    xPos = static_cast<float>(x);
    yPos = static_cast<float>(y);
    xSpeed = xSpeedIn;
    ySpeed = ySpeedIn;
    speedStale = 1;
}

float CVector::GetSpeed()
{
    if (speedStale) {
        speedCache = std::sqrt(xSpeed * xSpeed + ySpeed * ySpeed);
        speedStale = 0;
    }
    return speedCache;
}

void CVector::Move(std::uint32_t elapsedMs)
{
    const double seconds = static_cast<double>(elapsedMs) * 0.001;
    xPos = static_cast<float>(xPos + xSpeed * seconds);
    yPos = static_cast<float>(yPos + ySpeed * seconds);
    speedStale = 1;
}

void CVector::ApplyThrust(double /*frameTime*/, double thrust, double heading, std::int32_t limit,
                          std::uint8_t directionConvention)
{
    if (thrust == 0.0)
        return;
    const double nx = xSpeed + std::sin(heading) * thrust;
    const double ny = directionConvention == 1 ? ySpeed + std::cos(heading) * thrust
                                               : ySpeed - std::cos(heading) * thrust;
    const double newSpeed = std::sqrt(nx * nx + ny * ny);
    const double oldSpeed = std::sqrt(static_cast<double>(xSpeed) * xSpeed + static_cast<double>(ySpeed) * ySpeed);
    if (static_cast<std::int64_t>(newSpeed) < limit || newSpeed < oldSpeed) {
        xSpeed = static_cast<float>(nx);
        ySpeed = static_cast<float>(ny);
    } else {
        const double g = HeadingOf(static_cast<float>(nx), static_cast<float>(ny));
        xSpeed = static_cast<float>(std::sin(g) * limit);
        ySpeed = static_cast<float>(std::cos(g) * limit);
    }
    speedStale = 1;
}

void CVector::AddSpeed(float dx, float dy)
{
    xSpeed += dx;
    ySpeed += dy;
    speedStale = 1;
}

void CVector::AddPos(float dx, float dy)
{
    xPos += dx;
    yPos += dy;
}

double CVector::HeadingOf(float dx, float dy)
{
    const double a = dy != 0.0f ? std::atan(static_cast<double>(dx) / dy) : std::atan(dx * 1000.0);
    if (dy < 0.0f)
        return a + SinglePi;
    if (dx < 0.0f)
        return a + SingleTwoPi;
    return a;
}

double CVector::MirrorHeading(double heading)
{
    double r = (TwoPi - heading) + Pi;
    while (r > TwoPi)
        r -= TwoPi;
    return r;
}

std::int32_t CVector::SpeedOrOwn(std::int32_t speed)
{
    if (speed == 0)
        speed = TruncToInt32(GetSpeed());
    return speed == 0 ? 1 : speed;
}

double CVector::LeadAngle(CVector target, std::int32_t iterations, std::int32_t ownSpeed)
{
    const double v = SpeedOrOwn(ownSpeed);
    const double dx = target.GetX() - GetX();
    const double dy = target.GetY() - GetY();
    double d = std::sqrt(dx * dx + dy * dy);
    double px = 0.0;
    double py = 0.0;
    for (std::int32_t i = 0; i < iterations; ++i) {
        const double t = d / v;
        px = target.xSpeed * t - xSpeed * t;
        py = target.ySpeed * t - ySpeed * t;
        d = (std::sqrt(px * px + py * py) + d) * 0.5;
    }
    const double aimX = target.xPos + px;
    const double aimY = target.yPos + py;
    return HeadingOf(static_cast<float>(aimX - xPos), static_cast<float>(aimY - yPos));
}

double CVector::InterceptAngle(CVector target, std::int32_t /*ignored*/, std::int32_t shotSpeed)
{
    const double v = SpeedOrOwn(shotSpeed);
    // The time a shot fired along heading a needs to cover the distance (dx, dy).
    auto flightTime = [&](double dx, double dy, double a) {
        const double sx = xSpeed + std::sin(a) * v;
        const double sy = ySpeed + std::cos(a) * v;
        return std::sqrt(dx * dx + dy * dy) / std::sqrt(sx * sx + sy * sy);
    };
    double dx = target.GetX() - GetX();
    double dy = target.GetY() - GetY();
    double a = HeadingOf(static_cast<float>(dx), static_cast<float>(dy));
    double e = flightTime(dx, dy, a);
    double t = 0.0;
    for (int i = 0; i < InterceptIterations; ++i) {
        t = (t + e) * 0.5;
        dx = target.GetX() + target.xSpeed * t - GetX();
        dy = target.GetY() + target.ySpeed * t - GetY();
        a = HeadingOf(static_cast<float>(dx), static_cast<float>(dy));
        e = flightTime(dx, dy, a);
        if (std::fabs(t - e) <= InterceptTolerance)
            break;
    }
    return a;
}

std::string CVector::ToString() const
{
    return "Vector -- xPos:" + std::to_string(GetX()) + " yPos:" + std::to_string(GetY()) +
           " xSpeed:" + std::to_string(static_cast<std::int32_t>(xSpeed)) +
           " ySpeed:" + std::to_string(static_cast<std::int32_t>(ySpeed));
}
