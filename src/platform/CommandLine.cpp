#include "platform/CommandLine.h"

#include <algorithm>
#include <fstream>
#include <iterator>

std::optional<CCommandLine> CCommandLine::Parse(const std::vector<OptionSpec>& specs,
                                                const std::vector<std::string>& arguments, std::string& error)
{
    CCommandLine line;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        if (word.size() < 3 || !word.starts_with("--")) {
            error = word.starts_with("-") ? "unknown option '" + word + "'" : "unexpected argument '" + word + "'";
            return std::nullopt;
        }
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(2, equals == std::string::npos ? std::string::npos : equals - 2);
        const auto spec = std::find_if(specs.begin(), specs.end(), [&](const OptionSpec& s) { return s.name == name; });
        if (spec == specs.end()) {
            error = "unknown option '--" + name + "'";
            return std::nullopt;
        }
        std::string value;
        if (spec->valueName.empty()) {
            if (equals != std::string::npos) {
                error = "option '--" + name + "' takes no value";
                return std::nullopt;
            }
        } else if (equals != std::string::npos) {
            value = word.substr(equals + 1);
        } else if (i + 1 < arguments.size()) {
            value = arguments[++i];
        } else {
            error = "option '--" + name + "' needs a " + spec->valueName;
            return std::nullopt;
        }
        line.given[name] = value;
    }
    return line;
}

std::string CCommandLine::Value(const std::string& name) const
{
    const auto found = given.find(name);
    return found == given.end() ? std::string() : found->second;
}

std::string CCommandLine::OptionsHelp(const std::vector<OptionSpec>& specs)
{
    constexpr std::size_t HelpColumn = 22;
    std::string text;
    for (const OptionSpec& spec : specs) {
        std::string left = "  --" + spec.name + (spec.valueName.empty() ? "" : " " + spec.valueName);
        left.resize(std::max(left.size() + 2, HelpColumn), ' ');
        text += left + spec.help + "\n";
    }
    return text;
}

namespace Platform {

std::vector<std::string> ProcessArguments()
{
    // The kernel keeps the command line as the program was given it: each
    // argument ended by a zero byte, the program's own name first.
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    const std::string all{std::istreambuf_iterator<char>(file), {}};
    std::vector<std::string> arguments;
    for (std::size_t at = 0; at < all.size();) {
        const std::size_t end = std::min(all.find('\0', at), all.size());
        arguments.push_back(all.substr(at, end - at));
        at = end + 1;
    }
    if (!arguments.empty())
        arguments.erase(arguments.begin());
    return arguments;
}

} // namespace Platform
