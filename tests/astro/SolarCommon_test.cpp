#include "astro/SolarCommon.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr double kDeg = 0.017453292519943295;

// Centuries from 1900 January 0.5 of a Julian Day.
double CenturiesOf(double jd)
{
    return (jd - 2415020.0) / 36525;
}

TEST(SolveKepler, SatisfiesTheEquationForAnyMeanAnomalyAndEccentricity)
{
    const struct
    {
        double M, e;
    } rows[] = {{0, 0.0167},    {1, 0.0167}, {-1, 0.2},        {7, 0.5},
                {3.14159, 0.9}, {-20, 0.97}, {6.2831853, 0.05}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "M " << row.M << " e " << row.e);
        const double E = astro::SolveKepler(row.M, row.e);
        EXPECT_GE(E, 0);
        EXPECT_LE(E, 2 * M_PI + 1e-9);
        // M is brought into 0 to 2 pi first, so compare modulo a full circle.
        const double residual = std::remainder(E - row.e * std::sin(E) - row.M, 2 * M_PI);
        EXPECT_NEAR(residual, 0, 1e-9);
    }
}

TEST(EclipticToEquatorial, QuadrantsAndTheEclipticPole)
{
    const double eps = 23.44 * kDeg;
    const struct
    {
        double lamDeg, bDeg, raDeg, decDeg;
    } rows[] = {
        {0, 0, 0, 0},
        {90, 0, 90, 23.44},
        {180, 0, 180, 0},
        {270, 0, 270, -23.44},
        // Past 270 the right ascension stays below 360 and does not wrap to a negative.
        {359, 0, 359.08251, -0.39777},
        {0, 90, 270, 66.56},
        {45, -10, 45.47364, 6.75866},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "lambda " << row.lamDeg << " beta " << row.bDeg);
        const astro::Equatorial q =
            astro::EclipticToEquatorial(row.lamDeg * kDeg, row.bDeg * kDeg, eps);
        // Reference: the rotation by the obliquity about the x axis, to 1e-4 degrees.
        EXPECT_NEAR(q.ra / kDeg, row.raDeg, 1e-4);
        EXPECT_NEAR(q.dec / kDeg, row.decDeg, 1e-4);
    }
}

TEST(SunAt, AgreesWithTheModernTheoryWithinTheLowPrecisionBound)
{
    // Apparent ecliptic longitude of date and distance from astropy 5.2 (ERFA epv00, true
    // ecliptic of date), TT = UT. The low-precision theory is good to about 0.01 degree.
    const struct
    {
        double jd, apparentDeg, au;
    } rows[] = {
        {2448724.5, 22.33979, 1.0024977},  // 1992 April 12.0
        {2460482.5, 90.12444, 1.0162030},  // 2024 June 21.0
        {2341972.5, 280.71498, 0.9831547}, // 1700 January 1.0
        {2451545.0, 280.36817, 0.9833277}, // 2000 January 1.5
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "JD " << row.jd);
        const astro::SunPlace sun = astro::SunAt(CenturiesOf(row.jd));
        EXPECT_NEAR(std::remainder(sun.apparentLongitude - row.apparentDeg, 360), 0, 0.01);
        EXPECT_NEAR(sun.r, row.au, 2e-5);
        EXPECT_NEAR(sun.diameter, 2 * 961.15876 / row.au / 60, 0.001);
        EXPECT_GE(sun.trueLongitude, 0);
        EXPECT_LT(sun.trueLongitude, 2 * M_PI);
    }
}

TEST(NutationOf, SizeAndObliquity)
{
    // 1987 April 10.0 TT: nutation in longitude -3.788", in obliquity +9.443" (the IAU 1980
    // series); these thirteen terms come within 0.5".
    const astro::Nutation n = astro::NutationOf(CenturiesOf(2446895.5));
    EXPECT_NEAR(n.longitude * 3600, -3.788, 0.5);
    EXPECT_NEAR(n.obliquity * 3600, 9.443, 0.5);
    // Mean obliquity of that date 23 26'27.407".
    EXPECT_NEAR(astro::MeanObliquity(CenturiesOf(2446895.5)), 23.440946, 2e-5);
    EXPECT_NEAR(astro::TrueObliquity(CenturiesOf(2446895.5), n),
                (23.440946 + 9.443 / 3600) * 0.01745329252, 3e-6);
}

} // namespace
