#pragma once
#include <array>
#include <cstdint>
#include <string>

// The ten best scores, best first, and the name being typed for a new one.
class CHighScoreTable {
public:
    static constexpr int Size = 10;
    static constexpr std::size_t MaxTypedName = 30;
    static constexpr std::int32_t NotEditing = -1;

    // Places a finished game's score below every score that is at least as
    // high, pushing the last entry out, and starts the entry of its name.
    // A score that beats none of the ten changes nothing. True if entered.
    bool Insert(std::int32_t score);

    // One key while a name is typed: letters, digits and blanks are added up
    // to the length limit, Backspace takes one back, Enter or Escape finish.
    void EnterNameKey(std::uint8_t key, bool pressed);

    bool IsEditing() const { return editIndex != NotEditing; }
    std::int32_t GetEditIndex() const { return editIndex; }
    const std::string& GetName(int index) const { return names[static_cast<std::size_t>(index)]; }
    std::int32_t GetScore(int index) const { return scores[static_cast<std::size_t>(index)]; }
    void SetEntry(int index, std::string name, std::int32_t score);

private:
    void AppendToName(char c);

    std::array<std::string, Size> names;
    std::array<std::int32_t, Size> scores{};
    std::int32_t editIndex = NotEditing;
};
