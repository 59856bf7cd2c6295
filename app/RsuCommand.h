#pragma once
// selvane-cli rsu: the report settings windows (frmRSU for the database report, frmrsu2 for the
// log report) driven from the command line.
//
//   rsu database|log [--open FILE] [--new] [--col I=ON,WIDTH]... [--line TEXT]
//       [--font NAME,SIZE] [--save FILE | --apply]
//
// The window opens as the report window's Report Setup opens it (the file of defReport /
// defReportL, else the program folder's default), then the steps run in the order given:
// --open answers the open dialogue with FILE, --new clears the columns, --col sets column I's
// box (ON 1 or 0) and width text (WIDTH as typed, may be empty; the log's notes box tells what
// it does as a click does), --line sets the line spacing box, --font the font (the size after
// the last comma), --save answers the save dialogue with FILE, --apply writes the form to the
// held file and stores it in the setting. A step that fails ends the steps; a failed opening
// does not, as the window stays open with its design.
//
// Output: "Index\tCaption\tOn\tWidth", then one line per column. Messages on stderr as
// "[kind] heading: text".
// Exit status: 0 when every step ran; 1 when the opening or a step failed (the form is still
// printed); 2 on a usage error.

#include "spread/AppState.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* RsuUsage =
    "usage: selvane-cli ... rsu database|log [--open FILE] [--new] [--col I=ON,WIDTH]... "
    "[--line TEXT] [--font NAME,SIZE] [--save FILE | --apply]";

// The usage error of rsu's arguments, or empty.
std::string CheckRsuArgs(const std::vector<std::string>& args);

int RunRsuCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out);

} // namespace app
