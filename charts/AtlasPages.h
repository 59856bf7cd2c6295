#pragma once
// Atlas page lookup: which chart of three printed star atlases shows a position.
// Right ascension in hours, minutes, seconds; declination in degrees, minutes, seconds, in the
// equinox of the stored object (no precession here). Pure arithmetic on fixed declination bands.

#include <cstdint>
#include <string>

namespace charts {

struct AtlasPages
{
    std::int16_t skyAtlas = 0;    // chart of the 26-chart sky atlas
    std::int16_t uranometria = 0; // chart of the 473-chart atlas in two volumes
    std::string millennium;       // page and volume of the 1548-page atlas: "270 Vol I"
};

// Chart: the three atlas pages of a position.
// Given: raHours, raMinutes, raSeconds (hours); decDegrees, decMinutes, decSeconds (degrees).
// Returned: the three pages.
// Status: never fails. Positions outside 0 <= RA < 24 h and |Dec| <= 90 give the pages the
//   arithmetic yields; an RA at or above 24 h has no volume text.
// Notes: the sky atlas and the Uranometria ignore seconds and add the minutes with the sign they
//   come with, so a triple carrying its sign on the degrees alone (-5 deg 30 min) counts as
//   -4.5 degrees there; the Millennium pages use all three fields the same way.
//   The millennium text is at most 15 characters, so it never allocates.
AtlasPages Chart(double raHours, double raMinutes, double raSeconds, double decDegrees,
                 double decMinutes, double decSeconds);

} // namespace charts
