#pragma once
// selvane-cli oal: the logbook written to and read from an Open Astronomy Log file.
//
//   oal export FILE [--sql SQL]     the entries the query selects (all: none given); prints the
//                                   number of observations written
//   oal import FILE [--type T]      new entries from the file, log type T (the setting Ltype:
//                                   none given) where they have none; prints each new number
//
// Exit status: 0 when the file was written or read, 1 when it was not (a file that is no log, a
// database error), 2 on a usage error.

#include "spread/AppState.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* OalUsage =
    "usage: selvane-cli ... oal export FILE [--sql SQL] | import FILE [--type T]";

// The usage error of oal's arguments, or empty.
std::string CheckOalArgs(const std::vector<std::string>& args);

int RunOalCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out);

} // namespace app
