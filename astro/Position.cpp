#include "astro/Position.h"

#include "astro/Text.h"
#include "astro/constants.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace astro {

namespace {

bool IsBlankText(const std::string& text)
{
    return text.find_first_not_of(" \t") == std::string::npos;
}

// Hour and minute of a time text "hh:mm": characters 1-2 and 4-5.
void ReadTimeText(std::string_view time, double& hour, double& minute)
{
    hour = LeadingNumber(time.substr(0, 2));
    minute = LeadingNumber(time.substr(std::min<std::size_t>(3, time.size()), 2));
}

// Local sidereal time, hours, at a local date and clock time.
double LocalSiderealAt(const ObservingClock& clock, const CivilDate& date, double hour,
                       double minute)
{
    // Unlike ConvertToGMT, the whole zone counts here, fraction and daylight hour included.
    hour += clock.PTz;
    if (clock.PStd != "S")
        hour -= 1;
    // Deliberate: the hour wraps but the date stays local, as the lists have always shown.
    if (hour < 0)
        hour += 24;
    else if (hour >= 24)
        hour -= 24;
    const double ut = ConvertToDecimal(0, minute, hour);
    const double gst = Gtime(ut, static_cast<std::int16_t>(date.year),
                             static_cast<std::int16_t>(date.month), date.day, 1.0)
                           .result;
    double lst = gst - clock.Plon / 15;
    if (lst > 24)
        lst -= 24;
    if (lst < 0)
        lst += 24;
    return lst;
}

double HourAngleFrom(double lst, double raHours)
{
    double ha = lst - raHours;
    if (ha < 0)
        ha += 24;
    return ha;
}

// Hour angle, decimal hours, of right ascension raHours at a local date and clock time.
double HourAngleAt(const ObservingClock& clock, const CivilDate& date, double hour, double minute,
                   double raHours)
{
    return HourAngleFrom(LocalSiderealAt(clock, date, hour, minute), raHours);
}

Hms ToHms(double hours)
{
    const Dms t = SignPush(ConvertFromDecimal(hours));
    return {t.degrees, t.minutes, t.seconds};
}

double Decimal(const Hms& t)
{
    return ConvertToDecimal(t.seconds, t.minutes, t.hours);
}

double Decimal(const Dms& t)
{
    return ConvertToDecimal(t.seconds, t.minutes, t.degrees);
}

// Appends "hh:mm" of two whole numbers.
std::size_t HoursMinutes(double h, double m, char* buffer)
{
    std::size_t n = TwoDigits(static_cast<int>(h), buffer);
    buffer[n++] = ':';
    n += TwoDigits(static_cast<int>(m), buffer + n);
    return n;
}

std::size_t Append(char* buffer, std::size_t n, std::string_view text)
{
    for (char c : text)
        buffer[n++] = c;
    return n;
}

void WriteRiseSetTime(double t, bool timesAMPM, std::string& out)
{
    char buffer[32];
    std::size_t n = 0;
    if (!timesAMPM) {
        const Sexagesimal s = ConvertFromDecimal(t);
        n = HoursMinutes(s.degrees, s.minutes, buffer);
    } else if (t < 12) {
        const Sexagesimal s = ConvertFromDecimal(t);
        n = HoursMinutes(s.degrees == 0 ? 12 : s.degrees, s.minutes, buffer);
        n = Append(buffer, n, " AM");
    } else {
        if (t > 12)
            t -= 12;
        const Sexagesimal s = ConvertFromDecimal(t);
        n = HoursMinutes(s.degrees == 0 ? 12 : s.degrees, s.minutes, buffer);
        n = Append(buffer, n, " PM");
    }
    out.assign(buffer, n);
}

// CalcAltAzm for the sine and cosine of the latitude.
AltAzm AltAzmAt(double sinPhi, double cosPhi, const Hms& hourAngle, const SkyObject& object,
                FaultSink& faults)
{
    const double H = CalcRadians(Decimal(hourAngle)) * 15;
    const double sinDelta = object.sinDelta;
    const double s = cosPhi * object.cosDelta * std::cos(H) + sinDelta * sinPhi;
    const double a = CalcASN(s, faults);
    double q = cosPhi * std::cos(a);
    if (q < 1e-20)
        q = 1e-20;
    double c = (sinDelta - sinPhi * s) / q;
    // Deliberate: near the zenith and the nadir the division above magnifies rounding far past
    // the arcsine's margin (5e-12 seen for an object 0.04 degrees from the nadir on the
    // meridian), which would end the program on valid data. There the same cosine is taken
    // from the two horizontal components, which cannot pass 1. c is never clamped, and a site
    // on a pole keeps the fatal fault.
    if (std::fabs(c) > 1 && cosPhi > 0) {
        const double north = sinDelta * cosPhi - sinPhi * object.cosDelta * std::cos(H);
        const double horizontal = std::hypot(north, object.cosDelta * std::sin(H));
        c = horizontal > 0 ? north / horizontal : 0;
    }
    double A = CalcACS(c, faults);
    if (std::sin(H) > 0)
        A = kTwoPiShort - A;
    return {CalcDegrees(a), CalcDegrees(A)};
}

// What RiseSet takes from the clock and site.
struct RiseSetSite
{
    double L = 0;  // longitude, hours east
    double G0 = 0; // Gtime's sidereal time at 0h of the date
    double D = 0;  // the horizon, radians
    double sinPhi = 0, cosPhi = 0;
    double PTz = 0;
    bool standardTime = true;
    bool timesAMPM = true;
};

RiseSetTimes RiseSetAt(const RiseSetSite& site, const SkyObject& object, FaultSink& faults)
{
    RiseSetTimes out;
    const RiseSetSidereal sidereal =
        RiseSetSiderealTimes(object, site.sinPhi, site.cosPhi, site.D, faults);
    out.status = sidereal.status;
    if (sidereal.status != 0)
        return out;
    std::string* texts[2] = {&out.riseTime, &out.setTime};
    const double values[2] = {sidereal.LR, sidereal.LS};
    for (int k = 0; k < 2; ++k) {
        const GtimeResult g = GtimeFromG0(values[k] - site.L, site.G0, 0.0);
        double t = ConvertToDecimal(g.seconds, g.minutes, g.hours);
        t = t - site.PTz;
        if (!site.standardTime)
            t += 1;
        if (t < 0)
            t += 24;
        if (t >= 24)
            t -= 24;
        WriteRiseSetTime(t, site.timesAMPM, *texts[k]);
    }
    return out;
}

// The best time's text of a sample's clock time.
void WriteBestTime(int bestHour, int bestMinute, bool timesAMPM, std::string& out)
{
    char buffer[32];
    std::size_t n = 0;
    if (!timesAMPM) {
        n = HoursMinutes(bestHour, bestMinute, buffer);
    } else if (bestHour < 12) {
        n = HoursMinutes(bestHour == 0 ? 12 : bestHour, bestMinute, buffer);
        n = Append(buffer, n, " AM");
    } else {
        n = HoursMinutes(bestHour > 12 ? bestHour - 12 : bestHour, bestMinute, buffer);
        n = Append(buffer, n, " PM");
    }
    out.assign(buffer, n);
}

} // namespace

