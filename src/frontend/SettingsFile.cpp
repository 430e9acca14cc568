// The settings file: the five options, then the high-score table.
//
//   Start Level = 1
//   Music = On
//   ...
//   High Scores
//   ANN = 5200       (ten entry lines, best first; an unused entry is an empty line)
//
// Reading is forgiving: lines may come in any order, "!" starts a comment, and
// a line counts for an option or the table when it merely contains the name.
#include "frontend/MenuSystem.h"

#include "platform/Console.h"
#include "platform/FileBytes.h"
#include "platform/FileStore.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <filesystem>
#include <string_view>
#include <vector>

namespace {

constexpr const char* HighScoresHeader = "High Scores";
constexpr const char* LineEnd = "\r\n";
constexpr const char* Separator = " = ";
constexpr char CommentMark = '!';
constexpr const char* BackupSuffix = ".bak";

bool Contains(std::string_view line, std::string_view part)
{
    return line.find(part) != std::string_view::npos;
}

// Lines end at each line feed; a carriage return before it stays on the line,
// where no rule minds it. Text after the last line feed is one more line.
std::vector<std::string_view> SplitLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            break;
        text.remove_prefix(end + 1);
    }
    return lines;
}

// A decimal number as people write it: blanks, a sign, digits up to the first
// other character. No digits reads as 0; too many digits stop at the limit.
std::int32_t ReadDecimal(std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at])))
        ++at;
    bool negative = false;
    if (at < text.size() && (text[at] == '+' || text[at] == '-'))
        negative = text[at++] == '-';
    std::int64_t magnitude = 0;
    for (; at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])); ++at)
        magnitude = std::min<std::int64_t>(magnitude * 10 + (text[at] - '0'), std::int64_t{INT_MAX} + 1);
    const std::int64_t value = negative ? -magnitude : std::min<std::int64_t>(magnitude, INT_MAX);
    return static_cast<std::int32_t>(value);
}

std::string_view AfterFirstEquals(std::string_view line)
{
    return line.substr(line.find('=') + 1);
}

std::string_view TrimBlanks(std::string_view text)
{
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front())))
        text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())))
        text.remove_suffix(1);
    return text;
}

// The lines of text, blanks and line ends aside, that the other text lacks.
std::vector<std::string> LinesMissingFrom(const std::string& text, const std::string& other)
{
    const auto lines = [](const std::string& whole) {
        std::vector<std::string> found;
        std::size_t start = 0;
        while (start < whole.size()) {
            const std::size_t end = std::min(whole.find('\n', start), whole.size());
            const std::string_view line = TrimBlanks(std::string_view(whole).substr(start, end - start));
            if (!line.empty())
                found.emplace_back(line);
            start = end + 1;
        }
        return found;
    };
    const std::vector<std::string> kept = lines(other);
    std::vector<std::string> missing;
    for (std::string& line : lines(text))
        if (std::find(kept.begin(), kept.end(), line) == kept.end())
            missing.push_back(std::move(line));
    return missing;
}

} // namespace

void CMenuSystem::LoadSettings()
{
    std::string text;
    const Result read = Platform::ReadFileCreating(SettingsFile, text);
    if (read == S_OK) {
        ApplySettingsText(text);
        readStamp = Platform::StampOf(SettingsFile);
        readMoreThanKept = !LinesMissingFrom(text, SettingsText()).empty();
        return;
    }
    Platform::PrintError("cannot read " + SettingsPath() + ": " + Platform::FileProblemText(read) +
                         "; playing with the default options");
    // What stands there is the player's, whatever it is: it is not replaced.
    if (read == ERROR_DIRECTORY || read == ERROR_BAD_FILE_TYPE || read == ERROR_FILE_TOO_LARGE)
        KeepFileAsIs();
}

void CMenuSystem::SaveSettings()
{
    // The game goes on either way; the player hears that this run's changes are lost.
    const std::string notSaved = "options and high scores not saved to " + SettingsPath() + ": ";
    if (!KeepCopyBeforeSave()) {
        Platform::PrintError(notSaved + "no copy of the file as it was could be kept beside it");
        return;
    }
    const Result saved = Platform::SaveFile(SettingsFile, SettingsText());
    if (saved != S_OK) {
        Platform::PrintError(notSaved + Platform::FileProblemText(saved));
        return;
    }
    readStamp = Platform::StampOf(SettingsFile);
    readMoreThanKept = false;
}

bool CMenuSystem::KeepCopyBeforeSave()
{
    const Platform::FileStamp now = Platform::StampOf(SettingsFile);
    if (!now.exists)
        return true;
    const bool changed = readStamp.exists && now != readStamp;
    if (!changed && !readMoreThanKept)
        return true;
    const auto old = Platform::ReadFileAtMost(SettingsFile, Platform::MaxTextFileBytes);
    if (!old)
        return false;
    const std::string copy = SettingsPath() + BackupSuffix;
    if (Platform::SaveFile(copy, std::string(old->begin(), old->end())) != S_OK)
        return false;
    Platform::PrintError(SettingsPath() + (changed ? " was changed by another program while the game ran"
                                                   : " held lines the game does not keep (comments, lines it did "
                                                     "not understand or a score table it could not read)") +
                         "; the file as it was is kept in " + copy);
    return true;
}

std::string CMenuSystem::SettingsPath()
{
    std::error_code ignored;
    return std::filesystem::absolute(SettingsFile, ignored).string();
}

std::string CMenuSystem::SettingsText()
{
    std::string text;
    for (CMenuOption& option : options)
        text += option.GetName() + Separator + option.GetValueText() + LineEnd;
    text += std::string(HighScoresHeader) + LineEnd;
    for (int i = 0; i < CHighScoreTable::Size; ++i) {
        const std::string& name = highScores.GetName(i);
        if (!name.empty())
            text += std::string(TrimBlanks(name)) + Separator + std::to_string(highScores.GetScore(i));
        text += LineEnd;
    }
    return text;
}

void CMenuSystem::ApplySettingsText(const std::string& text)
{
    const std::vector<std::string_view> lines = SplitLines(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string_view line = lines[i];
        if (line.empty() || line.front() == CommentMark)
            continue;
        for (CMenuOption& option : options) {
            if (!Contains(line, option.GetName()))
                continue;
            if (option.GetKind() == OptionOnOff)
                option.SetOn(Contains(line, "On"));
            else if (Contains(line, "="))
                option.SetValue(ReadDecimal(AfterFirstEquals(line)));
        }
        // The header counts only with all ten entry lines after it; they are
        // taken whatever they hold, so none of them is read as an option.
        if (Contains(line, HighScoresHeader) && i + CHighScoreTable::Size < lines.size()) {
            for (int entry = 0; entry < CHighScoreTable::Size; ++entry) {
                const std::string_view entryLine = lines[++i];
                if (Contains(entryLine, "="))
                    highScores.SetEntry(entry, std::string(entryLine.substr(0, entryLine.find('='))),
                                        ReadDecimal(AfterFirstEquals(entryLine)));
            }
        }
    }
}
