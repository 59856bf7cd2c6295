// Accuracy of the time and position routines against the IAU's ERFA library. Each tolerance is
// the error that the routine's own simplifications explain; the measured worst differences are
// printed, so that they can be quoted.

#include "astro/Position.h"
#include "astro/Time.h"
#include "tests/astro/RecordingFaults.h"

#include <erfa.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>

namespace {

using astro_test::RecordingFaults;

constexpr double kPi = 3.141592653589793;
constexpr double kDegToRad = kPi / 180;
constexpr double kRadToArcSec = 180 * 3600 / kPi;

double ErfaJulianDay(int year, int month, double day)
{
    double jd0 = 0;
    double jd1 = 0;
    EXPECT_EQ(eraCal2jd(year, month, static_cast<int>(day), &jd0, &jd1), 0);
    return jd0 + jd1 + (day - std::floor(day));
}

// A random Gregorian calendar date with a fraction of a day.
struct Moment
{
    int year;
    int month;
    double day;
};

Moment RandomMoment(std::mt19937& rng, int firstYear, int lastYear)
{
    std::uniform_int_distribution<int> years(firstYear, lastYear);
    std::uniform_int_distribution<int> months(1, 12);
    std::uniform_int_distribution<int> days(1, 28);
    std::uniform_real_distribution<double> fraction(0, 1);
    return {years(rng), months(rng), days(rng) + fraction(rng)};
}

TEST(ErfaAccuracy, JulianDays)
{
    // Both day counts are exact calendar arithmetic; only the fraction of the day rounds.
    std::mt19937 rng(1);
    RecordingFaults faults;
    double worst = 0;
    for (int i = 0; i < 2000; ++i) {
        const Moment m = RandomMoment(rng, 1583, 2500);
        const double jd = ErfaJulianDay(m.year, m.month, m.day);
        const double calc = astro::CalcJulian(m.day, static_cast<std::int16_t>(m.month),
                                              static_cast<std::int16_t>(m.year)) +
                            2415020.0;
        const double fromCalendar = astro::CalendarToJD(
            {static_cast<std::int16_t>(m.year), static_cast<std::int16_t>(m.month), m.day});
        worst = std::max({worst, std::fabs(calc - jd), std::fabs(fromCalendar - jd)});

        int y = 0, mo = 0, d = 0;
        double f = 0;
        ASSERT_EQ(eraJd2cal(jd, 0, &y, &mo, &d, &f), 0);
        const astro::CalendarDate back = astro::JDToCalendar(jd, faults);
        EXPECT_EQ(back.year, y);
        EXPECT_EQ(back.month, mo);
        EXPECT_NEAR(back.day, d + f, 1e-8);
        if (m.year >= 1900) {
            const astro::CalendarDate fromDayNumber =
                astro::CalcCalendarDate(jd - 2415020.0, faults);
            EXPECT_EQ(fromDayNumber.year, y);
            EXPECT_EQ(fromDayNumber.month, mo);
            EXPECT_NEAR(fromDayNumber.day, d + f, 1e-8);
        }
    }
    std::printf("[ measured ] Julian Day, worst difference: %.3g days\n", worst);
    EXPECT_LT(worst, 1e-8);
    EXPECT_TRUE(faults.reports.empty());
}

TEST(ErfaAccuracy, GreenwichSiderealTime)
{
    // Gtime keeps Newcomb's 1900 polynomial on the FK4 equinox; the IAU 1982 value differs by
    // the FK4-FK5 equinox offset, 0.0775 + 0.085 T seconds (up to 0.16 s by 2100), plus the
    // short daily rate (0.0657098 h, 2.4e-8 h short a day: up to 0.03 s by December 31).
    std::mt19937 rng(2);
    std::uniform_real_distribution<double> hours(0, 24);
    double worst = 0;
    for (int i = 0; i < 2000; ++i) {
        const Moment m = RandomMoment(rng, 1900, 2100);
        const double ut = hours(rng);
        const double day = std::floor(m.day);
        const double gst = astro::Gtime(ut, static_cast<std::int16_t>(m.year),
                                        static_cast<std::int16_t>(m.month), day, 1.0)
                               .result;
        const double jd = ErfaJulianDay(m.year, m.month, day) + ut / 24;
        const double reference = eraGmst82(jd, 0) * 12 / kPi;
        double diff = std::fmod(gst - reference + 36, 24.0) - 12;
        diff = std::fabs(diff) * 3600;
        worst = std::max(worst, diff);
    }
    std::printf("[ measured ] Greenwich sidereal time, worst difference: %.3f s\n", worst);
    EXPECT_LT(worst, 0.2);
}

TEST(ErfaAccuracy, PrecessFK5AgainstIau1976)
{
    // The same IAU 1976 model: ERFA's matrices from J2000 to each epoch, composed. The
    // general-epoch series (terms in T0 and dT up to third order) and the composition differ by
    // the series' truncation, which grows with both: a few milliarcseconds for epochs within
    // three centuries of J2000, so 0.01" is the bound.
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> epochs(-3, 3);
    std::uniform_real_distribution<double> ras(0, 2 * kPi);
    std::uniform_real_distribution<double> sinDecs(-0.9999, 0.9999);
    RecordingFaults faults;
    double worst = 0;
    for (int i = 0; i < 2000; ++i) {
        const double t0 = epochs(rng);
        const double t1 = epochs(rng);
        const double ra = ras(rng);
        const double dec = std::asin(sinDecs(rng));
        const astro::RaDecRadians p = astro::PrecessFK5(t0, t1, ra, dec, faults);

        double m0[3][3], m1[3][3], v[3], w[3], u[3];
        eraPmat76(2451545.0, t0 * 36525, m0);
        eraPmat76(2451545.0, t1 * 36525, m1);
        eraS2c(ra, dec, v);
        eraTrxp(m0, v, w); // back to J2000
        eraRxp(m1, w, u);  // on to T1
        double pv[3];
        eraS2c(p.alpha, p.delta, pv);
        worst = std::max(worst, eraSepp(pv, u) * kRadToArcSec);
    }
    std::printf("[ measured ] PrecessFK5 vs IAU 1976, worst difference: %.3g arcsec\n", worst);
    EXPECT_LT(worst, 0.01);
    EXPECT_TRUE(faults.reports.empty());
}

TEST(ErfaAccuracy, LowOrderPrecession)
{
    // Precession's formula is linear in time with the rates of the starting position, over up
    // to 50 years and away from the poles (|dec| < 70): the neglected second-order terms grow
    // as the square of the years and of tan(dec), about 10" at 50 years and 70 degrees; the
    // output is also rounded to 0.1 s of time (1.5") and 0.1" of declination.
    std::mt19937 rng(4);
    std::uniform_real_distribution<double> ras(0, 24);
    std::uniform_real_distribution<double> decs(-70, 70);
    std::uniform_int_distribution<int> epochYears(1950, 2000);
    std::uniform_int_distribution<int> spans(-50, 50);
    RecordingFaults faults;
    double worst = 0;
    for (int i = 0; i < 1000; ++i) {
        const double ra = ras(rng);
        const double dec = decs(rng);
        const int epoch = epochYears(rng);
        const int target = epoch + spans(rng);
        const astro::Sexagesimal r = astro::ConvertFromDecimal(ra);
        const astro::Dms d = astro::SignPush(astro::ConvertFromDecimal(dec));
        const std::string year = std::to_string(target);
        const astro::PrecessedPosition p =
            astro::Precession(year, "1", "1", {r.degrees, r.minutes, r.seconds}, d, epoch, faults);

        // IAU 1976 between the same two dates (January 1.0).
        const double jd0 = ErfaJulianDay(epoch, 1, 1);
        const double jd1 = ErfaJulianDay(target, 1, 1);
        double m0[3][3], m1[3][3], v[3], w[3], u[3];
        eraPmat76(jd0, 0, m0);
        eraPmat76(jd1, 0, m1);
        eraS2c(astro::ConvertToDecimal(r.seconds, r.minutes, r.degrees) * 15 * kDegToRad,
               astro::ConvertToDecimal(d.seconds, d.minutes, d.degrees) * kDegToRad, v);
        eraTrxp(m0, v, w);
        eraRxp(m1, w, u);
        double pv[3];
        eraS2c(astro::ConvertToDecimal(p.ra.seconds, p.ra.minutes, p.ra.hours) * 15 * kDegToRad,
               astro::ConvertToDecimal(p.dec.seconds, p.dec.minutes, p.dec.degrees) * kDegToRad,
               pv);
        worst = std::max(worst, eraSepp(pv, u) * kRadToArcSec);
    }
    std::printf("[ measured ] Precession (low order) vs IAU 1976, worst: %.2f arcsec\n", worst);
    EXPECT_LT(worst, 15.0);
    EXPECT_TRUE(faults.reports.empty());
}

TEST(ErfaAccuracy, AltitudeAndAzimuth)
{
    // CalcHourAngle + CalcAltAzm against ERFA's hour angle to horizon conversion with the
    // IAU 1982 mean sidereal time, no refraction, UT1 = UTC. Local times are chosen so that
    // Universal Time stays on the local date (the routine keeps the local date on purpose).
    // Error budget: the hour angle is carried as a triple rounded to 0.1 s of time (1.5"),
    // sidereal time is up to 0.2 s (3") off as measured above, so 5" on the sky; azimuth is
    // compared as arc on the sky (times the cosine of the altitude).
    std::mt19937 rng(5);
    std::uniform_real_distribution<double> lats(-85, 85);
    std::uniform_real_distribution<double> lons(-180, 180);
    std::uniform_int_distribution<int> zones(-24, 24); // half hours
    std::uniform_int_distribution<int> hours(0, 23);
    std::uniform_int_distribution<int> minutes(0, 59);
    std::uniform_real_distribution<double> ras(0, 24);
    std::uniform_real_distribution<double> sinDecs(-0.996, 0.996);
    std::uniform_int_distribution<int> dst(0, 1);
    const astro::FixedClock computer;
    RecordingFaults faults;
    double worstAlt = 0;
    double worstAzOnSky = 0;
    int compared = 0;
    while (compared < 400) {
        const Moment m = RandomMoment(rng, 1950, 2050);
        astro::ObservingClock clock;
        clock.Plat = lats(rng);
        clock.Plon = lons(rng);
        clock.PTz = zones(rng) / 2.0;
        clock.PStd = dst(rng) != 0 ? "D" : "S";
        const int hour = hours(rng);
        const int minute = minutes(rng);
        const double utHour = hour + clock.PTz - (clock.PStd == "D" ? 1 : 0);
        if (utHour < 0 || utHour >= 24)
            continue;
        const double ut = utHour + minute / 60.0;
        char date[16];
        char time[16];
        std::snprintf(date, sizeof date, "%d-%02d-%02d", m.year, m.month, static_cast<int>(m.day));
        std::snprintf(time, sizeof time, "%02d:%02d", hour, minute);
        clock.PDate = date;
        clock.Ptime = time;
        const double ra = ras(rng);
        const double dec = std::asin(sinDecs(rng)) / kDegToRad;
        const astro::Sexagesimal r = astro::ConvertFromDecimal(ra);
        const astro::Dms d = astro::SignPush(astro::ConvertFromDecimal(dec));
        const astro::Hms raTriple{r.degrees, r.minutes, r.seconds};
        const astro::AltAzm aa = astro::CalcAltAzm(
            clock, astro::CalcHourAngle(clock, computer, raTriple, false, faults), d, faults);

        const double jd = ErfaJulianDay(m.year, m.month, std::floor(m.day)) + ut / 24;
        const double raRad =
            astro::ConvertToDecimal(r.seconds, r.minutes, r.degrees) * 15 * kDegToRad;
        const double decRad = astro::ConvertToDecimal(d.seconds, d.minutes, d.degrees) * kDegToRad;
        const double ha = eraGmst82(jd, 0) - clock.Plon * kDegToRad - raRad;
        double az = 0, el = 0;
        eraHd2ae(ha, decRad, clock.Plat * kDegToRad, &az, &el);
        const double altDiff = std::fabs(aa.altitude * kDegToRad - el) * kRadToArcSec;
        double azDiff = std::fabs(aa.azimuth * kDegToRad - az);
        azDiff = std::min(azDiff, 2 * kPi - azDiff);
        worstAlt = std::max(worstAlt, altDiff);
        worstAzOnSky = std::max(worstAzOnSky, azDiff * std::cos(el) * kRadToArcSec);
        ++compared;
    }
    std::printf("[ measured ] altitude, worst difference: %.2f arcsec\n", worstAlt);
    std::printf("[ measured ] azimuth x cos(altitude), worst difference: %.2f arcsec\n",
                worstAzOnSky);
    EXPECT_LT(worstAlt, 5.0);
    EXPECT_LT(worstAzOnSky, 5.0);
    EXPECT_TRUE(faults.reports.empty());
}

} // namespace
