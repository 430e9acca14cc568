#include "frontend/HighScoreTable.h"

#include "frontend/CharacterKey.h"
#include "platform/Types.h"

#include <algorithm>
#include <utility>

bool CHighScoreTable::Insert(std::int32_t score)
{
    const auto below = std::find_if(scores.begin(), scores.end(), [score](std::int32_t s) { return s < score; });
    if (below == scores.end())
        return false;
    const auto place = below - scores.begin();
    std::move_backward(names.begin() + place, names.end() - 1, names.end());
    std::copy_backward(below, scores.end() - 1, scores.end());
    SetEntry(static_cast<int>(place), std::string(), score);
    editIndex = static_cast<std::int32_t>(place);
    return true;
}

void CHighScoreTable::EnterNameKey(std::uint8_t key, bool pressed)
{
    if (!pressed || !IsEditing())
        return;
    std::string& name = names[static_cast<std::size_t>(editIndex)];
    switch (key) {
    case VK_BACK:
        if (!name.empty())
            name.pop_back();
        break;
    case VK_RETURN:
    case VK_ESCAPE:
        editIndex = NotEditing;
        break;
    case VK_SPACE:
        AppendToName(' ');
        break;
    default:
        if (IsCharacterKey(key))
            AppendToName(static_cast<char>(key));
        break;
    }
}

void CHighScoreTable::AppendToName(char c)
{
    std::string& name = names[static_cast<std::size_t>(editIndex)];
    if (name.size() < MaxTypedName)
        name.push_back(c);
}

void CHighScoreTable::SetEntry(int index, std::string name, std::int32_t score)
{
    names[static_cast<std::size_t>(index)] = std::move(name);
    scores[static_cast<std::size_t>(index)] = score;
}
