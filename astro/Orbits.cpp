#include "astro/Orbits.h"

#include "astro/SolarCommon.h"
#include "astro/Text.h"
#include "astro/Time.h"

#include <cmath>

namespace astro {

namespace {

// Degrees to radians as the ephemeris converts its elements; the first factor is part of it.
constexpr double kElementRadians = 1.00000000000001 * 0.017453292519943278;

// The run-time's check of an arithmetic result: a value that is not a number or overflowed
// is the run-time's "Overflow" fault.
bool Finite(double x)
{
    return std::isfinite(x);
}

// The common logarithm the magnitudes take; reports at location for x not above 0.
bool Log10At(double x, double& out, FaultSink& faults, std::string_view location)
{
    if (!(x > 0)) {
        faults.ReportFault(kInvalidCall, location);
        return false;
    }
    out = std::log(x) * kLog10OfE;
    return true;
}

// A field of a positional date text (characters from first, count long; to the end when
// count is 0) as the run-time's Val reads it.
double DateField(std::string_view text, std::size_t first, std::size_t count)
{
    if (first >= text.size())
        return 0;
    return LeadingNumber(count == 0 ? text.substr(first) : text.substr(first, count));
}

} // namespace

double Kepler(double M, double e, FaultSink& faults)
{
    constexpr std::string_view location = "Module2.Kepler";
    if (!(e < 1) || !(e > -1) || !Finite(M)) {
        faults.ReportFault(!Finite(M) ? kOverflow : kInvalidCall, location);
        return 0;
    }
    M = modpi(M);
    double E = M;
    if (e > 0.97 && std::fabs(M) < 0.6) {
        const double alpha = (1 - e) / (4 * e + 0.5);
        const double beta = M / (8 * e + 1);
        const double r = std::sqrt(beta * beta + alpha * alpha);
        const double z = beta >= 0 ? std::pow(beta + r, 1.0 / 3) : -std::pow(r - beta, 1.0 / 3);
        double s = z - alpha / 2;
        s = s * (1 - 0.078 * std::pow(s, 4) / (1 + e));
        E = M + e * s * (3 - 4 * s * s);
    }
    // Deliberate: an iteration that has not settled after 1000 steps starts once more from
    // E = pi, from where Newton's method always converges for e below 1, so that no element
    // set can hang the ephemeris.
    int steps = 0;
    double d = 0;
    do {
        if (++steps == 1000)
            E = kPi;
        d = (M + e * std::sin(E) - E) / (1 - e * std::cos(E));
        E += d;
    } while (std::fabs(d) >= 1e-06 && steps < 2000);
    return 2 * std::atan(std::sqrt((1 + e) / (1 - e)) * std::tan(E / 2));
}

double Parabola(double dT, double q, FaultSink& faults)
{
    constexpr std::string_view location = "Module2.Parabola";
    if (q == 0) {
        faults.ReportFault(kDivisionByZero, location);
        return 0;
    }
    if (q < 0) {
        faults.ReportFault(kInvalidCall, location);
        return 0;
    }
    const double W = 0.03649116245 * (dT * kDaysPerCentury) / (q * std::sqrt(q));
    double s = W / 3;
    double d = 0;
    do {
        d = (W - (s * s + 3) * s) / (3 * s * s + 3);
        if (!Finite(d)) {
            faults.ReportFault(kOverflow, location);
            return 0;
        }
        s += d;
    } while (std::fabs(d) >= 1e-06);
    return 2 * std::atan(s);
}

double NearParabola(double dT, double q, double e, FaultSink& faults)
{
    constexpr std::string_view location = "Module2.NearParabola";
    const double nu = Parabola(dT, q, faults);
    double s = std::tan(nu / 2);
    if (1 + e == 0 || q == 0) {
        faults.ReportFault(kDivisionByZero, location);
        return 0;
    }
    if ((1 + e) / q < 0) {
        faults.ReportFault(kInvalidCall, location);
        return 0;
    }
    const double L = (1 - e) / (1 + e);
    const double D = dT * kDaysPerCentury * kGaussConstant * std::sqrt((1 + e) / q) / (2 * q);
    for (int outer = 0; outer < 50; ++outer) {
        const double s0 = s;
        double S = D;
        double G = 0;
        double t = -s0 * s0;
        for (int j = 1; j <= 50; ++j) {
            const double u = t * (j - (j + 1) * L);
            S += u * s0 / (2 * j + 1);
            G += u;
            t = -t * L * s0 * s0;
            if (!Finite(S) || !Finite(G) || !Finite(t)) {
                faults.ReportFault(kOverflow, location);
                return 0;
            }
            if (std::fabs(t) < 1e-08)
                break;
        }
        if (G - 1 == 0) {
            faults.ReportFault(kDivisionByZero, location);
            return 0;
        }
        const double d = (S - s0) / (G - 1);
        s = s0 - d;
        if (std::fabs(d) < 0.0001)
            break;
    }
    return 2 * std::atan(s);
}

OrbitConstants CalcOrbitCon(const OrbitElements& el, double eps)
{
    const double F = std::cos(el.Omega);
    const double G = std::sin(el.Omega) * std::cos(eps);
    const double H = std::sin(el.Omega) * std::sin(eps);
    const double P = -std::sin(el.Omega) * std::cos(el.i);
    const double Q =
        std::cos(el.Omega) * std::cos(el.i) * std::cos(eps) - std::sin(el.i) * std::sin(eps);
    const double R =
        std::cos(el.Omega) * std::cos(el.i) * std::sin(eps) + std::sin(el.i) * std::cos(eps);
    OrbitConstants k;
    k.A = atn2(F, P);
    k.B = atn2(G, Q);
    k.C = atn2(H, R);
    k.a = std::sqrt(F * F + P * P);
    k.b = std::sqrt(G * G + Q * Q);
    k.c = std::sqrt(H * H + R * R);
    return k;
}

Rect PosRectCo(double T, const OrbitElements& el, const OrbitConstants& k, FaultSink& faults)
{
    double v = 0;
    double r = 0;
    if (el.e < 1) {
        const double M = (T - el.T0) * el.n * kDaysPerCentury + el.M0;
        v = Kepler(M, el.e, faults);
        r = (1 - el.e * el.e) * el.a / (1 + el.e * std::cos(v));
    } else {
        v = el.e == 1 ? Parabola(T - el.T0, el.q, faults)
                      : NearParabola(T - el.T0, el.q, el.e, faults);
        const double denominator = 1 + el.e * std::cos(v);
        if (denominator == 0) {
            faults.ReportFault(kDivisionByZero, "Module2.PosRectCo");
            return {};
        }
        r = (1 + el.e) * el.q / denominator;
    }
    return {r * k.a * std::sin(k.A + el.omega + v), r * k.b * std::sin(k.B + el.omega + v),
            r * k.c * std::sin(k.C + el.omega + v)};
}

void RectHelioToGeo(const Rect& sun, const Rect& body, GeoPlace& place, FaultSink& faults)
{
    const double X = sun.x + body.x;
    const double Y = sun.y + body.y;
    const double Z = sun.z + body.z;
    place.delta = std::sqrt(X * X + Y * Y + Z * Z);
    place.ra = modpi2(atn2(Y, X));
    if (place.delta == 0) {
        faults.ReportFault(kDivisionByZero, "Module2.RectHelioToGeo");
        return;
    }
    place.dec = asin(Z / place.delta, faults);
}

Rect SunRectCo(double T, FaultSink& faults, const PlanetaryTerms& table)
{
    const HelioPlace earth = PlPosHi(0, T, faults, table);
    const double L = modpi2(earth.L + kPi);
    const double B = -earth.B;
    const double R = earth.R;
    const double x = R * std::cos(B) * std::cos(L);
    const double y = R * std::cos(B) * std::sin(L);
    const double z = R * std::sin(B);
    return {x + 4.4036e-07 * y - 1.90919e-07 * z,
            -4.79966e-07 * x + 0.917482137087 * y - 0.397776982902 * z,
            0.397776982902 * y + 0.917482137087 * z};
}

double CalcPhaseAngle(double x, double y, double z, FaultSink& faults)
{
    if (x * z == 0) {
        faults.ReportFault(kDivisionByZero, "Module2.CalcPhaseAngle");
        return 0;
    }
    return acos((x * x + z * z - y * y) / (2 * x * z), faults);
}

double AsteroidMagnitude(double Delta, double r, double beta, float H, float G, FaultSink& faults)
{
    constexpr std::string_view location = "Module2.AsteroidMagnitude";
    const double t = std::tan(beta / 2);
    if (t < 0) {
        faults.ReportFault(kInvalidCall, location);
        return 0;
    }
    const double f1 = std::exp(-3.33 * std::pow(t, 0.63));
    const double f2 = std::exp(-1.87 * std::pow(t, 1.22));
    double distances = 0;
    double phase = 0;
    if (!Log10At(Delta * r, distances, faults, location) ||
        !Log10At((1 - double(G)) * f1 + double(G) * f2, phase, faults, location))
        return 0;
    return double(H) + 5 * distances - 2.5 * phase;
}

double CometMagnitude(double Delta, double r, double H, double K, FaultSink& faults)
{
    constexpr std::string_view location = "Module2.Comet Magnitude";
    double logR = 0;
    double logDelta = 0;
    if (!Log10At(r, logR, faults, location) || !Log10At(Delta, logDelta, faults, location))
        return 0;
    return H + 5 * logR + 2.5 * K * logDelta;
}

void FK4FK5ReduceEclElements(double& i, double& Omega, double& omega, FaultSink& faults)
{
    const double w = Omega + 0.0907320248398577;
    const double a = std::sin(w) * 0.0001137895329;
    const double b = std::cos(i) * 0.0001137895329 * std::cos(w) + std::sin(i) * 0.9999999936;
    const double c = std::sin(i) * std::sin(w);
    const double d = std::sin(i) * 0.9999999936 * std::cos(w) + std::cos(i) * 0.0001137895329;
    omega = modpi2(atn2(a, b) + omega);
    const double i2 = asin(std::sqrt(c * c + d * d), faults);
    const double Omega2 = atn2(c, d) - 0.07854011095132249;
    if (std::cos(i) * 0.9999999936 - std::sin(i) * 0.0001137895329 * std::cos(w) < 0) {
        // Deliberate: a retrograde orbit keeps the node of its rotated pole; the half turn the
        // older reduction added put the node 180 degrees away from it.
        i = 3.14159265358979 - i2;
        Omega = modpi2(Omega2);
    } else {
        i = i2;
        Omega = Omega2;
    }
}

std::string ElementDateText(double year, double month, double day)
{
    const double whole = std::floor(day);
    const double hours = (day - whole) * 24;
    const double h = std::floor(hours);
    const double minutes = (hours - h) * 60;
    const double m = std::floor(minutes);
    return FixedText(year, 4, 0) + FixedText(month, 2, 0) + FixedText(whole, 2, 0) +
           FixedText(h, 2, 0) + FixedText(m, 2, 0) + FixedText((minutes - m) * 60, 2, 2);
}

double ElementDateJD(std::string_view text)
{
    CalendarDate date;
    date.year = static_cast<std::int16_t>(DateField(text, 0, 4));
    date.month = static_cast<std::int16_t>(DateField(text, 4, 2));
    const double hours =
        DateField(text, 8, 2) + DateField(text, 10, 2) / 60 + DateField(text, 12, 0) / 3600;
    date.day = DateField(text, 6, 2) + hours / 24;
    return CalendarToJD(date);
}

Ephemeris::Ephemeris(const EphemInput& in, const std::filesystem::path& programDir,
                     FaultSink& faults, MessageBoxSink& messages)
    : in_(in), programDir_(programDir), faults_(faults)
{
    constexpr std::string_view location = "Module2.EPHEM";
    el_.T0 = JDToT(ElementDateJD(in.elementDate));
    el_.e = in.e;
    el_.a = in.a;
    el_.q = in.q;
    el_.i = in.i * kElementRadians;
    el_.Omega = in.Node * kElementRadians;
    el_.omega = in.peri * kElementRadians;
    if (in.kind == "A") {
        el_.M0 = in.M * kElementRadians;
        if (el_.a < 0) {
            faults.ReportFault(kInvalidCall, location);
            return;
        }
        if (el_.a == 0) {
            faults.ReportFault(kDivisionByZero, location);
            return;
        }
        el_.n = kGaussConstant / (el_.a * std::sqrt(el_.a));
    } else if (el_.e < 1) {
        el_.a = el_.q / (1 - el_.e);
        if (!(el_.a > 0)) {
            faults.ReportFault(el_.a == 0 ? kDivisionByZero : kInvalidCall, location);
            return;
        }
        el_.n = kGaussConstant / (el_.a * std::sqrt(el_.a));
    }
    if (in.equinox == 1)
        FK4FK5ReduceEclElements(el_.i, el_.Omega, el_.omega, faults);
    jd_ = ElementDateJD(in.start);
    // Delta T is looked up (so a missing table is reported) but not applied: the times are
    // Universal Time used as they stand.
    ApproxDeltaT(JDToT(jd_), programDir, faults);
    k_ = CalcOrbitCon(el_, kOrbitObliquity);
    ReadPlanetaryTerms(0, programDir, faults, messages);
    ok_ = true;
}

void Ephemeris::Step(EphemStep& out)
{
    constexpr std::string_view location = "Module2.EPHEM";
    out.jd = jd_;
    jd_ += in_.step;
    const double T = JDToT(out.jd);
    const Rect sun = SunRectCo(T, faults_);
    GeoPlace place{0, 0, out.delta};
    RectHelioToGeo(sun, PosRectCo(T, el_, k_, faults_), place, faults_);
    const Rect body = PosRectCo(T - place.delta * kLightTimeCenturies, el_, k_, faults_);
    RectHelioToGeo(sun, body, place, faults_);
    out.delta = place.delta;
    const double r = std::sqrt(body.x * body.x + body.y * body.y + body.z * body.z);
    out.r = r;
    const double R2 = sun.x * sun.x + sun.y * sun.y + sun.z * sun.z;

    if (in_.kind == "C") {
        if (in_.cometH && in_.cometK)
            out.mag = CometMagnitude(place.delta, r, *in_.cometH, *in_.cometK, faults_);
        else
            out.mag.reset();
    } else if (in_.asteroidH) {
        const double beta = CalcPhaseAngle(r, std::sqrt(R2), r, faults_);
        out.mag = AsteroidMagnitude(place.delta, r, beta, static_cast<float>(*in_.asteroidH),
                                    static_cast<float>(in_.asteroidG.value_or(0.15)), faults_);
    } else {
        out.mag.reset();
    }

    out.ra = WriteHMS(place.ra, 3, programDir_, faults_);
    out.dec = WriteDMS(place.dec, 2, programDir_, faults_);

    const double c = place.delta * place.delta + R2 - r * r;
    const double s = 2 * place.delta * std::sqrt(R2);
    const double w = s * s - c * c;
    if (w <= 0) {
        out.elongation = 0;
        return;
    }
    if (c == 0) {
        faults_.ReportFault(kDivisionByZero, location);
        return;
    }
    double E = std::atan(std::sqrt(w) / c);
    if (E < 0)
        E += 3.14159265;
    out.elongation = std::floor(E / (1 / 57.2958) + 0.5);
}

double SiteAltitude(double jdUT, double raHours, double decDeg, double PlatDeg, double PlonDeg,
                    FaultSink& faults)
{
    const CalendarDate date = JDToCalendar(jdUT, faults);
    const double midnight = std::floor(date.day);
    const double ut = (date.day - midnight) * 24;
    const double gst = Gtime(ut, date.year, date.month, midnight, 1.0).result;
    double hourAngle = std::fmod(gst - PlonDeg / 15 - raHours, 24.0);
    if (hourAngle < 0)
        hourAngle += 24;
    return AltitudeOf(PlatDeg, Hms{hourAngle, 0, 0}, decDeg, faults);
}

} // namespace astro
