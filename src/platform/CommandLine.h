#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

// One option the program understands: "--name", or "--name VALUE" (also
// written "--name=VALUE") when it names a value.
struct OptionSpec {
    std::string name;      // without the leading dashes
    std::string valueName; // empty for an option that takes no value
    std::string help;
};

// A command line read against a table of options. Anything the table does
// not know, a missing value, a value given to an option that takes none or a
// word that is no option makes the reading fail with a line that says why.
class CCommandLine {
public:
    static std::optional<CCommandLine> Parse(const std::vector<OptionSpec>& specs,
                                             const std::vector<std::string>& arguments, std::string& error);

    bool Has(const std::string& name) const { return given.count(name) != 0; }
    // The value given with the option (the last one if it came more than once).
    std::string Value(const std::string& name) const;

    // The options, one a line, as a usage text shows them.
    static std::string OptionsHelp(const std::vector<OptionSpec>& specs);

private:
    std::map<std::string, std::string> given;
};

namespace Platform {
// The arguments the program was started with, its own name left out. Read
// from the system, so they are known before main runs.
std::vector<std::string> ProcessArguments();
} // namespace Platform
