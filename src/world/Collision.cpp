// Contact search and response between game objects, once per frame.
#include "world/GameObject.h"

#include "core/Truncate.h"
#include "world/World.h"
#include "display/SpriteInstance.h"
#include "world/Angles.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {
constexpr std::int32_t SweepMargin = 51;
// A zero difference would make the heading between two objects meaningless.
constexpr float ZeroReplacementFirst = 0.01f;
constexpr float ZeroReplacementSecond = 0.001f;
constexpr double ApproachCone = 1.57079632675;
constexpr double WrapLimit = 4.71238898025;
constexpr double LinearFalloff = 0.6366197723857773;

float NonZero(float value, float replacement)
{
    return value == 0.0f ? replacement : value;
}

bool IsPlayer(const CGameObject& object)
{
    return &object == TheWorld().GetPlayerObject();
}
} // namespace

void CGameObject::CollisionPass()
{
    if (sprite)
        sprite->SetPosition(GetX(), GetY());
    if (!collidable)
        return;
    if (bandItem->GetOwner())
        SweepBand(bandItem);
    if (bandItem2->GetOwner())
        SweepBand(bandItem2);
}

void CGameObject::SweepBand(CLinkedItem* node)
{
    const std::int32_t reach = radius + SweepMargin;
    const std::int32_t x = GetX();
    auto within = [&](const CLinkedItem* at) { return std::abs(x - at->GetData()->GetX()) < reach; };
    for (CLinkedItem* at = node->GetNext(); at && within(at); at = at->GetNext())
        if (at->GetData()->IsCollidable())
            Collide(*at->GetData());
    for (CLinkedItem* at = node->GetPrev(); at && within(at); at = at->GetPrev())
        if (at->GetData()->IsCollidable())
            Collide(*at->GetData());
}

void CGameObject::Collide(CGameObject& other)
{
    if ((type == ObjectPowerup && !IsPlayer(other)) || (other.type == ObjectPowerup && !IsPlayer(*this)))
        return;
    if (type == ObjectProjectile && other.type == ObjectProjectile && team == other.team)
        return;

    if (!Touches(other))
        return;

    const std::int32_t impact = ResolveCollision(other);
    if (impact == -1)
        return;
    const std::int32_t damage = impact / 2;
    OnHit(damage, &other);
    other.OnHit(damage, this);
}

std::int32_t CGameObject::ResolveCollision(CGameObject& other)
{
    if (std::find(hitThisFrame.begin(), hitThisFrame.end(), &other) != hitThisFrame.end())
        return -1;
    hitThisFrame.push_back(&other);
    other.hitThisFrame.push_back(this);

    const float r1 = mass / other.mass;
    const float r2 = other.mass / mass;
    // The lighter-to-heavier ratio scales the exchange.
    const float e = r1 < 1.0f ? elasticity * r1 : elasticity * r2;

    const float h1 = static_cast<float>(CVector::HeadingOf(
        NonZero(other.vector.GetXPos() - vector.GetXPos(), ZeroReplacementFirst),
        NonZero(other.vector.GetYPos() - vector.GetYPos(), ZeroReplacementFirst)));
    const double s1 = ApproachSpeed(h1) * e;
    const float j1x = static_cast<float>(std::sin(h1) * s1);
    const float j1y = static_cast<float>(std::cos(h1) * s1);

    const float h2 = static_cast<float>(CVector::HeadingOf(
        NonZero(vector.GetXPos() - other.vector.GetXPos(), ZeroReplacementSecond),
        NonZero(vector.GetYPos() - other.vector.GetYPos(), ZeroReplacementSecond)));
    const double s2 = other.ApproachSpeed(h2) * e;
    const float j2x = static_cast<float>(std::sin(h2) * s2);
    const float j2y = static_cast<float>(std::cos(h2) * s2);

    other.vector.AddSpeed(j1x * r1, j1y * r1);
    vector.AddSpeed(-j1x * r2, -j1y * r2);
    vector.AddSpeed(j2x * r2, j2y * r2);
    other.vector.AddSpeed(-j2x * r1, -j2y * r1);
    return TruncToInt32(std::fabs(s1 + s2));
}

double CGameObject::ApproachSpeed(float heading)
{
    float d = static_cast<float>(vector.GetHeading() - heading);
    if (d > WrapLimit)
        d = static_cast<float>(d - Angles::TwoPi);
    if (d < -WrapLimit)
        d = static_cast<float>(d + Angles::TwoPi);
    if (std::fabs(d) >= ApproachCone)
        return 0.0;
    return vector.GetSpeed() * (1.0 - std::fabs(d * LinearFalloff));
}
