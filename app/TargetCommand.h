#pragma once
// selvane-cli ntos, identify and target: the searches around the home target and the mount, and
// the targeting switch of frmTarget, without windows.
//
//   ntos [LOAD] [--row N] [--no-home] [--degrees D] [--near|--no-near]
//       row N (default 1) of tab 0 clicked, SetHome on it (unless --no-home), NTOS opened and
//       Search Now clicked
//   identify [LOAD] [--degrees D] [--near|--no-near]
//       Identify at the mount of telescopetype
//   target [LOAD] [--row N] [--scope [--enable]] [--then-sql SQL]
//       SetHome on row N, or chkScopeHome (after the telescope's toggle with --enable); cmdTurn;
//       then tab 0 loaded again (with SQL, or as LOAD loaded it) and printed as grid prints it
//
// LOAD: --sql SQL | --build | --plan FILE; without one, the start list. --degrees is the radius
// typed into cboDegrees (default gDegScope), --near and --no-near set chkNear (default gCAConst).
//
// ntos and identify print the status texts and the centre (hours, degrees, "%.9f"), tab-separated,
// then the header of the result grid and its rows in the grid's order. Messages go to stderr as
// "[kind] heading: text", spoken texts as "[speak] TEXT".
//
// Exit status: 0 when the search ran or targeting was switched; 1 when it was refused or faulted
// (a message shown), or the list could not be loaded or has no row N; 2 on a usage error.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* NtosUsage =
    "usage: selvane-cli ... ntos [--sql SQL | --build | --plan FILE] [--row N] [--no-home] "
    "[--degrees D] [--near|--no-near]";
inline constexpr const char* IdentifyUsage =
    "usage: selvane-cli ... identify [--sql SQL | --build | --plan FILE] [--degrees D] "
    "[--near|--no-near]";
inline constexpr const char* TargetUsage =
    "usage: selvane-cli ... target [--sql SQL | --build | --plan FILE] [--row N] "
    "[--scope [--enable]] [--then-sql SQL]";

// The usage error of each command's arguments, or empty.
std::string CheckNtosArgs(const std::vector<std::string>& args);
std::string CheckIdentifyArgs(const std::vector<std::string>& args);
std::string CheckTargetArgs(const std::vector<std::string>& args);

int RunNtosCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                   const std::vector<std::string>& args, std::ostream& out,
                   const astro::Clock& computerClock);
int RunIdentifyCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                       const std::vector<std::string>& args, std::ostream& out,
                       const astro::Clock& computerClock);
int RunTargetCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                     const std::vector<std::string>& args, std::ostream& out,
                     const astro::Clock& computerClock);

} // namespace app
