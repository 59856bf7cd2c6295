#pragma once
// The logbook on the main window: the entry window from the tool bar (tolLogbook), the logbook
// menu (mnueditlog) and the grid menu (el, on the selected row's object), the outside window
// (tolOutside), the rebuild of the observed flags (fixobs), the one-click log of a click in grid
// column 3, and the log view in the client area (tolLogSpread, vlassp, tolLogbookGrid).

#include "astro/ObservingClock.h"
#include "data/CurrentObject.h"

#include <functional>
#include <string>

namespace logbook {
class LogEntryForm;
class LogSpread;
} // namespace logbook
namespace services {
class UiPort;
}
namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// The grid column whose click logs the row's object ("obs").
inline constexpr int kObsCol = 3;

// What the logbook windows print through: the entry window's reports of its open entry (134,
// 18, 19, 20), and the log view's printout of its grid and of one item's notes. An unset one
// prints nothing.
struct LogbookPrinting
{
    std::function<void(int number, logbook::LogEntryForm& entry)> entryReport;
    std::function<void(logbook::LogSpread& view)> logGrid;
    std::function<void(logbook::LogSpread& view, const std::string& title,
                       const std::string& notes)>
        logNotes;
};

// Gives the main window its logbook commands.
// Given: window, whose dispatcher takes the keys and whose grid tabs take the column-3 click;
//   state, whose databases are looked up at each command, so that a database opened or
//   reopened later is the one used; ui, the program's port; clock, today and now for new
//   entries; current, the object the spreadsheet leaves for the logbook windows.
// Notes: the entry window is made on first use and lives as long as the main window. Without
//   an open logbook and object database the commands do nothing.
void WireLogbook(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                 const astro::Clock& clock, data::CurrentObject& current,
                 LogbookPrinting printing = {});

} // namespace app
