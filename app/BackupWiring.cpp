#include "app/BackupWiring.h"

#include "app/BackupCommand.h"
#include "data/DatabaseFiles.h"
#include "logbook/Backup.h"
#include "logbook/ui/frmAutoBackup.h"
#include "services/Fault.h"
#include "spread/AppState.h"
#include "spread/ui/frmMainScreen.h"

#include <QWidget>

namespace app {

namespace {

// The logbook's windows read the database handles they were opened with; a compaction opens
// new ones, so the windows close first and take the new handles when opened again.
void CloseLogbookWindows(spread::frmMainScreen& window)
{
    if (auto* entry = window.findChild<QWidget*>("frmLogEntryNew"))
        entry->close();
}

} // namespace

void WireBackup(spread::frmMainScreen& window, spread::AppState& state, const astro::Clock& clock)
{
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    dispatcher.SetAction("actBackLog", [&state, &clock] {
        if (!state.logbookDb)
            return;
        const astro::LocalDateTime now = clock.Now();
        services::Trap(state.ui, logbook::BackupLocation, [&] {
            logbook::BackupLog(state.ui, *state.logbookDb, QDate(now.year, now.month, now.day));
        });
    });
    dispatcher.SetAction("tolAutoBackup", [&window, &state] {
        logbook::ui::frmAutoBackup form(state.ui, state.prefs, state.settings, data::LogbookName,
                                        &window);
        form.exec();
    });
    dispatcher.SetAction("compactlog", [&window, &state] {
        CloseLogbookWindows(window);
        CompactLogbookCommand(state);
    });
    dispatcher.SetAction("comdat", [&window, &state] {
        CloseLogbookWindows(window);
        CompactDatabaseCommand(state);
    });
    // The shut-down traps the step itself, under its own location.
    window.SetAutoBackup([&state] {
        if (state.logbookDb)
            logbook::AutoBackupLog(state.ui, *state.logbookDb, state.prefs);
    });
}

} // namespace app
