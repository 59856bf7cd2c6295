#pragma once
// The logbook's copies and the compaction on the main window: actBackLog (BackupLog),
// tolAutoBackup (frmAutoBackup), compactlog and comdat (the compaction of the logbook and of
// the object database), and the automatic copy of the shut-down.

#include "astro/ObservingClock.h"

namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// Gives the main window these commands. The databases are looked up in state at each command,
// so the handles a compaction opens again are the ones used next.
void WireBackup(spread::frmMainScreen& window, spread::AppState& state, const astro::Clock& clock);

} // namespace app