std::optional<CivilDate> ObservingDate(const ObservingClock& clock, const Clock& computerClock)
{
    if (clock.UseRealTime == "Y" || IsBlankText(clock.PDate)) {
        const LocalDateTime now = computerClock.Now();
        return CivilDate{now.year, now.month, now.day};
    }
    return ParseObservingDate(clock.PDate);
}

RiseSetSidereal RiseSetSiderealTimes(const SkyObject& object, double sinPhi, double cosPhi,
                                     double D, FaultSink& faults)
{
    RiseSetSidereal out;
    const double alpha = object.alpha;
    const double delta = object.delta;
    const double cosDelta = object.cosDelta;
    if (std::fabs(cosDelta * cosPhi) < 1e-10) {
        out.status = 2;
        return out;
    }
    double Y = sinPhi / cosDelta;
    if (Y > 1)
        Y = 1;
    // Deliberate: +1 on this side too; rise and set times have always been computed so.
    if (Y < -1)
        Y = 1;
    const double delta2 = D * Y + delta;
    const double cH = -sinPhi * std::tan(delta2) / cosPhi;
    // The arccosine of Y is wanted only for an object that rises and sets. Y is a number
    // within -1 and 1 by now, where the arcsine cannot fault, or NaN, which reaches here too
    // and faults first as it always has.
    if (cH < -1) {
        out.status = -1;
        return out;
    }
    if (cH > 1) {
        out.status = 1;
        return out;
    }
    const double A = CalcACS(Y, faults);
    const double dH = D * std::sin(A);
    const double H = (CalcACS(cH, faults) + dH) * kHoursPerRadianShort;
    // Deliberate: the azimuths of rising and setting are not used, but an argument past 1
    // here is still the fatal arcsine fault.
    CheckASN(std::sin(delta2) / cosPhi, faults);

    out.LR = 24 + alpha - H;
    out.LS = alpha + H;
    for (double* v : {&out.LR, &out.LS}) {
        if (*v < 0)
            *v += 24;
        if (*v > 24)
            *v -= 24;
    }
    return out;
}

