#pragma once
// The command line of selvane-cli.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace services {
class UiPort;
}

namespace app {

inline constexpr const char* CliUsage =
    "usage: selvane-cli [--home DIR] [--settings FILE] [--set KEY=VALUE]... COMMAND [ARGS]";

struct CliOptions
{
    std::string home;
    std::string settings;
    std::vector<std::pair<std::string, std::string>> sets; // --set KEY=VALUE, in order
    std::string command;
    std::vector<std::string> commandArgs;
    std::string error; // a usage error; empty when the line is well formed
};

// Splits the arguments (program name excluded). A --set whose key is not a setting, whose value
// its key's rule refuses (data/PreferenceRules.h, dates in the machine's regional form) or
// whose value is not of the setting's type is a usage error, so that a bad value never reaches
// the store; so is a missing command. The values are kept as the rule keeps them.
CliOptions ParseCliOptions(const std::vector<std::string>& args);

// x as "%.Nf" writes it with decimals places, whatever the process locale: the commands'
// printed numbers.
std::string FixedDecimals(double x, int decimals);

// A whole number written alone ("12", "-3"); nothing for any other text.
std::optional<int> WholeNumber(std::string_view text);

// Splits a line into words as a POSIX shell does for plain words: blanks separate, '...' keeps
// everything literally, "..." keeps everything but \" \\ \$ \`, and a backslash outside quotes
// keeps the next character.
// Returned: nothing when a quote is left open or the line ends in a backslash.
std::optional<std::vector<std::string>> SplitShellWords(const std::string& line);

// The error messages (kind E, faults included) the command line's port has shown so far: a
// command that shows one was refused or faulted. 0 for any other port.
std::size_t ErrorsShown(const services::UiPort& ui);

} // namespace app
