#pragma once
// The application state shared by the windows and routines (reached as TMM where the routines
// expect it): one object, created by main and passed on as AppState&; tests create their own.

#include "data/Database.h"
#include "data/Preferences.h"
#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
#include "services/UiPort.h"

#include <memory>
#include <string>

namespace spread {

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

    // The current SQL and its ORDER BY part, as BuildSQLSelectString leaves them.
    std::string SQL;
    std::string OrderBy;

    // A grid load is running; a click on the busy window asked it to stop.
    bool QueryRunning = false;
    bool CancelRequested = false;
};

} // namespace spread
