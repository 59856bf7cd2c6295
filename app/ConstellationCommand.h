#pragma once
// selvane-cli constellation: the constellation of a position, by the lookup that reads the
// program folder's con9.txt and conbound.txt at every call.
//
//   constellation RA DEC [EPOCH]   one position; EPOCH is "2000" when left out
//   constellation -                one position per line of standard input, as
//                                  RA<TAB>DEC[<TAB>EPOCH]
//
// The texts go to the lookup as typed ("5h35m17s", "-05°23'28\"", "- 5 23 28", "J2000"); a run
// of characters other than digits separates two fields of a text. Output: the line
// "Name\tAbbr", then one line per position: the name, a tab and the abbreviation, both empty
// when no boundary row holds the position, the lookup faulted or the input line was not two or
// three tab-separated fields. Faults go through the port's fault report at their locations.
//
// Exit status: 0 when every lookup ran; 1 when a lookup faulted or an input line was
// malformed (the others are still answered); 2 on a usage error.

#include "data/ProgramDir.h"

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace services {
class UiPort;
}

namespace app {

inline constexpr const char* ConstellationUsage =
    "usage: selvane-cli ... constellation RA DEC [EPOCH] | constellation -";

// The epoch of a position given without one.
inline constexpr const char* DefaultConstellationEpoch = "2000";

// The usage error of constellation's arguments, or empty.
std::string CheckConstellationArgs(const std::vector<std::string>& args);

// Runs the lookups on dir's data files; in reads the positions of "constellation -".
int RunConstellationCommand(const data::ProgramDir& dir, services::UiPort& ui,
                            const std::vector<std::string>& args, std::istream& in,
                            std::ostream& out);

} // namespace app
