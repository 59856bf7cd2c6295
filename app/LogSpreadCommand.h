#pragma once
// selvane-cli logspread and logsearch: the log view (ctlLogSpread) and the logbook search
// (frmLogSearch) without their windows.
//
//   logspread [--type T | --sql SQL] [--sort COL[:desc]]... [--notes | --images]
//       The view's query from the log type box holding T (default "Show All Types"), or SQL in
//       its place; each --sort fills the next box of the sort window (COL a column number or a
//       key's name). Prints the 28 captions, then one line per row; the picture and check
//       cells as 1 or 0, the Seen Flag as stored. --notes prints the notes page's list
//       (Object, OtherID, Date, Catalog, Obs #), --images the images page's list. The row
//       count goes to stderr as "[status] <n> Objects".
//   logsearch [--object T] [--site T] [--notes T] [--equipment T] [--date FROM TO] [--type T]
//             [--const T] [--seen|--not-seen] [--spread]
//       Each option switches its criterion on with T in its box (dates YYYY-MM-DD). Prints
//       "SQL1\t<first statement>" and "SQL2\t<second>", then the entry window's grid as log list
//       prints it, or with --spread the log view on the first statement.
//   --answer yes|no (anywhere, repeated)     the answers to the questions, in order
//
// Cells are escaped for one line as log prints them. Exit status: 0 when the query ran, 1 when
// it failed (its fault on stderr), 2 on a usage error.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* LogSpreadUsage =
    "usage: selvane-cli ... logspread [--type T | --sql SQL] [--sort COL[:desc]]... "
    "[--notes | --images]   [--answer yes|no]...";
inline constexpr const char* LogSearchUsage =
    "usage: selvane-cli ... logsearch [--object T] [--site T] [--notes T] [--equipment T] "
    "[--date FROM TO] [--type T] [--const T] [--seen|--not-seen] [--spread]   "
    "[--answer yes|no]...";

std::string CheckLogSpreadArgs(const std::vector<std::string>& args);
std::string CheckLogSearchArgs(const std::vector<std::string>& args);

int RunLogSpreadCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                        std::ostream& out, const astro::Clock& clock);
int RunLogSearchCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                        std::ostream& out, const astro::Clock& clock);

} // namespace app
