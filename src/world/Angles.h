#pragma once

// The angle constants the game's rules turn and aim with, at the precision
// the rules were tuned with.
namespace Angles {
constexpr double TwoPi = 6.283185307;
constexpr double Pi = 3.1415926535;
constexpr double HalfPi = 1.57079632675;
constexpr double QuarterPi = 0.785398163375;
constexpr double ThirdTurn = 2.0943951023333334;
constexpr double DegreesPerRadian = 57.29577951471995;

// Brings an angle that went below 0 back by one turn.
inline double WrapUp(double a)
{
    return a < 0.0 ? a + TwoPi : a;
}
} // namespace Angles
