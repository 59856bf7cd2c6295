#pragma once
// Time and angle arithmetic: day numbers and calendar dates, sidereal time, the local clock
// to Universal Time, sexagesimal triples, guarded inverse trigonometry and delta T.
//
// Two families stand side by side; the upper layers depend on which one they call:
// - the day-number family ("Module1"): day numbers DJ counted from 1900 January 0.5
//   (Julian Day 2415020.0, so DJ 0.5 is 1900 January 1.0), short constants (pi as
//   3.14159265), and the truncating helpers CalcITG and CalcLif. Faults are reported at
//   "Module1.<routine>".
// - the Julian-Day family ("Module2"): true Julian Days, centuries from J2000.0, full
//   constants. Faults are reported at "Module2.<routine>".
// Calendar: Gregorian from 1582 October 15 (CalcJulian) or after October 4 (CalendarToJD),
// Julian before; there is no year 0 in CalcJulian (-1 is 1 BC).
// Angles: the unit is in each name or header; longitudes are WEST positive.
// Sexagesimal triples come in with the sign on any field (a negative field makes the whole
// value negative) and go out non-negative with the sign apart (ConvertFromDecimal), or with
// the sign pushed into the first non-zero field (SignPush).
// No routine throws or allocates, apart from the one-time loads of the two data files.

#include "astro/FaultSink.h"
#include "astro/ObservingClock.h"
#include "astro/constants.h"

#include <cmath>
#include <cstdint>
#include <filesystem>

