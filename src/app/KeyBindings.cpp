#include "app/KeyBindings.h"

#include "app/Comforts.h"
#include "platform/Keys.h"
#include "ship/Laser.h"

#include <algorithm>
#include <sstream>

namespace {

std::string Trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool IsFittedFireKey(UINT key)
{
    return key == static_cast<UINT>(CLaser::SpareFireKey) ||
           std::find(std::begin(CLaser::FittedFireKeys), std::end(CLaser::FittedFireKeys), static_cast<char>(key)) !=
               std::end(CLaser::FittedFireKeys);
}

} // namespace

bool CKeyBindings::IsBindable(UINT key)
{
    const auto& keys = BindableKeys();
    return std::any_of(keys.begin(), keys.end(), [key](const Bindable& bindable) { return bindable.key == key; });
}

const std::vector<CKeyBindings::Bindable>& CKeyBindings::BindableKeys()
{
    static const std::vector<Bindable> keys{
        {"key-up", VK_UP},         {"key-down", VK_DOWN},       {"key-left", VK_LEFT},
        {"key-right", VK_RIGHT},   {"key-enter", VK_RETURN},    {"key-escape", VK_ESCAPE},
        {"key-space", VK_SPACE},   {"key-backspace", VK_BACK},
    };
    return keys;
}

void CKeyBindings::Load(const CComforts& comforts)
{
    bound.clear();
    problems.clear();
    for (const Bindable& bindable : BindableKeys())
        if (const std::string value = comforts.Get(bindable.line); !value.empty())
            TakeLine(bindable, value);
}

bool CKeyBindings::TakeLine(const Bindable& bindable, const std::string& value)
{
    const std::string line = bindable.line;
    std::map<int, UINT> taken;
    std::istringstream names(value);
    for (std::string name; std::getline(names, name, ',');) {
        name = Trimmed(name);
        const int code = Platform::KeyCodeNamed(name);
        std::string problem;
        if (code == 0)
            problem = "no key is called \"" + name + "\"";
        else if (IsFittedFireKey(Platform::VirtualKeyFor(code)))
            problem = name + " is a key a laser fires on";
        else if (Platform::VirtualKeyFor(code) == bindable.key)
            continue; // the key itself: it needs no binding
        else if (bound.count(code) || taken.count(code) || IsBindable(Platform::VirtualKeyFor(code)))
            problem = name + " is taken already";
        if (!problem.empty()) {
            problems.push_back(line + ": " + problem + "; the line is left out");
            return false;
        }
        taken[code] = bindable.key;
    }
    bound.insert(taken.begin(), taken.end());
    return true;
}

UINT CKeyBindings::BoundTo(int keyCode) const
{
    const auto found = bound.find(keyCode);
    return found == bound.end() ? 0 : found->second;
}
