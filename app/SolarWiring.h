#pragma once
// The solar system on the main window: the summary (athesummary) and one window per planet
// (athemercury ... athepluto), each for the observing clock and site of the settings at the
// moment of the click.

#include "astro/ObservingClock.h"

namespace services {
class UiPort;
}
namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// Gives the main window its solar-system commands. The windows are made on first use and live
// as long as the main window.
void WireSolarSystem(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                     const astro::Clock& clock);

} // namespace app
