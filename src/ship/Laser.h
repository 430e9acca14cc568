#pragma once
#include "ship/Component.h"

#include <string>

// A laser fires one pattern of shots on its own key. Lasers do not stack; a
// ship carries up to three.
class CLaser : public CComponent {
public:
    enum Pattern : std::int32_t {
        Parallel = 0,
        Spread = 1,
        Radiating = 2,
    };
    static constexpr char NoFireKey = ' ';  // until the laser is fitted
    // The keys lasers get as they are fitted, the first free one in turn;
    // the spare once all are taken.
    static constexpr char FittedFireKeys[] = {'F', 'D', 'S', 'A'};
    static constexpr char SpareFireKey = 'G';

    // A laser's own values, for making one with known values.
    struct Values {
        std::int32_t speed = 0;        // of each shot, pixels per second
        std::int32_t containment = 0;  // lifetime handed to each shot
        std::int32_t shots = 0;        // per firing
        std::int32_t damage = 0;       // of each shot
        std::int32_t delay = 0;        // milliseconds between two firings
        std::int32_t energyUse = 0;    // per firing
        char fireKey = NoFireKey;
        std::int32_t pattern = Parallel;
    };

    CLaser() : CComponent(KindLaser) {}
    CLaser(const Common& common, const Values& values)
        : CComponent(KindLaser, common), values(values) {}
    // A copy starts cool. Moving a laser, as when an array closes a gap,
    // keeps the cooldown it has.
    CLaser(const CLaser& other) : CComponent(other), values(other.values) {}
    CLaser(CLaser&&) = default;
    CLaser& operator=(const CLaser& other);
    CLaser& operator=(CLaser&&) = default;

    std::int32_t GetCooldown() const { return cooldown; }
    std::int32_t GetSpeed() const { return values.speed; }
    std::int32_t GetContainment() const { return values.containment; }
    std::int32_t GetShots() const { return values.shots; }
    std::int32_t GetDamage() const { return values.damage; }
    std::int32_t GetDelay() const { return values.delay; }
    std::int32_t GetEnergyUse() const { return values.energyUse; }
    char GetFireKey() const { return values.fireKey; }
    std::int32_t GetPattern() const { return values.pattern; }

    void SetFireKey(char key) { values.fireKey = key; }
    // Firing adds the delay, every frame takes off the elapsed time; the
    // cooldown never goes below 0.
    void AddCooldown(std::int32_t amount);
    // "Parallel", "Spread" or "Radiating"; empty for any other pattern.
    std::string GetPatternName() const;

    void Generate(std::int32_t level);
    void AppendStatLines(std::vector<std::string>& lines) const override;

private:
    static Pattern PatternFromDraw(std::int32_t pick);
    static std::int32_t DrawShots(Pattern pattern, double& power);

    std::int32_t cooldown = 0;
    Values values;
};
