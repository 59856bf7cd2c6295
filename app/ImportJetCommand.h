#pragma once
// selvane-cli import-jet: a logbook of an earlier edition (a Jet .mdb file) brought into the
// logbook as new entries.
//
//   import-jet FILE [--type T] [--answer yes|no]...
//
// Prints each new observation number, one a line, in the order of the old logbook. Entries
// without a log type get T (default: the setting Ltype); an entry the logbook already holds
// (same object, catalogue, date and time) is skipped. Messages and questions go to stderr as
// the log commands write them. Exit status: 0 when the import ran (also when it added
// nothing), 1 when the file could not be read or the logbook refused the import (the logbook
// is then unchanged), 2 on a usage error.

#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* ImportJetUsage =
    "usage: selvane-cli ... import-jet FILE [--type T]   [--answer yes|no]...";

// The usage error of import-jet's arguments, or empty.
std::string CheckImportJetArgs(const std::vector<std::string>& args);

int RunImportJetCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                        std::ostream& out);

} // namespace app
