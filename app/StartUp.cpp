#include "app/StartUp.h"

#include "data/DatabaseFiles.h"
#include "services/ErrorLog.h"
#include "services/Fault.h"

#include <QLocale>

#include <system_error>

namespace app {

StartUpResult StartUp(spread::AppState& state, const std::filesystem::path& resources)
{
    StartUpResult result;
    services::UiPort& ui = state.ui;
    const char* location = "ctlSpread.LoadForm";

    services::Trap(ui, location, [&] { data::SeedProgramDir(state.dir, resources); });
    ui.SetErrorLog(state.dir.File(services::ErrorLogFileName));
    services::DeleteErrorLog(ui.ErrorLog());

    data::LoadPreferences(state.prefs, state.settings, state.dir);
    data::GetLocalization(state.prefs, QLocale::system());

    std::error_code ec;
    std::filesystem::remove(state.dir.File("NEXSTAR.TMP"), ec);
    std::filesystem::remove(state.dir.File("dso.dat"), ec);

    services::Trap(ui, location, [&] {
        data::OpenTheDatabase(state.dir, state.logbookDb, state.logbookPath);
        state.logbookDb.reset();
        data::OpenTheDatabase(state.dir, state.logbookDb, state.logbookPath);
    });
    if (state.logbookDb) {
        services::TrapSilently(ui, "TMM.RebuildLink", [&] {
            data::RebuildLink(*state.logbookDb, state.prefs.cdDrive, state.prefs.UseCd);
        });
    }

    std::string failure;
    result.objectDatabaseOpen = data::OpenObjectDatabase(ui, state.prefs, state.settings,
                                                         state.objectDb, &failure);
    if (!result.objectDatabaseOpen)
        ui.ShowMessage(failure + "\nChoose the object database in the preferences.",
                       "The object database could not be opened.", "E");
    else if (state.logbookDb)
        // The media test of the open may have changed UseCd, and with it how the link reads.
        data::RebuildLink(*state.logbookDb, state.prefs.cdDrive, state.prefs.UseCd);

    services::Trap(ui, location,
                   [&] { result.convertLogbook = data::CheckConvertLog(ui, state.dir); });
    return result;
}

} // namespace app
