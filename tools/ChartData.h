#pragma once
// Conversion of the chart data of the kstars-data package into the chart engine's own files.
// Positions are J2000 catalogue positions (no proper motion applied): right ascension in hours,
// declination in degrees. The files written are the ones charts/ChartSky.h reads:
// - "stars.dat": binary, little-endian. "SLVSTARS", uint32 version (1), uint32 star count,
//   then per star 16 bytes: uint32 id (line number in the source star list), float32 raHours,
//   float32 decDeg, int16 V x 100, uint16 name length; then the names, back to back, in star
//   order. Stars are ordered brightest first.
// - "clines.dat", "cbounds.dat", "milkyway.dat": text polylines, one point a line,
//   "M raHours decDeg" starts a polyline and "D raHours decDeg" continues it; "#" lines are notes.
// - "cnames.dat": text, "raHours decDeg Abbr Name of the constellation" a line.

#include <string>

namespace tools {

struct ChartDataCounts
{
    int stars = 0;
    int linePoints = 0;
    int unresolvedLinePoints = 0;
    int boundaryPoints = 0;
    int names = 0;
    int milkyWayPoints = 0;
};

// Writes the five chart files into outDir from the kstars data folder kstarsDir.
// Throws services::Fault (location "tools.BuildChartData") on a missing or unreadable source.
ChartDataCounts BuildChartData(const std::string& kstarsDir, const std::string& outDir);

} // namespace tools
