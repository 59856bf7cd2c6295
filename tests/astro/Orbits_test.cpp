#include "astro/Orbits.h"

#include "astro/Time.h"
#include "tests/astro/RecordingFaults.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace {

using astro_test::RecordingFaults;

const std::filesystem::path kShipped = SELVANE_SHIPPED_RESOURCES;
constexpr double kDeg = 3.141592653589793 / 180;

struct NoBoxes : astro::MessageBoxSink
{
    void ShowMessageBox(std::string_view) override {}
};

double Norm(const astro::Rect& v)
{
    return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}

double Dot(const astro::Rect& a, const astro::Rect& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

TEST(Orbits, AnomaliesSolveTheirEquationsOnBothSidesOfTheParabola)
{
    RecordingFaults faults;
    // Kepler: the eccentric anomaly of the result gives back the mean anomaly, also with the
    // cubic start (e above 0.97, |M| below 0.6) and for M outside -pi to pi.
    for (const double e : {0.0, 0.5, 0.97, 0.98, 0.999, 0.9999999})
        for (const double M : {-3.0, -0.5, -1e-4, 0.0, 1e-4, 0.3, 0.59, 2.0, 7.0}) {
            const double v = astro::Kepler(M, e, faults);
            const double E = 2 * std::atan(std::sqrt((1 - e) / (1 + e)) * std::tan(v / 2));
            EXPECT_NEAR(E - e * std::sin(E), astro::modpi(M), 1e-9) << "e " << e << " M " << M;
        }
    // Parabola: s = tan(v/2) solves Barker's equation s^3 + 3 s = W.
    for (const double days : {-400.0, -1.0, 0.01, 30.0, 5000.0}) {
        const double q = 0.6;
        const double s = std::tan(astro::Parabola(days / 36525, q, faults) / 2);
        const double W = 0.03649116245 * days / (q * std::sqrt(q));
        EXPECT_NEAR(s * s * s + 3 * s, W, 1e-6 * std::max(1.0, std::fabs(W))) << days;
    }
    // Just inside, on and just outside e = 1 the three solvers agree on the same orbit.
    for (const double days : {-60.0, -2.0, 0.5, 20.0, 150.0}) {
        const double dT = days / 36525;
        const double q = 0.5;
        const double e = 0.9999999;
        const double a = q / (1 - e);
        const double M = dT * 36525 * astro::kGaussConstant / (a * std::sqrt(a));
        const double onParabola = astro::Parabola(dT, q, faults);
        EXPECT_NEAR(astro::Kepler(M, e, faults), onParabola, 2e-6) << days;
        EXPECT_NEAR(astro::NearParabola(dT, q, 1.0000001, faults), onParabola, 2e-6) << days;
        EXPECT_NEAR(astro::NearParabola(dT, q, e, faults), onParabola, 2e-6) << days;
    }
    EXPECT_TRUE(faults.reports.empty());

    // Far out on a hyperbola the series cannot converge; the bounded loops end all the same,
    // with a number or the run-time's overflow.
    for (const double e : {1.5, 3.0, 20.0}) {
        RecordingFaults far;
        const double v = astro::NearParabola(100.0, 0.3, e, far);
        EXPECT_TRUE(std::isfinite(v));
        for (const auto& r : far.reports)
            EXPECT_EQ(r.location, "Module2.NearParabola");
    }
    // Which solver an orbit takes shows in the faults of a zero perihelion distance: e of
    // exactly 1 the parabola's, just above 1 the parabola's start and the series', just below
    // 1 none (Kepler's equation runs on a and n).
    const std::vector<std::pair<double, std::vector<std::string>>> routes{
        {1.0, {"Division by zero @ Module2.Parabola"}},
        {1.0000001,
         {"Division by zero @ Module2.Parabola", "Division by zero @ Module2.NearParabola"}},
        {0.9999999, {}}};
    for (const auto& [e, expected] : routes) {
        RecordingFaults zero;
        astro::OrbitElements el;
        el.e = e;
        el.a = 1;
        el.n = 0.01;
        const astro::Rect at = astro::PosRectCo(0.001, el, astro::CalcOrbitCon(el, 0.4), zero);
        EXPECT_EQ(zero.Texts(), expected) << e;
        EXPECT_EQ(Norm(at) == 0, e >= 1) << e;
    }
}

TEST(Orbits, MagnitudesAndPhaseAngleFollowTheirFormulas)
{
    RecordingFaults faults;
    // A slope of 10 at r = 1: the magnitude falls 25 log10(Delta) as Delta grows.
    for (const double Delta : {0.5, 1.0, 2.0, 10.0})
        EXPECT_NEAR(astro::CometMagnitude(Delta, 1, 5, 10, faults), 5 + 25 * std::log10(Delta),
                    1e-12);
    // The distances enter crossed: r in the 5 log term, Delta in the slope's.
    EXPECT_NEAR(astro::CometMagnitude(1, 2, 5, 10, faults), 5 + 5 * std::log10(2.0), 1e-12);
    // At r = R the phase angle taken from r, R and r is 60 degrees, whatever Delta is.
    for (const double r : {0.4, 1.0, 3.0})
        EXPECT_NEAR(astro::CalcPhaseAngle(r, r, r, faults), 60 * kDeg, 1e-12);
    // At phase 0 both phase functions are 1: H + 5 log10(Delta r), H in single precision.
    EXPECT_NEAR(astro::AsteroidMagnitude(2, 3, 0, 3.34f, 0.12f, faults),
                double(3.34f) + 5 * std::log10(6.0), 1e-12);
    EXPECT_TRUE(faults.reports.empty());

    RecordingFaults zero;
    EXPECT_EQ(astro::CometMagnitude(1, 0, 5, 4, zero), 0);
    EXPECT_EQ(astro::AsteroidMagnitude(0, 2, 0.3, 5, 0.15f, zero), 0);
    EXPECT_EQ(zero.Texts(),
              (std::vector<std::string>{
                  "Invalid procedure call or argument @ Module2.Comet Magnitude",
                  "Invalid procedure call or argument @ Module2.AsteroidMagnitude"}));
}

TEST(Orbits, GeocentricPlaceReportsThePoleAndAZeroDistance)
{
    const astro::Rect sun{0.3, -0.9, 0.1};
    RecordingFaults faults;
    astro::GeoPlace place{1, 0.25, 7};
    // Straight above the Earth's pole: asin(1) is the division fault, the declination 0.
    astro::RectHelioToGeo(sun, {-0.3, 0.9, 1.9}, place, faults);
    EXPECT_DOUBLE_EQ(place.delta, 2);
    EXPECT_EQ(place.dec, 0);
    // At the Earth: the distance is 0 and the declination stays as it stood.
    place.dec = 0.25;
    astro::RectHelioToGeo(sun, {-0.3, 0.9, -0.1}, place, faults);
    EXPECT_EQ(place.delta, 0);
    EXPECT_EQ(place.dec, 0.25);
    EXPECT_EQ(faults.Texts(), (std::vector<std::string>{"Division by zero @ Module2.asin",
                                                       "Division by zero @ Module2.RectHelioToGeo"}));
}

TEST(Orbits, RetrogradeReductionFromB1950IsTheRotationOfProgradeOrbits)
{
    RecordingFaults faults;
    // The orbit's pole and perihelion direction in the ecliptic of its equinox.
    auto vectors = [](double i, double Omega, double omega) {
        const astro::Rect pole{std::sin(i) * std::sin(Omega), -std::sin(i) * std::cos(Omega),
                               std::cos(i)};
        const astro::Rect peri{
            std::cos(omega) * std::cos(Omega) - std::sin(omega) * std::sin(Omega) * std::cos(i),
            std::cos(omega) * std::sin(Omega) + std::sin(omega) * std::cos(Omega) * std::cos(i),
            std::sin(omega) * std::sin(i)};
        return std::array<astro::Rect, 2>{pole, peri};
    };
    auto reduce = [&](double i, double Omega, double omega) {
        astro::FK4FK5ReduceEclElements(i, Omega, omega, faults);
        return vectors(i, Omega, omega);
    };
    // The rotation from B1950 to J2000 as the reduction carries prograde orbits: the images of
    // three poles, whose old vectors are the columns of an invertible matrix.
    const std::array<std::array<double, 3>, 3> in{{{30, 0, 10}, {30, 90, 10}, {60, 200, 10}}};
    double P[3][3], Q[3][3];
    for (int k = 0; k < 3; ++k) {
        const astro::Rect p = vectors(in[k][0] * kDeg, in[k][1] * kDeg, 0)[0];
        const astro::Rect q = reduce(in[k][0] * kDeg, in[k][1] * kDeg, 0)[0];
        P[0][k] = p.x, P[1][k] = p.y, P[2][k] = p.z;
        Q[0][k] = q.x, Q[1][k] = q.y, Q[2][k] = q.z;
    }
    // R = Q P^-1 by the adjugate.
    double inv[3][3];
    const double det = P[0][0] * (P[1][1] * P[2][2] - P[1][2] * P[2][1]) -
                       P[0][1] * (P[1][0] * P[2][2] - P[1][2] * P[2][0]) +
                       P[0][2] * (P[1][0] * P[2][1] - P[1][1] * P[2][0]);
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
            const int r1 = (c + 1) % 3, r2 = (c + 2) % 3, c1 = (r + 1) % 3, c2 = (r + 2) % 3;
            inv[r][c] = (P[r1][c1] * P[r2][c2] - P[r1][c2] * P[r2][c1]) / det;
        }
    auto rotate = [&](const astro::Rect& v) {
        double R[3][3] = {};
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c)
                for (int k = 0; k < 3; ++k)
                    R[r][c] += Q[r][k] * inv[k][c];
        return astro::Rect{R[0][0] * v.x + R[0][1] * v.y + R[0][2] * v.z,
                           R[1][0] * v.x + R[1][1] * v.y + R[1][2] * v.z,
                           R[2][0] * v.x + R[2][1] * v.y + R[2][2] * v.z};
    };
    // Retrograde comets (1P/Halley's B1950 elements among them): the reduced pole and
    // perihelion are the rotated ones, to well under an arc second.
    constexpr double arcSecond = kDeg / 3600;
    for (const auto& [i, Omega, omega] :
         std::vector<std::array<double, 3>>{{162.2384, 58.1540, 111.8466}, {95, 300, 20},
                                            {179.5, 10, 250}}) {
        const auto before = vectors(i * kDeg, Omega * kDeg, omega * kDeg);
        const auto after = reduce(i * kDeg, Omega * kDeg, omega * kDeg);
        for (int k = 0; k < 2; ++k) {
            const astro::Rect expected = rotate(before[k]);
            // Unit vectors: the length of the difference is the angle between them.
            EXPECT_LT(Norm({expected.x - after[k].x, expected.y - after[k].y,
                            expected.z - after[k].z}),
                      0.05 * arcSecond)
                << i << " " << Omega << " " << omega << (k == 0 ? " pole" : " perihelion");
        }
    }
    EXPECT_TRUE(faults.reports.empty());
}

