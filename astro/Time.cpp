#include "astro/Time.h"

#include "astro/DataTables.h"
#include "astro/Text.h"
#include "astro/constants.h"

#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

namespace astro {

namespace {

// The run-time's Sgn: -1, 0 or +1.
double Sgn(double x)
{
    return x > 0 ? 1.0 : (x < 0 ? -1.0 : 0.0);
}

// A value stored into a 16-bit field: rounded half to even as the run-time converts; false
// when it does not fit.
bool ToInt16(double value, std::int16_t& out)
{
    const double rounded = std::nearbyint(value);
    if (!(rounded >= -32768.0 && rounded <= 32767.0))
        return false;
    out = static_cast<std::int16_t>(rounded);
    return true;
}

constexpr std::string_view kAsnClosing =
    "An internal error has occurred. Selvane will now exit at which point you can re-run the "
    "software.  Variable W = ";

} // namespace

// ---------------------------------------------------------------------------------------
// Day-number family

double CalcJulian(double day, std::int16_t month, std::int16_t year)
{
    double y = year;
    double m = month;
    double B = 0;
    if (y < 0)
        y += 1; // there is no year 0
    if (month < 3) {
        m += 12;
        y -= 1;
    }
    const bool gregorian =
        year > 1582 || (year == 1582 && (month > 10 || (month == 10 && day >= 15)));
    if (gregorian) {
        const double A = std::floor(y / 100.0);
        B = 2 - A + std::floor(A / 4.0);
    }
    double C = y >= 0 ? std::floor(365.25 * y) : CalcITG(365.25 * y - 0.75, 0);
    C -= 694025;
    const double D = std::floor(30.6001 * (m + 1));
    return C + B + D + day - 0.5;
}

CalendarDate CalcCalendarDate(double DJ, FaultSink& faults)
{
    CalendarDate out;
    const double d = DJ + 0.5;
    double I = CalcLif(d);
    const double F = d - I;
    // Deliberate: only I is carried, F stays 1; this matters for midnights before 1900 only.
    if (F == 1.0)
        I += 1;
    if (I > -115860) {
        const double A = CalcLif(I / 36524.25 + 0.99835726) + 14;
        I = I + 1 + A - CalcLif(A / 4);
    }
    const double B = CalcLif(I / 365.25 + 0.802601);
    const double C = I - CalcLif(365.25 * B + 0.750001) + 416;
    const double G = CalcLif(C / 30.6001);
    double month = G - 1;
    const double day = C - CalcLif(30.6001 * G) + F;
    double year = B + 1899;
    if (G > 13.5)
        month = G - 13;
    if (month < 2.5)
        year = B + 1900;
    if (year < 1)
        year -= 1;
    if (!ToInt16(month, out.month)) {
        faults.ReportFault(kOverflow, "Module1.CalcCalendarDate");
        return out;
    }
    out.day = day;
    if (!ToInt16(year, out.year))
        faults.ReportFault(kOverflow, "Module1.CalcCalendarDate");
    return out;
}

double CalcITG(double W, double S)
{
    const double I = std::floor(W);
    return I + Sgn(W) * S * std::floor((Sgn(W) - 1) / 2) * Sgn(W - I);
}

double CalcLif(double W)
{
    // Deliberate: 0 gives -1 and negatives one below their floor; the calendar date needs it.
    return std::floor(W) + std::floor((Sgn(W) - 1) / 2);
}

double CalcASN(double W, FaultSink& faults)
{
    // Deliberate: |W| within 1e-12 past 1 is floating-point rounding (an object exactly on the
    // meridian), not a fault; only a real domain error ends the process.
    if (std::fabs(W) > 1 && std::fabs(W) <= 1 + kAsnRoundingMargin)
        W = W > 0 ? 1 : -1;
    const double q = 1 - W * W;
    if (!(q >= 0)) {
        char value[kNumberTextSize];
        const std::size_t n = NumberText(W, value);
        std::string message(kInvalidCall);
        message += '\n';
        message += kAsnClosing;
        message.append(value, n);
        faults.ReportFault(message, kFatalFaultLocation);
        faults.EndProcess(kFatalExitCode);
        std::exit(kFatalExitCode);
    }
    return std::atan(W / (std::sqrt(q) + kAsnGuard));
}

double CalcACS(double W, FaultSink& faults)
{
    return kHalfPiShort - CalcASN(W, faults);
}

void CheckASN(double W, FaultSink& faults)
{
    if (!(std::fabs(W) <= 1 + kAsnRoundingMargin))
        CalcASN(W, faults);
}

double Log10(double x, FaultSink& faults)
{
    if (!(x > 0)) {
        faults.ReportFault(kInvalidCall, "Module1.Log10");
        return 0;
    }
    return std::log(x) / std::log(10.0);
}

GtimeResult Gtime(double time, std::int16_t year, std::int16_t month, double day, double mode)
{
    return GtimeFromG0(time, GtimeG0(year, month, day), mode);
}

double GtimeG0(std::int16_t year, std::int16_t month, double day)
{
    const double DJ = CalcJulian(day, month, year);
    const double D0 = CalcJulian(0, 1, year);
    const double T = D0 / 36525.0;
    const double R = 6.6460656 + (0.051262 + 2.581e-5 * T) * T;
    const double B = (T - (year - 1900) / 100.0) * 2400.0;
    const double Tz = 24.0 - R - B;
    return (DJ - D0) * kSiderealGainPerDay - Tz;
}

GtimeResult GtimeFromG0(double time, double G0, double mode)
{
    GtimeResult out;
    if (mode == 1.0) {
        double r = time * kSiderealPerSolar + G0;
        if (r > 24)
            r -= 24;
        if (r < 0)
            r += 24;
        out.result = r;
        return out;
    }
    if (G0 < 0)
        G0 += 24;
    double A = time - G0;
    if (A < 0)
        A += 24;
    out.result = A * kSolarPerSidereal;
    const Dms t = SignPush(ConvertFromDecimal(out.result));
    out.hours = t.degrees;
    out.minutes = t.minutes;
    out.seconds = t.seconds;
    return out;
}

UTInstant ConvertToGMT(const ObservingClock& clock, const Clock& computerClock, FaultSink& faults)
{
    UTInstant ut;
    int year = 0;
    int month = 0;
    int dayOfMonth = 0;
    double hour = 0;
    double minute = 0;
    if (clock.UseRealTime != "Y") {
        std::optional<CivilDate> date;
        if (clock.PDate.find_first_not_of(" \t") == std::string::npos) {
            const LocalDateTime now = computerClock.Now();
            date = CivilDate{now.year, now.month, now.day};
        } else {
            date = ParseObservingDate(clock.PDate);
        }
        if (!date) {
            faults.ReportFault(kTypeMismatch, "Module1.ConvertToGMT");
            return ut;
        }
        year = date->year;
        month = date->month;
        dayOfMonth = date->day;
        const std::string_view time(clock.Ptime);
        hour = LeadingNumber(time.substr(0, 2));
        minute = LeadingNumber(time.substr(std::min<std::size_t>(3, time.size()), 2));
    } else {
        const LocalDateTime now = computerClock.Now();
        year = now.year;
        month = now.month;
        dayOfMonth = now.day;
        hour = now.hour;
        minute = now.minute;
    }
    if (!ToInt16(month, ut.month) || !ToInt16(year, ut.year) || !ToInt16(minute, ut.minute)) {
        faults.ReportFault(kOverflow, "Module1.ConvertToGMT");
        return ut;
    }
    ut.day = dayOfMonth;
    // Deliberate: whole zone hours only, daylight ignored; sun, moon and planets use this.
    if (clock.PTz > 0) {
        hour += std::floor(clock.PTz);
        if (hour >= 24) {
            hour -= 24;
            const CalendarDate next =
                CalcCalendarDate(CalcJulian(ut.day, ut.month, ut.year) + 1, faults);
            ut.year = next.year;
            ut.month = next.month;
            ut.day = next.day;
        }
    } else if (clock.PTz < 0) {
        hour -= std::floor(std::fabs(clock.PTz));
        if (hour < 0) {
            hour += 24;
            const CalendarDate previous =
                CalcCalendarDate(CalcJulian(ut.day, ut.month, ut.year) - 1, faults);
            ut.year = previous.year;
            ut.month = previous.month;
            ut.day = previous.day;
        }
    }
    ut.hour = hour;
    ut.day = ut.day + (hour + ut.minute / 60.0) / 24.0;
    return ut;
}

// ---------------------------------------------------------------------------------------
// Julian-Day family

double log10(double x, FaultSink& faults)
{
    if (!(x > 0)) {
        faults.ReportFault(kInvalidCall, "Module2.log10");
        return 0;
    }
    return std::log(x) * kLog10OfE;
}

double CalendarToJD(const CalendarDate& date)
{
    int y = date.year;
    int m = date.month;
    if (date.month < 3) {
        y = date.year - 1;
        m = date.month + 12;
    }
    const int A = y / 100; // C++ integer division truncates toward zero
    int B = 0;
    // Deliberate: switches after October 4 (CalcJulian: 14); each family keeps its own.
    if (date.year > 1582 ||
        (date.year == 1582 && (date.month > 10 || (date.month == 10 && date.day > 4.0))))
        B = 2 - A + A / 4;
    return std::floor(365.25 * (y + 4716)) + std::floor(30.6001 * (m + 1)) + date.day + B - 1524.5;
}

namespace {

CalendarDate JDToCalendarAt(double JD, FaultSink& faults, std::string_view location)
{
    CalendarDate out;
    const double d = JD + 0.5;
    const double Z = std::floor(d);
    const double F = d - Z;
    double Q = Z;
    if (Z >= 2299161) {
        const double alpha = std::floor((Z - 1867216.25) / 36524.25);
        Q = Z + 1 + alpha - std::floor(alpha / 4);
    }
    const double R = Q + 1524;
    const double C = std::floor((R - 122.1) / 365.25);
    const double E = R - std::floor(365.25 * C);
    const double G = std::floor(E / 30.6001);
    out.day = E - std::floor(30.6001 * G) + F;
    const double month = G < 14 ? G - 1 : G - 13;
    const double year = month < 3 ? C - 4715 : C - 4716;
    if (!ToInt16(month, out.month) || !ToInt16(year, out.year))
        faults.ReportFault(kOverflow, location);
    return out;
}

} // namespace

CalendarDate JDToCalendar(double JD, FaultSink& faults)
{
    return JDToCalendarAt(JD, faults, "Module2.JDToCalendar");
}

CalendarDate JDToCalendar1(double JD, FaultSink& faults)
{
    return JDToCalendarAt(JD, faults, "Module1.JDToCalendar1");
}

double JDToT(double JD)
{
    return (JD - kJ2000) / kDaysPerCentury;
}

double ApproxDeltaT(double T, const std::filesystem::path& programDir, FaultSink& faults)
{
    return ApproxDeltaT(T, programDir, faults, ProcessDataTables());
}

double ApproxDeltaT(double T, const std::filesystem::path& programDir, FaultSink& faults,
                    DataTables& tables)
{
    const DeltaTTable* a = tables.DeltaT(programDir, faults, "Module2.ApproxDeltaT");
    if (a == nullptr)
        return 0;
    const double Y = 100 * T + 2000;
    if (Y > 2000)
        return (32.5 * T + 123.5) * T + 102.3;
    if (Y >= kDeltaTFirstYear) {
        // Deliberate: capped at the last interval, so 1992-2000 extrapolate it in a line.
        const int i =
            std::min(static_cast<int>(std::floor((Y - kDeltaTFirstYear) / 2)), kDeltaTCount - 2);
        const double f = Y / 2 - i - 810;
        const double ai = (*a)[static_cast<std::size_t>(i)];
        const double next = (*a)[static_cast<std::size_t>(i) + 1];
        return (ai + (next - ai) * f) / 10;
    }
    if (Y >= 948)
        return (22.5 * T + 67.5) * T + 50.6;
    return (46.5 * T + 573.36) * T + 2715.6;
}

double asin(double x, FaultSink& faults)
{
    if (x == 0)
        return 0;
    const double q = 1 - x * x;
    if (q == 0) {
        faults.ReportFault(kDivisionByZero, "Module2.asin");
        return 0;
    }
    if (!(q > 0)) {
        faults.ReportFault(kInvalidCall, "Module2.asin");
        return 0;
    }
    return std::atan(x / std::sqrt(q));
}

double acos(double x, FaultSink& faults)
{
    return kPi / 2 - asin(x, faults);
}

double atn2(double y, double x)
{
    if (y == 0 && x == 0)
        return 0;
    if (std::fabs(y) < std::fabs(x)) {
        const double r = std::atan(y / x);
        if (x < 0)
            return r < 0 ? r + kPi : r - kPi;
        return r;
    }
    const double r = kPi / 2 - std::atan(x / y);
    return y < 0 ? r - kPi : r;
}

double modpi(double x)
{
    return x - kTwoPi * std::floor(x / kTwoPi + 0.5);
}

double modpi2(double x)
{
    return x - kTwoPi * std::floor(x / kTwoPi);
}

namespace {

// Offset for a number of shown places, or nullptr after reporting the fault at location.
const double* RoundingOffset(int places, const std::filesystem::path& programDir, FaultSink& faults,
                             DataTables& tables, std::string_view location)
{
    const RoundingOffsets* offsets = tables.Offsets(programDir, faults, location);
    if (offsets == nullptr)
        return nullptr;
    if (places < 0 || places >= kRoundingOffsetCount) {
        faults.ReportFault(kSubscriptOutOfRange, location);
        return nullptr;
    }
    return &(*offsets)[static_cast<std::size_t>(places)];
}

} // namespace

double WriteDMS(double radians, int places, const std::filesystem::path& programDir,
                FaultSink& faults)
{
    return WriteDMS(radians, places, programDir, faults, ProcessDataTables());
}

double WriteDMS(double radians, int places, const std::filesystem::path& programDir,
                FaultSink& faults, DataTables& tables)
{
    const double* offset = RoundingOffset(places, programDir, faults, tables, "Module2.WriteDMS");
    if (offset == nullptr)
        return 0;
    const double sign = radians < 0 ? -1.0 : 1.0;
    return sign * (std::fabs(radians) * kDegreesPerRadian + *offset);
}

double WriteHMS(double radians, int places, const std::filesystem::path& programDir,
                FaultSink& faults)
{
    return WriteHMS(radians, places, programDir, faults, ProcessDataTables());
}

double WriteHMS(double radians, int places, const std::filesystem::path& programDir,
                FaultSink& faults, DataTables& tables)
{
    const double* offset = RoundingOffset(places, programDir, faults, tables, "Module2.WriteHMS");
    if (offset == nullptr)
        return 0;
    return std::fabs(radians) * kHoursPerRadian + *offset;
}

} // namespace astro
