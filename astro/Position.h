#pragma once
// Sky position and visibility for the observing clock and site: hour angle, altitude and
// azimuth, rise and set, the best time to observe, precession and angular separation. These
// run for every row of an object list, so none allocates (the texts fit the strings' own
// storage) and all are safe to call from several threads at once.
//
// Conventions: positions are sexagesimal triples (right ascension in hours, declination in
// degrees; a negative field makes the value negative). Longitude Plon is WEST positive.
// Azimuth is measured from north (0) through east (90). No refraction is applied; rise and
// set use a fixed horizon 34 arc minutes below the geometric one. Day numbers and sidereal
// time are those of the day-number family of Time.h.
// Faults are reported at "Module1.<routine>" and the routine returns its outputs as they
// stood; the arcsine fault (CalcASN) is fatal.

#include "astro/FaultSink.h"
#include "astro/ObservingClock.h"
#include "astro/Text.h"
#include "astro/Time.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace astro {

// The observing date: the computer's under real time or when PDate is blank, else PDate;
// nothing when PDate is not a date.
std::optional<CivilDate> ObservingDate(const ObservingClock& clock, const Clock& computerClock);

// Hour angle of a right ascension for the observing clock.
// Given: usePtime: with real time on, take the time from Ptime (the date still from the
// computer clock).
// Notes: the time zone is applied with its fraction, and an hour more when PStd is not "S".
// The date is the local one even when Universal Time has passed midnight, so for those hours
// sidereal time is one day out. A blank PDate means today.
// Status: a PDate that is not a date reports "Type mismatch" and returns 0 0 0.
// Location: Module1.CalcHourAngle
Hms CalcHourAngle(const ObservingClock& clock, const Clock& computerClock, const Hms& ra,
                  bool usePtime, FaultSink& faults);

struct AltAzm
{
    double altitude = 0; // degrees
    double azimuth = 0;  // degrees, north 0, east 90
};

// Altitude and azimuth of an hour angle and declination at latitude Plat.
// Notes: the cosine of the azimuth is not clamped: where rounding takes it past 1, or at a
// site on a pole, the fatal arcsine fault ends the process.
AltAzm CalcAltAzm(const ObservingClock& clock, const Hms& hourAngle, const Dms& dec,
                  FaultSink& faults);

// RiseSet's outputs. status: 0 rises and sets (texts filled), -1 never sets, 1 never rises,
// 2 cannot be computed (site or object at a pole); the texts stay empty unless status is 0.
struct RiseSetTimes
{
    float status = 0;
    std::string riseTime;
    std::string setTime;
};

// Local rise and set times on the observing date, as "hh:mm" or "hh:mm AM"/"hh:mm PM"
// (timesAMPM). Times are wrapped into 0-24 hours; no day is indicated.
// Status: a PDate that is not a date reports "Type mismatch".
// Location: Module1.RiseSet
RiseSetTimes RiseSet(const ObservingClock& clock, const Clock& computerClock, const Hms& ra,
                     const Dms& dec, FaultSink& faults);

// What a list shows for RiseSet's outputs: the two times for status 0; "CPolar" and nothing
// for -1 (never sets); "*Never" and "Rises*" for 1; "*Can't" and "Calc*" for 2.
struct RiseSetShown
{
    std::string_view rise;
    std::string_view set;
};
RiseSetShown ShownRiseSet(const RiseSetTimes& times);

// RiseSet's text of a local time in hours (0 to 24): "hh:mm", or with timesAMPM "hh:mm AM"
// below 12 and "hh:mm PM" from 12 (hour 0 shown as 12). Minutes are cut, not rounded, from
// the time rounded to a tenth of a second, so 11.99999 reads "12:00 AM".
std::string RiseSetTimeText(double hours, bool timesAMPM);

// What the best-time search shows while it samples; a user interface passes one in.
class SampleProgress
{
public:
    virtual ~SampleProgress() = default;
    // Before sampling: positions run from first to last (1 to 24).
    virtual void Open(int first, int last) = 0;
    // After each sample: the hour (1-24) as position, the sample's altitude for the caption,
    // and a turn for the user interface.
    virtual void Sample(int position, double altitudeDeg) = 0;
    virtual void Close() = 0;
};

