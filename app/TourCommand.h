#pragma once
// selvane-cli tour and acpscript: the files made from tab 0's list for the hand controller and
// for ACP, as the keys createtour and csc make them.
//
//   tour [LOAD] [--file FILE] [--title T] [--intro T] [--mode 0|1]
//                  the tour written to FILE (default SelvaneTour.mtf in the program folder);
//                  --mode is optMode (default 1, the object details); prints File, Objects
//   acpscript [LOAD]
//                  the list SelvaneSlideShow.sfl and the script SelvaneSlideShow.vbs, both in
//                  the program folder, on the ACP folder of the setting ACPPath; prints File,
//                  then the list's path and the script's, one a line
//   LOAD: --sql SQL | --build | --plan FILE (none: the start list)
//
// Messages go to stderr as "[kind] heading: text".
// Exit status: 0 when the files were written; 1 when the list could not be loaded, or the
// command was refused or faulted (nothing written); 2 on a usage error.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* TourUsage =
    "usage: selvane-cli ... tour [--sql SQL | --build | --plan FILE] [--file FILE] [--title T] "
    "[--intro T] [--mode 0|1]";
inline constexpr const char* AcpScriptUsage =
    "usage: selvane-cli ... acpscript [--sql SQL | --build | --plan FILE]";

// The usage error of the commands' arguments, or empty.
std::string CheckTourArgs(const std::vector<std::string>& args);
std::string CheckAcpScriptArgs(const std::vector<std::string>& args);

int RunTourCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                   const std::vector<std::string>& args, std::ostream& out,
                   const astro::Clock& computerClock);
int RunAcpScriptCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                        const std::vector<std::string>& args, std::ostream& out,
                        const astro::Clock& computerClock);

} // namespace app
