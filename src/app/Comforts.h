#pragma once
#include <map>
#include <string>
#include <vector>

// The player's comforts, kept beside the game's own settings in a file of
// their own ("comforts" in the configuration folder): how the picture is
// scaled, and whatever else makes the game pleasant without changing it.
// One "name = value" a line; '#' starts a comment. Lines the game does not
// know are kept as they are, so that an older game never loses what a newer
// one wrote.
class CComforts {
public:
    static constexpr const char* FileName = "comforts";

    // Reads the file's text; a line that is no "name = value" is kept and
    // reported in problems.
    void Parse(const std::string& text);
    std::string Text() const;

    // The value of name, or empty.
    std::string Get(const std::string& name) const;
    void Set(const std::string& name, const std::string& value);
    const std::vector<std::string>& Problems() const { return problems; }

    // Where the file lives, or empty when there is no configuration folder.
    static std::string Path();
    // Reads the file at path; a missing file is no comfort changed.
    void Load(const std::string& path);
    // Saves to path, saying on stderr when it cannot.
    void Save(const std::string& path) const;

private:
    struct Line {
        std::string text; // the line as read, for lines that set nothing
        std::string name;
        std::string value;
    };
    std::vector<Line> lines;
    std::vector<std::string> problems;
};
