#pragma once
#include "core/Truncate.h"
#include "ship/Armour.h"
#include "ship/Engine.h"
#include "ship/Jet.h"
#include "ship/SubspaceSail.h"
#include "world/GameObject.h"

#include <cstdint>
#include <vector>

// What a body is: a ship (the default), an asteroid or a mine.
enum BodyKind : std::int32_t {
    BodyShip = 0,
    BodyAsteroid = 1,
    BodyMine = 2,
};

// How a self-steering body or ship is behaving.
enum AiMode : std::int16_t {
    AiIdle = 0,
    AiChase = 1,  // a mine closing on the player's ship
    AiWander = 2, // drifting between random targets
    AiAttack = 3, // an enemy ship keeping its distance while it shoots
};

// A game object with a hull, built from components: asteroids and mines, and
// the base of ships. It owns copies of the components fitted to it.
class CBody : public CGameObject {
public:
    static constexpr std::size_t MaxArmourPieces = 10;
    // Within this distance (squared, pixels) of the player's ship, mines chase and enemy ships attack.
    static constexpr std::int64_t NearSquared = 90000;
    static constexpr std::int32_t ThinkIntervalMs = 200;
    static constexpr std::int32_t WanderPatienceMs = 4000;
    static constexpr std::int32_t ExplosionMs = 875;

    CBody();
    CBody* Clone() const override { return new CBody(*this); }

    bool Update(std::int32_t elapsedMs) override;
    void Act() override;
    void OnHit(std::int32_t damage, CGameObject* other) override;
    // Appends pointers to the fitted components, valid until the next change.
    virtual void ListComponents(std::vector<CComponent*>& list);
    // Fits a copy when the rules allow; a refusal changes nothing.
    virtual void AddComponent(CComponent* component);
    // Takes one piece off; false when a stacked entry is still listed.
    virtual bool RemoveComponent(const CComponent& component);
    virtual void Explode();
    virtual void RecomputeStats();

    void SetAsteroid(std::int16_t size);
    void SetMine(std::int16_t mineKind);

    std::int32_t GetSpaceLeft() const { return spaceLeft; }
    std::int32_t GetMaxSpeed() const { return maxSpeed; }
    std::int32_t GetHullMax() const { return hullMax; }
    std::int32_t GetHull() const { return TruncToInt32(hull); }
    float GetExactHull() const { return hull; }
    std::int32_t GetBodyKind() const { return bodyKind; }
    std::int32_t GetDisplayThrust() const { return TruncToInt32(thrust / mass * 100.0f); }
    std::int16_t GetAiMode() const { return aiMode; }
    float GetThrust() const { return thrust; }
    double GetTurnRate() const { return turnRate; }

protected:
    CBody(const CBody&) = default; // for Clone
    // Swaps a single slot for a copy of x when the space budget stays positive.
    template <class Kind>
    bool ReplaceSlot(Kind& slot, const CComponent& x);
    // Takes one piece of an entry off an array; false when the entry is still listed.
    template <class Kind>
    bool RemovePiece(std::vector<Kind>& entries, const CComponent& x, bool givesSpaceBack);
    // Finds the first entry the component is the same as; null when none.
    template <class Kind>
    static Kind* FindSame(std::vector<Kind>& entries, const CComponent& x);

    void ChooseWanderTarget();
    // True when the player's ship is within reach of this body's attention.
    bool IsNear(const CGameObject& player) const;
    // A new wander target once the old one is reached or has been chased too long.
    void KeepWandering();
    void HeadForTarget();

    bool aiActive = false;
    std::int16_t aiMode = AiIdle;
    double aiHeading = 0.0;
    std::int32_t thinkTimer = 0;
    std::int32_t targetX = 0;
    std::int32_t targetY = 0;
    std::int32_t wanderTimer = 0;
    std::int32_t maxSpeed = 0;
    std::int32_t spaceLeft = 0;
    std::int16_t thrustInput = 0;
    float thrust = 0.0f;
    std::int16_t turnInput = 0;
    double turnRate = 0.0;
    std::int32_t hullMax = 0;
    float hull = 1.0f;
    std::int32_t baseHull = 0;
    float baseMass = 0.0f;
    std::int32_t bodyKind = BodyShip;
    CEngine engine;
    std::vector<CJet> jets;
    std::vector<CSubspaceSail> sails;
    std::vector<CArmour> armour;

private:
    // Counts one more piece on every entry x is the same as, or appends a copy of x.
    template <class Kind>
    void Stack(std::vector<Kind>& entries, const CComponent& x);
    template <class Kind>
    void AddToStack(std::vector<Kind>& entries, const CComponent& x);
    void AddArmour(const CComponent& x);
    void TakeShape(const char* spriteName, std::int32_t newRadius, std::int32_t hullPoints, float newMass);
    void SplitAsteroid();
    void ScatterDebris();
};
