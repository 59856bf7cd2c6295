#pragma once
// Comets and asteroids: geocentric places at even steps of time from osculating elements
// (Gaussian vectorial elements in the FK5 frame of J2000.0; the Earth from the high-precision
// series of PlanetaryTerms.h; one pass for light time; the H, G magnitudes of asteroids).
//
// Conventions: the Julian-Day family of Time.h. T in Julian centuries from J2000.0; times are
// Universal Time used as they stand (no delta T). Angles in radians unless a name says
// degrees. Each routine traps its own faults and reports them at "Module2.<routine>", then
// returns what it had (0 for a value never reached), and its caller goes on with that.
// Reference: J. Meeus, Astronomical Algorithms, chapters 24, 30, 32 to 34.

#include "astro/FaultSink.h"
#include "astro/PlanetaryTerms.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace astro {

// The obliquity of J2000.0 the orbit constants are computed with, radians.
inline constexpr double kOrbitObliquity = 0.409092804202936;
// Gauss's constant, radians a day.
inline constexpr double kGaussConstant = 0.01720209895;
// Light time of one astronomical unit, Julian centuries.
inline constexpr double kLightTimeCenturies = 1.5812507323750856e-07;

// One body's elements as EPHEM works with them.
struct OrbitElements
{
    double T0 = 0;       // epoch of M0 (asteroid) or time of perihelion (comet)
    double M0 = 0;       // mean anomaly at T0 (0 for a comet)
    double a = 0;        // semi-major axis, AU
    double q = 0;        // perihelion distance, AU
    double n = 0;        // mean motion, radians a day
    double e = 0;        // eccentricity
    double omega = 0;    // argument of perihelion
    double reserved = 0; // read by nothing
    double Omega = 0;    // longitude of the ascending node
    double i = 0;        // inclination
};

// CalcOrbitCon's six constants.
struct OrbitConstants
{
    double A = 0, B = 0, C = 0;
    double a = 0, b = 0, c = 0;
};

struct Rect
{
    double x = 0, y = 0, z = 0;
};

// True anomaly of mean anomaly M for e below 1: Newton's iteration on Kepler's equation until
// the step is below 1e-06, from E = M, or from the cubic start when e is above 0.97 and |M| (in
// -pi to pi) below 0.6.
// Location: Module2.Kepler
double Kepler(double M, double e, FaultSink& faults);

// True anomaly on a parabola dT (centuries) from perihelion at distance q (Barker's equation).
// Location: Module2.Parabola
double Parabola(double dT, double q, FaultSink& faults);

// True anomaly near e = 1 (either side) by the series in s = tan(v/2), from Parabola's value;
// both loops stop after 50 passes, so no element set can hang it.
// Location: Module2.NearParabola
double NearParabola(double dT, double q, double e, FaultSink& faults);

// The orbit constants of the elements' node and inclination for obliquity eps.
OrbitConstants CalcOrbitCon(const OrbitElements& el, double eps);

// The body's heliocentric rectangular coordinates (FK5, J2000.0) at T.
// Location: Module2.PosRectCo
Rect PosRectCo(double T, const OrbitElements& el, const OrbitConstants& k, FaultSink& faults);

// The geocentric place of the body from the Sun's geocentric and the body's heliocentric
// coordinates.
struct GeoPlace
{
    double ra = 0;    // radians, 0 to 2 pi
    double dec = 0;   // radians
    double delta = 0; // AU
};
// Given: place, the caller's values, which a fault leaves as they stood (distance and right
//   ascension are set before the declination).
// Status: a zero distance reports "Division by zero", a declination of exactly +-90 degrees
//   asin's "Division by zero" (at Module2.asin; the declination is then 0).
// Location: Module2.RectHelioToGeo
void RectHelioToGeo(const Rect& sun, const Rect& body, GeoPlace& place, FaultSink& faults);

// The Sun's geocentric rectangular coordinates (FK5, J2000.0) at T from the loaded series.
// Location: Module2.SunRectCo
Rect SunRectCo(double T, FaultSink& faults, const PlanetaryTerms& table = ProcessPlanetaryTerms());

// acos((x^2 + z^2 - y^2) / (2 x z)), radians.
// Location: Module2.CalcPhaseAngle
double CalcPhaseAngle(double x, double y, double z, FaultSink& faults);

// The H, G magnitude at distances Delta and r and phase angle beta; H and G are taken in
// single precision. Status: a zero distance is a logarithm fault, magnitude 0.
// Location: Module2.AsteroidMagnitude
double AsteroidMagnitude(double Delta, double r, double beta, float H, float G, FaultSink& faults);

