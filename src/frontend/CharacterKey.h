#pragma once
#include <cctype>
#include <cstdint>

// A key whose code is a letter or a digit as a character: letter keys arrive
// as capitals and the top-row digit keys as digits. Codes beyond plain ASCII
// have no character.
inline bool IsCharacterKey(std::uint8_t key)
{
    return key < 128 && std::isalnum(key);
}