SkyObject MakeSkyObject(const Hms& ra, const Dms& dec)
{
    SkyObject object;
    object.alpha = Decimal(ra);
    object.delta = CalcRadians(Decimal(dec));
    object.sinDelta = std::sin(object.delta);
    object.cosDelta = std::cos(object.delta);
    return object;
}

RiseSetShown ShownRiseSet(const RiseSetTimes& times)
{
    if (times.status == -1)
        return {"CPolar", ""};
    if (times.status == 1)
        return {"*Never", "Rises*"};
    if (times.status == 2)
        return {"*Can't", "Calc*"};
    return {times.riseTime, times.setTime};
}

std::string RiseSetTimeText(double hours, bool timesAMPM)
{
    std::string text;
    WriteRiseSetTime(hours, timesAMPM, text);
    return text;
}

Hms CalcHourAngle(const ObservingClock& clock, const Clock& computerClock, const Hms& ra,
                  bool usePtime, FaultSink& faults)
{
    const std::optional<CivilDate> date = ObservingDate(clock, computerClock);
    if (!date) {
        faults.ReportFault(kTypeMismatch, "Module1.CalcHourAngle");
        return {};
    }
    double hour = 0;
    double minute = 0;
    if (clock.UseRealTime != "Y" || usePtime) {
        ReadTimeText(clock.Ptime, hour, minute);
    } else {
        const LocalDateTime now = computerClock.Now();
        hour = now.hour;
        minute = now.minute;
    }
    return ToHms(HourAngleAt(clock, *date, hour, minute, Decimal(ra)));
}

AltAzm CalcAltAzm(const ObservingClock& clock, const Hms& hourAngle, const Dms& dec,
                  FaultSink& faults)
{
    const double phi = CalcRadians(clock.Plat);
    return AltAzmAt(std::sin(phi), std::cos(phi), hourAngle, MakeSkyObject({}, dec), faults);
}

AltAzm CalcAltAzm(const SkyPlan& plan, const Hms& hourAngle, const Dms& dec, FaultSink& faults)
{
    return CalcAltAzm(plan, hourAngle, MakeSkyObject({}, dec), faults);
}

AltAzm CalcAltAzm(const SkyPlan& plan, const Hms& hourAngle, const SkyObject& object,
                  FaultSink& faults)
{
    return AltAzmAt(plan.sinPhi, plan.cosPhi, hourAngle, object, faults);
}

RiseSetTimes RiseSet(const ObservingClock& clock, const Clock& computerClock, const Hms& ra,
                     const Dms& dec, FaultSink& faults)
{
    RiseSetSite site;
    site.L = -clock.Plon / 15;
    const double phi = CalcRadians(clock.Plat);
    const std::optional<CivilDate> date = ObservingDate(clock, computerClock);
    if (!date) {
        faults.ReportFault(kTypeMismatch, "Module1.RiseSet");
        return {};
    }
    site.G0 = GtimeG0(static_cast<std::int16_t>(date->year), static_cast<std::int16_t>(date->month),
                      date->day);
    site.D = CalcRadians(ConvertToDecimal(0, kHorizonArcMinutes, 0));
    site.cosPhi = std::cos(phi);
    site.sinPhi = std::sin(phi);
    site.PTz = clock.PTz;
    site.standardTime = clock.PStd == "S";
    site.timesAMPM = clock.timesAMPM;
    return RiseSetAt(site, MakeSkyObject(ra, dec), faults);
}