// H + 5 log10(r) + 2.5 K log10(Delta). Status: as AsteroidMagnitude.
// Location: Module2.Comet Magnitude
double CometMagnitude(double Delta, double r, double H, double K, FaultSink& faults);

// Reduces i, Omega and omega (radians) from the equinox B1950.0 (FK4) to J2000.0 (FK5).
// Location: Module2.FK4FK5ReduceEclElements
void FK4FK5ReduceEclElements(double& i, double& Omega, double& omega, FaultSink& faults);

// EPHEM's inputs 1 to 17.
struct EphemInput
{
    std::string kind;        // "A" asteroid, "C" comet
    std::string elementDate; // YYYYMMDDHHMMSS.ss by position: the epoch or perihelion time
    double M = 0;            // mean anomaly, degrees (asteroid)
    double e = 0;
    double a = 0;                    // AU (asteroid)
    double q = 0;                    // AU (comet)
    double i = 0;                    // degrees
    double Node = 0;                 // degrees
    double peri = 0;                 // argument of perihelion, degrees
    double equinox = 0;              // 1: elements of B1950.0
    std::optional<double> cometH;    // absolute magnitude
    std::optional<double> cometK;    // slope
    std::optional<double> asteroidH; // absolute magnitude
    std::optional<double> asteroidG; // slope; 0.15 when empty
    std::string start;               // first step's UT, layout of elementDate
    long steps = 1;
    double step = 1; // days
};

// One step's outputs 18 to 23, and its instant.
struct EphemStep
{
    double jd = 0;              // the step's Julian Day (UT)
    double ra = 0;              // 18: decimal hours through WriteHMS(., 3)
    double dec = 0;             // 19: decimal degrees through WriteDMS(., 2)
    double delta = 0;           // 20: AU
    double r = 0;               // 21: AU
    std::optional<double> mag;  // 22: empty without the kind's H (and a comet's K)
    double elongation = 0;      // 23: whole degrees
};

// The element or start date text of a calendar date with a fraction of the day: year "0000",
// month "00", whole day "00", then the fraction's hours "00", minutes "00", seconds "00.00".
std::string ElementDateText(double year, double month, double day);

// The Julian Day of an element or start date text, read by position.
double ElementDateJD(std::string_view text);

// Runs EPHEM: each step's outputs are passed to onStep as they stand after the step, also
// after a fault (then as they stood); as its callers run it a step at a time, a fault in one
// step does not end the run. programDir holds planets.ndx, planets.dat and the delta T and
// rounding tables.
// Returned: false when a fault ended the set-up, before any step.
// Location: Module2.EPHEM
template <typename OnStep>
bool EPHEM(const EphemInput& in, const std::filesystem::path& programDir, FaultSink& faults,
           MessageBoxSink& messages, OnStep&& onStep);

// The run in one step at a time, for callers that need the state between steps.
class Ephemeris
{
public:
    // Steps 1 to 7 of EPHEM: elements, constants and the Earth's terms.
    // Returned by ok(): false when a fault of EPHEM's own ended the set-up.
    Ephemeris(const EphemInput& in, const std::filesystem::path& programDir, FaultSink& faults,
              MessageBoxSink& messages);
    bool ok() const { return ok_; }
    // One step at the current Julian Day, then the day moves on by the step. out keeps the
    // values it had where a fault of EPHEM's own ends the step.
    void Step(EphemStep& out);
    const OrbitElements& Elements() const { return el_; }

private:
    EphemInput in_;
    std::filesystem::path programDir_;
    FaultSink& faults_;
    OrbitElements el_;
    OrbitConstants k_;
    double jd_ = 0;
    bool ok_ = false;
};

template <typename OnStep>
bool EPHEM(const EphemInput& in, const std::filesystem::path& programDir, FaultSink& faults,
           MessageBoxSink& messages, OnStep&& onStep)
{
    Ephemeris run(in, programDir, faults, messages);
    if (!run.ok())
        return false;
    EphemStep out;
    for (long k = 0; k < in.steps; ++k) {
        run.Step(out);
        onStep(out);
    }
    return true;
}

// Altitude in degrees of a place (right ascension hours, declination degrees) at Julian Day
// jdUT for a site at latitude PlatDeg and longitude PlonDeg (west positive): Greenwich sidereal
// time of Gtime, the hour angle, and the altitude of the object list.
double SiteAltitude(double jdUT, double raHours, double decDeg, double PlatDeg, double PlonDeg,
                    FaultSink& faults);

} // namespace astro
