#pragma once
// Sky arithmetic of the database builder: sexagesimal fields, precession to the equinox of the
// constellation boundaries, galactic coordinates, the constellation lookup and calendar dates.
// Angles in degrees unless a name says hours or radians; positions are equatorial, mean equinox
// J2000.0 unless a name says otherwise.

#include <string>
#include <vector>

namespace tools {

// The four position fields of a SelvaneTable row.
struct SplitPosition
{
    double RAhours = 0;            // whole hours 0..23
    double RAminutes = 0;          // minutes with the seconds as a fraction, 0 <= m < 60
    double DeclinationDegrees = 0; // whole degrees, carrying the sign
    double DeclinationMinutes = 0; // minutes with the seconds as a fraction
};

// Splits a position into the row's fields.
// Given: raDeg (any value, wrapped into 0..360), decDeg (-90..+90).
// Returned: the fields; RA minutes rounded to 1e-4 (0.006 s of time), Dec minutes to 1e-3
// (0.06 arc second), with a carry into the hours or degrees, and 24 h wrapping to 0 h.
// Notes: the sign is on the degrees; a declination between 0 and -1 degree keeps its sign on the
// minutes (degrees 0, minutes negative), since a zero in the degrees field cannot carry it.
SplitPosition SplitRaDec(double raDeg, double decDeg);

// Joins the fields again: the inverse of SplitRaDec (up to its rounding), in degrees.
double JoinRaDeg(const SplitPosition& p);
double JoinDecDeg(const SplitPosition& p);

struct RaDec
{
    double raDeg = 0;
    double decDeg = 0;
};

// Precesses a J2000.0 position to the mean equinox of a Julian epoch (IAU 1976 precession).
// Given: raDeg, decDeg at J2000.0; epochJd, the Julian Day of the target equinox.
// Reference: J. Meeus, Astronomical Algorithms, 2nd ed., ch. 21 (zeta, z, theta of Lieske).
RaDec PrecessFromJ2000(double raDeg, double decDeg, double epochJd);

// Julian Day of the equinox B1875.0, to which the constellation boundaries refer.
constexpr double B1875Jd = 2405889.258550475;

struct Galactic
{
    double lDeg = 0; // 0..360
    double bDeg = 0; // -90..+90
};

// Galactic longitude and latitude of a J2000.0 position (the IAU 1958 system as realised in
// J2000: north galactic pole at 192.85948, +27.12825; longitude of the celestial pole 122.93192).
Galactic GalacticFromJ2000(double raDeg, double decDeg);

// The constellation boundaries of Roman (1987): rows in the published order, each with a lower
// and upper right ascension (hours, B1875) and a lower declination (degrees, B1875).
struct BoundaryRow
{
    double raLowHours = 0;
    double raHighHours = 0;
    double decLowDeg = 0;
    std::string abbr;
};

class ConstellationFinder
{
public:
    explicit ConstellationFinder(std::vector<BoundaryRow> rows);
    // Three-letter code of the constellation that holds a J2000.0 position; precesses to B1875
    // and takes the first row whose lower declination and right ascension range contain it.
    std::string Find(double raDeg, double decDeg) const;
    // The same for a position already at B1875.0.
    std::string FindB1875(double raHours, double decDeg) const;

private:
    std::vector<BoundaryRow> rows_;
};

// Reads the boundary table: "#" comment lines, then rows "raLow raHigh decLow abbr".
// Status: throws services::Fault naming the file and line when a row cannot be read.
std::vector<BoundaryRow> ReadBoundaryTable(const std::string& path);

struct CalendarDate
{
    int year = 0;
    int month = 0;
    double day = 0; // day of the month with the fraction of the day
};

// Gregorian (after 1582 October 15) or Julian calendar date of a Julian Day.
// Reference: J. Meeus, Astronomical Algorithms, 2nd ed., ch. 7.
CalendarDate CalendarFromJd(double jd);

} // namespace tools
