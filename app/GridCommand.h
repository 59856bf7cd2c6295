#pragma once
// selvane-cli grid: tab 0's list as tab-separated text.
//
//   grid                the start query (the Messier list), as the program starts
//   grid --sql "..."    the given query
//   grid --build        the query built from the filter settings
//   grid --count        (with any of the above) only the number of rows
//
// Output: a header line of the 31 column headers, then one line per row holding the 31 cell
// texts exactly as the load wrote them.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* GridUsage = "usage: selvane-cli ... grid [--sql SQL | --build] [--count]";

struct GridArgs
{
    std::string sql;
    bool build = false;
    bool count = false;
    std::string error; // a usage error; empty when the arguments are well formed
};

GridArgs ParseGridArgs(const std::vector<std::string>& args);

// Runs the command on the state LoadForm left (tab 0 holds the start list).
// Returned: the exit status: 0 when the list was loaded, even with no rows; 1 when the object
//   database is not open or the query failed (the port has shown why); 2 on a usage error.
int RunGridCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                   const GridArgs& args, std::ostream& out, const astro::Clock& computerClock);

} // namespace app
