#pragma once
// selvane-cli slideshow: the telescope slide show without its window, on the mount of
// telescopetype.
//
//   slideshow [--sql SQL | --build | --plan FILE] [STEP]...
//   STEP: next | prev | pick N | log [FIELD=VALUE]... | on | tick | off
//
// Tab 0 is loaded as grid loads it (none of the three: the start list) and the show starts on
// it: the start checks, the window's load and its first row. pick N is entry N of cbogoto; log
// takes the fields of log add (cboSee, cboTransparency, cboRating, cboLogtype, txtLocation,
// txtEquipment, txtDescription, rchNotes) and runs cmdAddLog; tick is one tick of Timer1.
//
// Output: the header "Row\tObject\tStatus", then CurrentRow, txtObjectID and the status bar
// after the start and after each step. Messages go to stderr as "[kind] heading: text", spoken
// texts as "[speak] TEXT".
//
// Exit status: 0 when the show ran; 1 when it was refused (no rows) or a fault was shown; 2 on a
// usage error.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* SlideUsage =
    "usage: selvane-cli ... slideshow [--sql SQL | --build | --plan FILE] [STEP]...\n"
    "  STEP: next | prev | pick N | log [FIELD=VALUE]... | on | tick | off";

// The usage error of slideshow's arguments, or empty.
std::string CheckSlideArgs(const std::vector<std::string>& args);

int RunSlideCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                    const std::vector<std::string>& args, std::ostream& out,
                    const astro::Clock& computerClock);

} // namespace app
