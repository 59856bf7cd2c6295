#include "astro/SolarCommon.h"

#include "astro/Text.h"
#include "astro/Time.h"
#include "astro/constants.h"

#include <cmath>
#include <string_view>

namespace astro {

namespace {

// 2 pi as the Sun's theory takes it: twice 4 arctan(1).
const double kFullCircle = 8 * std::atan(1.0);

double Wrap(double radians)
{
    return radians - kFullCircle * std::floor(radians / kFullCircle);
}

} // namespace

double MainTerm(double k, double T)
{
    const double x = k * T;
    return (x - std::floor(x)) * 360;
}

Nutation NutationOf(double T)
{
    const double T2 = T * T;
    const double L1 = 279.6967 + 0.000303 * T2 + MainTerm(100.0021358, T);
    const double L2 = 2 * CalcRadians(L1);
    const double D1 = 270.4342 - 0.001133 * T2 + MainTerm(1336.855231, T);
    const double D2 = 2 * CalcRadians(D1);
    const double M1 = CalcRadians(358.4758 - 0.00015 * T2 + MainTerm(99.99736056, T));
    const double M2 = CalcRadians(296.1046 + 0.009192 * T2 + MainTerm(1325.552359, T));
    const double N1 = CalcRadians(259.1833 + 0.002078 * T2 - MainTerm(5.372616667, T));
    const double N2 = 2 * N1;

    const double longitude =
        (-17.2327 - 0.01737 * T) * std::sin(N1) + (-1.2729 - 0.00013 * T) * std::sin(L2) +
        0.2088 * std::sin(N2) - 0.2037 * std::sin(D2) + (0.1261 - 0.00031 * T) * std::sin(M1) +
        0.0675 * std::sin(M2) - (0.0497 - 0.00012 * T) * std::sin(L2 + M1) -
        0.0342 * std::sin(D2 - N1) - 0.0261 * std::sin(D2 + M2) + 0.0214 * std::sin(L2 - M1) -
        0.0149 * std::sin(L2 - D2 + M2) + 0.0124 * std::sin(L2 - N1) + 0.0114 * std::sin(D2 - M2);
    const double obliquity = (9.21 + 0.00091 * T) * std::cos(N1) +
                             (0.5522 - 0.00029 * T) * std::cos(L2) - 0.0904 * std::cos(N2) +
                             0.0884 * std::cos(D2) + 0.0216 * std::cos(L2 + M1) +
                             0.0183 * std::cos(D2 - N1) + 0.0113 * std::cos(D2 + M2) -
                             0.0093 * std::cos(L2 - M1) - 0.0066 * std::cos(L2 - N1);
    return {longitude / 3600, obliquity / 3600};
}

double MeanObliquity(double T)
{
    return 23.45229444 - (46.845 + 0.0059 * T - 0.00181 * T * T) * T / 3600;
}

double TrueObliquity(double T, const Nutation& n)
{
    return (MeanObliquity(T) + n.obliquity) * kRadiansPerDegreeShort;
}

double SolveKepler(double M, double e)
{
    M = Wrap(M);
    double E = M;
    for (;;) {
        const double d = E - e * std::sin(E) - M;
        if (!(std::fabs(d) >= 1e-10))
            break;
        E -= d / (1 - e * std::cos(E));
    }
    return E;
}

Equatorial EclipticToEquatorial(double lam, double b, double eps)
{
    double c = std::cos(b);
    if (std::fabs(c) < 1e-20)
        c = 1e-20;
    const double t = std::sin(b) / c;
    const double sinEps = std::sin(eps);
    const double cosEps = std::cos(eps);
    // The argument is the z component of a unit vector: it passes 1 only by rounding, which
    // the arcsine takes as 1.
    double s = std::sin(b) * cosEps + std::cos(b) * sinEps * std::sin(lam);
    if (s > 1)
        s = 1;
    if (s < -1)
        s = -1;
    Equatorial out;
    out.dec = std::atan(s / (std::sqrt(1 - s * s) + kAsnGuard));
    const double x = std::sin(lam) * cosEps - t * sinEps;
    const double cosLam = std::cos(lam);
    double ra = std::atan(x / cosLam);
    if (cosLam < 0)
        ra += kFullCircle / 2;
    if (ra > kFullCircle)
        ra -= kFullCircle;
    if (ra < 0)
        ra += kFullCircle;
    out.ra = ra;
    return out;
}

SunPlace SunAt(double T)
{
    SunPlace sun;
    const double T2 = T * T;
    sun.L = 279.69668 + 0.0003025 * T2 + MainTerm(100.0021359, T);
    const double Mdeg = 358.47583 - (0.00015 + 3.3e-06 * T) * T2 + MainTerm(99.99736042, T);
    sun.e = 0.01675104 - 4.18e-05 * T - 1.26e-07 * T2;
    sun.M = CalcRadians(Mdeg);
    sun.E = SolveKepler(sun.M, sun.e);
    sun.v = 2 * std::atan(std::sqrt((1 + sun.e) / (1 - sun.e)) * std::tan(sun.E / 2));

    const double A1 = CalcRadians(153.23 + MainTerm(62.55209472, T));
    const double A2 = CalcRadians(216.57 + MainTerm(125.1041894, T));
    const double A3 = CalcRadians(312.69 + MainTerm(91.56766028, T));
    const double D1 = CalcRadians(350.74 - 0.00144 * T2 + MainTerm(1236.853095, T));
    const double E1 = CalcRadians(231.19 + 20.2 * T);
    const double H1 = CalcRadians(353.4 + MainTerm(183.1353208, T));
    const double D2 = 0.00134 * std::cos(A1) + 0.00154 * std::cos(A2) + 0.002 * std::cos(A3) +
                      0.00179 * std::sin(D1) + 0.00178 * std::sin(E1);
    const double D3 = 5.43e-06 * std::sin(A1) + 1.575e-05 * std::sin(A2) +
                      1.627e-05 * std::sin(A3) + 3.076e-05 * std::cos(D1) + 9.27e-06 * std::sin(H1);

    sun.trueLongitude = Wrap(sun.v + CalcRadians(sun.L - Mdeg + D2));
    sun.r = 1.0000002 * (1 - sun.e * std::cos(sun.E)) + D3;
    sun.nutation = NutationOf(T);
    sun.apparentLongitude = CalcDegrees(sun.trueLongitude) + sun.nutation.longitude - 0.00569;
    sun.diameter = 2 * 961.15876 / sun.r / 60;
    return sun;
}

double AltitudeOf(double PlatDeg, const Hms& hourAngle, double decDeg, FaultSink& faults)
{
    const double phi = CalcRadians(PlatDeg);
    const double H =
        CalcRadians(ConvertToDecimal(hourAngle.seconds, hourAngle.minutes, hourAngle.hours)) * 15;
    const Dms dec = SignPush(ConvertFromDecimal(decDeg));
    const double delta = CalcRadians(ConvertToDecimal(dec.seconds, dec.minutes, dec.degrees));
    const double s =
        std::cos(phi) * std::cos(delta) * std::cos(H) + std::sin(delta) * std::sin(phi);
    return CalcDegrees(CalcASN(s, faults));
}

namespace {

constexpr std::string_view kDegreeSign = "\u00b0";

void AppendNumber(std::string& out, double x)
{
    char buffer[kNumberTextSize];
    out.append(buffer, NumberText(x, buffer));
}

} // namespace

namespace {

// Degrees plain, the degree sign, minutes "00", "'", seconds "00.0" and '"'.
void AppendDegreesMinutesSeconds(std::string& out, const Sexagesimal& s)
{
    AppendNumber(out, s.degrees);
    out += kDegreeSign;
    out += FixedText(s.minutes, 2, 0);
    out += '\'';
    out += FixedText(s.seconds, 2, 1);
    out += '"';
}

} // namespace

std::string LongitudeText(double degrees)
{
    degrees -= 360 * std::floor(degrees / 360);
    std::string out;
    AppendDegreesMinutesSeconds(out, ConvertFromDecimal(degrees));
    return out;
}

std::string SignedAngleText(double degrees)
{
    const Sexagesimal s = ConvertFromDecimal(degrees);
    std::string out(1, s.sign);
    AppendDegreesMinutesSeconds(out, s);
    return out;
}

std::string RaText(double hours)
{
    const Sexagesimal s = ConvertFromDecimal(hours);
    std::string out;
    AppendNumber(out, s.degrees);
    out += "h ";
    AppendNumber(out, s.minutes);
    out += "m ";
    AppendNumber(out, s.seconds);
    out += "s ";
    return out;
}

std::string Ra00Text(double hours)
{
    const Sexagesimal s = ConvertFromDecimal(hours);
    return FixedText(s.degrees, 2, 0) + "h " + FixedText(s.minutes, 2, 0) + "m " +
           FixedText(s.seconds, 2, 0) + "s";
}

std::string Dec00Text(double degrees)
{
    const Sexagesimal s = ConvertFromDecimal(degrees);
    std::string out(1, s.sign);
    out += FixedText(s.degrees, 2, 0);
    out += kDegreeSign;
    out += FixedText(s.minutes, 2, 0);
    out += "' ";
    out += FixedText(s.seconds, 2, 0);
    out += '"';
    return out;
}

std::string DiameterText(double arcMinutes)
{
    const double rounded = RoundPlaces(arcMinutes, 4);
    const double whole = std::floor(rounded);
    std::string out;
    AppendNumber(out, whole);
    out += "' ";
    out += FixedText((rounded - whole) * 60, 2, 0);
    out += '"';
    return out;
}

std::string SemiDiameterText(double arcMinutes)
{
    return FixedText(RoundPlaces(arcMinutes, 4) / 2, 2, 2) + "'";
}

std::string AltitudeText(double degrees)
{
    const double rounded = RoundPlaces(RoundPlaces(degrees, 2), 2);
    return (rounded > 0 ? "+" : "") + FixedText(rounded, 2, 2);
}

} // namespace astro
