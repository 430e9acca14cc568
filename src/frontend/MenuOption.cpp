#include "frontend/MenuOption.h"

#include <utility>

CMenuOption CMenuOption::Switch(OptionId id, std::string name, bool on)
{
    CMenuOption option;
    option.name = std::move(name);
    option.identity = id;
    option.kind = OptionOnOff;
    option.on = on;
    return option;
}

CMenuOption CMenuOption::Number(OptionId id, std::string name, std::int32_t value, std::int32_t minimum,
                                std::int32_t maximum)
{
    CMenuOption option;
    option.name = std::move(name);
    option.identity = id;
    option.kind = OptionNumber;
    option.value = value;
    option.SetRange(minimum, maximum);
    return option;
}

void CMenuOption::Increase()
{
    if (kind == OptionOnOff)
        on = !on;
    else if (value < maximum)
        ++value;
}

void CMenuOption::Decrease()
{
    if (kind == OptionOnOff)
        on = !on;
    else if (value > minimum)
        --value;
}

void CMenuOption::SetRange(std::int32_t newMinimum, std::int32_t newMaximum)
{
    minimum = newMinimum;
    maximum = newMaximum;
}

std::string CMenuOption::GetValueText()
{
    if (kind == OptionOnOff)
        valueText = on ? "On" : "Off";
    else
        valueText = std::to_string(value);
    return valueText;
}
