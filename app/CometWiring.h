#pragma once
// Comets and asteroids on the main window: the comet window (mnuComet), the asteroid window
// (mnuAsteroid) and the import of current elements into AstComet.mdb (upastcom).

#include "astro/ObservingClock.h"

namespace services {
class UiPort;
}
namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// Gives the main window its comet and asteroid commands.
// Given: window, whose dispatcher takes the keys; state, whose preferences give the observing
//   clock and site and whose program folder holds AstComet.mdb; ui, the program's port; clock,
//   the computer clock of real-time mode. All outlive the window.
// Notes: one window a mode, made on first use, living as long as the main window; an import
//   that wrote the tables refreshes the lists of the windows already made.
void WireComets(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                const astro::Clock& clock);

} // namespace app
