#include "display/SpriteInstance.h"

void CSpriteInstance::Bind(std::int32_t index)
{
    spriteIndex = index;
    angle = 0;
}

void CSpriteInstance::SetRotation(std::int32_t degrees)
{
    // Half a step more, so that dividing by the step later picks the nearest direction.
    angle = static_cast<std::int32_t>(rotationStep * 0.5 + degrees);
    while (angle > 359)
        angle -= 360;
    while (angle < 0)
        angle += 360;
}

void CSpriteInstance::Draw(double /*elapsedMs*/)
{
}
