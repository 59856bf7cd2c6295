#pragma once
// selvane-cli equipment: the equipment lists of the program folder without the window.
//
//   equipment list KIND                      "Row\tRecord", then each row numbered from 1, a
//                                            tab and the record as it stands
//   equipment add scope NAME APERTURE FRATIO the scope tab's Add with its boxes so typed
//   equipment add eyepiece NAME SIZE FIELD   the eyepiece tab's Add
//   equipment add ccd TEXT | add exp TEXT    the CCD or exposure mode tab's Add
//   equipment delete KIND ROW                the row numbered ROW by list taken out
//
// KIND is scope, eyepiece, ccd or exp. Warnings and faults go through the port, as the window
// shows them. An add or a delete rewrites the file and, given a logbook, brings its Equipment
// table in step with the scope, eyepiece and CCD lists.
//
// Exit status: 0 when done; 1 when a file could not be read or written, the table could not be
// brought in step, or ROW is beyond the list; 2 on a usage error.

#include "data/ProgramDir.h"
#include "services/Vb.h"

#include <ostream>
#include <string>
#include <vector>

namespace data {
class Database;
}
namespace services {
class UiPort;
}

namespace app {

inline constexpr const char* EquipmentUsage =
    "usage: selvane-cli ... equipment list KIND | add scope NAME APERTURE FRATIO | add eyepiece "
    "NAME SIZE FIELD | add ccd|exp TEXT | delete KIND ROW";

// The usage error of equipment's arguments, or empty.
std::string CheckEquipmentArgs(const std::vector<std::string>& args);

// Runs the command on the lists of dir; logbook may be null (no table to keep in step).
// regional: the decimal sign of the numbers typed in the arguments.
int RunEquipmentCommand(services::UiPort& ui, const data::ProgramDir& dir,
                        data::Database* logbook, const services::vb::Regional& regional,
                        const std::vector<std::string>& args, std::ostream& out);

} // namespace app
