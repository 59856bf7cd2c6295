#pragma once
// selvane-cli scope: the telescope routines without windows, on the mount of telescopetype.
//
//   scope [LIST] [--row N] ACTION [ARGS]
//   LIST: --sql SQL | --build | --plan FILE | --object ID [--catalog C]
//
// Tab 0 is loaded as grid and plan load it (no LIST: the start list; --object: the first row of
// that ObjectID) and row N of it (default 1) is clicked. Actions, run whatever the state of the
// toggle:
//
//   devices [--indi HOST:PORT]... [--alpaca HOST:PORT]...
//                  the telescopes found at indiservers and Alpaca discovery addresses (neither
//                  given: the settings indiserver and alpacadiscovery): Identifier, Device
//   choose IDENT   the chooser answering IDENT ("" cancels), saved: telescopetype, DriverType
//   enable         the toggle lx200enable once: the caption, then each telescope tool's state
//   goto           gotoobject on the clicked row
//   slew H M S D M S   the solar-system goto to that position
//                  both print Object, RAh, RAm, Decd, Decm (the strings the slew was given),
//                  TargetRA, TargetDec (the values set on the driver, "%.6f", empty when none
//                  were) and Result
//   sync           SyncScope on the clicked row: Object, TargetRA, TargetDec, Result
//   position       frmScopePos's GetPos: Title, RA, Dec, Alt, Azm (the window's texts),
//                  RAHours, DecDegrees (the values read, "%.9f", empty when not read)
//   -              one action a line from stdin, words split as a shell splits them, each line
//                  able to carry LIST and --row; tab 0, the clicked row, the toggle and the
//                  chosen driver carry over from line to line, and "#\tN" follows each line
//                  (N its status). Blank lines and lines starting with # are skipped.
//
// Each action prints a header line, then its values, tab-separated. Messages go to stderr as
// "[kind] heading: text", spoken texts that pass the speech gates as "[speak] TEXT".
//
// Exit status: 0 when the action ran; 1 when it was refused or faulted (an error message
// shown), or row N is not in the list; 2 on a usage error. With "-" the largest status of its
// lines.

#include "astro/ObservingClock.h"
#include "scope/TelescopeStuff.h"
#include "spread/Grid.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* ScopeUsage =
    "usage: selvane-cli ... scope [--sql SQL | --build | --plan FILE | --object ID [--catalog C]] "
    "[--row N] ACTION [ARGS]\n"
    "  ACTION: devices [--indi HOST:PORT]... [--alpaca HOST:PORT]... | choose IDENT | enable | "
    "goto | slew H M S D M S | sync | position | - (actions from stdin, one a line)";

// What a click on a row of an object grid copies for the telescope: R.A. (column 7), Dec.
// (column 8), Epoch (column 9) and ObjectID (column 4). row counts from 1.
scope::Selection RowSelection(const spread::Grid& grid, int row);

// The usage error of scope's arguments, or empty.
std::string CheckScopeArgs(const std::vector<std::string>& args);

int RunScopeCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                    const std::vector<std::string>& args, std::istream& in, std::ostream& out,
                    const astro::Clock& computerClock);

} // namespace app
