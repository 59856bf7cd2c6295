#pragma once
// The start shared by selvane and selvane-cli: the program folder, the error log, settings,
// the logbook, its link to the object database, and the object database.

#include "spread/AppState.h"

#include <string>

namespace app {

struct StartUpResult
{
    bool objectDatabaseOpen = false;
    std::string convertLogbook; // an earlier logbook to convert, from CheckConvertLog
};

// Runs the start in the program's order:
//  1. seeds the program folder from resources (missing files only) and deletes errorlog.txt;
//  2. LoadPreferences, then GetLocalization over them;
//  3. deletes NEXSTAR.TMP and dso.dat;
//  4. OpenTheDatabase, RebuildLink, and the logbook opened again;
//  5. OpenObjectDatabase; when it fails, the message "The object database could not be
//     opened." with the reason, and the start goes on without it;
//  6. CheckConvertLog.
// Failures of steps 1, 3, 4 and 6 are trapped and reported under "ctlSpread.LoadForm".
StartUpResult StartUp(spread::AppState& state, const std::filesystem::path& resources);

} // namespace app
