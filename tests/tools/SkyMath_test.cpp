#include "tools/SkyMath.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using tools::SplitRaDec;

TEST(SplitRaDec, FieldsCarriesAndSigns)
{
    struct Row
    {
        const char* what;
        double raDeg, decDeg;
        double hours, minutes, degrees, decMinutes;
    };
    const Row rows[] = {
        {"origin", 0, 0, 0, 0, 0, 0},
        {"south of the equator by less than a degree keeps the sign on the minutes", 323.3626,
         -(49 + 23.7 / 60) / 60, 21, 33.4504, 0, -49.395},
        {"a whisker south rounds to a signed thousandth", 10, -0.00001, 0, 40, 0, -0.001},
        {"below the rounding step is plain zero", 10, -1e-7, 0, 40, 0, 0},
        {"one and a half south", 10, -1.5, 0, 40, -1, 30},
        {"minutes that round to 60 carry into the degrees", 10, 30.9999999999, 0, 40, 31, 0},
        {"south minutes that round to 60 carry too", 10, -0.99999999999, 0, 40, -1, 0},
        {"south pole", 10, -90, 0, 40, -90, 0},
        {"RA that rounds to 24 h wraps to 0 h", 359.99999999, 45, 0, 0, 45, 0},
        {"RA of exactly 360 is 0 h", 360, 45, 0, 0, 45, 0},
        {"negative RA wraps", -15, 45, 23, 0, 45, 0},
        {"RA minutes that round to 60 carry into the hours", 14.9999999999, 45, 1, 0, 45, 0},
        {"last step before midnight", 359.9999, 45, 23, 59.9996, 45, 0},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.what);
        const auto p = SplitRaDec(r.raDeg, r.decDeg);
        EXPECT_EQ(p.RAhours, r.hours);
        EXPECT_NEAR(p.RAminutes, r.minutes, 1e-9);
        EXPECT_EQ(p.DeclinationDegrees, r.degrees);
        EXPECT_NEAR(p.DeclinationMinutes, r.decMinutes, 1e-9);
        // A stored -0.0 would be lost by the engine and would mislead a sign test.
        EXPECT_FALSE(std::signbit(p.DeclinationDegrees) && p.DeclinationDegrees == 0);
        EXPECT_LT(p.RAminutes, 60.0);
        EXPECT_LT(std::fabs(p.DeclinationMinutes), 60.0);
    }
}

TEST(SplitRaDec, RoundTripsWithinTheRoundingStep)
{
    for (double dec = -89.95; dec < 90; dec += 0.37) {
        for (double ra = 0.013; ra < 360; ra += 7.1) {
            const auto p = SplitRaDec(ra, dec);
            ASSERT_NEAR(tools::JoinRaDeg(p), ra, 15.0 * 0.5e-4 / 60 + 1e-12) << ra << " " << dec;
            ASSERT_NEAR(tools::JoinDecDeg(p), dec, 0.5e-3 / 60 + 1e-12) << ra << " " << dec;
        }
    }
}

TEST(PrecessFromJ2000, MeeusExample)
{
    // J. Meeus, Astronomical Algorithms, 2nd ed., example 21.b: theta Persei, mean place at
    // J2000.0 with proper motion to 2028 Nov 13.19 TD (JD 2462088.69) is 41.054063, 49.227750;
    // precessed: 41.547214, 49.348483 (degrees, printed to 1e-6).
    const auto p = tools::PrecessFromJ2000(41.054063, 49.227750, 2462088.69);
    EXPECT_NEAR(p.raDeg, 41.547214, 2e-6);
    EXPECT_NEAR(p.decDeg, 49.348483, 2e-6);
}

TEST(GalacticFromJ2000, ReferencePoints)
{
    struct Row
    {
        const char* what;
        double raDeg, decDeg, l, b, tolerance;
    };
    const Row rows[] = {
        // SIMBAD, Sgr A*: 17 45 40.04 -29 00 28.1; l 359.9442, b -0.0462.
        {"galactic centre", 266.416833, -29.007806, 359.9442, -0.0462, 2e-3},
        // NED, M31: 00 42 44.3 +41 16 09; l 121.1743, b -21.5733.
        {"M31", 10.684583, 41.269167, 121.1743, -21.5733, 2e-3},
        // The defining pole of the system: b is 90 there.
        {"north galactic pole", 192.85948, 27.12825, -1, 90, 1e-6},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.what);
        const auto g = tools::GalacticFromJ2000(r.raDeg, r.decDeg);
        if (r.l >= 0) {
            const double dl = std::remainder(g.lDeg - r.l, 360.0);
            EXPECT_NEAR(dl, 0.0, r.tolerance);
        }
        EXPECT_NEAR(g.bDeg, r.b, r.tolerance);
    }
}

TEST(ConstellationFinder, KnownObjects)
{
    const tools::ConstellationFinder finder(
        tools::ReadBoundaryTable(SELVANE_SOURCE_RESOURCES "/constellation_data_roman87.dat"));
    struct Row
    {
        const char* what;
        double raDeg, decDeg;
        const char* abbr;
    };
    const Row rows[] = {
        {"M31", 10.6846, 41.2692, "And"},
        {"M42", 83.8221, -5.3911, "Ori"},
        {"M2, just south of the equator", 323.3626, -0.8233, "Aqr"},
        {"NGC 188, near the pole", 11.798, 85.244, "Cep"},
        {"47 Tuc", 6.0236, -72.0813, "Tuc"},
        {"Omega Cen", 201.697, -47.4795, "Cen"},
        {"north celestial pole", 0, 90, "UMi"},
        {"south celestial pole", 123.4, -90, "Oct"},
        {"M13", 250.4218, 36.4599, "Her"},
        {"NGC 7814, RA just past 0 h", 0.812, 16.145, "Peg"},
        {"RA just before 24 h", 359.99, 0.5, "Psc"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.what);
        EXPECT_EQ(finder.Find(r.raDeg, r.decDeg), r.abbr);
    }
}

TEST(CalendarFromJd, MeeusExamplesAndTheCalendarReform)
{
    struct Row
    {
        double jd;
        int year, month;
        double day;
    };
    // J. Meeus, Astronomical Algorithms, 2nd ed., ch. 7 (examples 7.c and the table of 7.a),
    // and the first day of the Gregorian calendar.
    const Row rows[] = {
        {2436116.31, 1957, 10, 4.81}, {1842713.0, 333, 1, 27.5},  {2451545.0, 2000, 1, 1.5},
        {2299160.5, 1582, 10, 15.0},  {2299159.5, 1582, 10, 4.0}, {2415020.5, 1900, 1, 1.0},
        {2451603.5, 2000, 2, 29.0},   {2415079.5, 1900, 3, 1.0},  {2415078.5, 1900, 2, 28.0},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.jd);
        const auto d = tools::CalendarFromJd(r.jd);
        EXPECT_EQ(d.year, r.year);
        EXPECT_EQ(d.month, r.month);
        EXPECT_NEAR(d.day, r.day, 1e-6);
    }
}

} // namespace
