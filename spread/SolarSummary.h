#pragma once
// The summary of the solar system for the observing clock and site: for each body its place,
// altitude, rise, transit and set, magnitude, size and illumination, as the summary window
// shows them.

#include "astro/FaultSink.h"
#include "astro/ObservingClock.h"

#include <filesystem>
#include <string>
#include <vector>

namespace spread {

// A body's altitude now and its times on the observing date.
struct BodyTimes
{
    std::string altitude; // the object list's form: "+45.30", "-05.12"
    std::string rise;     // as the object list shows RiseSet's outputs
    std::string transit;  // local time of the meridian passage, RiseSet's time text
    std::string set;
};

// Given: raHours, decDegrees, the body's apparent place.
// Notes: transit is the clock's local time less the hour angle in solar hours, wrapped into
//   0 to 24 hours; no day is indicated, as for rise and set.
// Location: Module1.CalcHourAngle, Module1.RiseSet
BodyTimes TimesOf(const astro::ObservingClock& clock, const astro::Clock& computerClock,
                  double raHours, double decDegrees, astro::FaultSink& faults);

// One line of the summary.
struct SummaryRow
{
    std::string body; // "Sun", "Moon", "Mercury" ... "Pluto"
    std::string ra;   // "06h 05m 24s"
    std::string dec;  // "+23°26' 12""
    BodyTimes times;
    std::string magnitude;    // "-1.35"
    std::string size;         // arc seconds, "5.2""
    std::string illumination; // percent, "93.7"
};

// The planets Mercury to Pluto, from Planet.dat of programDir.
// Status: CalcPlanets' faults are reported through faults and the planet's line is left out.
std::vector<SummaryRow> PlanetSummary(const astro::ObservingClock& clock,
                                      const astro::Clock& computerClock,
                                      const std::filesystem::path& programDir,
                                      astro::FaultSink& faults);

// The whole summary: the Sun, the Moon and the planets, and the night.
struct SolarSummaryResult
{
    std::vector<SummaryRow> rows;
    std::string darkness; // "Dark from 21:48 to 03:55", "No astronomical darkness" or empty
    std::string twilight; // "Twilight ends 19:48, begins 05:12" in decimal-hour texts' times
    std::string moonAge;  // days, "0.0"
    std::string moonIcon; // "moon01.ico" ... "moon08.ico"; empty after a fault
    std::string nextNew;  // local "YYYY-MM-DD HH:MM" of the next new moon
    std::string nextFull; // and of the next full moon
};

// Status: each routine reports its own faults through faults; a body whose routine faulted is
// left out.
SolarSummaryResult SolarSummary(const astro::ObservingClock& clock,
                                const astro::Clock& computerClock,
                                const std::filesystem::path& programDir, astro::FaultSink& faults);

} // namespace spread
