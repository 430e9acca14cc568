#include "ship/Body.h"

#include "audio/SoundCues.h"
#include "core/Random.h"
#include "core/Truncate.h"
#include "display/Screen.h"
#include "world/Angles.h"
#include "world/Powerup.h"
#include "world/Projectile.h"
#include "world/World.h"

#include <cmath>

namespace {

struct AsteroidSize {
    const char* sprite;
    std::int32_t radius;
    std::int32_t hull;
    float mass;
};

constexpr AsteroidSize AsteroidSizes[] = {
    {"asteroid1", 7, 75, 0.7f},
    {"asteroid3", 10, 150, 1.5f},
    {"asteroid4", 13, 300, 3.0f},
};

struct MineKind {
    const char* sprite;
    std::int32_t hull;
    float mass;
    std::int32_t spaceLeft;
};

constexpr MineKind MineKinds[] = {
    {"spacemine2", 50, 0.3f, 5000},
    {"spacemine1", 200, 1.5f, 10000},
};

constexpr std::int32_t MineRadius = 9;
constexpr std::int32_t AimIterations = 5;
constexpr std::int32_t FragmentCount = 3;
// The smallest asteroid weighs 0.7 in single precision, just under this.
constexpr double SplitMass = 0.7;
constexpr double LargeFragmentMass = 1.5;
constexpr double PowerupChancePercent = 15.0;
constexpr double DebrisPerMass = 9.0;

// Index into a table of n rows for a code counted from 1; out-of-table codes take the nearest row.
std::size_t Row(std::int16_t code, std::size_t n)
{
    if (code < 1)
        return 0;
    return static_cast<std::size_t>(code) > n ? n - 1 : static_cast<std::size_t>(code) - 1;
}

} // namespace

CBody::CBody()
{
    type = ObjectBody;
}

void CBody::SetAsteroid(std::int16_t size)
{
    const AsteroidSize& row = AsteroidSizes[Row(size, std::size(AsteroidSizes))];
    bodyKind = BodyAsteroid;
    aiActive = false;
    team = TeamNone;
    TakeShape(row.sprite, row.radius, row.hull, row.mass);
}

void CBody::TakeShape(const char* spriteName, std::int32_t newRadius, std::int32_t hullPoints, float newMass)
{
    SetSprite(spriteName);
    radius = newRadius;
    hull = static_cast<float>(hullPoints);
    baseHull = hullPoints;
    mass = baseMass = newMass;
}

void CBody::SetMine(std::int16_t mineKind)
{
    const MineKind& row = MineKinds[Row(mineKind, std::size(MineKinds))];
    bodyKind = BodyMine;
    boundsMode = BoundsFree;
    team = TeamEnemy;
    TakeShape(row.sprite, MineRadius, row.hull, row.mass);
    spaceLeft = row.spaceLeft;
    aiActive = true;
    aiMode = AiWander;
    ChooseWanderTarget();
}

void CBody::ChooseWanderTarget()
{
    targetX = radius + static_cast<std::int32_t>(SharedRandom().Draw(ScreenWidth() - 2 * radius));
    targetY = radius + static_cast<std::int32_t>(SharedRandom().Draw(ScreenHeight() - 2 * radius));
}

bool CBody::IsNear(const CGameObject& player) const
{
    const double dx = GetX() - player.GetX();
    const double dy = GetY() - player.GetY();
    return static_cast<std::int64_t>(dy * dy + dx * dx) < NearSquared;
}

void CBody::KeepWandering()
{
    const double ex = GetX() - targetX;
    const double ey = GetY() - targetY;
    const auto distanceSquared = static_cast<std::int64_t>(ey * ey + ex * ex);
    const std::int64_t arrival = 3 * radius;
    if (arrival * arrival > distanceSquared || wanderTimer > WanderPatienceMs) {
        wanderTimer = 0;
        ChooseWanderTarget();
    }
}

