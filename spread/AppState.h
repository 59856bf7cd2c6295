#pragma once
// The application state shared by the windows and routines (reached as TMM where the routines
// expect it): one object, created by main and passed on as AppState&; tests create their own.

#include "data/CurrentObject.h"
#include "data/Database.h"
#include "data/ObjectFilter.h"
#include "data/Preferences.h"
#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
#include "services/UiPort.h"
#include "spread/Grid.h"
#include "spread/PlanState.h"
#include "spread/Targeting.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace spread {

// The texts of the status band, as the routines leave them for the window.
struct StatusBand
{
    std::string lblDate;  // "Date: " and the observing date
    std::string lblTime;  // "Time: " and the observing time
    std::string lblLat;   // "Lat: " and the latitude in degrees, minutes, seconds
    std::string lblLong;  // "Lon: ", the longitude, "  Time Zone : " and PTz
    std::string lblMisc;  // "RECORD MODE", the precession date, or the plan's count
    std::string lblNOM;   // the row count and " Objects"
    std::string selected; // "Selected ", the query's count and " objects"
};

// The filter panel's controls, as LoadForm and RefreshPref set them from the settings.
struct FilterControls
{
    data::ObjectFilter filter;      // lblCatDes, lblConst, lblType are ObCat, Obcon, Obtod
    std::vector<std::string> catalogs, constellations, types; // decoded from the three labels
    data::SortOptions sorts;        // the three sort combos and their check boxes
    std::array<std::string, 4> txtazm; // PAzm1..PAzm4; a value of exactly 0 leaves a box empty
    bool chkOptimum = false;
    bool chkTimes = false;
    std::string txtInterval;
};

// One line of the Herschel cross-reference Href.txt.
struct HerschelRef
{
    std::string id;   // characters 1 to 4
    std::string name; // characters 8 to 25
};

inline constexpr int kSpreadTabs = 5; // the object grids of tabs 0 to 4

struct AppState
{
    AppState(services::UiPort& port, data::ProgramDir folder, data::SettingsStore store)
        : ui(port), dir(std::move(folder)), settings(std::move(store))
    {
    }

    services::UiPort& ui;
    data::ProgramDir dir;
    data::SettingsStore settings;
    data::Preferences prefs;

    // The object database (SelvPro708000.mdb at prefs.cdDrive) and the logbook; both live from
    // start to stop. UseCd is prefs.UseCd.
    std::unique_ptr<data::Database> objectDb;
    std::unique_ptr<data::Database> logbookDb;
    std::string logbookPath;

    // The object lists of the spreadsheet tabs 0 to 4, and the tab shown (5 and 6 are the image
    // tabs, which hold no grid).
    std::array<Grid, kSpreadTabs> grids;
    int CurrTab = 0;
    // The observing plan of each spreadsheet tab.
    PlanTabs plans;

    // The current SQL and its ORDER BY part, as BuildSQLSelectString leaves them, and the SQL
    // of the last finished grid load (what RefreshIt runs again).
    std::string SQL;
    std::string OrderBy;
    std::string lastLoadSql;

    // The next load runs on the logbook (the observed list on read-only media).
    bool UseLogDatabase = false;
    // A plan or a find result is loading: the row filters are off.
    bool PlanLoad = false;

    // A grid load is running; a click on the busy window asked it to stop.
    bool QueryRunning = false;
    bool CancelRequested = false;
    // True from the start until the first grid has been requested.
    bool NoLoadYet = true;
    // The real-time timer is to be armed again on the next tick of Timer2.
    bool RealTimeRearm = false;

    // The object the spreadsheet leaves for the logbook windows before opening one.
    data::CurrentObject current;

    StatusBand status;
    FilterControls controls;
    std::vector<HerschelRef> herschel;
    // The home target and the targeting switch, for the run.
    Targeting target;
};

} // namespace spread
