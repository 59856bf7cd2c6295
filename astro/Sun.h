#pragma once
// The Sun for the observing clock and site: its place, distance and size, sunrise and sunset,
// astronomical twilight, and what an observer plans a night by (transit, darkness).
//
// Conventions: the instant is UTInstant of the observing clock (ConvertToGMT: whole hours of
// the zone, daylight time ignored), day numbers from 1900 January 0.5, Universal Time taken as
// dynamical time. Longitude Plon is WEST positive. Local times are decimal hours, 0 to 24,
// of the zone PTz with an hour more in daylight time (PStd "D"); no day is indicated.
// Faults of any step are reported at "Module1.CalcSun" and the outputs stay as they stood.
// Reference: J. Meeus, Astronomical Formulae for Calculators, chapter 18.

#include "astro/FaultSink.h"
#include "astro/ObservingClock.h"

#include <string>

namespace astro {

// CalcSun's 14 outputs, in the order of its arguments, and the values behind the texts.
struct SunOutputs
{
    std::string trueLongitude;     // 1: 280°27'13.4"
    double distance = 0;           // 2: astronomical units, rounded to 5 places
    std::string ra;                // 3: 6h 5m 23.6s (a blank at the end)
    std::string dec;               // 4: +23°26'12.0"
    std::string apparentLongitude; // 5: corrected for nutation and aberration
    std::string ra2;               // 6: 06h 05m 24s
    std::string dec2;              // 7: +23°26' 12"
    std::string diameter;          // 8: 32' 35"
    std::string sunrise;           // 9: RiseSet's form, or "ERROR"
    std::string sunset;            // 10
    std::string altitude;          // 11: now, the object list's form: +12.34
    std::string semiDiameter;      // 12: 16.29'
    std::string twilightBegins;    // 13: morning astronomical twilight, "0.0000" hours or
                                   //     "* ERROR *"; empty when sunrise is "ERROR"
    std::string twilightEnds;      // 14: evening

    // Behind the texts (NaN where a text is not a time).
    double raHours = 0;
    double decDeg = 0;
    double altitudeDeg = 0;
    double sunriseHours = 0; // local
    double sunsetHours = 0;
    double twilightBeginsHours = 0;
    double twilightEndsHours = 0;
    // Rise-and-set status of the first pass: 0, -1 (never sets), 1 (never rises), 2.
    float status = 0;
    // A Universal Time of rising or setting below 0.06552 hours: its sidereal time occurs
    // twice that day, so the time may be the other one. The texts do not change.
    bool riseAmbiguous = false;
    bool setAmbiguous = false;
};

// The Sun for the observing clock and site.
// Notes: rise and set in two passes (at noon of the UT date, then at each first-pass time)
// with the Sun's centre 0.014593 radians below the horizon; any status other than 0 makes
// both "ERROR" and ends the routine there. Twilight: the Sun 18 degrees below the horizon,
// from the declination at rising (begin) and at setting (end); "* ERROR *" in both when the
// Sun does not reach 18 degrees below the horizon, or never crosses it.
// Location: Module1.CalcSun
SunOutputs CalcSun(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults);

// The Sun's local transit time on the observing date, decimal hours, from its place at noon
// (UT) refined once. NaN when the observing date is not a date (reported as CalcSun's).
// Location: Module1.CalcSun
double SunTransit(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults);

// A local time as the Sun's texts show it: whole hours and whole minutes (cut, not rounded)
// through "00", joined by ":", with " AM"/" PM" and hour 0 as 12 when timesAMPM.
std::string SunTimeText(double hours, bool timesAMPM);

// When the night is astronomically dark: "Dark from 21:48 to 03:55" (from the end of evening
// twilight to the beginning of the morning's), "No astronomical darkness" when the Sun does
// not reach 18 degrees below the horizon, empty when sunrise and sunset are "ERROR".
std::string DarknessText(const SunOutputs& sun, bool timesAMPM);

} // namespace astro
