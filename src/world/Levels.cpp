// Starting a game, the spawn clocks that bring objects in from the screen
// edges, and the change from one level to the next.
#include "world/World.h"

#include "app/GameControl.h"
#include "core/Random.h"
#include "core/Trace.h"
#include "display/Screen.h"
#include "ship/Ship.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr double FirstLevelMs = 500.0;
constexpr double LevelMs = 120000.0;
constexpr double FirstRealLevelMs = 60000.0;
constexpr double AsteroidIntervalMs = 1100.0;
constexpr double OpeningEnemyIntervalMs = 130000.0;
constexpr double LevelOneEnemyIntervalMs = 120000.0;
constexpr std::int32_t EarlyMineIntervalMs = 120000;
constexpr double LevelFourTurretIntervalMs = 91000.0;
constexpr double MineIntervalScale = 21109.0;
constexpr double TurretIntervalScale = 55402.0;
constexpr std::int32_t PlacementAttempts = 11;

void ResetClock(CWorld::SpawnClock& clock, double interval)
{
    clock.interval = clock.threshold = interval;
    clock.accumulated = 0.0;
}

void SetInterval(CWorld::SpawnClock& clock, double interval)
{
    clock.interval = clock.threshold = interval;
}

// Half the range as two halves: the middle of the edge comes up more often.
std::int32_t AlongEdge(std::int32_t length)
{
    const auto first = static_cast<std::int32_t>(SharedRandom().Draw(length));
    const auto second = static_cast<std::int32_t>(SharedRandom().Draw(length));
    return first / 2 + second / 2;
}
using LevelLimits = std::numeric_limits<std::int16_t>;
} // namespace

// A start level read from a hand-edited settings file may be any number, and
// the game opens with the short level before it. Only a level the 16-bit
// counter cannot hold is brought to its nearest end.
std::int16_t CWorld::LevelBefore(std::int32_t startLevel)
{
    const std::int64_t before = std::int64_t{startLevel} - 1;
    const std::int64_t held = std::clamp<std::int64_t>(before, LevelLimits::min(), LevelLimits::max());
    if (held != before)
        CTrace::TraceValue(startLevel, "Start level beyond the level counter", 0);
    return static_cast<std::int16_t>(held);
}

void CWorld::NewGame(std::int32_t startLevel)
{
    Clear();
    bandHeight = ScreenHeight() / BandCount;
    auto* ship = new CShip;
    ship->SetPlayerShip();
    AdoptPlayer(ship);
    ResetClock(asteroidClock, AsteroidIntervalMs);
    ResetClock(mineClock, OpeningEnemyIntervalMs);
    ResetClock(turretClock, OpeningEnemyIntervalMs);
    score = 0;
    enemiesLeft = 0;
    powerupsTaken = 0;
    level = LevelBefore(startLevel);
    timeLeft = FirstLevelMs;
}

void CWorld::AdvanceClocks(double elapsedMs)
{
    AdvanceClock(asteroidClock, elapsedMs, &CWorld::SpawnAsteroids);
    AdvanceClock(mineClock, elapsedMs, &CWorld::SpawnMines);
    AdvanceClock(turretClock, elapsedMs, &CWorld::SpawnTurrets);
}

void CWorld::AdvanceClock(SpawnClock& clock, double elapsedMs, SpawnOperation spawn)
{
    clock.accumulated += elapsedMs;
    if (clock.accumulated <= clock.threshold)
        return;
    // The next spacing is drawn before the spawn takes its own draws.
    clock.threshold = (clock.interval - clock.interval * 0.5) + std::trunc(SharedRandom().Draw(clock.interval));
    (this->*spawn)(1);
    clock.accumulated = 0.0;
}

void CWorld::BeginNextLevel()
{
    if (level < LevelLimits::max())
        ++level;
    else
        CTrace::Trace("Level counter at its highest", 0);
    timeLeft = LevelMs;
    Game::SetGameState(StateDesign);
    RegenerateStock();
    powerupsTaken = 0;
    RegenerateKits();
    if (player) {
        player->Refill();
        player->ClearControls();
    }
    mineClock.accumulated = 0.0;
    turretClock.accumulated = 0.0;
    SetLevelTimings();
}

