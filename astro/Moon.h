#pragma once
// The Moon: its place, distance, size and phase for the observing clock and site, its rise and
// set, its age by the short rule of the main window's icon, and the dates of new and full moon.
//
// Conventions: the instant is UTInstant of the observing clock (ConvertToGMT), day numbers
// from 1900 January 0.5 (T in centuries of them), Universal Time taken as dynamical time.
// Longitude Plon is WEST positive. Three rules for the phase stand side by side and may differ
// by a fraction of a day: CalcMoon's elongation, CalcMoonPhase2's age, GetMoonPhase's dates.
// Reference: J. Meeus, Astronomical Formulae for Calculators, chapters 30 (the Moon's place,
// an abridgement of Brown's theory) and 32 (phases).

#include "astro/FaultSink.h"
#include "astro/ObservingClock.h"

#include <string>
#include <vector>

namespace astro {

// The Moon's geocentric place.
struct MoonPlace
{
    double longitude = 0;         // degrees, of the mean equinox of date, 0 to 360
    double apparentLongitude = 0; // degrees, with the nutation in longitude (not wrapped again)
    double latitude = 0;          // degrees
    double parallax = 0;          // equatorial horizontal parallax, degrees
    double ra = 0;                // apparent right ascension, radians 0 to 2 pi
    double dec = 0;               // apparent declination, radians
};

// The Moon's place for T centuries from 1900 January 0.5: the mean elements with their
// additive terms, and the 50 longitude, 45 latitude and 31 parallax terms of the lunar table
// (resources/moon_afc_periodic_terms.csv, compiled in).
// Notes: good to about 10" in longitude and 3" in latitude near 1900-2000 (before the error
// of using Universal Time for dynamical time).
MoonPlace MoonAt(double T);

// CalcMoon's 14 outputs, in CalcSun's slots, and the values behind the texts.
struct MoonOutputs
{
    std::string longitude;    // 1: apparent longitude, 133°10'41.0"
    std::string distance;     // 2: kilometres, "0"
    std::string ra;           // 3: 8h 52m 4.1s (a blank at the end)
    std::string dec;          // 4: +13°45'00.3"
    std::string latitude;     // 5: -3°13'45.5"
    std::string ra2;          // 6: 08h 52m 04s
    std::string dec2;         // 7: +13°45' 00"
    std::string diameter;     // 8: 32' 28"
    std::string moonrise;     // 9: RiseSet's form, or "-" when it does not rise that day
    std::string moonset;      // 10
    std::string altitude;     // 11: now, the object list's form: +12.34
    std::string semiDiameter; // 12: 16.23'
    std::string illuminated;  // 13: per cent lit, "0.0"
    std::string elongation;   // 14: degrees from the Sun, "0.0"

    double raHours = 0;
    double decDeg = 0;
    double altitudeDeg = 0;
    double km = 0;
    double illuminatedPercent = 0;
    double elongationDeg = 0;
    double moonriseHours = 0; // local; NaN when none
    double moonsetHours = 0;
};

// The Moon for the observing clock and site.
// Notes: distance 6378.14 / sin(parallax); diameter 0.5181 degrees x 384401 / distance; the
// elongation E from cos E = cos(latitude) cos(longitude - the Sun's apparent longitude) and
// the part lit 50 (1 - cos E).
// Location: Module1.CalcMoon
MoonOutputs CalcMoon(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults);

// Local times of moonrise and moonset on the observing date.
struct MoonRiseSetTimes
{
    double rise = 0; // hours 0 to 24 of the local date; NaN when the Moon does not rise
    double set = 0;  // the same for setting
};

// The first times on the local observing date (0 to 24 h of PDate in the zone PTz, an hour
// less in daylight time) at which the Moon's centre, by MoonAt, stands 0.7275 x parallax - 34'
// above the horizon, rising and setting. Sidereal time is the IAU 1982 mean sidereal time of
// Universal Time.
// Notes: the day is sampled every ten minutes and each crossing found by halving to well
// under a second.
// Location: Module1.CalcMoon
MoonRiseSetTimes CalcMoonRiseSet(const ObservingClock& clock, const Clock& computerClock,
                                 FaultSink& faults);

// Age of the Moon in days (0 to 29.53) on the observing date, by the short rule of the
// main window.
// Status: a PDate that is not a date reports "Type mismatch" and returns 0.
// Location: Module1.CalcMoonPhase2
double CalcMoonPhase2(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults);

// The icon of the main window's status band for the observing date.
struct MoonPhaseIcon
{
    double age = 0;   // days
    std::string icon; // "moon01.ico" to "moon08.ico"; empty after a fault
};

// Location: Module1.CalcMoonPhase
MoonPhaseIcon CalcMoonPhase(const ObservingClock& clock, const Clock& computerClock,
                            FaultSink& faults);

// The icon of an age in days: moon02 from 1, moon03 from 4.5, moon04 from 9, moon05 from 14,
// moon06 from 15.5, moon07 from 19, moon08 from 24 to 29, moon01 from 29 and below 1.
std::string MoonIconFor(double ageDays);

// A new or full moon.
struct LunarPhase
{
    bool full = false; // false: new moon
    double jd = 0;     // Julian Day, Universal Time taken as dynamical time
};

// The 29 new and full moons by half lunations from the first new moon of the lunation count
// floor((year - 1900) x 12.3685), which falls in the weeks around the start of the year.
// Status: a year outside -32768 to 32767 reports "Overflow" and returns none.
// Location: Module1.GetMoonPhase
std::vector<LunarPhase> GetMoonPhase(double year, FaultSink& faults);

// The first new and full moon of GetMoonPhase (of the UT year and the next) whose UT date, to
// the nearest minute, is on or after the UT date of the observing clock (UTInstant).
struct NextLunarPhases
{
    double newMoon = 0; // Julian Day; NaN after a fault
    double fullMoon = 0;
};

// Location: Module1.GetMoonPhase
NextLunarPhases NextMoonPhases(const ObservingClock& clock, const Clock& computerClock,
                               FaultSink& faults);

// A Julian Day, moved by zoneHours (subtracted, as PTz is), as the date and time to the nearest
// minute, "YYYY-MM-DD HH:MM"; dateOnly: "YYYY-MM-DD". A year before 1 shows its sign, -0044.
// Location: Module2.JDToCalendar (a year outside 16 bits)
std::string PhaseTimeText(double jd, double zoneHours, bool dateOnly, FaultSink& faults);

} // namespace astro