TEST(Orbits, EphemerisStepsFromTheRetardedPlace)
{
    RecordingFaults faults;
    NoBoxes boxes;
    astro::EphemInput in;
    in.kind = "C";
    in.elementDate = astro::ElementDateText(2024, 4, 21.1);
    EXPECT_EQ(in.elementDate, "20240421022400.00");
    in.q = 0.78;
    in.e = 0.9955;
    in.i = 74.19;
    in.Node = 255.86;
    in.peri = 198.99;
    in.cometH = 5;
    in.cometK = 8;
    in.start = "20240415060000";
    in.steps = 3;
    in.step = 0.25;
    std::vector<astro::EphemStep> steps;
    ASSERT_TRUE(astro::EPHEM(in, kShipped, faults, boxes,
                             [&](const astro::EphemStep& s) { steps.push_back(s); }));
    ASSERT_EQ(steps.size(), 3u);
    EXPECT_NEAR(steps[0].jd, astro::ElementDateJD("20240415060000"), 1e-9);
    EXPECT_NEAR(steps[2].jd - steps[0].jd, 0.5, 1e-9);

    // The same step by hand: the place light left the comet, the elongation from it.
    astro::Ephemeris run(in, kShipped, faults, boxes);
    const double T = astro::JDToT(steps[0].jd);
    const astro::Rect sun = astro::SunRectCo(T, faults);
    const astro::OrbitConstants k = astro::CalcOrbitCon(run.Elements(), astro::kOrbitObliquity);
    astro::GeoPlace place;
    astro::RectHelioToGeo(sun, astro::PosRectCo(T, run.Elements(), k, faults), place, faults);
    const astro::Rect body = astro::PosRectCo(T - place.delta * astro::kLightTimeCenturies,
                                              run.Elements(), k, faults);
    const astro::Rect geo{sun.x + body.x, sun.y + body.y, sun.z + body.z};
    EXPECT_NEAR(steps[0].r, Norm(body), 1e-12);
    EXPECT_NEAR(steps[0].delta, Norm(geo), 1e-12);
    const double elongation = std::acos(Dot(geo, sun) / (Norm(geo) * Norm(sun))) / kDeg;
    EXPECT_EQ(steps[0].elongation, std::floor(elongation + 0.5));
    EXPECT_NEAR(*steps[0].mag, 5 + 5 * std::log10(Norm(body)) + 20 * std::log10(Norm(geo)),
                1e-9);
    // Right ascension and declination carry the rounding offsets of 3 and 2 shown places.
    EXPECT_NEAR(steps[0].ra - 0.0005, std::fmod(std::atan2(geo.y, geo.x) / kDeg / 15 + 24, 24),
                1e-9);
    EXPECT_NEAR(std::fabs(steps[0].dec) - 0.005, std::fabs(std::asin(geo.z / Norm(geo)) / kDeg),
                1e-9);
    EXPECT_TRUE(faults.reports.empty());

    // Without K there is no magnitude; an asteroid without a semi-major axis ends the set-up.
    in.cometK.reset();
    in.steps = 1;
    astro::EPHEM(in, kShipped, faults, boxes,
                 [](const astro::EphemStep& s) { EXPECT_FALSE(s.mag); });
    in.kind = "A";
    in.a = 0;
    EXPECT_FALSE(astro::EPHEM(in, kShipped, faults, boxes,
                              [](const astro::EphemStep&) { ADD_FAILURE(); }));
    EXPECT_EQ(faults.Texts(), std::vector<std::string>{"Division by zero @ Module2.EPHEM"});
}

TEST(Orbits, SiteAltitudeCulminatesAtTheMeridianAltitude)
{
    RecordingFaults faults;
    const double jd0 = astro::ElementDateJD("20241124");
    for (const auto& [lat, dec] : std::vector<std::array<double, 2>>{{46.5, 20}, {-33, -60}}) {
        double highest = -90;
        for (int minute = 0; minute < 1440; ++minute)
            highest = std::max(highest, astro::SiteAltitude(jd0 + minute / 1440.0, 7.5, dec, lat,
                                                            90.2, faults));
        EXPECT_NEAR(highest, 90 - std::fabs(lat - dec), 0.01);
    }
    EXPECT_TRUE(faults.reports.empty());
}

} // namespace