BestTime FindBestTimeToObserve(const ObservingClock& clock, const Clock& computerClock,
                               const Hms& ra, const Dms& dec, std::int16_t step, FaultSink& faults,
                               SampleProgress* progress)
{
    BestTime out;
    // The samples set the time; the date is the one CalcHourAngle takes with its flag set.
    const std::optional<CivilDate> date = ObservingDate(clock, computerClock);
    if (!date) {
        faults.ReportFault(kTypeMismatch, "Module1.CalcHourAngle");
        out.bestTime = "n/a";
        return out;
    }
    const double raHours = Decimal(ra);
    if (progress != nullptr)
        progress->Open(1, 24);
    double best = 0;
    double bestAzimuth = 0;
    int bestHour = -1;
    int bestMinute = 0;
    // A step below 1 would never reach minute 59; the preferences refuse it, and here it
    // samples nothing instead of hanging.
    const int minuteStep = step;
    for (int h = 1; h <= 24; ++h) {
        // Deliberate: 24 stands for hour 0 of the same date, sampled last; minute 0 never is.
        const int hour = h == 24 ? 0 : h;
        for (int m = 1; minuteStep >= 1 && m <= 59; m += minuteStep) {
            const Hms ha = ToHms(HourAngleAt(clock, *date, hour, m, raHours));
            const AltAzm sample = CalcAltAzm(clock, ha, dec, faults);
            if (sample.altitude > best) {
                best = sample.altitude;
                bestAzimuth = sample.azimuth;
                bestHour = hour;
                bestMinute = m;
            }
            if (progress != nullptr)
                progress->Sample(h, sample.altitude);
        }
    }
    if (progress != nullptr)
        progress->Close();
    out.bestAltitude = RoundPlaces(best, 2);
    out.bestAzimuth = RoundPlaces(bestAzimuth, 2);
    if (bestHour < 0) {
        out.bestTime = "n/a";
        return out;
    }
    WriteBestTime(bestHour, bestMinute, clock.timesAMPM, out.bestTime);
    return out;
}

SkyPlan MakeSkyPlan(const ObservingClock& clock, const Clock& computerClock)
{
    SkyPlan plan;
    plan.clock = clock;
    plan.L = -clock.Plon / 15;
    plan.phi = CalcRadians(clock.Plat);
    plan.cosPhi = std::cos(plan.phi);
    plan.sinPhi = std::sin(plan.phi);
    plan.D = CalcRadians(ConvertToDecimal(0, kHorizonArcMinutes, 0));
    plan.standardTime = clock.PStd == "S";
    const std::optional<CivilDate> date = ObservingDate(clock, computerClock);
    if (!date)
        return plan;
    plan.dateValid = true;
    plan.year = static_cast<std::int16_t>(date->year);
    plan.month = static_cast<std::int16_t>(date->month);
    plan.day = date->day;
    plan.G0 = GtimeG0(plan.year, plan.month, plan.day);
    double hour = 0;
    double minute = 0;
    if (clock.UseRealTime != "Y") {
        ReadTimeText(clock.Ptime, hour, minute);
    } else {
        const LocalDateTime now = computerClock.Now();
        hour = now.hour;
        minute = now.minute;
    }
    plan.lst = LocalSiderealAt(clock, *date, hour, minute);
    return plan;
}

Hms CalcHourAngle(const SkyPlan& plan, const Hms& ra, FaultSink& faults)
{
    if (!plan.dateValid) {
        faults.ReportFault(kTypeMismatch, "Module1.CalcHourAngle");
        return {};
    }
    return ToHms(HourAngleFrom(plan.lst, Decimal(ra)));
}

RiseSetTimes RiseSet(const SkyPlan& plan, const Hms& ra, const Dms& dec, FaultSink& faults)
{
    return RiseSet(plan, MakeSkyObject(ra, dec), faults);
}

RiseSetTimes RiseSet(const SkyPlan& plan, const SkyObject& object, FaultSink& faults)
{
    if (!plan.dateValid) {
        faults.ReportFault(kTypeMismatch, "Module1.RiseSet");
        return {};
    }
    RiseSetSite site;
    site.L = plan.L;
    site.G0 = plan.G0;
    site.D = plan.D;
    site.sinPhi = plan.sinPhi;
    site.cosPhi = plan.cosPhi;
    site.PTz = plan.clock.PTz;
    site.standardTime = plan.standardTime;
    site.timesAMPM = plan.clock.timesAMPM;
    return RiseSetAt(site, object, faults);
}

