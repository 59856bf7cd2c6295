#pragma once
// selvane-cli elements: current comet and asteroid elements imported from the Minor Planet
// Center's files into AstComet.mdb of the program folder.
//
//   elements import comets FILE      a CometEls.txt
//   elements import asteroids FILE   an MPCORB.DAT
//
// Output: the line "Kind\tLines\tAdded\tReplaced", then the kind, the element lines read, the
// rows added and the rows replaced (a row of the same name, in any case). A refused or
// unreadable file, or a database that cannot be written, is a message through the port
// naming the file (and the line); the tables are then unchanged.
//
// Exit status: 0 when the import ran, 1 when it was refused, 2 on a usage error.

#include "data/ProgramDir.h"

#include <ostream>
#include <string>
#include <vector>

namespace services {
class UiPort;
}

namespace app {

inline constexpr const char* ElementsUsage =
    "usage: selvane-cli ... elements import comets|asteroids FILE";

// The heading of the import's messages, as the menu item reads.
inline constexpr const char* ElementsTitle = "Update Asteroid/Comet Elements";

// The usage error of elements' arguments, or empty.
std::string CheckElementsArgs(const std::vector<std::string>& args);

int RunElementsCommand(const data::ProgramDir& dir, services::UiPort& ui,
                       const std::vector<std::string>& args, std::ostream& out);

} // namespace app
