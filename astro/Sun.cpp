#include "astro/Sun.h"

#include "astro/Position.h"
#include "astro/SolarCommon.h"
#include "astro/Text.h"
#include "astro/Time.h"

#include <cmath>
#include <limits>
#include <optional>

namespace astro {

namespace {

constexpr std::string_view kLocation = "Module1.CalcSun";
// The Sun's centre at rising and setting: 50 arc minutes of refraction and semi-diameter.
constexpr double kSunHorizon = 0.014593;
// A sidereal time within this many hours after 0h UT occurs twice in the day.
constexpr double kAmbiguousUT = 0.06552;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The Sun's apparent right ascension (hours) and declination (radians) at day number DJ.
SkyObject SunSky(double DJ)
{
    const double T = DJ / 36525;
    const SunPlace sun = SunAt(T);
    const Equatorial q =
        EclipticToEquatorial(CalcRadians(sun.apparentLongitude), 0, TrueObliquity(T, sun.nutation));
    SkyObject object;
    object.alpha = CalcDegrees(q.ra) / 15;
    object.delta = q.dec;
    object.sinDelta = std::sin(q.dec);
    object.cosDelta = std::cos(q.dec);
    return object;
}

// What the rise and set passes take from the site and the UT date.
struct SunSite
{
    double sinPhi = 0, cosPhi = 0, phi = 0;
    double L = 0;   // longitude, hours east
    double G0 = 0;  // Gtime's sidereal time at 0h UT of the date
    double DJ0 = 0; // day number of 0h UT of the date
    const ObservingClock* clock = nullptr;

    // Universal Time of a local sidereal time on the date, hours.
    double UT(double lst) const
    {
        double gst = lst - L;
        if (gst < 0)
            gst += 24;
        if (gst >= 24)
            gst -= 24;
        return GtimeFromG0(gst, G0, 0.0).result;
    }