BestTimePlan MakeBestTimePlan(const ObservingClock& clock, const Clock& computerClock,
                              std::int16_t step)
{
    BestTimePlan plan;
    plan.clock = clock;
    const double phi = CalcRadians(clock.Plat);
    plan.sinPhi = std::sin(phi);
    plan.cosPhi = std::cos(phi);
    plan.shortcut = plan.cosPhi >= 0.01;
    const std::optional<CivilDate> date = ObservingDate(clock, computerClock);
    if (!date)
        return plan;
    plan.dateValid = true;
    const int minuteStep = step;
    for (int h = 1; h <= 24; ++h) {
        const int hour = h == 24 ? 0 : h;
        for (int m = 1; minuteStep >= 1 && m <= 59; m += minuteStep) {
            plan.samples.push_back({static_cast<std::int8_t>(hour), static_cast<std::int8_t>(m),
                                    LocalSiderealAt(clock, *date, hour, m)});
        }
    }
    return plan;
}

BestTime FindBestTimeToObserve(const BestTimePlan& plan, const Hms& ra, const Dms& dec,
                               FaultSink& faults)
{
    BestTime out;
    if (!plan.dateValid) {
        faults.ReportFault(kTypeMismatch, "Module1.CalcHourAngle");
        out.bestTime = "n/a";
        return out;
    }
    const double raHours = Decimal(ra);
    const SkyObject object = MakeSkyObject(ra, dec);
    const std::size_t count = plan.samples.size();
    double best = 0;
    double bestAzimuth = 0;
    int bestHour = -1;
    int bestMinute = 0;
    // Ties keep the earlier sample, so the search yields the first sample of the highest
    // altitude when that is above 0.
    const auto consider = [&](const BestTimePlan::Sample& sample, const AltAzm& position) {
        if (position.altitude > best) {
            best = position.altitude;
            bestAzimuth = position.azimuth;
            bestHour = sample.hour;
            bestMinute = sample.minute;
        }
    };

    const auto evaluate = [&](const BestTimePlan::Sample& sample) {
        return AltAzmAt(plan.sinPhi, plan.cosPhi, ToHms(HourAngleFrom(sample.lst, raHours)),
                        object, faults);
    };
    const double cosDelta = object.cosDelta;
    // At most 24 x 59 samples, with a step of 1 minute.
    constexpr std::size_t kMaxSamples = 24 * 59;
    if (!plan.shortcut || count > kMaxSamples || !(raHours >= 0 && raHours <= 24) ||
        !(plan.cosPhi * cosDelta >= 1e-3)) {
        for (const BestTimePlan::Sample& sample : plan.samples)
            consider(sample, evaluate(sample));
    } else {
        // The sine of a sample's altitude is s = cos(lat) cos(dec) cos(H) + sin(dec) sin(lat),
        // and the altitude rises with it: the highest samples are those nearest the meridian.
        // A sample 0.04 hours (0.0105 radians) farther from it than the nearest one has an s
        // lower by at least cos(lat) cos(dec) x 5e-5, far beyond rounding (some 1e-15), so only
        // the samples within that band go through CalcAltAzm to be compared.
        // The arcsines of CalcAltAzm can fault only near the meridian, above or below the pole:
        // the cosine c of the azimuth obeys 1 - c^2 >= (cos(dec) sin(H))^2, and with the site
        // 0.01 from a pole or more and (cos(dec) sin(H))^2 >= 1e-4 its rounding error (some
        // 1e-11) cannot take it past 1, nor can s pass 1. |sin(H)| >= 0.01 / cos(dec) holds at
        // 0.06 / cos(dec) hours from hour angle 0 or 12 and beyond, so the samples nearer than
        // that (with 1e-4 hours for the tenth of a second H is rounded to) go through
        // CalcAltAzm too, in the search's order, so that a fault is the plain search's own.
        const double unsafeHours = 0.06 / std::fabs(cosDelta) + 1e-4;
        double fromMeridian[kMaxSamples];
        double nearest = 24;
        for (std::size_t i = 0; i < count; ++i) {
            const double ha = HourAngleFrom(plan.samples[i].lst, raHours);
            const double d0 = std::min(ha, 24 - ha);
            if (d0 < unsafeHours || std::fabs(ha - 12) < unsafeHours)
                evaluate(plan.samples[i]);
            fromMeridian[i] = d0;
            nearest = std::min(nearest, d0);
        }
        for (std::size_t i = 0; i < count; ++i) {
            if (fromMeridian[i] < nearest + 0.04)
                consider(plan.samples[i], evaluate(plan.samples[i]));
        }
    }
    out.bestAltitude = RoundPlaces(best, 2);
    out.bestAzimuth = RoundPlaces(bestAzimuth, 2);
    if (bestHour < 0) {
        out.bestTime = "n/a";
        return out;
    }
    WriteBestTime(bestHour, bestMinute, plan.clock.timesAMPM, out.bestTime);
    return out;
}

