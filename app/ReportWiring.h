#pragma once
// The reports on the main window: the report window for the sheets of the current tab (Log
// Sheet, blank and for every row; Observing Plan Details; Finder Chart), the new and full moons,
// the plan objects observed (after the plan window), the logbook information, and the printout
// of the current tab (quick or classic), the log reports and certificates, the logbook report in
// the order chosen in frmSortSelection, and what the logbook windows print.

#include "app/ChartWiring.h"
#include "app/LogbookWiring.h"
#include "astro/ObservingClock.h"

namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// Gives the main window its report commands.
// Given: window, whose dispatcher takes the keys and whose current tab and selected row the
//   sheets read; state; clock, the present date of the footers; charts, the chart context of
//   the finder and plan sheets. All outlive the window.
void WireReports(spread::frmMainScreen& window, spread::AppState& state, const astro::Clock& clock,
                 ChartContextSource charts);

// What the logbook windows print through the report window: the entry window's reports of its
// open entry, the log view's grid (frmPrintout: report 3 over that view, or the quick printout
// of its grid in landscape) and the notes of one of its items (report 1111).
LogbookPrinting ReportsOfTheLogbook(spread::frmMainScreen& window, spread::AppState& state,
                                    const astro::Clock& clock);

} // namespace app
