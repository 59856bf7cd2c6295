#pragma once
// selvane-cli outside: the outside window driven from a script on stdin, one action a line, as
// the keyboard drives the window.
//
//   CONTROL=TEXT      on the control's tab: the focus to it, TEXT typed, the focus leaving
//                     (its rules run); \t \n \r \\ in TEXT stand for tab, line ends, backslash;
//                     check boxes take True or False
//   ^K                Ctrl with the key K (^A add, ^U update, ^D delete, ^C clear, ^1 ... ^3)
//   pick BUTTON [ENTRY]  Enter on the list button; ENTRY chosen with Enter, none: Esc
//   list BUTTON       the popup's rows as "BUTTON\tROW"
//   grid N            Ctrl+G, row N, Enter
//   print             "Field\tValue", a line per control, then txtObs
//   print grid        the grid
//   # ...             a comment
//
// Each stored entry prints "added\tN", "updated\tN" or "deleted\tN". BUTTON is a caption
// ("Exp Mode") or the popup's key ("EXPMODE").
//
// Exit status: 0 when every step ran; 1 when a step faulted, a field refused its value, ENTRY
// is not in the list or row N is not in the grid (the script goes on); 2 for an unknown
// control, key, button or action, checked before anything runs.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* OutsideUsage =
    "usage: selvane-cli ... outside [--obsn N] [--object ID] [--answer yes|no]...  < script";

// The usage error of outside's arguments, or empty.
std::string CheckOutsideArgs(const std::vector<std::string>& args);

int RunOutsideCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                      std::istream& script, std::ostream& out, const astro::Clock& clock);

} // namespace app