void CBody::HeadForTarget()
{
    aiHeading = CVector::HeadingOf(static_cast<float>(targetX - GetX()), static_cast<float>(targetY - GetY()));
}

bool CBody::Update(std::int32_t elapsedMs)
{
    if (aiActive && bodyKind == BodyMine && alive) {
        thinkTimer += elapsedMs;
        wanderTimer += elapsedMs;
        if (thinkTimer > ThinkIntervalMs) {
            TheWorld().AddToActionList(this);
            thinkTimer = 0;
        }
        vector.ApplyThrust(elapsedMs, thrust / mass, aiHeading, maxSpeed, 1);
    }
    return CGameObject::Update(elapsedMs);
}

void CBody::Act()
{
    if (team != TeamEnemy || bodyKind != BodyMine || !alive)
        return;
    const CGameObject* player = TheWorld().GetPlayerObject();
    if (player)
        aiMode = IsNear(*player) ? AiChase : AiWander;
    if (aiMode == AiWander)
        KeepWandering();
    if (aiMode == AiChase) {
        if (player)
            aiHeading = vector.LeadAngle(player->GetVector(), AimIterations, maxSpeed);
        else
            aiMode = AiWander;
        return;
    }
    HeadForTarget();
}

void CBody::OnHit(std::int32_t damage, CGameObject* other)
{
    if (!alive)
        return;
    hull -= static_cast<float>(damage);
    // A body with a punch blows up on touching a ship of the other side.
    const bool detonates = other && contactDamage > 0 && other->GetTeam() != team && other->GetType() == ObjectShip;
    if (hull < 1.0f || detonates) {
        Explode();
        if (other)
            other->OnHit(contactDamage, nullptr);
    }
}

void CBody::Explode()
{
    if (!alive)
        return;
    if (bodyKind == BodyAsteroid && mass > SplitMass)
        SplitAsteroid();
    ScatterDebris();
    if (bodyKind == BodyAsteroid) {
        ExpireNow();
        return;
    }
    ReleaseSprite();
    SetSprite("explosion");
    lifetime = ExplosionMs;
    age = 0;
    SoundCues::Play(SoundCues::Urgent, SoundCues::Explosion);
    collidable = false;
    alive = false;
}

void CBody::SplitAsteroid()
{
    const std::int16_t childSize = mass > LargeFragmentMass ? 2 : 1;
    double angle = facing;
    for (int i = 0; i < FragmentCount; ++i) {
        const auto speed = static_cast<std::int32_t>(SharedRandom().Draw(81) + 20);
        auto* fragment = new CBody;
        fragment->SetVector(
            LaunchVector(vector, angle, static_cast<float>(radius - 3), angle, static_cast<float>(speed)));
        fragment->SetAsteroid(childSize);
        TheWorld().AddObject(fragment);
        angle = Angles::WrapUp(angle - Angles::ThirdTurn);
    }
    if (SharedRandom().Draw(100) < PowerupChancePercent) {
        auto* powerup = new CPowerup;
        CVector at;
        at.Set(GetX(), GetY(), 0.0f, 0.0f);
        powerup->SetVector(at);
        TheWorld().AddObject(powerup);
    }
}

void CBody::ScatterDebris()
{
    const std::int32_t pieces = TruncToInt32(mass * DebrisPerMass);
    if (pieces <= 0)
        return;
    const double step = Angles::TwoPi / pieces;
    double angle = facing;
    for (std::int32_t i = 0; i < pieces; ++i) {
        const auto speed = static_cast<std::int32_t>(SharedRandom().Draw(101) + 100);
        LaunchProjectile(LaunchVector(vector, angle, static_cast<float>(radius + 4), angle, static_cast<float>(speed)),
                         Shrapnel::Damage, TeamNone, Shrapnel::LifetimeMs, BoundsDie);
        angle = Angles::WrapUp(angle - step);
    }
}
