#pragma once
// Filling one spreadsheet tab's grid: the query on the right database, the fields bound once,
// each record's computed columns and row filters, one Clip per kept row, then the formatting.
// Long lists are computed on all cores: the calling thread reads the records in blocks, and
// while worker threads compute the rows of one block it reads the next. It appends the kept
// rows of each block in record order and alone calls the port, so the output, the row limit
// (rowret, counted after the filters), the cancel and the faults are those of a one-by-one load;
// at most one block is read beyond the row where the load stops, and it is dropped unseen.

#include <functional>
#include <string>
#include <string_view>

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/Grid.h"

namespace spread {

enum class LoadMode
{
    Build,   // "BUILD": build the SQL from the filter first
    NoBuild, // "NOBUILD", "NO BUILD" and any other text: run the SQL already set
};
LoadMode ParseLoadMode(std::string_view mode);

// The observing clock and site of the settings, the date as YYYY-MM-DD when it reads as one in
// the regional short form.
astro::ObservingClock ClockFrom(const data::Preferences& p);

inline constexpr const char* OneQueryText =
    "Please wait or cancel the existing query first.  Only one Query can be run at a time";
inline constexpr const char* OneQueryTitle = "Invalid Usage";
inline constexpr const char* NoObjectsText =
    "No Objects Were Found that matched your search criteria.  Double check your filters to "
    "see if one is causing objects to not appear.";
inline constexpr const char* NoObjectsTitle = "No Objects Found!";
inline constexpr const char* LoadLocation = "ctlSpread.LoadTheGrid";

// What a load needs beyond the application state, and what it tells its caller. The tab, the
// database choice, the plan-load flag and the status texts live in the application state.
struct GridLoad
{
    // Builds the SQL for LoadMode::Build; when empty, BuildSQLSelectString of the filter
    // settings on the object database's catalogue and type tables, which also sets OrderBy.
    std::function<std::string()> BuildSQLSelectString;
    // The "pln" mark of a row by its record id (the ID of SelvaneTable). When empty, the mark
    // and the count come from the current tab's plan (TMM.plans), as in every normal load:
    // entries survive a reload, and rows that leave the list stay in the plan.
    std::function<std::string_view(double recordId)> planMark;
    int planCount = 0; // the plan's count for lblMisc, read only with planMark given
    // Records per block; 0 leaves it to the load.
    int blockSize = 0;

    // Results.
    bool allGcvs = false;
    bool cancelled = false;
    bool failed = false; // the query or a record could not be read (reported already)
};

// LoadTheGrid: loads the grid of the current tab.
// Given: TMM (settings, databases, SQL, CurrTab, UseLogDatabase, PlanLoad, busy and cancel
//   flags, the port), grid (the current tab's, normally TMM.grids[TMM.CurrTab]), mode, load,
//   computerClock.
// Returned: the rows in grid; TMM.lastLoadSql, and TMM.status's selected, lblNOM and lblMisc.
// Status: a failure while reading reports once under "ctlSpread.LoadTheGrid" and the rows read
//   so far are kept and formatted; a cancel through the port's pump does the same.
// Location: ctlSpread.LoadTheGrid
void LoadTheGrid(AppState& TMM, Grid& grid, LoadMode mode, GridLoad& load,
                 const astro::Clock& computerClock);

} // namespace spread
