#pragma once
// selvane-cli ephem: the geocentric places of a comet or asteroid at even steps of time.
//
//   ephem comet|asteroid NAME START [STEPS [STEP]]
//       the first row of Comet or Asteroids in AstComet.mdb whose Name is NAME (any case);
//       START "YYYY-MM-DD" or "YYYY-MM-DD HH:MM" (UT; the time may also follow as its own
//       argument); STEPS 1 to 100000, default 10; STEP in days, default 1, not 0.
//   ephem elements KIND ELDATE M E A Q I NODE PERI EQX CH CK AH AG START STEPS STEP
//       the ephemeris's seventeen inputs in order: KIND "C" or "A"; ELDATE and START as
//       positional texts YYYYMMDD[HH[MM[SS[.ss]]]]; angles in degrees; an empty CH, CK, AH or
//       AG is no value (no magnitude without the kind's H, nor a comet's without K).
//
// Output, tab-separated after the header "Name Date RA Dec Delta r Mag Elong": a line per step,
// the name (empty for elements), the step's UT "YYYY-MM-DD HH:MM" to the nearest minute, then
// right ascension (decimal hours) and declination (decimal degrees) with the rounding offsets
// of 3 and 2 shown places, the distances from the Earth and the Sun (AU), all "%.6f", the
// magnitude "%.2f" (or empty) and the elongation in whole degrees.
//
// Exit status: 0; 1 when NAME is not in the table, the file cannot be read or a routine
// reported a fault (the port has shown it); 2 on a usage error.

#include "spread/AppState.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* EphemUsage =
    "usage: selvane-cli ... ephem comet|asteroid NAME START [STEPS [STEP]]\n"
    "       selvane-cli ... ephem elements KIND ELDATE M E A Q I NODE PERI EQX CH CK AH AG "
    "START STEPS STEP";

std::string CheckEphemArgs(const std::vector<std::string>& args);

int RunEphemCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out);

} // namespace app