void CWorld::SetLevelTimings()
{
    if (level == 1) {
        timeLeft = FirstRealLevelMs;
        SetInterval(mineClock, LevelOneEnemyIntervalMs);
        SetInterval(turretClock, LevelOneEnemyIntervalMs);
    } else if (level >= 2 && level <= 4) {
        SetInterval(mineClock, EarlyMineIntervalMs / level);
        if (level == 4)
            SetInterval(turretClock, LevelFourTurretIntervalMs);
    } else if (level >= 5) {
        // From here the spacing shrinks with the inverse square root of the level.
        turretClock.accumulated = LevelOneEnemyIntervalMs;
        SetInterval(mineClock, std::sqrt(8.0 * (level - 2)) * MineIntervalScale / (level - 2));
        SetInterval(turretClock, std::sqrt(10.0 * level) * TurretIntervalScale / level);
    }
}

void CWorld::SpawnAsteroids(std::int32_t count)
{
    for (std::int32_t i = 0; i < count; ++i) {
        const auto k = static_cast<std::int32_t>(SharedRandom().Draw(10));
        auto* asteroid = new CBody;
        bool placed;
        std::int16_t size;
        if (k < 5) {
            placed = PlaceAtEdge(*asteroid, 70, 180);
            size = 1;
        } else if (k < 8) {
            placed = PlaceAtEdge(*asteroid, 40, 100);
            size = 2;
        } else {
            placed = PlaceAtEdge(*asteroid, 20, 80);
            size = 3;
        }
        asteroid->SetAsteroid(size);
        AddOrDiscard(asteroid, placed, false);
    }
}

void CWorld::SpawnMines(std::int32_t count)
{
    for (std::int32_t i = 0; i < count; ++i) {
        const auto k = static_cast<std::int32_t>(SharedRandom().Draw(3));
        auto* mine = new CBody;
        const bool placed = PlaceAtEdge(*mine, 10, 20);
        mine->SetTeam(TeamEnemy);
        const bool heavy = k >= 2;
        mine->SetMine(heavy ? 2 : 1);
        FitKit(*mine, heavy ? mineKit2 : mineKit1);
        // Whatever space the kit left free goes into the mine's punch.
        mine->SetContactDamage(mine->GetSpaceLeft() / 8 + level * 5);
        AddOrDiscard(mine, placed, true);
    }
}

void CWorld::SpawnTurrets(std::int32_t count)
{
    for (std::int32_t i = 0; i < count; ++i) {
        auto* turret = new CShip;
        const bool placed = PlaceAtEdge(*turret, 10, 20);
        turret->SetTurret(TeamEnemy);
        FitKit(*turret, turretKit);
        if (AddOrDiscard(turret, placed, true))
            turret->ScaleEnergy(0.75f);
    }
}

bool CWorld::AddOrDiscard(CGameObject* object, bool placed, bool isEnemy)
{
    if (!placed) {
        delete object;
        return false;
    }
    AddObject(object);
    if (isEnemy)
        ++enemiesLeft;
    return true;
}

bool CWorld::PlaceAtEdge(CGameObject& object, std::int32_t leastSpeed, std::int32_t greatestSpeed)
{
    const std::int32_t width = ScreenWidth();
    const std::int32_t height = ScreenHeight();
    const std::int32_t r = object.GetRadius();
    const auto sx = static_cast<float>(SharedRandom().Draw(greatestSpeed));
    const auto sy = static_cast<float>(SharedRandom().Draw(greatestSpeed));
    const float a = static_cast<float>(leastSpeed);
    const float drift = static_cast<float>(greatestSpeed / 2);
    for (std::int32_t attempt = 0; attempt < PlacementAttempts; ++attempt) {
        CVector candidate;
        switch (SharedRandom().Rand() % 4) {
        case 0: candidate.Set(AlongEdge(width), 1 - r, sx - drift, std::max(sy, a)); break;
        case 1: candidate.Set(AlongEdge(width), r + height - 1, sx - drift, std::min(-sy, -a)); break;
        case 2: candidate.Set(1 - r, AlongEdge(height), std::max(sx, a), sy - drift); break;
        default: candidate.Set(r + width - 1, AlongEdge(height), std::min(-sx, -a), sy - drift); break;
        }
        object.SetVector(candidate);
        if (!Overlaps(object))
            return true;
    }
    return false;
}

void CWorld::FitKit(CBody& body, const std::vector<CComponent*>& kit)
{
    for (CComponent* component : kit)
        body.AddComponent(component);
}
