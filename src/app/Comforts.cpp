#include "app/Comforts.h"

#include "platform/Console.h"
#include "platform/FileStore.h"
#include "platform/UserDirs.h"

#include <filesystem>
#include <sstream>
#include <sys/stat.h>

namespace {

constexpr const char* GameFolder = "quelvarion";

std::string Trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return "";
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

} // namespace

void CComforts::Parse(const std::string& text)
{
    lines.clear();
    problems.clear();
    std::istringstream in(text);
    std::string raw;
    for (int number = 1; std::getline(in, raw); ++number) {
        const std::string line = Trimmed(raw);
        const auto equals = line.find('=');
        if (line.empty() || line[0] == '#') {
            lines.push_back({line, "", ""});
        } else if (equals == std::string::npos || Trimmed(line.substr(0, equals)).empty()) {
            lines.push_back({line, "", ""});
            problems.push_back("line " + std::to_string(number) + ": \"" + line + "\" is not name = value");
        } else {
            lines.push_back({"", Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1))});
        }
    }
}

std::string CComforts::Text() const
{
    std::string text;
    for (const Line& line : lines)
        text += (line.name.empty() ? line.text : line.name + " = " + line.value) + "\n";
    return text;
}

std::string CComforts::Get(const std::string& name) const
{
    for (auto it = lines.rbegin(); it != lines.rend(); ++it) // the last word on a name counts
        if (it->name == name)
            return it->value;
    return "";
}

void CComforts::Set(const std::string& name, const std::string& value)
{
    for (auto it = lines.rbegin(); it != lines.rend(); ++it)
        if (it->name == name) {
            it->value = value;
            return;
        }
    lines.push_back({"", name, value});
}

std::string CComforts::Path()
{
    const std::string config = Platform::ConfigHome();
    return config.empty() ? "" : config + "/" + GameFolder + "/" + FileName;
}

void CComforts::Load(const std::string& path)
{
    std::error_code error;
    std::string text;
    if (path.empty() || !std::filesystem::is_regular_file(path, error) ||
        Platform::ReadFileCreating(path, text) != S_OK)
        return;
    Parse(text);
    for (const std::string& problem : problems)
        Platform::PrintError(path + ", " + problem);
}

void CComforts::Save(const std::string& path) const
{
    if (path.empty())
        return;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    std::error_code ignored;
    std::filesystem::create_directories(folder.parent_path(), ignored);
    ::mkdir(folder.c_str(), 0700); // the configuration home as usual, our own folder private
    if (const Result saved = Platform::SaveFile(path, Text()); saved != S_OK)
        Platform::PrintError("comforts not remembered in " + path + ": " + Platform::FileProblemText(saved));
}
