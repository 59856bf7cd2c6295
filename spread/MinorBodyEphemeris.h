#pragma once
// The comet and asteroid rows of "AstComet.mdb" as EPHEM's inputs, and the text forms of an
// ephemeris step that the command line and the comet window share.

#include "astro/Orbits.h"
#include "data/MinorBodies.h"

#include <string>

namespace spread {

// EPHEM's element inputs (1 to 14) from a row; the start, steps and step stay the caller's.
// A comet: kind "C", the perihelion date, q, e, i, node, argument of perihelion, H = Mag and
// K = K, equinox switch 1 when EPOCH is 1950. An asteroid: kind "A", the epoch, M, e, a, i,
// node, argument of perihelion, H = g and G = h (0.15 when empty).
astro::EphemInput EphemInputOf(const data::CometRow& row);
astro::EphemInput EphemInputOf(const data::AsteroidRow& row);

// The start text of a Julian Day (UT): its calendar date and the time of day, as
// ElementDateText writes them.
std::string StartTextOf(double jd);

// A Julian Day (UT) as "YYYY-MM-DD HH:MM", to the nearest minute.
std::string StepTimeText(double jd);

} // namespace spread
