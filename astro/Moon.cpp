#include "astro/Moon.h"

#include "astro/Position.h"
#include "astro/SolarCommon.h"
#include "astro/Text.h"
#include "astro/Time.h"

#include <cmath>
#include <limits>
#include <optional>

namespace astro {

namespace {

constexpr std::string_view kLocation = "Module1.CalcMoon";
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kRad = kPi / 180;

// One periodic term: coefficient (degrees) x E^ePower x sin or cos of the argument
// D x D + M x M + Mp x M' + F x F.
struct MoonTerm
{
    char series; // 'L' longitude, 'B' latitude (sines), 'P' parallax (cosines)
    double coefficient;
    int ePower;
    int D, M, Mp, F;
};

constexpr MoonTerm kTerms[] = {
#include "astro/MoonTerms.inc"
};

// A sidereal hour angle of Greenwich, degrees, by the IAU 1982 expression for mean sidereal
// time, at Julian Day jd of Universal Time.
double MeanSiderealDegrees(double jd)
{
    const double d = jd - kJ2000;
    const double T = d / kDaysPerCentury;
    const double theta = 280.46061837 + 360.98564736629 * d + (0.000387933 - T / 38710000) * T * T;
    return theta - 360 * std::floor(theta / 360);
}

// Degrees by which the Moon's centre stands above its rising altitude 0.7275 x parallax - 34',
// at day number DJ for the latitude and west longitude given.
double AboveRisingAltitude(double DJ, double sinPhi, double cosPhi, double PlonDeg)
{
    const MoonPlace moon = MoonAt(DJ / 36525);
    const double lst = MeanSiderealDegrees(DJ + kJulianDayOfDayZero) - PlonDeg;
    const double H = lst * kRad - moon.ra;
    const double sinH0 = sinPhi * std::sin(moon.dec) + cosPhi * std::cos(moon.dec) * std::cos(H);
    const double h = std::asin(std::fmax(-1.0, std::fmin(1.0, sinH0))) / kRad;
    return h - (0.7275 * moon.parallax - 34.0 / 60);
}

} // namespace

MoonPlace MoonAt(double T)
{
    const double T2 = T * T;
    const double T3 = T2 * T;
    double Lp = 270.434164 + MainTerm(1336.855231, T) - 0.001133 * T2 + 1.9e-06 * T3;
    double M = 358.475833 + MainTerm(99.99736056, T) - 0.00015 * T2 - 3.3e-06 * T3;
    double Mp = 296.104608 + MainTerm(1325.552359, T) + 0.009192 * T2 + 1.44e-05 * T3;
    double D = 350.737486 + MainTerm(1236.853095, T) - 0.001436 * T2 + 1.9e-06 * T3;
    double F = 11.250889 + MainTerm(1342.227848, T) - 0.003211 * T2 - 3e-07 * T3;
    const double Omega = 259.183275 - MainTerm(5.372616667, T) + 0.002078 * T2 + 2.2e-06 * T3;

    const double a = std::sin(CalcRadians(51.2 + 20.2 * T));
    const double venus = std::sin(CalcRadians(346.56 + 132.87 * T - 0.0091731 * T2));
    const double sinOmega = std::sin(CalcRadians(Omega));
    const double node2 = CalcRadians(Omega + 275.05 - 2.3 * T);
    Lp += 0.000233 * a + 0.003964 * venus + 0.001964 * sinOmega;
    M -= 0.001778 * a;
    Mp += 0.000817 * a + 0.003964 * venus + 0.002541 * sinOmega;
    D += 0.002011 * a + 0.003964 * venus + 0.001964 * sinOmega;
    F += 0.003964 * venus - 0.024691 * sinOmega - 0.004328 * std::sin(node2);
    const double E = 1 - 0.002495 * T - 7.52e-06 * T2;

    const double d = CalcRadians(D), m = CalcRadians(M), mp = CalcRadians(Mp), f = CalcRadians(F);
    double longitude = Lp;
    double B = 0;
    double parallax = 0;
    for (const MoonTerm& term : kTerms) {
        const double argument = term.D * d + term.M * m + term.Mp * mp + term.F * f;
        double c = term.coefficient;
        for (int i = 0; i < term.ePower; ++i)
            c *= E;
        if (term.series == 'L')
            longitude += c * std::sin(argument);
        else if (term.series == 'B')
            B += c * std::sin(argument);
        else
            parallax += c * std::cos(argument);
    }
    const double omega1 = 0.0004664 * std::cos(CalcRadians(Omega));
    const double omega2 = 0.0000754 * std::cos(node2);

    MoonPlace moon;
    moon.longitude = longitude - 360 * std::floor(longitude / 360);
    moon.latitude = B * (1 - omega1 - omega2);
    moon.parallax = parallax;
    const Nutation nutation = NutationOf(T);
    moon.apparentLongitude = moon.longitude + nutation.longitude;
    const Equatorial q =
        EclipticToEquatorial(CalcRadians(moon.apparentLongitude), CalcRadians(moon.latitude),
                             TrueObliquity(T, nutation));
    moon.ra = q.ra;
    moon.dec = q.dec;
    return moon;
}

MoonRiseSetTimes CalcMoonRiseSet(const ObservingClock& clock, const Clock& computerClock,
                                 FaultSink& faults)
{
    MoonRiseSetTimes out{kNaN, kNaN};
    const std::optional<CivilDate> date = ObservingDate(clock, computerClock);
    if (!date) {
        faults.ReportFault(kTypeMismatch, kLocation);
        return out;
    }
    // Day number of local midnight: the zone with its fraction, an hour less in daylight time.
    const double zone = clock.PTz - (clock.PStd != "S" ? 1 : 0);
    const double DJ0 = CalcJulian(date->day, static_cast<std::int16_t>(date->month),
                                  static_cast<std::int16_t>(date->year)) +
                       zone / 24;
    const double phi = clock.Plat * kRad;
    const double sinPhi = std::sin(phi);
    const double cosPhi = std::cos(phi);
    const auto above = [&](double hours) {
        return AboveRisingAltitude(DJ0 + hours / 24, sinPhi, cosPhi, clock.Plon);
    };
    // The Moon's altitude changes direction at most twice a day, so no crossing hides
    // between samples ten minutes apart except within minutes of a grazing culmination.
    constexpr int kSamples = 144;
    double before = above(0);
    for (int i = 1; i <= kSamples && (std::isnan(out.rise) || std::isnan(out.set)); ++i) {
        const double t = 24.0 * i / kSamples;
        const double now = above(t);
        const bool rising = before < 0 && now >= 0;
        const bool setting = before >= 0 && now < 0;
        double& slot = rising ? out.rise : out.set;
        if ((rising || setting) && std::isnan(slot)) {
            double lo = t - 24.0 / kSamples;
            double hi = t;
            for (int k = 0; k < 40; ++k) {
                const double mid = (lo + hi) / 2;
                if ((above(mid) >= 0) == rising)
                    hi = mid;
                else
                    lo = mid;
            }
            slot = (lo + hi) / 2;
        }
        before = now;
    }
    return out;
}

MoonOutputs CalcMoon(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults)
{
    MoonOutputs out;
    out.moonriseHours = out.moonsetHours = kNaN;
    RoutineFaults f(faults, kLocation);
    const UTInstant ut = ConvertToGMT(clock, computerClock, f);
    if (f.count > 0)
        return out;
    const double T = CalcJulian(ut.day, ut.month, ut.year) / 36525;
    const MoonPlace moon = MoonAt(T);
    out.raHours = CalcDegrees(moon.ra) / 15;
    out.decDeg = CalcDegrees(moon.dec);
    out.km = 6378.14 / std::sin(CalcRadians(moon.parallax));
    const double diameter = 0.5181 * 384401.0 / out.km * 60;

    out.longitude = LongitudeText(moon.apparentLongitude);
    out.distance = FixedText(out.km, 1, 0);
    out.ra = RaText(out.raHours);
    out.dec = SignedAngleText(out.decDeg);
    out.latitude = SignedAngleText(moon.latitude);
    out.ra2 = Ra00Text(out.raHours);
    out.dec2 = Dec00Text(out.decDeg);
    out.diameter = DiameterText(diameter);

    const MoonRiseSetTimes times = CalcMoonRiseSet(clock, computerClock, f);
    if (f.count > 0)
        return out;
    out.moonriseHours = times.rise;
    out.moonsetHours = times.set;
    out.moonrise = std::isnan(times.rise) ? "-" : RiseSetTimeText(times.rise, clock.timesAMPM);
    out.moonset = std::isnan(times.set) ? "-" : RiseSetTimeText(times.set, clock.timesAMPM);

    const Sexagesimal r = ConvertFromDecimal(out.raHours);
    const Hms hourAngle =
        CalcHourAngle(clock, computerClock, {r.degrees, r.minutes, r.seconds}, false, f);
    if (f.count > 0)
        return out;
    out.altitudeDeg = AltitudeOf(clock.Plat, hourAngle, out.decDeg, f);
    out.altitude = AltitudeText(out.altitudeDeg);
    out.semiDiameter = SemiDiameterText(diameter);

    const double sunLongitude = SunAt(T).apparentLongitude;
    const double cosE = std::cos(CalcRadians(moon.latitude)) *
                        std::cos(CalcRadians(moon.apparentLongitude - sunLongitude));
    out.elongationDeg = std::acos(std::fmax(-1.0, std::fmin(1.0, cosE))) / kRad;
    out.illuminatedPercent = 50 * (1 - cosE);
    out.illuminated = FixedText(out.illuminatedPercent, 1, 1);
    out.elongation = FixedText(out.elongationDeg, 1, 1);
    return out;
}

double CalcMoonPhase2(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults)
{
    const std::optional<CivilDate> date = ObservingDate(clock, computerClock);
    if (!date) {
        faults.ReportFault(kTypeMismatch, "Module1.CalcMoonPhase2");
        return 0;
    }
    double Y = date->year;
    double M = date->month;
    const double D = date->day;
    Y -= std::floor((12 - M) / 10);
    M += 9;
    if (M >= 12)
        M -= 12;
    const double K1 = std::floor(365.25 * (Y + 4712));
    const double K2 = std::floor(30.6 * M + 0.5);
    const double K3 = std::floor(std::floor(Y / 100 + 49) * 0.75) - 38;
    double J = K1 + K2 + D + 59;
    if (J > 2299160)
        J -= K3;
    double V = (J - 2451550.1) / 29.530588853;
    V -= std::floor(V);
    if (V < 0)
        V += 1;
    return V * 29.53;
}

std::string MoonIconFor(double ageDays)
{
    struct Band
    {
        double from;
        const char* icon;
    };
    static constexpr Band kBands[] = {{29, "moon01.ico"},   {24, "moon08.ico"}, {19, "moon07.ico"},
                                      {15.5, "moon06.ico"}, {14, "moon05.ico"}, {9, "moon04.ico"},
                                      {4.5, "moon03.ico"},  {1, "moon02.ico"}};
    for (const Band& band : kBands) {
        if (ageDays >= band.from)
            return band.icon;
    }
    return "moon01.ico";
}

MoonPhaseIcon CalcMoonPhase(const ObservingClock& clock, const Clock& computerClock,
                            FaultSink& faults)
{
    RoutineFaults f(faults, "Module1.CalcMoonPhase");
    MoonPhaseIcon out;
    out.age = CalcMoonPhase2(clock, computerClock, f);
    if (f.count == 0)
        out.icon = MoonIconFor(out.age);
    return out;
}

std::vector<LunarPhase> GetMoonPhase(double year, FaultSink& faults)
{
    std::vector<LunarPhase> phases;
    if (!(year >= -32768 && year <= 32767)) {
        faults.ReportFault(kOverflow, "Module1.GetMoonPhase");
        return phases;
    }
    const double f = kPiShort / 180;
    const double k = std::floor((year - 1900) * 12.3685);
    const double T = (year - 1899.5) / 100;
    const double T2 = T * T;
    const double T3 = T2 * T;
    // The first new moon's Julian Day, 2415020.75933 + 29.53058868 k + ..., is kept as whole
    // days and a fraction so that the fraction keeps its digits.
    const double baseDays = 2415020 + 29 * k;
    const double baseFraction = 0.75933 + 0.53058868 * k + 0.0001178 * T2 - 0.000000155 * T3;
    const double baseM = 359.2242 + 29.10535608 * k - 0.0000333 * T2 - 0.00000347 * T3;
    const double baseMp = 306.0253 + 385.81691806 * k + 0.0107306 * T2 + 0.00001236 * T3;
    const double baseF = 21.2964 + 390.67050646 * k - 0.0016528 * T2 - 0.00000239 * T3;
    for (int j = 0; j <= 28; ++j) {
        double days = baseDays + 14 * j;
        double fraction = baseFraction + 0.765294 * j;
        const double c = j / 2.0;
        const double M = (baseM + 29.10535608 * c) * f;
        const double Mp = (baseMp + 385.81691806 * c) * f;
        const double F = (baseF + 390.67050646 * c) * f;
        fraction += -0.4068 * std::sin(Mp) + (0.1734 - 0.000393 * T) * std::sin(M) +
                    0.0161 * std::sin(2 * Mp) + 0.0104 * std::sin(2 * F) -
                    0.0074 * std::sin(M - Mp) - 0.0051 * std::sin(M + Mp) +
                    0.0021 * std::sin(2 * M) + 0.001 * std::sin(2 * F - Mp);
        const double whole = std::floor(fraction);
        days += whole;
        fraction -= whole;
        phases.push_back({j % 2 == 1, days + fraction});
    }
    return phases;
}

namespace {

// The calendar date and minute of day of a Julian Day rounded to the minute.
struct MinuteOfDay
{
    CalendarDate date;
    int minute = 0;
};

MinuteOfDay RoundedToMinute(double jd, FaultSink& faults)
{
    const double minutes = std::nearbyint((jd + 0.5) * 1440);
    const double days = std::floor(minutes / 1440);
    MinuteOfDay out;
    out.minute = static_cast<int>(minutes - days * 1440);
    out.date = JDToCalendar(days - 0.5, faults);
    return out;
}

} // namespace

std::string PhaseTimeText(double jd, double zoneHours, bool dateOnly, FaultSink& faults)
{
    const MinuteOfDay t = RoundedToMinute(jd - zoneHours / 24, faults);
    std::string out = t.date.year < 0 ? "-" : "";
    out += FixedText(std::fabs(static_cast<double>(t.date.year)), 4, 0) + "-" +
           FixedText(t.date.month, 2, 0) + "-" + FixedText(std::floor(t.date.day), 2, 0);
    if (!dateOnly)
        out += " " + FixedText(t.minute / 60, 2, 0) + ":" + FixedText(t.minute % 60, 2, 0);
    return out;
}

NextLunarPhases NextMoonPhases(const ObservingClock& clock, const Clock& computerClock,
                               FaultSink& faults)
{
    NextLunarPhases out{kNaN, kNaN};
    RoutineFaults f(faults, "Module1.GetMoonPhase");
    const UTInstant ut = ConvertToGMT(clock, computerClock, f);
    if (f.count > 0)
        return out;
    const double today = CalendarToJD({ut.year, ut.month, std::floor(ut.day)});
    for (double year = ut.year; year <= ut.year + 1; ++year) {
        for (const LunarPhase& p : GetMoonPhase(year, f)) {
            double& slot = p.full ? out.fullMoon : out.newMoon;
            const MinuteOfDay t = RoundedToMinute(p.jd, f);
            if (std::isnan(slot) &&
                CalendarToJD({t.date.year, t.date.month, std::floor(t.date.day)}) >= today)
                slot = p.jd;
        }
    }
    if (f.count > 0)
        out = {kNaN, kNaN};
    return out;
}

} // namespace astro