struct BestTime
{
    double bestAltitude = 0; // degrees, rounded to 2 places
    double bestAzimuth = 0;  // degrees, rounded to 2 places
    std::string bestTime;    // "hh:mm", "hh:mm AM"/"PM", or "n/a"
};

// The highest of the object's sampled positions on the observing date: hours 1 to 23 and
// then 0 (same date), minutes 1, 1 + step, ... up to 59. Ties keep the earlier sample; an
// object never above 0 degrees gives "n/a" with altitude and azimuth 0.
// Given: step, minutes between samples (the setting PInterval); below 1 nothing is sampled.
// Notes: Ptime is not read: the samples stand for it, under real time too.
// Status: a PDate that is not a date is reported once and gives "n/a".
// Location: Module1.CalcHourAngle (the date)
BestTime FindBestTimeToObserve(const ObservingClock& clock, const Clock& computerClock,
                               const Hms& ra, const Dms& dec, std::int16_t step, FaultSink& faults,
                               SampleProgress* progress = nullptr);

// ---------------------------------------------------------------------------------------
// Plans: the same routines for a whole list of objects at one observing clock. What depends
// only on the clock and site (the date, sidereal times, the site's trigonometry) is worked out
// once; each object then costs only its own part. Results are bit for bit those of the plain
// routines for the same clock, with one difference: under real time the computer clock is read
// once, when the plan is made, instead of once per object.

// What CalcAltAzm and RiseSet take from one object's position, worked out once for both.
struct SkyObject
{
    double alpha = 0; // right ascension, hours
    double delta = 0; // declination, radians (short constants)
    double sinDelta = 0, cosDelta = 0;
};

SkyObject MakeSkyObject(const Hms& ra, const Dms& dec);

// RiseSet's steps up to the local sidereal times of rising and setting, for any horizon.
// Given: object; sinPhi, cosPhi of the latitude; D the horizon's vertical displacement,
// radians (RiseSet's is 34 arc minutes).
// Returned: status as RiseSet's; for status 0, LR and LS, the local sidereal times of
// rising and setting, hours, brought into 0 to 24.
struct RiseSetSidereal
{
    float status = 0;
    double LR = 0;
    double LS = 0;
};
RiseSetSidereal RiseSetSiderealTimes(const SkyObject& object, double sinPhi, double cosPhi,
                                     double D, FaultSink& faults);

// What CalcHourAngle (flag false) and RiseSet take from the clock.
struct SkyPlan
{
    ObservingClock clock;
    bool dateValid = false; // false: PDate is not a date
    std::int16_t year = 0, month = 0;
    double day = 0;
    double lst = 0; // local sidereal time of the clock, hours
    double G0 = 0;  // Gtime's sidereal time at 0h of the date, hours
    double L = 0;   // longitude, hours east
    double phi = 0; // latitude, radians (short constants)
    double sinPhi = 0, cosPhi = 0;
    double D = 0; // the rise and set horizon, radians
    bool standardTime = true;
};

SkyPlan MakeSkyPlan(const ObservingClock& clock, const Clock& computerClock);

// CalcHourAngle(clock, computerClock, ra, false, faults) for the plan's clock.
// Location: Module1.CalcHourAngle
Hms CalcHourAngle(const SkyPlan& plan, const Hms& ra, FaultSink& faults);

// CalcAltAzm(clock, hourAngle, dec, faults) for the plan's latitude.
AltAzm CalcAltAzm(const SkyPlan& plan, const Hms& hourAngle, const Dms& dec, FaultSink& faults);
AltAzm CalcAltAzm(const SkyPlan& plan, const Hms& hourAngle, const SkyObject& object,
                  FaultSink& faults);

