#pragma once
// The home target and the searches on the main window: the grid menu's sethome, the Telescope
// menu's identifyobject and tolNTOS, and the TARGET button of the filter's Ranges 2 tab, which
// opens frmTarget.

#include "app/ScopeWiring.h"

namespace services {
class UiPort;
}
namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// Given: window, whose dispatcher takes the keys; state, whose home target the windows share;
//   ui, the program's port; scope, the telescope's wiring (its enabled state, the mount's
//   position and the J2000 slew). All outlive the window.
// Notes: the home target reads the mount through scope, since the spreadsheet does not reach
//   the telescope itself.
void WireTarget(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                const ScopeWiring& scope);

} // namespace app
