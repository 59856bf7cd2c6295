#pragma once
// The steps the Sun, the Moon and the low-precision planets share: nutation, the obliquity of
// the ecliptic, Kepler's equation, ecliptic to equatorial coordinates, and the Sun's place.
//
// Conventions: T is in centuries of 36525 days from 1900 January 0.5 (the day-number family of
// Time.h: T = DJ / 36525), with Universal Time standing for dynamical time. Each mean element
// is a constant plus the fraction of k T times 360 degrees, so that only the part of k T that
// matters keeps its digits. The unit of every value is in its name or comment.
// The theory of the Sun is the low-precision one with Newcomb's mean elements, five periodic
// terms in longitude and five in distance; good to about 0.01 degree.
// Reference: J. Meeus, Astronomical Formulae for Calculators, chapters 15 (nutation) and 18.

#include "astro/FaultSink.h"
#include "astro/Time.h"

#include <string>

namespace astro {

// Nutation in longitude and in obliquity, degrees.
struct Nutation
{
    double longitude = 0;
    double obliquity = 0;
};

// Nutation for T centuries from 1900 January 0.5, from its thirteen and nine largest terms.
Nutation NutationOf(double T);

// Mean obliquity of the ecliptic, degrees, for T centuries from 1900 January 0.5.
double MeanObliquity(double T);

// True obliquity, radians: (mean + nutation in obliquity) x 0.01745329252.
double TrueObliquity(double T, const Nutation& n);

// Eccentric anomaly E, radians, of Kepler's equation E - e sin(E) = M.
// Given: M mean anomaly, radians, any value (brought into 0 to 2 pi first); e eccentricity,
// 0 <= e < 1.
// Notes: Newton's iteration from E = M until the step is below 1e-10 radians; it has no
// limit on the number of steps (it converges for every e below 1), but a value that is not a
// number ends it.
double SolveKepler(double M, double e);

// Right ascension and declination, radians.
struct Equatorial
{
    double ra = 0;  // 0 to 2 pi
    double dec = 0; // -pi/2 to pi/2
};

// Ecliptic longitude lam and latitude b to equatorial, for the obliquity eps; all radians.
// Notes: a latitude at a pole of the ecliptic is carried as cos(b) = 1e-20.
Equatorial EclipticToEquatorial(double lam, double b, double eps);

// The Sun's place for T centuries from 1900 January 0.5.
struct SunPlace
{
    double trueLongitude = 0;     // radians, 0 to 2 pi
    double r = 0;                 // radius vector, astronomical units
    double apparentLongitude = 0; // degrees: true + nutation - aberration (0.00569); not wrapped
    double diameter = 0;          // arc minutes
    double M = 0;                 // mean anomaly, radians (not wrapped)
    double E = 0;                 // eccentric anomaly, radians
    double e = 0;                 // eccentricity of the Earth's orbit
    double v = 0;                 // true anomaly, radians
    double L = 0;                 // mean longitude, degrees (not wrapped)
    Nutation nutation;            // for the same T
};

// The Sun's true and apparent longitude, distance and diameter.
SunPlace SunAt(double T);

// The fraction of k T times 360: a mean element's main term, degrees (0 to 360).
double MainTerm(double k, double T);

// Altitude in degrees at latitude PlatDeg of an hour angle and a declination in degrees, as
// CalcAltAzm gives it; without the azimuth, whose arccosine faults at a site on a pole.
double AltitudeOf(double PlatDeg, const Hms& hourAngle, double decDeg, FaultSink& faults);

// ---------------------------------------------------------------------------------------
// Texts of the Sun's, Moon's and planets' outputs (UTF-8; the degree sign is U+00B0). Fields
// come from ConvertFromDecimal (seconds rounded to a tenth, carried upwards).

// An ecliptic longitude brought into 0 to 360: degrees plain, minutes "00", seconds "00.0",
// as 280°27'13.4".
std::string LongitudeText(double degrees);
// A declination or latitude with its sign, as +23°26'12.0" or -0°30'00.0".
std::string SignedAngleText(double degrees);
// A right ascension in plain numbers, as "6h 5m 23.6s " (the blank at the end included).
std::string RaText(double hours);
// A right ascension with two-digit fields, seconds rounded whole (59.6 shows 60), as
// "06h 05m 24s".
std::string Ra00Text(double hours);
// A declination with two-digit fields, as +23°26' 12".
std::string Dec00Text(double degrees);
// An apparent diameter, arc minutes rounded to 4 places, then whole minutes and the rest in
// seconds "00", as 32' 35".
std::string DiameterText(double arcMinutes);
// Half the diameter rounded as DiameterText rounds it, "00.00" and "'", as 16.29'.
std::string SemiDiameterText(double arcMinutes);
// An altitude as the object list shows it: rounded to 2 places ("##0.00", then "#00.00"),
// "+" before a positive value, as +05.30 or -12.34.
std::string AltitudeText(double degrees);

} // namespace astro
