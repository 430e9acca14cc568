#pragma once
#include "core/LinkedList.h"

#include <array>
#include <cstdint>
#include <vector>

class CBody;
class CComponent;
class CGameObject;
class CShip;

// The game in progress: the player's ship, every object in flight, the level,
// its time and score, and the clocks that bring in new objects. It owns every
// object of its master list.
class CWorld {
public:
    static constexpr std::int32_t BandCount = 10;

    // A spawn clock: the mean spacing, the time since the last spawn and the
    // spacing drawn for the next one, all in milliseconds.
    struct SpawnClock {
        double interval = 0.0;
        double accumulated = 0.0;
        double threshold = 0.0;
    };

    CWorld();
    CWorld(const CWorld&) = delete;
    CWorld& operator=(const CWorld&) = delete;
    ~CWorld();

    // One frame of play.
    void Update(double elapsedMs);
    // The objects' part of a frame: update and delete the dead, collide, act.
    // False when the player's ship died and the game is over.
    bool StepObjects(std::int32_t elapsedMs);

    void AddObject(CGameObject* object);
    // Deletes an object of a known kind; false when it is of no kind the world deletes.
    bool DeleteObject(CGameObject* object);
    void InsertInBand(std::int32_t index, CLinkedItem* node);
    void AddToActionList(CGameObject* object) { actionList.push_back(object); }
    void AddToLabelList(CGameObject* object) { labelList.push_back(object); }
    bool Overlaps(CGameObject& object) const;

    void AddScore(std::int32_t points) { score += points; }
    std::int32_t GetScore() const { return score; }
    std::int16_t GetLevel() const { return level; }
    static std::int16_t LevelBefore(std::int32_t startLevel);
    std::int32_t GetTimeLeft() const;
    void AddPowerup() { ++powerupsTaken; }
    std::int32_t GetPowerupsTaken() const { return powerupsTaken; }
    std::int32_t GetEnemiesLeft() const { return enemiesLeft; }
    void SetPaused(bool isPaused) { paused = isPaused; }
    bool IsPaused() const { return paused; }

    CShip* GetPlayer() const { return player; }
    CGameObject* GetPlayerObject() const;
    // Hands the world a new player's ship, which it owns like any object.
    void AdoptPlayer(CShip* ship);

    // Band height in pixels; before the first game it follows the display.
    std::int32_t GetBandHeight() const;

    const CLinkedList& GetMasterList() const { return masterList; }
    const CLinkedList& GetBand(std::int32_t index) const { return bands[index]; }
    const std::vector<CGameObject*>& GetLabelList() const { return labelList; }

    // Game start and level flow.
    void NewGame(std::int32_t startLevel);
    void Clear();
    void BeginNextLevel();
    void SpawnAsteroids(std::int32_t count);
    void SpawnMines(std::int32_t count);
    void SpawnTurrets(std::int32_t count);
    // Sets the object at a random screen edge moving inward; false when every try overlapped something.
    bool PlaceAtEdge(CGameObject& object, std::int32_t leastSpeed, std::int32_t greatestSpeed);

    const SpawnClock& GetAsteroidClock() const { return asteroidClock; }
    const SpawnClock& GetMineClock() const { return mineClock; }
    const SpawnClock& GetTurretClock() const { return turretClock; }

    // The offer of the design screen and the kits every new enemy is fitted with.
    void RegenerateStock();
    // One extra offered component of a random kind, made above the offer's level.
    void AddBonusComponent();
    void RegenerateKits();
    // Gives a component back to the offer, unless the offer already holds it.
    void AddToStock(const CComponent& component);
    const std::vector<CComponent*>& GetStock() const { return stock; }
    const std::vector<CComponent*>& GetMineKit1() const { return mineKit1; }
    const std::vector<CComponent*>& GetMineKit2() const { return mineKit2; }
    const std::vector<CComponent*>& GetTurretKit() const { return turretKit; }

private:
    friend class CWorldCheckpoint;
    using SpawnOperation = void (CWorld::*)(std::int32_t);

    void AdvanceClocks(double elapsedMs);
    void AdvanceClock(SpawnClock& clock, double elapsedMs, SpawnOperation spawn);
    void SetLevelTimings();
    // Hands a placed spawn to the world, or deletes one that found no room.
    bool AddOrDiscard(CGameObject* object, bool placed, bool isEnemy);
    void MakeTurretKit(std::int32_t techLevel);
    static void FitKit(CBody& body, const std::vector<CComponent*>& kit);
    static void DeleteComponents(std::vector<CComponent*>& components);

    // Updates every object and deletes the dead; false when the player's ship died.
    bool RunObjectPass(std::int32_t dt);
    void CountKill(CGameObject& object);
    void CheckMasterList(std::int32_t survivors) const;

    CShip* player = nullptr;
    std::vector<CGameObject*> labelList;
    std::vector<CComponent*> stock;
    CLinkedList masterList;
    std::array<CLinkedList, BandCount> bands;
    std::int32_t bandHeight = 0;
    std::vector<CGameObject*> actionList;
    std::int32_t score = 0;
    std::int16_t level = 0;
    double timeLeft = 0.0;
    SpawnClock asteroidClock;
    SpawnClock mineClock;
    std::vector<CComponent*> mineKit1;
    std::vector<CComponent*> mineKit2;
    std::vector<CComponent*> turretKit;
    SpawnClock turretClock;
    bool paused = true;
    std::int32_t enemiesLeft = 0;
    std::int32_t powerupsTaken = 0;
};

// The game in progress; the application object owns it.
CWorld& TheWorld();
