#pragma once
// selvane-cli grid, plan and sql: tab 0's list as tab-separated text, and the filter's SQL.
//
//   grid                the start query (the Messier list), as the program starts
//   grid --sql "..."    the given query
//   grid --build        the query built from the filter settings
//   grid --count        (with any of the above) only the number of rows
//   plan FILE           the plan file opened into tab 0 as the program opens a chosen plan
//   sql                 the SQL the filter settings make, then its ORDER BY text
//
// Output: a header line of the 31 column headers, then one line per row holding the 31 cell
// texts exactly as the load wrote them.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <optional>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* GridUsage =
    "usage: selvane-cli ... grid [--sql SQL | --build] [--count]";

struct GridArgs
{
    std::string sql;
    bool build = false;
    std::string plan; // a plan file opened into tab 0 (scope and chart take one)
    bool count = false;
    std::string error; // a usage error; empty when the arguments are well formed
};

GridArgs ParseGridArgs(const std::vector<std::string>& args);

// The grid as the commands print it: the header line, then the rows, tab-separated.
// Returned: 0; 1 when the output could not be written.
int PrintGrid(spread::Grid& grid, std::ostream& out);

// Loads tab 0 as the command does: the start list LoadForm left, the plan file opened as the
// program opens a chosen plan, or the given or built query.
// Returned: 0 when the list is loaded, even with no rows; 1 when the object database is not
//   open or the query failed (the port has shown why).
int LoadTab0(spread::AppState& TMM, const spread::LoadFormResult& start, const GridArgs& args,
             const astro::Clock& computerClock);

// The list of the commands that take [--sql SQL | --build | --plan FILE], then tab 0 made
// current and its row checked.
// Returned: 0 when tab 0 holds the list (none of the three given: the start list, which stays)
//   and row (from 1; 0 for none) is in it; 1 when the list could not be loaded or has no such
//   row ("selvane-cli: no row N in the list" on stderr).
int LoadListRow(spread::AppState& TMM, const spread::LoadFormResult& start,
                const std::optional<std::string>& sql, bool build,
                const std::optional<std::string>& plan, int row, const astro::Clock& computerClock);

// Runs the command on the state LoadForm left (tab 0 holds the start list).
// Returned: the exit status: 0 when the list was loaded, even with no rows; 1 when the object
//   database is not open or the query failed (the port has shown why); 2 on a usage error.
int RunGridCommand(spread::AppState& TMM, const spread::LoadFormResult& start, const GridArgs& args,
                   std::ostream& out, const astro::Clock& computerClock);

inline constexpr const char* PlanUsage = "usage: selvane-cli ... plan FILE";
inline constexpr const char* SqlUsage = "usage: selvane-cli ... sql";

// The usage error of plan's arguments (exactly one file name), or empty.
std::string CheckPlanArgs(const std::vector<std::string>& args);
// The usage error of sql's arguments (none), or empty.
std::string CheckSqlArgs(const std::vector<std::string>& args);

// Opens the plan file into tab 0 (its plan and grid) and prints the grid as grid does.
// Returned: 0 when the plan was read and loaded, even with no rows; 1 when the object database
//   is not open, the file could not be read or the load failed (the port has shown why).
int RunPlanCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                   const std::string& file, std::ostream& out, const astro::Clock& computerClock);

// Prints data::SqlCommandLines: the SQL line, then the ORDER BY line.
// Returned: 0; 1 when the object database, whose catalogue and type tables the SQL reads, is
//   not open or cannot be read.
int RunSqlCommand(spread::AppState& TMM, const spread::LoadFormResult& start, std::ostream& out);

} // namespace app