namespace astro {

class DataTables;

// ---------------------------------------------------------------------------------------
// Sexagesimal triples

// Hours, minutes, seconds (right ascension, hour angle, time).
struct Hms
{
    double hours = 0;
    double minutes = 0;
    double seconds = 0;
};

// Degrees, minutes, seconds (declination, latitude).
struct Dms
{
    double degrees = 0;
    double minutes = 0;
    double seconds = 0;
};

// ConvertFromDecimal's outputs: all three non-negative, the sign apart.
struct Sexagesimal
{
    double seconds = 0;
    double minutes = 0;
    double degrees = 0; // or hours
    char sign = '+';    // '-' when the value was negative
};

// Decimal value of a triple given as seconds, minutes, degrees-or-hours (in that order): it is
// negative when any one of the three is, so minus 0 degrees 30 minutes is carried by minutes.
double ConvertToDecimal(double seconds, double minutes, double degrees);

// Triple of a decimal value. Seconds are rounded to a tenth; a rounding to 60 seconds carries
// into minutes and then into degrees, which are not wrapped (59.99999 gives 60 0 0).
Sexagesimal ConvertFromDecimal(double x);

// The triple with the sign pushed into its first non-zero field (degrees, minutes, seconds);
// all zero stays all zero.
Dms SignPush(const Sexagesimal& s);

// ---------------------------------------------------------------------------------------
// Day-number family

// Day number DJ of a calendar date. day may hold a fraction of the day.
// Notes: the original routine also took a flag whose "N" computed nothing; every caller passes
// "Y", so it is not carried.
double CalcJulian(double day, std::int16_t month, std::int16_t year);

struct CalendarDate
{
    std::int16_t year = 0;
    std::int16_t month = 0; // 1-12
    double day = 0;         // with the fraction of the day
};

// Calendar date of a day number.
// Notes: valid from 1900 on. Before that the truncating helper CalcLif carries whole-day day
// numbers (midnights, from 1899 December 31.0 back) one day late.
// Status: a year outside 16 bits reports "Overflow" and returns the date as it stood.
// Location: Module1.CalcCalendarDate
CalendarDate CalcCalendarDate(double DJ, FaultSink& faults);

// Truncating helpers: for W >= 0 CalcITG(W, S) is floor(W); CalcLif is floor(W) for positive
// W, -1 for 0 and floor(W) - 1 for negative W.
double CalcITG(double W, double S);
double CalcLif(double W);

// Degrees to radians and back, with the family's short constants.
double CalcRadians(double degrees);
double CalcDegrees(double radians);

// Arcsine of W in radians, safe at W = +-1. |W| up to 1e-12 past 1 is rounding and gives
// +-pi/2. Beyond that it is fatal: the fault is reported with the system's closing message and
// the value of W, then the process ends through faults.EndProcess.
// Location: Module1.CalcASN
double CalcASN(double W, FaultSink& faults);
// Arccosine, 1.570796327 - CalcASN(W); fatal as CalcASN.
double CalcACS(double W, FaultSink& faults);
// CalcASN's fatal fault alone, for a caller that keeps no value: nothing within the rounding
// margin of 1.
void CheckASN(double W, FaultSink& faults);

// Common logarithm. Status: x <= 0 reports "Invalid procedure call or argument", returns 0.
// Location: Module1.Log10
double Log10(double x, FaultSink& faults);

// Gtime's outputs: result in decimal hours; in the sidereal-to-UT mode also as a triple with
// the sign pushed (untouched, all 0, in the UT-to-sidereal mode).
struct GtimeResult
{
    double result = 0;
    double hours = 0;
    double minutes = 0;
    double seconds = 0;
};

// Greenwich mean sidereal time and back. mode 1.0: time is Universal Time in hours and the
// result sidereal time; any other mode: time is sidereal and the result Universal Time.
// Notes: G0, the sidereal time at 0h UT, comes from a low-order polynomial in day numbers.
// The result of mode 1.0 stays 24 when it is exactly 24.
GtimeResult Gtime(double time, std::int16_t year, std::int16_t month, double day, double mode);

// Gtime in two steps, for many times on one date: GtimeG0 is the date's part (G0, hours), and
// GtimeFromG0(time, GtimeG0(year, month, day), mode) is exactly Gtime(time, year, month, day,
// mode).
double GtimeG0(std::int16_t year, std::int16_t month, double day);
GtimeResult GtimeFromG0(double time, double G0, double mode);

// Universal Time of the observing clock, as the sun, moon and planet routines read it.
struct UTInstant
{
    std::int16_t month = 0;
    double day = 0; // with the fraction of the day
    std::int16_t year = 0;
    double hour = 0;
    std::int16_t minute = 0;
};

// The local clock (PDate and Ptime, or the computer clock when UseRealTime is "Y") to
// Universal Time. Notes: only the whole hours of PTz count and PStd is ignored here (a zone
// of 5.5 counts as 5); the date steps across midnight. A blank PDate means today.
// Status: a PDate that is not a date reports "Type mismatch" and returns the fields filled
// so far.
// Location: Module1.ConvertToGMT
UTInstant ConvertToGMT(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults);

// ---------------------------------------------------------------------------------------
// Julian-Day family

// Common logarithm, as ln(x) x 0.434294481903252.
// Status: x <= 0 reports "Invalid procedure call or argument", returns 0.
// Location: Module2.log10
double log10(double x, FaultSink& faults);

// Julian Day of a calendar date (Gregorian after 1582 October 4).
double CalendarToJD(const CalendarDate& date);

// Calendar date of a Julian Day. JDToCalendar1 is the same routine of the day-number family.
// Status: a year outside 16 bits reports "Overflow" and returns the date as it stood.
// Location: Module2.JDToCalendar, Module1.JDToCalendar1
CalendarDate JDToCalendar(double JD, FaultSink& faults);
CalendarDate JDToCalendar1(double JD, FaultSink& faults);

// Julian centuries from J2000.0.
double JDToT(double JD);

// Delta T in seconds for T centuries from J2000.0: the table of historical values from 1620
// to 2000 (years after 1992 extrapolate its last interval), polynomials outside.
// Notes: the table "DeltaTTableLabel.txt" is read from programDir on first use.
// Status: a missing or unreadable table reports its fault and returns 0; the next call tries
// again.
// Location: Module2.ApproxDeltaT
double ApproxDeltaT(double T, const std::filesystem::path& programDir, FaultSink& faults);
double ApproxDeltaT(double T, const std::filesystem::path& programDir, FaultSink& faults,
                    DataTables& tables);

// Inverse trigonometry in radians. asin has no guard: x = +-1 reports "Division by zero",
// |x| > 1 "Invalid procedure call or argument", and both return 0 (acos then pi/2).
// Location: Module2.asin (acos reports through asin)
double asin(double x, FaultSink& faults);
double acos(double x, FaultSink& faults);
// Angle of (x, y) in -pi to +pi; 0 when both are 0.
double atn2(double y, double x);
// Angle reduced to -pi to +pi, and to 0 to 2 pi.
double modpi(double x);
double modpi2(double x);

// An angle in radians as decimal degrees (signed) or decimal hours (unsigned), with half a
// unit of the last shown decimal place added for precision index places (0 to 7), ready to be
// cut to that many places.
// Notes: the offsets come from "DeltaLabel.txt" in programDir, read on first use.
// Status: a missing file or an index outside 0-7 reports its fault and returns 0.
// Location: Module2.WriteDMS, Module2.WriteHMS
double WriteDMS(double radians, int places, const std::filesystem::path& programDir,
                FaultSink& faults);
double WriteDMS(double radians, int places, const std::filesystem::path& programDir,
                FaultSink& faults, DataTables& tables);
double WriteHMS(double radians, int places, const std::filesystem::path& programDir,
                FaultSink& faults);
double WriteHMS(double radians, int places, const std::filesystem::path& programDir,
                FaultSink& faults, DataTables& tables);

// ---------------------------------------------------------------------------------------
// The small conversions, defined here so that the per-object routines can inline them.

inline double ConvertToDecimal(double seconds, double minutes, double degrees)
{
    const double sign = (seconds < 0 || minutes < 0 || degrees < 0) ? -1.0 : 1.0;
    return sign * (std::fabs(degrees) + (std::fabs(minutes) + std::fabs(seconds) / 60.0) / 60.0);
}

inline Sexagesimal ConvertFromDecimal(double x)
{
    Sexagesimal s;
    const double a = std::fabs(x);
    s.degrees = std::floor(a);
    const double b = (a - s.degrees) * 60.0;
    s.minutes = std::floor(b);
    s.seconds = std::floor((b - s.minutes) * 600.0 + 0.5) / 10.0;
    // Deliberate: the carry stops at degrees (59.99999 reads 60 0 0); fields are shown as is.
    if (s.seconds == 60.0) {
        s.seconds = 0.0;
        s.minutes += 1.0;
        if (s.minutes == 60.0) {
            s.minutes = 0.0;
            s.degrees += 1.0;
        }
    }
    s.sign = x < 0 ? '-' : '+';
    return s;
}

inline Dms SignPush(const Sexagesimal& s)
{
    Dms t{s.degrees, s.minutes, s.seconds};
    if (s.sign == '-') {
        if (t.degrees != 0)
            t.degrees = -t.degrees;
        else if (t.minutes != 0)
            t.minutes = -t.minutes;
        else if (t.seconds != 0)
            t.seconds = -t.seconds;
    }
    return t;
}

inline double CalcRadians(double degrees)
{
    return degrees * kRadiansPerDegreeShort;
}

inline double CalcDegrees(double radians)
{
    return radians * kDegreesPerRadianShort;
}

} // namespace astro