namespace {

constexpr std::string_view kPrecessionLocation = "Module1.Precession";

// The epoch rounded to its 16-bit year, or nothing when it does not fit.
std::optional<double> EpochYear(double epochYear)
{
    const double rounded = std::nearbyint(epochYear);
    if (!(rounded >= -32768.0 && rounded <= 32767.0))
        return std::nullopt;
    return rounded;
}

struct PrecessionRates
{
    double m = 0, n = 0, N = 0;
};

PrecessionRates RatesFrom(const PrecessionPlan& target, double epochRounded)
{
    const double D1 = CalcJulian(1, 1, static_cast<std::int16_t>(epochRounded));
    const double T1 = D1 / 36525;
    PrecessionRates r;
    r.N = (target.D2 - D1) / 365.2425;
    const double mA = 3.07234 + 0.00186 * T1;
    const double nA = 20.0468 - 0.0085 * T1;
    r.m = (mA + target.mB) / 2;
    r.n = (nA + target.nB) / 2;
    return r;
}

PrecessedPosition Precess(const PrecessionRates& rates, const Hms& ra, const Dms& dec)
{
    const double m = rates.m;
    const double n = rates.n;
    const double N = rates.N;
    double alpha = CalcRadians(Decimal(ra)) * 15;
    double delta = CalcRadians(Decimal(dec));
    const double dAlpha = (m + n * std::sin(alpha) * std::tan(delta) / 15) * 7.272205e-05 * N;
    const double dDelta = n * std::cos(alpha) * 4.848137e-06 * N;
    alpha += dAlpha;
    delta += dDelta;
    if (alpha > 6.2831853)
        alpha -= 6.2831853;
    if (alpha < 0)
        alpha += 6.2831853;
    PrecessedPosition out;
    const Sexagesimal r = ConvertFromDecimal(CalcDegrees(alpha) / 15);
    out.ra = {r.degrees, r.minutes, r.seconds};
    out.dec = SignPush(ConvertFromDecimal(CalcDegrees(delta)));
    return out;
}

} // namespace

PrecessionPlan MakePrecessionPlan(std::string_view year, std::string_view month,
                                  std::string_view day, double commonEpoch)
{
    PrecessionPlan plan;
    const std::optional<double> targetYear = ParseNumber(year);
    const std::optional<double> targetMonth = ParseNumber(month);
    const std::optional<double> targetDay = ParseNumber(day);
    if (!targetYear || !targetMonth || !targetDay) {
        plan.fault = kTypeMismatch;
        return plan;
    }
    const double y2 = std::nearbyint(*targetYear);
    const double m2 = std::nearbyint(*targetMonth);
    if (!(y2 >= -32768.0 && y2 <= 32767.0 && m2 >= -32768.0 && m2 <= 32767.0)) {
        plan.fault = kOverflow;
        return plan;
    }
    plan.D2 = CalcJulian(*targetDay, static_cast<std::int16_t>(m2), static_cast<std::int16_t>(y2));
    plan.T2 = plan.D2 / 36525;
    plan.mB = 3.07234 + 0.00186 * plan.T2;
    plan.nB = 20.0468 - 0.0085 * plan.T2;
    if (const std::optional<double> common = EpochYear(commonEpoch)) {
        const PrecessionRates rates = RatesFrom(plan, *common);
        plan.haveCommon = true;
        plan.commonEpoch = *common;
        plan.m = rates.m;
        plan.n = rates.n;
        plan.N = rates.N;
    }
    return plan;
}

