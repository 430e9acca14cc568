#pragma once
#include "core/Truncate.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// What a component is; every component carries its kind.
enum ComponentKind : std::int32_t {
    KindBase = 0,  // the plain common record; never a live component
    KindSubspaceSail = 1,
    KindEngine = 2,
    KindJet = 3,
    KindArmour = 4,
    KindEnergySystem = 5,
    KindLaser = 6,
    KindShield = 7,
};

// A part a ship is built from. Components are small values: the offer on the
// design screen holds them on the heap, a ship keeps copies in its own slots
// and arrays, and a copy is known to be the same component by its serial
// number. Apart from the stacking count, a laser's fire key and its cooldown,
// nothing changes once a component has been generated.
class CComponent {
public:
    static constexpr std::int32_t NoSerial = -1;
    static constexpr std::int32_t BaseTechLevel = 1000;  // the factor 1.0

    // The fields every kind shares, for making a component with known values
    // (enemy kits and tests). A component with a serial number is named after
    // it, as a generated one would be.
    struct Common {
        std::int32_t weight = 0;
        std::int32_t size = 0;
        std::int32_t techLevel = BaseTechLevel;
        std::int32_t serialNumber = NoSerial;
        std::int32_t count = 1;
    };

    virtual ~CComponent() = default;

    const std::string& GetName() const { return name; }
    std::int32_t GetWeight() const { return weight; }
    std::int32_t GetSize() const { return size; }
    std::int32_t GetKind() const { return kind; }
    std::int32_t GetTechLevel() const { return techLevel; }
    std::int32_t GetSerialNumber() const { return serialNumber; }
    std::int32_t GetCount() const { return count; }
    void SetCount(std::int32_t newCount) { count = newCount; }

    // A generated component, as opposed to the default of an empty slot.
    bool HasSerial() const { return serialNumber != NoSerial; }
    // The one identity test: an empty-slot default is never the same as
    // anything, not even itself.
    bool IsSameAs(const CComponent& other) const;
    // The name, followed by "(count)" for an entry standing for several pieces.
    std::string GetDisplayName() const;
    // Appends the lines the design screen shows for this component.
    virtual void AppendStatLines(std::vector<std::string>& lines) const;

    // The word a kind's names start with; empty for a kind outside 1..7.
    static std::string KindWord(std::int32_t kind);
    // A new component of x's kind holding x's values; null when x's kind is
    // none of the seven.
    static std::unique_ptr<CComponent> MakeCopy(const CComponent& x);

    // Generation takes every random number through here. By default that is
    // the game's shared generator; tests may script the draws (an empty
    // source restores the generator). The source gets m and returns a value
    // from 0 to m.
    using DrawSource = std::function<double(double m)>;
    static void SetDrawSource(DrawSource source);

protected:
    explicit CComponent(ComponentKind kind);  // the default of an empty slot
    CComponent(ComponentKind kind, const Common& values);
    CComponent(const CComponent&) = default;
    CComponent(CComponent&&) = default;
    CComponent& operator=(const CComponent&) = default;
    CComponent& operator=(CComponent&&) = default;

    // Generation: records the technology level and takes the next serial
    // number of the run, naming the component after it.
    void BeginGeneration(std::int32_t level);
    // One fresh draw, a value from 0 to m.
    static double Draw(double m);
    // Values fall (cheaper) or grow (stronger) with the technology factor,
    // with weight k.
    double Cheaper(double v, double k) const;
    double Stronger(double v, double k) const;
    // The technology level as a factor: 1000 stands for 1.0.
    double TechFactor() const { return TechFactorOf(techLevel); }
    static double TechFactorOf(std::int32_t level) { return level * 0.001; }
    static std::int32_t Trunc(double v) { return TruncToInt32(v); }

    static void AppendLine(std::vector<std::string>& lines, const char* label, std::int32_t value);

    std::string name;
    std::int32_t weight = 0;
    std::int32_t size = 0;
    std::int32_t kind = KindBase;
    std::int32_t techLevel = BaseTechLevel;
    std::int32_t serialNumber = NoSerial;
    std::int32_t count = 1;

private:
    void NameAfterSerial();
};

// Components are numbered 1, 2, 3, ... through the run; this hands out the next.
std::int32_t NextComponentSerial();
