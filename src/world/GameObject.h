#pragma once
#include "core/Truncate.h"
#include "core/LinkedList.h"
#include "core/Vector.h"
#include "display/SpriteList.h"

#include <cstdint>
#include <string>
#include <vector>

class CSpriteInstance;

// Which concrete kind an object is; the world's rules look at it.
enum ObjectType : std::int32_t {
    ObjectPlain = -1,
    ObjectProjectile = 0,
    ObjectBody = 1,
    ObjectShip = 2,
    ObjectPowerup = 3,
};

// The sides objects fight for.
enum Team : std::int32_t {
    TeamNone = 0,
    TeamPlayer = 1,
    TeamEnemy = 2,
};

// What happens to an object at the screen edge.
enum BoundsMode : std::int16_t {
    BoundsDie = 0,
    BoundsFree = 1,
    BoundsBounce = 2,
};

// Base of everything in the world's master list: projectiles, bodies, ships
// and powerups. It moves, ages, keeps to its bands for collision search,
// collides, and carries the look that draws it.
class CGameObject {
public:
    static constexpr std::int32_t NoLifetimeLimit = -1;
    static constexpr std::int32_t NoBand = -1;

    CGameObject();
    CGameObject& operator=(const CGameObject&) = delete;
    virtual ~CGameObject();

    // A copy of the object as it stands, apart from the game (see the copy
    // constructor); a checkpoint keeps such copies and puts the game back from them.
    virtual CGameObject* Clone() const;
    // Gives the object a look of its own, a copy of this one, drawn after every look there is.
    void ShowLook(const CSpriteInstance& look);

    // Moves and ages the object; false once it is dead.
    virtual bool Update(std::int32_t elapsedMs);
    // Runs after the frame's collisions, for objects that asked for it.
    virtual void Act() {}
    // Told that it touched another object (null when the hit is handed on).
    virtual void OnHit(std::int32_t damage, CGameObject* other);

    void SetSprite(const std::string& name);
    void ReleaseSprite();
    void Rotate(double angle);
    void UpdateBands();

    // A projectile is a plain object set up with these.
    void InitProjectile(const CVector& launch, std::int32_t damage, std::int32_t shooterTeam,
                        std::int32_t lifetimeMs, std::int16_t bounds);

    // Collision search and response, run by the world once per frame.
    void CollisionPass();
    void SweepBand(CLinkedItem* node);
    void Collide(CGameObject& other);
    // The integer circle test: the two collision circles overlap. The axis
    // distances reject most pairs before anything is multiplied.
    bool Touches(const CGameObject& other) const
    {
        const std::int32_t reach = radius + other.radius;
        const std::int32_t dx = GetX() - other.GetX();
        const std::int32_t dy = GetY() - other.GetY();
        return dy < reach && -dy < reach && dx < reach && -dx < reach && dx * dx + dy * dy < reach * reach;
    }
    std::int32_t ResolveCollision(CGameObject& other);
    double ApproachSpeed(float heading);

    std::int32_t GetX() const { return vector.GetX(); }
    std::int32_t GetY() const { return vector.GetY(); }
    std::int32_t GetType() const { return type; }
    std::int32_t GetTeam() const { return team; }
    void SetTeam(std::int32_t newTeam) { team = newTeam; }
    std::int32_t GetRadius() const { return radius; }
    bool IsCollidable() const { return collidable; }
    bool IsAlive() const { return alive; }
    CVector GetVector() const { return vector; }
    void SetVector(const CVector& v) { vector = v; }
    void SetContactDamage(std::int32_t damage) { contactDamage = damage; }
    std::int32_t GetContactDamage() const { return contactDamage; }
    std::int32_t GetDisplayMass() const { return TruncToInt32(mass * 100.0f); }
    float GetMass() const { return mass; }
    double GetFacing() const { return facing; }
    std::int32_t GetAge() const { return age; }
    std::int32_t GetLifetime() const { return lifetime; }
    std::int16_t GetBoundsMode() const { return boundsMode; }
    CSpriteInstance* GetSprite() const { return sprite; }
    std::int32_t GetBand() const { return band; }
    std::int32_t GetBand2() const { return band2; }

    CLinkedItem* GetMasterItem() const { return masterItem; }
    CLinkedItem* GetBandItem() const { return bandItem; }
    CLinkedItem* GetBandItem2() const { return bandItem2; }

    // How many objects this run has made, and how many exist now: what a
    // long run checks to know that nothing is lost or freed twice.
    static std::uint64_t CreatedCount() { return created; }
    static std::int64_t LiveCount() { return live; }

protected:
    // The object's state without its place in the game: in no list, with no
    // look and no hits of this frame (the frame is over when a copy is made).
    CGameObject(const CGameObject& other);

    // Dies on the next update: the object has been destroyed.
    void ExpireNow();
    void SetSpriteRotation();

    std::int32_t team = TeamNone;
    std::int32_t type = ObjectPlain;
    CVector vector;
    std::int32_t age = 0;
    std::int32_t lifetime = NoLifetimeLimit;
    CSpriteInstance* sprite = nullptr;
    CSpriteList::Ticket spriteTicket; // where the look is in the live list
    bool collidable = true;
    std::int32_t radius = 1;
    float mass = 0.01f;
    float elasticity = 1.0f;
    double facing = 0.0;
    std::vector<CGameObject*> hitThisFrame;
    std::int16_t boundsMode = BoundsDie;
    std::int32_t contactDamage = 0;
    bool alive = true;
    CLinkedItem* masterItem;
    CLinkedItem* bandItem;
    std::int32_t band = NoBand;
    CLinkedItem* bandItem2;
    std::int32_t band2 = NoBand;

private:
    static inline std::uint64_t created = 0;
    static inline std::int64_t live = 0;

    // Keeps a band node in the band list of that index, moving it there if needed.
    void MoveToBand(CLinkedItem* node, std::int32_t& nodeBand, std::int32_t newBand);
    void Bounce(std::int32_t width, std::int32_t height);
};
