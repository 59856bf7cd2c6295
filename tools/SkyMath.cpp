#include "tools/SkyMath.h"

#include "services/Fault.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>

namespace tools {

namespace {

constexpr double DegToRad = std::numbers::pi / 180.0;
constexpr double RadToDeg = 180.0 / std::numbers::pi;

double WrapDegrees(double deg)
{
    double r = std::fmod(deg, 360.0);
    return r < 0 ? r + 360.0 : r;
}

} // namespace

SplitPosition SplitRaDec(double raDeg, double decDeg)
{
    SplitPosition p;
    // RA in units of 1e-4 minute of time; a day has 24 * 60 * 1e4 of them.
    constexpr long long raUnitsPerHour = 60LL * 10000;
    constexpr long long raUnitsPerDay = 24 * raUnitsPerHour;
    long long ra = std::llround(WrapDegrees(raDeg) / 15.0 * 60.0 * 10000.0) % raUnitsPerDay;
    p.RAhours = static_cast<double>(ra / raUnitsPerHour);
    p.RAminutes = static_cast<double>(ra % raUnitsPerHour) / 10000.0;

    // Dec in units of 1e-3 minute of arc.
    constexpr long long decUnitsPerDegree = 60LL * 1000;
    const bool south = decDeg < 0;
    long long dec = std::llround(std::fabs(decDeg) * 60.0 * 1000.0);
    long long degrees = dec / decUnitsPerDegree;
    double minutes = static_cast<double>(dec % decUnitsPerDegree) / 1000.0;
    if (south && dec > 0) {
        if (degrees > 0)
            degrees = -degrees;
        else
            minutes = -minutes;
    }
    p.DeclinationDegrees = static_cast<double>(degrees);
    p.DeclinationMinutes = minutes;
    return p;
}

double JoinRaDeg(const SplitPosition& p)
{
    return (p.RAhours + p.RAminutes / 60.0) * 15.0;
}

double JoinDecDeg(const SplitPosition& p)
{
    const double minutes = p.DeclinationMinutes / 60.0;
    return p.DeclinationDegrees < 0 ? p.DeclinationDegrees - minutes
                                    : p.DeclinationDegrees + minutes;
}

RaDec PrecessFromJ2000(double raDeg, double decDeg, double epochJd)
{
    const double t = (epochJd - 2451545.0) / 36525.0;
    const double arcsec = DegToRad / 3600.0;
    const double zeta = (2306.2181 * t + 0.30188 * t * t + 0.017998 * t * t * t) * arcsec;
    const double z = (2306.2181 * t + 1.09468 * t * t + 0.018203 * t * t * t) * arcsec;
    const double theta = (2004.3109 * t - 0.42665 * t * t - 0.041833 * t * t * t) * arcsec;

    const double ra = raDeg * DegToRad;
    const double dec = decDeg * DegToRad;
    const double a = std::cos(dec) * std::sin(ra + zeta);
    const double b =
        std::cos(theta) * std::cos(dec) * std::cos(ra + zeta) - std::sin(theta) * std::sin(dec);
    const double c =
        std::sin(theta) * std::cos(dec) * std::cos(ra + zeta) + std::cos(theta) * std::sin(dec);
    RaDec out;
    out.raDeg = WrapDegrees((std::atan2(a, b) + z) * RadToDeg);
    // Near the poles asin loses precision; the hypotenuse of a and b is the cosine.
    out.decDeg = std::atan2(c, std::hypot(a, b)) * RadToDeg;
    return out;
}

Galactic GalacticFromJ2000(double raDeg, double decDeg)
{
    const double poleRa = 192.85948 * DegToRad;
    const double poleDec = 27.12825 * DegToRad;
    const double lOfCelestialPole = 122.93192;
    const double ra = raDeg * DegToRad;
    const double dec = decDeg * DegToRad;
    const double sinB = std::sin(dec) * std::sin(poleDec) +
                        std::cos(dec) * std::cos(poleDec) * std::cos(ra - poleRa);
    const double y = std::cos(dec) * std::sin(ra - poleRa);
    const double x = std::sin(dec) * std::cos(poleDec) -
                     std::cos(dec) * std::sin(poleDec) * std::cos(ra - poleRa);
    Galactic g;
    g.bDeg = std::asin(std::clamp(sinB, -1.0, 1.0)) * RadToDeg;
    g.lDeg = WrapDegrees(lOfCelestialPole - std::atan2(y, x) * RadToDeg);
    return g;
}

ConstellationFinder::ConstellationFinder(std::vector<BoundaryRow> rows) : rows_(std::move(rows)) {}

std::string ConstellationFinder::Find(double raDeg, double decDeg) const
{
    const RaDec b1875 = PrecessFromJ2000(raDeg, decDeg, B1875Jd);
    return FindB1875(b1875.raDeg / 15.0, b1875.decDeg);
}

std::string ConstellationFinder::FindB1875(double raHours, double decDeg) const
{
    for (const BoundaryRow& row : rows_) {
        if (decDeg >= row.decLowDeg && raHours >= row.raLowHours && raHours < row.raHighHours)
            return row.abbr;
    }
    return {};
}

std::vector<BoundaryRow> ReadBoundaryTable(const std::string& path)
{
    std::ifstream in(path);
    if (!in)
        throw services::Fault("Cannot open the constellation boundary table " + path,
                              "tools.ReadBoundaryTable");
    std::vector<BoundaryRow> rows;
    std::string line;
    int lineNumber = 0;
    while (std::getline(in, line)) {
        ++lineNumber;
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        BoundaryRow row;
        if (!(fields >> row.raLowHours >> row.raHighHours >> row.decLowDeg >> row.abbr))
            throw services::Fault(path + " line " + std::to_string(lineNumber) +
                                      ": expected lower RA, upper RA, lower Dec, abbreviation",
                                  "tools.ReadBoundaryTable");
        rows.push_back(row);
    }
    if (rows.empty())
        throw services::Fault(path + " holds no boundary rows", "tools.ReadBoundaryTable");
    return rows;
}

CalendarDate CalendarFromJd(double jd)
{
    const double z = std::floor(jd + 0.5);
    const double f = jd + 0.5 - z;
    double a = z;
    if (z >= 2299161) {
        const double alpha = std::floor((z - 1867216.25) / 36524.25);
        a = z + 1 + alpha - std::floor(alpha / 4);
    }
    const double b = a + 1524;
    const double c = std::floor((b - 122.1) / 365.25);
    const double d = std::floor(365.25 * c);
    const double e = std::floor((b - d) / 30.6001);
    CalendarDate out;
    out.day = b - d - std::floor(30.6001 * e) + f;
    out.month = static_cast<int>(e < 14 ? e - 1 : e - 13);
    out.year = static_cast<int>(out.month > 2 ? c - 4716 : c - 4715);
    return out;
}

} // namespace tools