    // Local time of a Universal Time, hours 0 to 24.
    double Local(double ut) const
    {
        double t = clock->Plon > 0 ? 24 - clock->PTz + ut : ut - clock->PTz;
        if (clock->PStd == "D")
            t += 1;
        if (t < 0)
            t += 24;
        if (t > 24)
            t -= 24;
        return t;
    }
};

SunSite MakeSunSite(const ObservingClock& clock, const UTInstant& ut)
{
    SunSite site;
    site.clock = &clock;
    site.phi = CalcRadians(clock.Plat);
    site.sinPhi = std::sin(site.phi);
    site.cosPhi = std::cos(site.phi);
    site.L = -clock.Plon / 15;
    const double day = std::floor(ut.day);
    site.G0 = GtimeG0(ut.year, ut.month, day);
    site.DJ0 = CalcJulian(day, ut.month, ut.year);
    return site;
}

// Hours between the Sun on the true horizon and 18 degrees below it, for declination delta
// (radians); nothing when either does not happen on the date.
std::optional<double> TwilightDuration(double phi, double delta)
{
    const double a = -std::tan(phi) * std::tan(delta);
    if (a < -1 || a > 1)
        return std::nullopt;
    const double H0 = 90 - CalcDegrees(std::atan(a / std::sqrt(1 - a * a)));
    const double b = (std::cos(CalcRadians(108)) - std::sin(phi) * std::sin(delta)) /
                     (std::cos(phi) * std::cos(delta));
    if (b < -1 || b > 1)
        return std::nullopt;
    const double H1 = 90 - CalcDegrees(std::atan(b / std::sqrt(1 - b * b)));
    return (H1 - H0) / 15 * 0.9973;
}

double WrapDay(double t)
{
    if (t < 0)
        t += 24;
    if (t > 24)
        t -= 24;
    return t;
}

// Whole hours and whole minutes of a local time, as decimal hours.
double HoursAndMinutes(double t)
{
    const double h = std::floor(t);
    return h + std::floor((t - h) * 60) / 60;
}

} // namespace

std::string SunTimeText(double hours, bool timesAMPM)
{
    const auto write = [](double t, bool twelveForZero) {
        double h = std::floor(t);
        const double m = std::floor((t - h) * 60);
        if (twelveForZero && h == 0)
            h = 12;
        return FixedText(h, 2, 0) + ":" + FixedText(m, 2, 0);
    };
    if (!timesAMPM)
        return write(hours, false);
    if (hours < 12)
        return write(hours, true) + " AM";
    return write(hours > 12 ? hours - 12 : hours, true) + " PM";
}

SunOutputs CalcSun(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults)
{
    SunOutputs out;
    out.sunriseHours = out.sunsetHours = kNaN;
    out.twilightBeginsHours = out.twilightEndsHours = kNaN;
    RoutineFaults f(faults, kLocation);
    const UTInstant ut = ConvertToGMT(clock, computerClock, f);
    if (f.count > 0)
        return out;

    const double T = CalcJulian(ut.day, ut.month, ut.year) / 36525;
    const SunPlace sun = SunAt(T);
    const Equatorial q =
        EclipticToEquatorial(CalcRadians(sun.apparentLongitude), 0, TrueObliquity(T, sun.nutation));
    out.raHours = CalcDegrees(q.ra) / 15;
    out.decDeg = CalcDegrees(q.dec);
    out.trueLongitude = LongitudeText(CalcDegrees(sun.trueLongitude));
    out.distance = RoundPlaces(sun.r, 5);
    out.ra = RaText(out.raHours);
    out.dec = SignedAngleText(out.decDeg);
    out.apparentLongitude = LongitudeText(sun.apparentLongitude);
    out.ra2 = Ra00Text(out.raHours);
    out.dec2 = Dec00Text(out.decDeg);
    out.diameter = DiameterText(sun.diameter);

    const Sexagesimal r = ConvertFromDecimal(out.raHours);
    const Hms raTriple{r.degrees, r.minutes, r.seconds};
    const Hms hourAngle = CalcHourAngle(clock, computerClock, raTriple, false, f);
    if (f.count > 0)
        return out;
    out.altitudeDeg = AltitudeOf(clock.Plat, hourAngle, out.decDeg, f);
    out.altitude = AltitudeText(out.altitudeDeg);
    out.semiDiameter = SemiDiameterText(sun.diameter);

    // Rise and set: the Sun at noon of the UT date gives first times; the Sun at each of
    // those gives the times shown.
    const SunSite site = MakeSunSite(clock, ut);
    const RiseSetSidereal first =
        RiseSetSiderealTimes(SunSky(site.DJ0 + 0.5), site.sinPhi, site.cosPhi, kSunHorizon, f);
    out.status = first.status;
    if (first.status != 0) {
        out.sunrise = out.sunset = "ERROR";
        return out;
    }
    const double riseUT1 = site.UT(first.LR);
    const double setUT1 = site.UT(first.LS);
    const SkyObject atRise = SunSky(site.DJ0 + riseUT1 / 24);
    const SkyObject atSet = SunSky(site.DJ0 + setUT1 / 24);
    const RiseSetSidereal rising =
        RiseSetSiderealTimes(atRise, site.sinPhi, site.cosPhi, kSunHorizon, f);
    const RiseSetSidereal setting =
        RiseSetSiderealTimes(atSet, site.sinPhi, site.cosPhi, kSunHorizon, f);
    if (rising.status != 0 || setting.status != 0) {
        out.sunrise = out.sunset = "ERROR";
        return out;
    }
    const double riseUT = site.UT(rising.LR);
    const double setUT = site.UT(setting.LS);
    out.riseAmbiguous = riseUT < kAmbiguousUT;
    out.setAmbiguous = setUT < kAmbiguousUT;
    out.sunriseHours = site.Local(riseUT);
    out.sunsetHours = site.Local(setUT);
    out.sunrise = SunTimeText(out.sunriseHours, clock.timesAMPM);
    out.sunset = SunTimeText(out.sunsetHours, clock.timesAMPM);

    // Twilight from the declinations at rising and setting, counted from the times shown.
    const std::optional<double> morning = TwilightDuration(site.phi, atRise.delta);
    const std::optional<double> evening = TwilightDuration(site.phi, atSet.delta);
    if (!morning || !evening) {
        out.twilightBegins = out.twilightEnds = "* ERROR *";
        return out;
    }
    out.twilightBeginsHours = WrapDay(HoursAndMinutes(out.sunriseHours) - *morning);
    out.twilightEndsHours = WrapDay(HoursAndMinutes(out.sunsetHours) + *evening);
    out.twilightBegins = FixedText(out.twilightBeginsHours, 1, 4);
    out.twilightEnds = FixedText(out.twilightEndsHours, 1, 4);
    return out;
}

double SunTransit(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults)
{
    RoutineFaults f(faults, kLocation);
    const UTInstant ut = ConvertToGMT(clock, computerClock, f);
    if (f.count > 0)
        return kNaN;
    const SunSite site = MakeSunSite(clock, ut);
    double transitUT = site.UT(SunSky(site.DJ0 + 0.5).alpha);
    transitUT = site.UT(SunSky(site.DJ0 + transitUT / 24).alpha);
    return site.Local(transitUT);
}

std::string DarknessText(const SunOutputs& sun, bool timesAMPM)
{
    if (sun.sunrise == "ERROR" || sun.sunrise.empty())
        return {};
    if (std::isnan(sun.twilightEndsHours) || std::isnan(sun.twilightBeginsHours))
        return "No astronomical darkness";
    return "Dark from " + SunTimeText(sun.twilightEndsHours, timesAMPM) + " to " +
           SunTimeText(sun.twilightBeginsHours, timesAMPM);
}

} // namespace astro
