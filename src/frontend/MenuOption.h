#pragma once
#include <cstdint>
#include <string>

// Which setting an option is; the rest of the game asks by identity.
enum OptionId : std::int32_t {
    OptionMusic = 0,
    OptionSound = 1,
    OptionStartLevel = 2,
    OptionStars = 3,
    OptionStats = 4,
};

enum OptionKind : std::int32_t {
    OptionOnOff = 0,
    OptionNumber = 1,
};

// One entry of the options screen: an on/off switch or a number in a range.
class CMenuOption {
public:
    static CMenuOption Switch(OptionId id, std::string name, bool on);
    static CMenuOption Number(OptionId id, std::string name, std::int32_t value, std::int32_t minimum,
                              std::int32_t maximum);

    // The arrow keys: a number steps within its range, a switch flips either way.
    void Increase();
    void Decrease();

    void SetOn(bool isOn) { on = isOn; }
    // Stores the value as given: a value outside the range stands until the
    // arrow keys bring it back.
    void SetValue(std::int32_t newValue) { value = newValue; }
    void SetRange(std::int32_t newMinimum, std::int32_t newMaximum);

    // "On", "Off" or the number; kept as the option's value text.
    std::string GetValueText();

    const std::string& GetName() const { return name; }
    OptionId GetId() const { return identity; }
    OptionKind GetKind() const { return kind; }
    bool IsOn() const { return on; }
    std::int32_t GetValue() const { return value; }

private:
    std::string name;
    bool on = false;
    std::int32_t value = 0;
    std::int32_t maximum = 0;
    std::int32_t minimum = 0;
    std::string valueText;
    OptionKind kind = OptionOnOff;
    OptionId identity = OptionMusic;
};
