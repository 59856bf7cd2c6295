#pragma once
// selvane-cli whatsup: the What's Up wizard clicked through from the command line, and the
// What's Up lists of the Messier and Herschel objects.
//
//   whatsup [page options] [--cancel-at PAGE] [--state]
//       The wizard opens on the tab (--tab, default 0) as the window does; each page is set
//       from its options (texts as typed; what no option names stays as the wizard's Load left
//       it), then Next, and Finish on page 6. --cancel-at P sets page P's options and clicks
//       Cancel there. --apply / --no-apply click the apply box to that state when it differs.
//   whatsup --messier | --herschel [--tab N] [--state]
//       Wiz2 / Wiz3 on the tab.
//
// Output: the tab as grid prints it; with --state instead "Key\tValue", then the values the
// wizard may change as the settings store writes them, then "SQL" and the current SQL.
// Exit status: 0 after Finish or Cancel (or the list); 1 when the tab is no spreadsheet tab
// ("Please select a spreadsheet tab first"), the object database is not open, a list cannot be
// read or the load failed (an unreadable date included), each after the port's own message;
// 2 on a usage error, which names the bad answer, site, sort name or page.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* WhatsUpUsage =
    "usage: selvane-cli ... whatsup [--tab N] [--con ENTRY]... [--type DESC]... "
    "[--sort NAME[:D]]... [--cat DESC]... [--site PROFILE] [--date T] [--time T] "
    "[--mag LOW:HIGH] [--mag2 LOW:HIGH] [--blank1 Y|N] [--blank2 Y|N] [--minalt T] "
    "[--apply|--no-apply] [--cancel-at PAGE] [--state]\n"
    "       selvane-cli ... whatsup --messier|--herschel [--tab N] [--state]";

// The settings --state prints, in its order, before the line "SQL".
inline constexpr const char* WhatsUpStateKeys[] = {
    "gMagL", "gMagL2", "gMagU", "gMagU2", "Obcon",   "Obtod",      "ObCat", "sort1",
    "sort2", "sort3",  "Des1",  "Des2",   "Des3",    "PDate",      "Plat",  "PLon",
    "PTz",   "Ptime",  "PIB",   "PIB2",   "Pminalt", "wizapppref", "wuw",
};

// The usage error of whatsup's arguments that can be judged without the databases (options,
// constellation entries, sort names, pages), or empty.
std::string CheckWhatsUpArgs(const std::vector<std::string>& args);

// Runs the command on the state LoadForm left.
// Given: clock, the computer clock (today's date of the wizard).
// Returned: the exit status above. Usage errors found against the databases' lists (a type,
//   catalogue or site not listed) are written to stderr with the usage.
int RunWhatsUpCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                      const std::vector<std::string>& args, std::ostream& out,
                      const astro::Clock& clock);

} // namespace app
