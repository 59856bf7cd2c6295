#pragma once
// selvane-cli plotfile: the plot window driven from the command line.
//
//   plotfile [--open FILE] [--fov F] [--name T] [--add "H M S D M S [NAME]"]...
//            [--add2 "H M.M D M.M [NAME]"]... [--save FILE]
//
// The steps run in this order whatever the order of the arguments: the file opened (Open), the
// field of view and the object name typed, each --add or --add2 in the order given (its
// fields typed into row 1 or row 2 and left, then Add), the file saved (Save; a FILE without
// the extension .plt gets ".PLT"). Then "Entry" and the list, one entry a line.
//
// Exit status: 0; 1 when a step stopped with a message (a missing plot file, an output that
// cannot be written, a field that refused its value), shown on stderr as "[kind] title: text",
// and nothing is printed; 2 on a usage error.

#include "services/UiPort.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* PlotFileUsage =
    "usage: selvane-cli ... plotfile [--open FILE] [--fov F] [--name T]\n"
    "           [--add \"H M S D M S [NAME]\"]... [--add2 \"H M.M D M.M [NAME]\"]... "
    "[--save FILE]";

// The usage error of plotfile's arguments, or empty.
std::string CheckPlotFileArgs(const std::vector<std::string>& args);

int RunPlotFileCommand(services::UiPort& ui, const std::vector<std::string>& args,
                       std::ostream& out);

} // namespace app
