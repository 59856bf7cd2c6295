#pragma once
// Observing plans: per spreadsheet tab a list of up to 500 objects for a night, marked in the
// grid's "pln" column (column 1) and saved in .PLN files. The plan is held in these entries
// only; the grid marks are derived from them. Tabs have one plan each.
//
// Grid columns read here: 1 "pln", 4 "ObjectID", 24 "Catalog", 27 "RecordID". Rows count from 1.
// Every message goes through the port as kind "I", the title argument being its heading.

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "spread/LoadTheGrid.h"
#include "spread/PlanFile.h"
#include "spread/PlanState.h"

namespace data {
class Database;
}

namespace services {
class UiPort;
}

namespace spread {

class Grid;
struct AppState;

inline constexpr int kPlnCol = 1;
inline constexpr int kObjectIdCol = 4;
inline constexpr int kCatalogCol = 24;
inline constexpr int kRecordIdCol = 27;

inline constexpr const char* AlreadyStartedText =
    "You have already started a plan in this tab.  Please select another tab in the spreadsheet "
    "to start another plan.";
inline constexpr const char* InvalidUsageTitle = "Invalid Usage";
inline constexpr const char* NotTaggedText =
    "You have not tagged any objects for your observing plan.  To tag objects, just click the "
    "Object's PLN column";
inline constexpr const char* NotTaggedTitle = "No Objects Tagged";
inline constexpr const char* SaveDialogTitle = "Save File";
inline constexpr const char* OpenDialogTitle = "Open Observing Plan";
inline constexpr const char* PlanFilter = "*.pln";
inline constexpr const char* PlanDefaultExt = ".pln";
inline constexpr const char* OverwriteQuestion = "Overwrite ?";
inline constexpr const char* OverwriteTitle = "File Already Exist";
inline constexpr const char* RecordModeText = "RECORD MODE";
inline constexpr const char* InPlanSuffix = " Object(s) In Your Plan";

inline constexpr const char* SavePlanLocation = "ctlSpread.mnuSavePs_Click";
inline constexpr const char* OpenPlanLocation = "ctlSpread.mnuOpenPS_Click";
inline constexpr const char* ChosenPlanLocation = "ctlSpread.cboPlan_Click";

// True for the catalogues of solar-system entries: "PLANETS", "COMET", "ASTEROID".
bool IsSolarCatalog(std::string_view catalog);

// The steps a plan routine asks of the spreadsheet around it. A step left empty is skipped.
struct PlanHooks
{
    std::function<void()> UpdateStatusBar;                  // after plan mode is entered
    std::function<void()> mnuRfsh_Click;                    // StopPlan
    std::function<void(const std::string& mode)> LoadTheGrid; // StopPlan: "BUILD"
    std::function<void(const std::string& text)> SetMisc;   // the status band's lblMisc
    std::function<void()> CalcMoonPhase;                    // StopPlan
    std::function<void()> FormatSpreadsheet;                // after a solar row is removed
    std::function<void()> LoadPlan;                         // ShowPlan, after a plan is opened
};

// StartPlan: enters plan mode.
// Returned: false, after AlreadyStartedText under InvalidUsageTitle, when the tab is in plan
//   mode already; otherwise plan mode with no entries, and the status band refreshed.
bool StartPlan(TabPlan& plan, services::UiPort& ui, const PlanHooks& hooks);

enum class TagResult
{
    Added,      // the row joined the plan and its "pln" cell reads "X"
    Removed,    // the row left the plan and its "pln" cell reads " "
    Full,       // 500 entries: MaxObjectsText under MaxObjectsTitle, nothing added
    NoRecordId, // the row has no record id: nothing to tag
};

// mnuaddtoplan_Click: toggles one row of the grid in the plan (also a click in column 1).
// Given: row, the selected row (1 to MaxRows).
// Notes: a tab out of plan mode enters it first. A removal compacts the plan, keeping the order
//   of the others, and the removal of the last entry ends plan mode. A removed row of a
//   solar-system catalogue is deleted from the grid and the grid reformatted.
TagResult mnuaddtoplan_Click(TabPlan& plan, Grid& grid, int row, services::UiPort& ui,
                             const PlanHooks& hooks);

// cmdATP_Click ("+ All to"): tags every row, hidden ones too, that has a record id and is not
// marked "X" yet, in grid order.
// Returned: the number of rows added. At 500 entries it reports MaxObjectsText once and stops.
int cmdATP_Click(TabPlan& plan, Grid& grid, services::UiPort& ui, const PlanHooks& hooks);

// The compaction after a removal: entries with a record id of 0 are dropped, the rest keep
// their order; no entry left ends plan mode.
void CompactPlan(TabPlan& plan);

// StopPlan: ends plan mode, forgets the entries and goes back to the filtered list
// (mnuRfsh_Click, LoadTheGrid "BUILD", lblMisc cleared, moon phase).
// Returned: false, after NotTaggedText under InvalidUsageTitle, when the tab is not in plan
//   mode.
bool StopPlan(TabPlan& plan, services::UiPort& ui, const PlanHooks& hooks);

// ShowPlan: loads the tab's grid from its plan (hooks.LoadPlan).
// Given: currTab, the current tab (0 to 4 spreadsheet tabs).
// Returned: false after "Please select a spreadsheet tab first" / "Invalid Usage!" on an image
//   tab, or NotTaggedText under NotTaggedTitle with no entries.
bool ShowPlan(int currTab, const TabPlan& plan, services::UiPort& ui, const PlanHooks& hooks);

// The file name a save dialog's answer becomes: ".PLN" appended unless the name ends in it in
// any case; empty when the answer is empty or the empty mask "*.PLN".
std::string PlanSaveName(const std::string& chosen);

// mnuSavePs_Click: saves the tab's plan under a name asked for.
// Returned: true when a file was written. False after "Please select a spreadsheet tab first" /
//   "Invalid Usage!" on an image tab, after NotTaggedText under NotTaggedTitle with no entries,
//   for a cancelled dialog, or when the overwrite question is not answered Yes.
// Status: a failed write is reported under SavePlanLocation and leaves a partial file.
bool mnuSavePs_Click(int currTab, const TabPlan& plan, services::UiPort& ui);

// What opening a plan file gave.
struct PlanOpened
{
    bool opened = false;         // the tab is in plan mode with the file's entries
    double largestRecordId = 0;  // the last record id above 0 in the file
};

// OpenPlanFile: the reading shared by mnuOpenPS_Click and cboPlan_Click.
// Given: path of the file; lookup, the record id search of the open object database, used for
//   the shipped plans only; location, where a failure is reported.
// Returned: the tab's PlanFile set to path; its entries replaced by the file's, the shipped
//   plans' ids looked up again; plan mode entered and hooks.LoadPlan run.
// Status: a file that cannot be read is reported under location and leaves the entries as they
//   were; a record that cannot be read is reported under location, the entries before it stay
//   and plan mode is not entered. Records beyond 500 report MaxObjectsText under
//   MaxObjectsTitle; the first 500 load.
PlanOpened OpenPlanFile(TabPlan& plan, const std::filesystem::path& path,
                        services::UiPort& ui, const PlanIdLookup& lookup,
                        const PlanHooks& hooks, const std::string& location);

// mnuOpenPS_Click: asks for a plan file and opens it; a cancelled dialog does nothing.
PlanOpened mnuOpenPS_Click(TabPlan& plan, services::UiPort& ui, const PlanIdLookup& lookup,
                           const PlanHooks& hooks);

// cboPlan_Click: opens the plan of the program folder with the chosen name (from the saved-plan
// selector or a plan tool of the short-cut band), without a dialog. The empty mask "*.PLN" and
// an empty name are ignored.
PlanOpened cboPlan_Click(TabPlan& plan, const std::filesystem::path& programDir,
                         const std::string& name, services::UiPort& ui,
                         const PlanIdLookup& lookup, const PlanHooks& hooks);

// The query a plan load runs: the rows of SelvaneTable whose ID an entry holds, in the order of
// the entries; solar-system entries are left out.
std::string PlanSql(const TabPlan& plan);

// LoadPlan: fills the current tab's grid from its plan, as a grid load does with the row
// filters off.
// Given: TMM (settings, databases, CurrTab, port), grid (the current tab's), plan,
//   computerClock.
// Returned: the load's results; TMM.status as a load leaves it, its selected text counting the
//   plan's entries. TMM.SQL, PlanLoad and UseLogDatabase are left as they were.
// Notes: rows come in the order of tagging, then the sort of FormatSpreadsheet; an entry whose
//   id no longer exists yields no row and no message. The "pln" cell is "X", or "X*" for an
//   entry with a note. Solar-system entries give no row yet.
// Location: ctlSpread.LoadTheGrid
GridLoad LoadPlan(AppState& TMM, Grid& grid, const TabPlan& plan,
                  const astro::Clock& computerClock);

// What opening a plan into a grid gave.
struct PlanIntoGrid
{
    PlanOpened opened;
    GridLoad load; // the load's results, when the plan was loaded
};

// OpenPlanIntoGrid: the plan file at path opened into the plan and loaded into grid, as the
// program does for a file chosen in the plan selector (cboPlan_Click): the shipped plans have
// their ids looked up on TMM.objectDb. This is what "selvane-cli plan FILE" runs for tab 0.
PlanIntoGrid OpenPlanIntoGrid(AppState& TMM, Grid& grid, TabPlan& plan,
                              const std::filesystem::path& path,
                              const astro::Clock& computerClock);

// The record id search of a database for the shipped plans: ShippedIdSql on db, the first
// row's ID.
PlanIdLookup ShippedIdLookup(data::Database& db);

// One tool of the short-cut band.
struct ShortCutTool
{
    std::string key;            // the file's name, as it is in the folder
    std::filesystem::path icon; // plans.ico or query.ico of the folder; empty when missing
};

struct ShortCutTools
{
    std::vector<ShortCutTool> plans;   // group "plans", "My Plans"
    std::vector<ShortCutTool> queries; // group "queries", "My Queries"
};

inline constexpr const char* PlansGroup = "plans";
inline constexpr const char* PlansGroupCaption = "My Plans";
inline constexpr const char* QueriesGroup = "queries";
inline constexpr const char* QueriesGroupCaption = "My Queries";

// LoadTPlan: the *.pln and *.qry files of the program folder (extension in any case), each
// list ordered by name. A missing folder gives empty lists.
ShortCutTools LoadTPlan(const std::filesystem::path& programDir);

} // namespace spread
