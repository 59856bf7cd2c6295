#pragma once
// The planets Mercury to Pluto for the windows and plans: mean elements from the text file
// "Planet.dat" with the periodic perturbations of the planetary chapters of J. Meeus,
// Astronomical Formulae for Calculators (Pluto runs on its osculating elements alone).
//
// Conventions: day numbers DJ from 1900 January 0.5 and T = DJ / 36525 (the day-number family;
// Universal Time is taken as dynamical time). Planets are numbered 1 Mercury to 8 Pluto.
// Ecliptic places are of the mean equinox of date; "apparent" adds nutation and the annual
// aberration. Angles are in the unit their names carry.
//
// "Planet.dat", in the program folder, is a sequential text file (fields separated by commas
// or line breaks): per planet, in order, a name; the mean longitude's A, B, C, D
// (L = A + 360 frac(B T) + C T^2 + D T^3, B in revolutions per century); the longitude of
// perihelion, eccentricity, inclination and node, each A, B, C, D as A + B T + C T^2 + D T^3;
// then the semi-major axis (AU), the angular diameter at 1 AU (arc seconds) and the magnitude
// at 1 AU. It is read at every call of CalcPlanets.

#include "astro/FaultSink.h"
#include "astro/ObservingClock.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace astro {

inline constexpr std::string_view kPlanetFileName = "Planet.dat";
inline constexpr int kPlanetCount = 8;

// One planet's row of "Planet.dat".
struct PlanetRow
{
    std::string name;
    std::array<double, 4> meanLongitude{}; // A, B (revolutions per century), C, D; degrees
    std::array<double, 4> perihelion{};    // degrees
    std::array<double, 4> eccentricity{};
    std::array<double, 4> inclination{}; // degrees
    std::array<double, 4> node{};        // degrees
    double semiMajorAxis = 0;            // AU
    double diameter = 0;                 // arc seconds at 1 AU
    double magnitude = 0;                // at 1 AU
};

using PlanetTable = std::array<PlanetRow, kPlanetCount>;

// Reads "Planet.dat" from programDir into table.
// Returned: empty when all eight planets were read; otherwise the fault's description ("File
//   not found", "Input past end of file" for a short file, "Type mismatch" for a number that
//   is not one), table holding the planets read so far.
std::string_view ReadPlanetFile(const std::filesystem::path& programDir, PlanetTable& table);

// The elements of one planet at T, the planet file's elements 1 to 9.
struct PlanetElements
{
    double meanLongitude = 0; // degrees, 0 to 360
    double dailyMotion = 0;   // degrees a day
    double perihelion = 0;    // degrees, 0 to 360
    double eccentricity = 0;
    double inclination = 0; // degrees, 0 to 360
    double node = 0;        // degrees, 0 to 360
    double semiMajorAxis = 0;
    double diameter = 0;
    double magnitude = 0;
};

// Notes: frac is x - floor(x), so a negative T keeps the fraction in 0 to 1.
PlanetElements ElementsAt(const PlanetRow& row, double T);

// What the Sun of the same instant gives the planets: the Earth's place and the nutation.
struct SunForPlanets
{
    double longitude = 0;         // the Sun's true geometric longitude, radians
    double distance = 0;          // AU
    double meanAnomaly = 0;       // radians
    double nutationLongitude = 0; // degrees
    double obliquity = 0;         // true obliquity, radians
};

// The numbers behind CalcPlanets' outputs.
struct PlanetPlace
{
    double helioLongitude = 0; // degrees, 0 to 360
    double helioLatitude = 0;  // degrees
    double longitude = 0;      // apparent geocentric longitude, degrees, 0 to 360
    double latitude = 0;       // apparent geocentric latitude, degrees
    double raHours = 0;        // apparent right ascension, 0 to 24
    double decDegrees = 0;     // apparent declination
    double r = 0;              // distance from the Sun, AU
    double rho = 0;            // distance from the Earth, AU
    double R = 0;              // the Earth's distance from the Sun, AU
    double elongation = 0;     // degrees, 0 to 180
    double size = 0;           // angular diameter, arc seconds
    double phaseAngle = 0;     // degrees
    double illuminated = 0;    // percent
    double magnitude = 0;
};

// The place of planet (1 to 8) at T from the table and the Sun of the same instant.
// Notes: two passes for light time: the second takes the mean anomalies of the planet and of
//   the perturbing planets at the instant the light left, rho x 0.005775518 days earlier.
//   Mercury, Venus and Mars take short cosine series in the mean anomalies, Jupiter to Neptune
//   the long series in the book's auxiliary arguments, Pluto none.
PlanetPlace PlanetAt(const PlanetTable& table, int planet, double T, const SunForPlanets& sun,
                     FaultSink& faults);

// The Sun of T (centuries from 1900 January 0.5) as the planets take it.
SunForPlanets SunForPlanetsAt(double T);

// CalcPlanets' outputs, in order.
struct PlanetOutputs
{
    std::string helioLongitude; // 1: 280°27'13.4"
    std::string helioLatitude;  // 2: +1°12'05.3"
    std::string longitude;      // 3: apparent geocentric
    std::string latitude;       // 4
    std::string ra;             // 5: 06h 05m 24s
    std::string dec;            // 6: +23°26' 12"
    std::string distance;       // 7: rho, "0.0000"
    std::string elongation;     // 8: "0.0"
    std::string size;           // 9: arc seconds, "###.#"
    std::string phase;          // 10: phase angle, "###.##"
    std::string illumination;   // 11: percent, "###.###"
    std::string magnitude;      // 12: "###.####"
    PlanetPlace place;          // the numbers, for rise, set and altitude
    bool valid = false;         // false: a fault was reported and the outputs are empty
};

// The planet's place for the observing clock (UTInstant), from "Planet.dat" of programDir.
// Given: planetName, the caller's caption, not used in the arithmetic; planet, 1 to 8.
// Returned: the outputs; empty, with valid false, when a fault was reported.
// Status: a missing or short "Planet.dat" reports its fault; a planet outside 1 to 8
//   "Subscript out of range"; a PDate that is not a date "Type mismatch".
// Location: Module1.CalcPlanets
PlanetOutputs CalcPlanets(std::string_view planetName, std::int16_t planet,
                          const ObservingClock& clock, const Clock& computerClock,
                          const std::filesystem::path& programDir, FaultSink& faults);

} // namespace astro