PrecessedPosition Precession(const PrecessionPlan& plan, const Hms& ra, const Dms& dec,
                             double epochYear, FaultSink& faults)
{
    // The epoch is checked before the target, as the plain routine does.
    const std::optional<double> epochRounded = EpochYear(epochYear);
    if (!epochRounded) {
        faults.ReportFault(kOverflow, kPrecessionLocation);
        return {ra, dec};
    }
    if (!plan.fault.empty()) {
        faults.ReportFault(plan.fault, kPrecessionLocation);
        return {ra, dec};
    }
    if (plan.haveCommon && *epochRounded == plan.commonEpoch)
        return Precess({plan.m, plan.n, plan.N}, ra, dec);
    return Precess(RatesFrom(plan, *epochRounded), ra, dec);
}

PrecessedPosition Precession(std::string_view year, std::string_view month, std::string_view day,
                             const Hms& ra, const Dms& dec, double epochYear, FaultSink& faults)
{
    return Precession(MakePrecessionPlan(year, month, day, epochYear), ra, dec, epochYear, faults);
}

double CalcAngSep(const Hms& ra1, const Dms& dec1, const Hms& ra2, const Dms& dec2,
                  FaultSink& faults)
{
    constexpr double factor = kPiShort / 180;
    // The sign is read from the first field's text, so -0 counts as positive, and the other
    // fields keep their own signs.
    const auto decimal = [](double first, double minutes, double seconds) {
        const double sign = first < 0 ? -1.0 : 1.0;
        return ThroughText(sign * (std::fabs(first) + minutes / 60 + seconds / 3600));
    };
    const double r1 = decimal(ra1.hours, ra1.minutes, ra1.seconds) * 15 * factor;
    const double d1 = decimal(dec1.degrees, dec1.minutes, dec1.seconds) * factor;
    const double r2 = decimal(ra2.hours, ra2.minutes, ra2.seconds) * 15 * factor;
    const double d2 = decimal(dec2.degrees, dec2.minutes, dec2.seconds) * factor;
    const double sinHalfDec = std::sin((d1 - d2) / 2);
    const double sinHalfRa = ThroughText(std::sin((r1 - r2) / 2));
    const double hav =
        sinHalfDec * sinHalfDec + std::cos(d1) * std::cos(d2) * sinHalfRa * sinHalfRa;
    const double r = std::sqrt(hav);
    const double q = 1 - r * r;
    if (q == 0) {
        faults.ReportFault(kDivisionByZero, "Module1.CalcAngSep");
        return 0;
    }
    if (!(q > 0)) {
        faults.ReportFault(kInvalidCall, "Module1.CalcAngSep");
        return 0;
    }
    return 2 * std::atan(r / std::sqrt(q)) / factor;
}

RaDecRadians PrecessFK5(double T0, double T1, double alpha, double delta, FaultSink& faults)
{
    const double dT = T1 - T0;
    const double A = 2306.2181 + (1.39656 - 0.000139 * T0) * T0;
    const double zeta = (A + (0.30188 - 0.000344 * T0 + 0.017998 * dT) * dT) * dT * kArcSecond;
    const double z = (A + (1.09468 + 0.000066 * T0 + 0.018203 * dT) * dT) * dT * kArcSecond;
    const double B = 2004.3109 - (0.8533 + 0.000217 * T0) * T0;
    const double theta = (B - (0.42665 + 0.000217 * T0 + 0.041833 * dT) * dT) * dT * kArcSecond;
    const double cosDelta = std::cos(delta);
    const double sinDelta = std::sin(delta);
    const double cosTheta = std::cos(theta);
    const double sinTheta = std::sin(theta);
    const double cosAz = std::cos(alpha + zeta);
    const double a = cosDelta * std::sin(alpha + zeta);
    const double b = cosTheta * cosDelta * cosAz - sinTheta * sinDelta;
    const double c = sinTheta * cosDelta * cosAz + cosTheta * sinDelta;
    RaDecRadians out;
    out.alpha = atn2(a, b) + z;
    if (out.alpha < 0)
        out.alpha += kTwoPi;
    out.delta = asin(c, faults);
    return out;
}

double EquinoxCorrection(double T)
{
    return (0.0775 + 0.085 * T) * 15 * kArcSecond;
}

} // namespace astro
