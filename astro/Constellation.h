#pragma once
// Constellation lookup: the constellation that holds a position, by the boundary table of the
// equinox 1875.0 (N. Roman, Publications of the Astronomical Society of the Pacific 99, 695,
// 1987). The boundaries are arcs of right ascension and declination of that equinox, held as
// 357 rows tried in order; the first row that holds the position names its constellation. A
// position of any other equinox is first precessed to 1875.0 by this module's own low-order
// precession (not Position.h's), with 0.01745329 as the radian factor.
//
// Data files, both in the program folder and both read again at every lookup:
// - "con9.txt": 88 lines, one constellation name per line; line n names constellation n. The
//   capitals of a name are the letters of its abbreviation ("Canes VeNatici").
// - "conbound.txt": 357 records of four numbers (lower right ascension limit and upper limit in
//   decimal hours, lower declination limit in decimal degrees, constellation number 1 to 88),
//   separated by blanks, commas or line ends.
//
// Units: right ascension in decimal hours, declination in decimal degrees, epochs in years.
// Position texts are groups of digits separated by anything else ("5h35m17s",
// "-05°23'28\"", "- 5 23 28"): hours-or-degrees, minutes, seconds, negative when the text holds
// a "-" anywhere.
// Faults are reported at "GETCONST.<routine>"; the lookup then returns empty outputs. No routine
// throws.

#include "astro/FaultSink.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace astro {

inline constexpr std::string_view kConstellationNamesFileName = "con9.txt";
inline constexpr std::string_view kConstellationBoundsFileName = "conbound.txt";
inline constexpr int kConstellationCount = 88;
inline constexpr int kBoundaryRowCount = 357;
// The equinox of the boundary table.
inline constexpr double kBoundaryEquinox = 1875.0;
// The lookup's own radian factor; the precession depends on it, so it is not the shared one.
inline constexpr double kConstellationRadiansPerDegree = 0.01745329;

inline constexpr std::string_view kGetConLocation = "GETCONST.GetCon";
inline constexpr std::string_view kWholeLocation = "GETCONST.Whole";
inline constexpr std::string_view kPrecessLocation = "GETCONST.Precess";

// Both data files as read. Element 0 of each array is unused: names run 1 to 88, rows 1 to 357.
struct ConstellationTable
{
    std::array<std::string, kConstellationCount + 1> names;
    std::array<double, kBoundaryRowCount + 1> raLow{};  // hours
    std::array<double, kBoundaryRowCount + 1> raHigh{}; // hours
    std::array<double, kBoundaryRowCount + 1> decLow{}; // degrees
    std::array<double, kBoundaryRowCount + 1> number{}; // constellation, 1 to 88
};

// Reads con9.txt and conbound.txt from folder into table.
// Returned: true when both were read whole.
// Status: a missing file reports "File not found", a names file of fewer than 88 lines or a
//   boundary file of fewer than 357 records "Input past end of file", a boundary field that is
//   not a number "Type mismatch"; false is returned and table left part-filled. Lines past the
//   88th and records past the 357th are not read.
// Notes: a line ends at LF, CR LF or CR; names are kept as the lines hold them.
// Location: GETCONST.GetCon
bool ReadConstellationTable(const std::filesystem::path& folder, ConstellationTable& table,
                            FaultSink& faults);

// The first row, 1 to 357, that holds a position of the equinox 1875.0: its declination is at
// least the row's lower declination, its right ascension at least the row's lower limit and
// strictly below its upper limit. 0 when no row does.
// Notes: so right ascension exactly at a row's upper limit belongs to a later row that starts
// there, and a declination exactly on a limit to the row with that lower limit.
int FindBoundaryRow(const ConstellationTable& table, double raHours, double decDeg);

// The abbreviation a name's capitals make: every non-blank character that equals its own upper
// case form, in order; the first as it stands, the later ones in lower case ("Canes VeNatici"
// gives "Cvn"). ASCII case only: other bytes are taken as they are.
std::string ConstellationAbbreviation(std::string_view name);

// The normal form of a position or epoch text: digits and the text's first decimal point kept,
// every run of other characters one blank, leading and trailing blanks dropped, cut to three
// groups; when the text holds a "-" anywhere, a blank is put in front and a "-" at the end.
// "5h35m17s" gives "5 35 17", "-05°23'28\"" gives " 05 23 28-", "J2000" gives "2000", a text
// without digits "" (or " -").
std::string Parse(std::string_view text);

// The decimal value of a normal form's groups as hours-or-degrees, minutes, seconds (first +
// second / 60 + third / 3600); missing groups count 0, a lone "." is 0. Negative when the form
// holds a "-".
// Status: a group too large for a double reports "Overflow"; nothing is returned.
// Location: GETCONST.Whole
std::optional<double> Whole(std::string_view normalForm, FaultSink& faults);

// Precess's outputs.
struct PrecessedPosition
{
    double alpha = 0; // right ascension, hours, 0 <= alpha < 24
    double delta = 0; // declination, degrees
};

// A position of the equinox E0 precessed to E1 (years), by the rates zeta, z and theta as
// polynomials in centuries from E0 and the rigorous rotation, with 0.01745329 as the radian
// factor throughout.
// Given: alpha (hours), delta (degrees), E0 and E1 (years).
// Notes: agrees with the IAU 2006 precession to about 1.2 arc seconds between 2000 and 1875.
// Status: a value too large for the arithmetic reports "Overflow", a zero denominator of the
//   right ascension's arctangent "Division by zero"; nothing is returned.
// Location: GETCONST.Precess
std::optional<PrecessedPosition> Precess(double alpha, double delta, double E0, double E1,
                                         FaultSink& faults);

// GetCon's outputs: both empty when no row holds the position or a fault ended the lookup.
struct ConstellationName
{
    std::string name;         // the names file's line, trimmed of blanks
    std::string abbreviation; // ConstellationAbbreviation of the name
};

// The constellation of a position given as texts, read from folder's data files at this call.
// Given: raText, decText: position texts; epochText: the year of the position's equinox, read
//   as the run-time reads a number from the start of its normal form ("J2000" is 2000).
// Returned: the name and abbreviation of the first boundary row that holds the position after
//   precession to 1875.0.
// Status: the faults of ReadConstellationTable, Whole and Precess, and "Subscript out of range"
//   when the row's constellation number is not 1 to 88 (read as the nearest whole number,
//   halves to even); empty outputs.
// Location: GETCONST.GetCon (files and numbers), GETCONST.Whole, GETCONST.Precess
// Reference: N. Roman, PASP 99, 695 (1987).
ConstellationName GetCon(std::string_view raText, std::string_view decText,
                         std::string_view epochText, const std::filesystem::path& folder,
                         FaultSink& faults);

} // namespace astro
