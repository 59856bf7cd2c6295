#pragma once
// The high-precision planetary series: a truncated VSOP87 series (heliocentric, ecliptic and
// equinox J2000.0) read from the binary pair "planets.ndx" / "planets.dat" of the program
// folder, and its evaluation. Only the Earth (planet 0) is shipped; the comet and asteroid
// ephemerides take the Earth from here.
//
// Files: "planets.ndx" holds 4-byte records of two little-endian 16-bit integers (the first
// term's record in "planets.dat", counted from 0, and the block's term count), 18 per planet
// (coordinates longitude, latitude, radius, each with the powers 0 to 5 of tau), planet p at
// record 18 p + 1 counted from 1. "planets.dat" holds 24-byte records of three little-endian
// doubles A, B, C: one term A cos(B + C tau), tau in Julian millennia from J2000.0.
// Memory holds 2430 terms; the table is loaded once per process, by the first planet asked for.
// Day numbers: T in Julian centuries from J2000.0 (the Julian-Day family).
// Loading is for one thread; evaluation only reads.

#include "astro/FaultSink.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace astro {

inline constexpr std::string_view kPlanetTermsFileName = "planets.dat";
inline constexpr std::string_view kPlanetIndexFileName = "planets.ndx";
inline constexpr std::string_view kBadRecordNumber = "Bad record number";
// The box shown when the file holds more terms than memory.
inline constexpr std::string_view kTooManyTermsText = "ERROR";

inline constexpr int kMaxPlanetaryTerms = 2430;
inline constexpr int kSeriesPlanets = 9;     // planet numbers 0 to 8; 0 is the Earth
inline constexpr int kSeriesCoordinates = 3; // longitude, latitude, radius
inline constexpr int kSeriesPowers = 6;      // powers 0 to 5 of tau

// Where a routine shows a plain message box; the application adapts it to its message window.
class MessageBoxSink
{
public:
    virtual ~MessageBoxSink() = default;
    virtual void ShowMessageBox(std::string_view text) = 0;
};

// One term A cos(B + C tau).
struct PlanetaryTerm
{
    double A = 0; // radians or AU
    double B = 0; // radians
    double C = 0; // radians per Julian millennium
};

// One block of terms: after loading, the terms sit in memory slots first + 1 to first + count.
struct TermBlock
{
    std::int16_t first = 0;
    std::int16_t count = 0;
};

// The table in memory: the terms in slots 1 to 2430 and the block table of all planets.
struct PlanetaryTerms
{
    int counter = 1; // the first free slot; above 1 once a planet has been loaded
    std::array<PlanetaryTerm, kMaxPlanetaryTerms + 1> terms{};
    std::array<std::array<std::array<TermBlock, kSeriesPowers>, kSeriesCoordinates>, kSeriesPlanets>
        blocks{};
};

// The table of this process.
PlanetaryTerms& ProcessPlanetaryTerms();

// Loads the terms of planet p into memory, unless a planet has been loaded already (then the
// first planet's terms stay) or p is 9 or more.
// Given: p, planet 0 to 8; programDir, where the two files are.
// Status: a missing file reports "File not found", a file shorter than its index says "Input
//   past end of file", a negative p "Bad record number". More terms than memory holds shows
//   the box "ERROR" through messages and then reports "Subscript out of range"; what was read
//   stays and no later call loads again.
// Location: Module2.ReadPlanetaryTerms
void ReadPlanetaryTerms(std::int16_t p, const std::filesystem::path& programDir, FaultSink& faults,
                        MessageBoxSink& messages, PlanetaryTerms& table = ProcessPlanetaryTerms());

// Heliocentric place of planet p from the loaded series.
struct HelioPlace
{
    double L = 0; // longitude, radians, 0 to 2 pi
    double B = 0; // latitude, radians
    double R = 0; // radius, AU
};

// Given: p, planet 0 to 8; T, Julian centuries from J2000.0 (dynamical time).
// Notes: a planet whose terms were never loaded has empty blocks and comes back 0 0 0.
// Status: p outside 0 to 8, or a block that points past memory, reports "Subscript out of
//   range" and returns the place as it stood.
// Location: Module2.PlPosHi
HelioPlace PlPosHi(std::int16_t p, double T, FaultSink& faults,
                   const PlanetaryTerms& table = ProcessPlanetaryTerms());

} // namespace astro