// RiseSet(clock, computerClock, ra, dec, faults) for the plan's clock.
// Location: Module1.RiseSet
RiseSetTimes RiseSet(const SkyPlan& plan, const Hms& ra, const Dms& dec, FaultSink& faults);
RiseSetTimes RiseSet(const SkyPlan& plan, const SkyObject& object, FaultSink& faults);

// The best-time search's samples for one clock and step: each sample's clock time and local
// sidereal time.
struct BestTimePlan
{
    struct Sample
    {
        std::int8_t hour = 0;
        std::int8_t minute = 0;
        double lst = 0; // hours
    };
    ObservingClock clock;
    bool dateValid = false;
    std::vector<Sample> samples; // in the search's order
    double cosPhi = 0, sinPhi = 0;
    // The site is far enough from a pole for the shortcut of FindBestTimeToObserve(plan, ...).
    bool shortcut = false;
};

BestTimePlan MakeBestTimePlan(const ObservingClock& clock, const Clock& computerClock,
                              std::int16_t step);

// FindBestTimeToObserve(clock, computerClock, ra, dec, step, faults) for the plan's clock and
// step, without progress. Notes: the altitude of each sample is compared through the sine of
// it; only the samples that can be the highest, or whose azimuth could fault, go through
// CalcAltAzm, so that the result, the faults included, is that of the plain routine.
// Location: Module1.CalcHourAngle (the date)
BestTime FindBestTimeToObserve(const BestTimePlan& plan, const Hms& ra, const Dms& dec,
                               FaultSink& faults);

struct PrecessedPosition
{
    Hms ra;
    Dms dec; // sign pushed into the first non-zero field
};

// Position of epochYear (January 1.0) precessed to a target date given as texts; a low-order
// formula, good to a few arc seconds over a century away from the poles.
// Status: a target text that is not a number reports "Type mismatch", an epoch or target year
// outside 16 bits "Overflow"; the position comes back unchanged.
// Location: Module1.Precession
PrecessedPosition Precession(std::string_view year, std::string_view month, std::string_view day,
                             const Hms& ra, const Dms& dec, double epochYear, FaultSink& faults);

// What Precession takes from its target date, worked out once for a list of objects, and the
// rates for the epoch most of them share.
struct PrecessionPlan
{
    std::string_view fault; // what the target texts give: empty, kTypeMismatch or kOverflow
    double D2 = 0, T2 = 0;  // the target's day number and centuries
    double mB = 0, nB = 0;  // the rates at the target
    bool haveCommon = false;
    double commonEpoch = 0; // an epoch rounded to its year, and for it:
    double m = 0, n = 0, N = 0;
};

// commonEpoch: the EPOCH most objects carry (2000 for a catalogue of J2000 positions).
PrecessionPlan MakePrecessionPlan(std::string_view year, std::string_view month,
                                  std::string_view day, double commonEpoch = 2000);

// Precession(year, month, day, ra, dec, epochYear, faults) for the plan's target date, faults
// included.
// Location: Module1.Precession
PrecessedPosition Precession(const PrecessionPlan& plan, const Hms& ra, const Dms& dec,
                             double epochYear, FaultSink& faults);

// Angular separation in degrees of two positions.
// Notes: a triple is negative when its first field is; the other fields keep their own signs.
// Values pass through their 15-digit texts on the way, as they always have.
// Status: diametrically opposite positions report "Division by zero" and return 0.
// Location: Module1.CalcAngSep
double CalcAngSep(const Hms& ra1, const Dms& dec1, const Hms& ra2, const Dms& dec2,
                  FaultSink& faults);

struct RaDecRadians
{
    double alpha = 0; // radians, 0 to 2 pi
    double delta = 0; // radians
};

// Rigorous precession (IAU 1976 angles) from epoch T0 to T1, centuries from J2000.0.
// Notes: a declination that lands exactly on a pole faults in asin (Module2.asin) and comes
// back 0.
RaDecRadians PrecessFK5(double T0, double T1, double alpha, double delta, FaultSink& faults);

// Right ascension correction, radians, from the FK4 to the FK5 equinox at T centuries.
double EquinoxCorrection(double T);

} // namespace astro
