#pragma once
// The sky the chart engine draws: stars to V 9.0, constellation figures, boundaries and label
// positions, and the Milky Way outline, read from the program's resources folder. J2000
// catalogue positions: right ascension in hours, declination in degrees. The file layouts are
// those written by tools/ChartData.h.

#include <cstdint>
#include <string>
#include <vector>

namespace charts {

inline constexpr const char* kChartStarsFileName = "stars.dat";
inline constexpr const char* kChartLinesFileName = "clines.dat";
inline constexpr const char* kChartNamesFileName = "cnames.dat";
inline constexpr const char* kChartBoundsFileName = "cbounds.dat";
inline constexpr const char* kChartMilkyWayFileName = "milkyway.dat";

struct ChartStar
{
    std::uint32_t id = 0; // line number in the source star list; shown as "S<id>"
    float raHours = 0;
    float decDeg = 0;
    float mag = 0;          // V
    float v[3] = {1, 0, 0}; // unit vector, for fast projection
    std::string name;       // proper name, else the designation ("alp CMa"), else empty
};

struct PolylinePoint
{
    double raHours = 0;
    double decDeg = 0;
    bool draw = false; // false: a polyline starts here
};

struct ConstellationLabel
{
    double raHours = 0;
    double decDeg = 0;
    std::string abbreviation; // "And"
    std::string name;         // "Andromeda"
};

struct ChartSky
{
    std::vector<ChartStar> stars; // brightest first
    std::vector<PolylinePoint> figures;
    std::vector<PolylinePoint> boundaries;
    std::vector<PolylinePoint> milkyWay;
    std::vector<ConstellationLabel> labels;
};

// Reads the five chart files from folder.
// Status: throws services::Fault, location "charts.LoadChartSky", with the text
//   "Chart data file missing or damaged: <path>" for a file that is missing or cut short.
ChartSky LoadChartSky(const std::string& folder);

} // namespace charts
