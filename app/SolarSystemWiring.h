#pragma once
// The solar system on the main window: the Sun window (athesun), the Moon window (athemoon),
// the summary (athesummary), a window per planet (athemercury ... athepluto), and the Moon's
// phase icon in the status band, set by CalcMoonPhase at the start, after the date preferences
// (date) and each minute, so that it follows real time.

#include "astro/ObservingClock.h"
#include "astro/ui/OutputTable.h"

namespace services {
class UiPort;
}
namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// Gives the main window its Sun and Moon commands and the phase icon.
// Given: window, whose dispatcher takes the keys and whose status band takes the icon (a label
//   named imgMoonPhase); state, whose preferences give the observing clock and site at each
//   command and whose program folder holds the icons; ui, the program's port; clock, the
//   computer clock of real-time mode; telescopeGoto, what the windows' Goto runs (unset: the
//   message that no telescope is attached). All outlive the window.
// Notes: the windows are made on first use and live as long as the main window.
void WireSolarSystem(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                     const astro::Clock& clock, astro::ui::TelescopeGoto telescopeGoto = {});

// Sets the status band's phase icon (and its tool tip, the age) for the state's clock.
void UpdateMoonPhaseIcon(spread::frmMainScreen& window, spread::AppState& state,
                         services::UiPort& ui, const astro::Clock& clock);

} // namespace app
