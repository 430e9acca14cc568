#include "world/GameObject.h"

#include "core/Truncate.h"
#include "display/Screen.h"
#include "display/SpriteInstance.h"
#include "display/SpriteSet.h"
#include "world/Angles.h"
#include "world/World.h"

#include <algorithm>

namespace {
constexpr std::int32_t BandCount = 10;
} // namespace

CGameObject::CGameObject()
    : masterItem(new CLinkedItem(this, &vector)), bandItem(new CLinkedItem(this, &vector)),
      bandItem2(new CLinkedItem(this, &vector))
{
    hitThisFrame.reserve(10);
    ++created;
    ++live;
}

CGameObject::CGameObject(const CGameObject& other)
    : team(other.team), type(other.type), vector(other.vector), age(other.age), lifetime(other.lifetime),
      collidable(other.collidable), radius(other.radius), mass(other.mass), elasticity(other.elasticity),
      facing(other.facing), boundsMode(other.boundsMode), contactDamage(other.contactDamage), alive(other.alive),
      masterItem(new CLinkedItem(this, &vector)), bandItem(new CLinkedItem(this, &vector)), band(other.band),
      bandItem2(new CLinkedItem(this, &vector)), band2(other.band2)
{
    hitThisFrame.reserve(10);
    ++created;
    ++live;
}

CGameObject* CGameObject::Clone() const
{
    return new CGameObject(*this);
}

CGameObject::~CGameObject()
{
    ReleaseSprite();
    delete masterItem;
    delete bandItem;
    delete bandItem2;
    --live;
}

void CGameObject::SetSprite(const std::string& name)
{
    auto* instance = new CSpriteInstance;
    TheSprites().Find(name, *instance); // an unknown name leaves the look unbound, not missing
    spriteTicket = LiveSprites().Add(instance);
    sprite = instance;
    SetSpriteRotation();
    sprite->SetPosition(GetX(), GetY());
}

void CGameObject::ShowLook(const CSpriteInstance& look)
{
    ReleaseSprite();
    auto* instance = new CSpriteInstance(look);
    spriteTicket = LiveSprites().Add(instance);
    sprite = instance;
}

void CGameObject::ReleaseSprite()
{
    if (!sprite)
        return;
    // After a new game the ticket is void: the look went with every other.
    LiveSprites().Remove(spriteTicket);
    sprite = nullptr;
}

void CGameObject::SetSpriteRotation()
{
    if (sprite)
        sprite->SetRotation(TruncToInt32(facing * Angles::DegreesPerRadian));
}

void CGameObject::Rotate(double angle)
{
    facing += angle;
    if (facing < 0.0)
        facing += Angles::TwoPi;
    if (facing >= Angles::TwoPi)
        facing -= Angles::TwoPi;
    SetSpriteRotation();
}

bool CGameObject::Update(std::int32_t elapsedMs)
{
    age += elapsedMs;
    if (age > lifetime && lifetime != NoLifetimeLimit) {
        ReleaseSprite();
        return false;
    }
    vector.Move(static_cast<std::uint32_t>(elapsedMs));

    const std::int32_t width = ScreenWidth();
    const std::int32_t height = ScreenHeight();
    const std::int32_t x = GetX();
    const std::int32_t y = GetY();
    const bool offScreen = x > width + radius || x < -radius || y > height + radius || y < -radius;
    if (offScreen && boundsMode == BoundsDie)
        return false;
    if (boundsMode == BoundsBounce)
        Bounce(width, height);

    hitThisFrame.clear();
    UpdateBands();
    return true;
}

void CGameObject::Bounce(std::int32_t width, std::int32_t height)
{
    const std::int32_t x = GetX();
    const std::int32_t y = GetY();
    const float xs = vector.GetXSpeed();
    const float ys = vector.GetYSpeed();
    if (x > width - radius)
        vector.Set(width - radius, y, -xs, ys);
    else if (x < radius + 1)
        vector.Set(radius + 1, y, -xs, ys);
    else if (y > height - radius)
        vector.Set(x, height - radius, xs, -ys);
    else if (y < radius + 1)
        vector.Set(x, radius + 1, xs, -ys);
}

void CGameObject::UpdateBands()
{
    const std::int32_t h = TheWorld().GetBandHeight();
    const std::int32_t y = GetY();
    const std::int32_t top = std::clamp((y - radius) / h, 0, BandCount - 1);
    const std::int32_t bottom = std::clamp((y + radius) / h, 0, BandCount - 1);
    if (top != bottom) {
        MoveToBand(bandItem, band, top);
        MoveToBand(bandItem2, band2, bottom);
    } else {
        if (bandItem2->GetOwner()) {
            bandItem2->Unlink();
            band2 = NoBand;
        }
        MoveToBand(bandItem, band, top);
    }
    for (CLinkedItem* node : {bandItem, bandItem2})
        if (node->GetOwner())
            node->GetOwner()->Resort(node);
}

void CGameObject::MoveToBand(CLinkedItem* node, std::int32_t& nodeBand, std::int32_t newBand)
{
    if (nodeBand == newBand)
        return;
    node->Unlink();
    nodeBand = newBand;
    TheWorld().InsertInBand(newBand, node);
}

void CGameObject::ExpireNow()
{
    lifetime = 1;
    age = 2;
    collidable = false;
    alive = false;
}

void CGameObject::OnHit(std::int32_t /*damage*/, CGameObject* other)
{
    if (!alive)
        return;
    ExpireNow();
    if (other && other->GetTeam() != team)
        other->OnHit(contactDamage, nullptr);
}
