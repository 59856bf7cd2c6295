#include "astro/Planets.h"

#include "astro/DataTables.h"
#include "astro/SolarCommon.h"
#include "astro/Text.h"
#include "astro/Time.h"
#include "astro/constants.h"

#include <cmath>
#include <optional>

namespace astro {

namespace {

constexpr std::string_view kLocation = "Module1.CalcPlanets";
// Degrees a day per revolution a century.
constexpr double kDailyMotionPerRevolution = 0.009856263;
// Days of light time per AU.
constexpr double kLightDaysPerAU = 0.005775518;
// The constant of aberration, radians.
constexpr double kAberration = 9.9387e-05;

enum Planet { Mercury = 1, Venus, Mars, Jupiter, Saturn, Uranus, Neptune, Pluto };

double Frac(double x)
{
    return x - std::floor(x);
}

// An angle brought into 0 to 360 degrees by whole turns.
double Reduce360(double degrees)
{
    return degrees - 360.0 * std::floor(degrees / 360.0);
}

double Cubic(const std::array<double, 4>& c, double T)
{
    return c[0] + T * (c[1] + T * (c[2] + T * c[3]));
}

// Corrections to a planet's elements and place; zero where a planet has no term.
struct Perturbations
{
    double longitude = 0;     // heliocentric longitude, degrees
    double radius = 0;        // radius vector, AU
    double meanLongitude = 0; // radians
    double eccentricity = 0;
    double meanAnomaly = 0;   // radians
    double semiMajorAxis = 0; // AU
    double latitude = 0;      // heliocentric latitude, radians
};

// One term a cos(e E + me Me + v V + ma Ma + j J + phase) in the mean anomalies (radians) of
// the Sun (E), Mercury, Venus, Mars and Jupiter.
struct CosTerm
{
    double a;
    int e, me, v, ma, j;
    double phase;
};

struct MeanAnomalies
{
    double sun = 0;
    std::array<double, kPlanetCount + 1> planet{}; // 1 to 8
};

template <std::size_t N> double SumCos(const CosTerm (&terms)[N], const MeanAnomalies& m)
{
    double sum = 0;
    for (const CosTerm& t : terms)
        sum += t.a * std::cos(t.e * m.sun + t.me * m.planet[Mercury] + t.v * m.planet[Venus] +
                              t.ma * m.planet[Mars] + t.j * m.planet[Jupiter] + t.phase);
    return sum;
}

// Mercury, Venus and Mars: longitude in degrees, radius in AU.
constexpr CosTerm kMercuryLongitude[] = {
    {0.00204, 0, -2, 5, 0, 0, 0.21328},
    {0.00103, 0, -1, 2, 0, 0, -2.8046},
    {0.00091, 0, -1, 0, 0, 2, -0.64582},
    {0.00078, 0, -3, 5, 0, 0, 0.17692},
};
constexpr CosTerm kMercuryRadius[] = {
    {7.525e-06, 0, -1, 0, 0, 2, 0.925251},
    {6.802e-06, 0, -3, 5, 0, 0, -4.53642},
    {5.457e-06, 0, -2, 2, 0, 0, -1.24246},
    {3.569e-06, 0, -1, 5, 0, 0, -1.35699},
};
constexpr CosTerm kVenusLongitude[] = {
    {0.00313, 2, 0, -2, 0, 0, -2.587},  {0.00198, 3, 0, -3, 0, 0, 0.044768},
    {0.00136, 1, 0, -1, 0, 0, -2.0788}, {0.00096, 3, 0, -2, 0, 0, -2.3721},
    {0.00082, 0, 0, -1, 0, 1, -3.6318},
};
constexpr CosTerm kVenusRadius[] = {
    {2.2501e-05, 2, 0, -2, 0, 0, -1.01592}, {1.9045e-05, 3, 0, -3, 0, 0, 1.61577},
    {6.887e-06, 0, 0, -1, 0, 1, -2.06106},  {5.172e-06, 1, 0, -1, 0, 0, -0.508065},
    {3.62e-06, 5, 0, -4, 0, 0, -1.81877},   {3.283e-06, 4, 0, -4, 0, 0, 1.10851},
    {3.074e-06, 0, 0, -2, 0, 2, -0.962846},
};
constexpr CosTerm kMarsLongitude[] = {
    {0.00705, 0, 0, 0, -1, 1, -0.85448}, {0.00607, 0, 0, 0, -1, 2, -3.2873},
    {0.00445, 0, 0, 0, -2, 2, -3.3492},  {0.00388, 1, 0, 0, -2, 0, 0.35771},
    {0.00238, 1, 0, 0, -1, 0, 0.61256},  {0.00204, 2, 0, 0, -3, 0, 2.7688},
    {0.00177, 0, 0, -1, 3, 0, -1.0053},  {0.00136, 2, 0, 0, -4, 0, 2.6894},
    {0.00104, 0, 0, 0, 0, 1, 0.30749},
};
constexpr CosTerm kMarsRadius[] = {
    {5.3227e-05, 0, 0, 0, -1, 1, 0.717864}, {5.0989e-05, 0, 0, 0, -2, 2, -1.77997},
    {3.8278e-05, 0, 0, 0, -1, 2, -1.71617}, {1.5996e-05, 1, 0, 0, -1, 0, -0.969618},
    {1.4764e-05, 2, 0, 0, -3, 0, 1.19768},  {8.966e-06, 0, 0, 0, -2, 1, 0.761225},
    {7.914e-06, 0, 0, 0, -2, 3, -2.43887},  {7.004e-06, 0, 0, 0, -3, 2, -1.79573},
    {6.62e-06, 1, 0, 0, -2, 0, 1.97575},    {4.93e-06, 0, 0, 0, -3, 3, -1.33069},
    {4.693e-06, 3, 0, 0, -5, 0, 3.32665},   {4.571e-06, 2, 0, 0, -4, 0, 4.27086},
    {4.409e-06, 0, 0, 0, -1, 3, -2.02158},
};

Perturbations InnerPerturbations(int planet, double T, const MeanAnomalies& m)
{
    Perturbations d;
    switch (planet) {
    case Mercury:
        d.longitude = SumCos(kMercuryLongitude, m);
        d.radius = SumCos(kMercuryRadius, m);
        break;
    case Venus:
        d.meanLongitude = CalcRadians(0.00077 * std::sin(4.1406 + 2.6227 * T));
        d.meanAnomaly = d.meanLongitude;
        d.longitude = SumCos(kVenusLongitude, m);
        d.radius = SumCos(kVenusRadius, m);
        break;
    case Mars: {
        const double a = 3 * m.planet[Jupiter] - 8 * m.planet[Mars] + 4 * m.sun;
        d.meanLongitude = CalcRadians(-(0.01133 * std::sin(a) + 0.00933 * std::cos(a)));
        d.meanAnomaly = d.meanLongitude;
        d.longitude = SumCos(kMarsLongitude, m);
        d.radius = SumCos(kMarsRadius, m);
        break;
    }
    default:
        break;
    }
    return d;
}

// The book's auxiliary arguments of the outer planets, radians: v = T / 5 + 0.1 and the mean
// longitudes P (Jupiter), Q (Saturn), S (Uranus) and G (Neptune) with V = 5Q - 2P and
// W = 2P - 6Q + 3S.
struct OuterArguments
{
    double v, P, Q, S, G, V, W;
};

OuterArguments OuterArgumentsAt(double T)
{
    OuterArguments x{};
    x.v = T / 5 + 0.1;
    x.P = modpi2(4.14473 + 52.9691 * T);
    x.Q = modpi2(4.641118 + 21.32991 * T);
    x.S = modpi2(4.250177 + 7.478172 * T);
    x.G = modpi2(1.46205 + 3.81337 * T);
    x.V = 5 * x.Q - 2 * x.P;
    x.W = 2 * x.P - 6 * x.Q + 3 * x.S;
    return x;
}

// Sines and cosines of the multiples of Q, zeta = Q - P and V that Jupiter and Saturn use.
struct JupiterSaturnTrig
{
    double sQ, cQ, s2Q, c2Q, s3Q, c3Q, s4Q, c4Q;
    double sV, cV, s2V, c2V, sW;
    double sz, cz, s2z, c2z, s3z, c3z, s4z, c4z, s5z, c5z;
};

JupiterSaturnTrig TrigOf(const OuterArguments& x)
{
    const double z = x.Q - x.P;
    JupiterSaturnTrig t{};
    t.sQ = std::sin(x.Q);
    t.cQ = std::cos(x.Q);
    t.s2Q = std::sin(2 * x.Q);
    t.c2Q = std::cos(2 * x.Q);
    t.s3Q = std::sin(3 * x.Q);
    t.c3Q = std::cos(3 * x.Q);
    t.s4Q = std::sin(4 * x.Q);
    t.c4Q = std::cos(4 * x.Q);
    t.sV = std::sin(x.V);
    t.cV = std::cos(x.V);
    t.s2V = std::sin(2 * x.V);
    t.c2V = std::cos(2 * x.V);
    t.sW = std::sin(x.W);
    t.sz = std::sin(z);
    t.cz = std::cos(z);
    t.s2z = std::sin(2 * z);
    t.c2z = std::cos(2 * z);
    t.s3z = std::sin(3 * z);
    t.c3z = std::cos(3 * z);
    t.s4z = std::sin(4 * z);
    t.c4z = std::cos(4 * z);
    t.s5z = std::sin(5 * z);
    t.c5z = std::cos(5 * z);
    return t;
}

Perturbations JupiterPerturbations(const OuterArguments& x, double e)
{
    const JupiterSaturnTrig t = TrigOf(x);
    const double v = x.v;
    Perturbations d;
    const double ml = (0.331364 - (0.010281 + 0.004692 * v) * v) * t.sV +
                      (0.003228 - (0.064436 - 0.002075 * v) * v) * t.cV -
                      (0.003083 + (0.000275 - 0.000489 * v) * v) * t.s2V + 0.002472 * t.sW +
                      0.013619 * t.sz + 0.018472 * t.s2z + 0.006717 * t.s3z + 0.002775 * t.s4z +
                      0.006417 * t.s2z * t.sQ + (0.007275 - 0.001253 * v) * t.sz * t.sQ +
                      0.002439 * t.s3z * t.sQ - (0.035681 + 0.001208 * v) * t.sz * t.cQ -
                      0.003767 * t.c2z * t.sQ - (0.033839 + 0.001125 * v) * t.cz * t.sQ -
                      0.004261 * t.s2z * t.cQ + (0.001161 * v - 0.006333) * t.cz * t.cQ +
                      0.002178 * t.cQ - 0.006675 * t.c2z * t.cQ - 0.002664 * t.c3z * t.cQ -
                      0.002572 * t.sz * t.s2Q - 0.003567 * t.s2z * t.s2Q + 0.002094 * t.cz * t.c2Q +
                      0.003342 * t.c2z * t.c2Q;
    d.meanLongitude = CalcRadians(ml);

    const double ds = (3606 + (130 - 43 * v) * v) * t.sV + (1289 - 580 * v) * t.cV -
                      6764 * t.sz * t.sQ - 1110 * t.s2z * t.sQ - 224 * t.s3z * t.sQ - 204 * t.sQ +
                      (1284 + 116 * v) * t.cz * t.sQ + 188 * t.c2z * t.sQ +
                      (1460 + 130 * v) * t.sz * t.cQ + 224 * t.s2z * t.cQ - 817 * t.cQ +
                      6074 * t.cQ * t.cz + 992 * t.c2z * t.cQ + 508 * t.c3z * t.cQ +
                      230 * t.c4z * t.cQ + 108 * t.c5z * t.cQ - (956 + 73 * v) * t.sz * t.s2Q +
                      448 * t.s2z * t.s2Q + 137 * t.s3z * t.s2Q + (108 * v - 997) * t.cz * t.s2Q +
                      480 * t.c2z * t.s2Q + 148 * t.c3z * t.s2Q + (99 * v - 956) * t.sz * t.c2Q +
                      490 * t.s2z * t.c2Q + 158 * t.s3z * t.c2Q + 179 * t.c2Q +
                      (1024 + 75 * v) * t.cz * t.c2Q - 437 * t.c2z * t.c2Q - 132 * t.c3z * t.c2Q;
    d.eccentricity = ds * 1e-07;

    const double dp = (0.007192 - 0.003147 * v) * t.sV - 0.004344 * t.sQ +
                      (v * (0.000197 * v - 0.000675) - 0.020428) * t.cV + 0.034036 * t.cz * t.sQ +
                      (0.007269 + 0.000672 * v) * t.sz * t.sQ + 0.005614 * t.c2z * t.sQ +
                      0.002964 * t.c3z * t.sQ + 0.037761 * t.sz * t.cQ + 0.006158 * t.s2z * t.cQ -
                      0.006603 * t.cz * t.cQ - 0.005356 * t.sz * t.s2Q + 0.002722 * t.s2z * t.s2Q +
                      0.004483 * t.cz * t.s2Q - 0.002642 * t.c2z * t.s2Q + 0.004403 * t.sz * t.c2Q -
                      0.002536 * t.s2z * t.c2Q + 0.005547 * t.cz * t.c2Q - 0.002689 * t.c2z * t.c2Q;
    d.meanAnomaly = d.meanLongitude - CalcRadians(dp) / e;

    const double da = 205 * t.cz - 263 * t.cV + 693 * t.c2z + 312 * t.c3z + 147 * t.c4z +
                      299 * t.sz * t.sQ + 181 * t.c2z * t.sQ + 204 * t.s2z * t.cQ +
                      111 * t.s3z * t.cQ - 337 * t.cz * t.cQ - 111 * t.c2z * t.cQ;
    d.semiMajorAxis = da * 1e-06;
    return d;
}

Perturbations SaturnPerturbations(const OuterArguments& x, double e)
{
    const JupiterSaturnTrig t = TrigOf(x);
    const double v = x.v;
    const double psi = x.S - x.Q;
    const double s2psi = std::sin(2 * psi), c2psi = std::cos(2 * psi);
    const double s3psi = std::sin(3 * psi), c3psi = std::cos(3 * psi);
    Perturbations d;
    const double ml = 0.007581 * t.s2V - 0.007986 * t.sW - 0.148811 * t.sz - 0.040786 * t.s2z -
                      (0.814181 - (0.01815 - 0.016714 * v) * v) * t.sV -
                      (0.010497 - (0.160906 - 0.0041 * v) * v) * t.cV - 0.015208 * t.s3z -
                      0.006339 * t.s4z - 0.006244 * t.sQ - 0.0165 * t.s2z * t.sQ +
                      (0.008931 + 0.002728 * v) * t.sz * t.sQ - 0.005775 * t.s3z * t.sQ +
                      (0.081344 + 0.003206 * v) * t.cz * t.sQ + 0.015019 * t.c2z * t.sQ +
                      (0.085581 + 0.002494 * v) * t.sz * t.cQ + 0.014394 * t.c2z * t.cQ +
                      (0.025328 - 0.003117 * v) * t.cz * t.cQ + 0.006319 * t.c3z * t.cQ +
                      0.006369 * t.sz * t.s2Q + 0.009156 * t.s2z * t.s2Q +
                      0.007525 * s3psi * t.s2Q - 0.005236 * t.cz * t.c2Q -
                      0.007736 * t.c2z * t.c2Q - 0.007528 * c3psi * t.c2Q;
    d.meanLongitude = CalcRadians(ml);

    const double ds =
        (-7927 + (2548 + 91 * v) * v) * t.sV + (13381 + (1226 - 253 * v) * v) * t.cV +
        (248 - 121 * v) * t.s2V - (305 + 91 * v) * t.c2V + 412 * t.s2z + 12415 * t.sQ +
        (390 - 617 * v) * t.sz * t.sQ + (165 - 204 * v) * t.s2z * t.sQ + 26599 * t.cz * t.sQ -
        4687 * t.c2z * t.sQ - 1870 * t.c3z * t.sQ - 821 * t.c4z * t.sQ - 377 * t.c5z * t.sQ +
        497 * c2psi * t.sQ + (163 - 611 * v) * t.cQ - 12696 * t.sz * t.cQ - 4200 * t.s2z * t.cQ -
        1503 * t.s3z * t.cQ - 619 * t.s4z * t.cQ - 268 * t.s5z * t.cQ -
        (282 + 1306 * v) * t.cz * t.cQ + (-86 + 230 * v) * t.c2z * t.cQ + 461 * s2psi * t.cQ -
        350 * t.s2Q + (2211 - 286 * v) * t.sz * t.s2Q - 2208 * t.s2z * t.s2Q - 568 * t.s3z * t.s2Q -
        346 * t.s4z * t.s2Q - (2780 + 222 * v) * t.cz * t.s2Q + (2022 + 263 * v) * t.c2z * t.s2Q +
        248 * t.c3z * t.s2Q + 242 * s3psi * t.s2Q + 467 * c3psi * t.s2Q - 490 * t.c2Q -
        (2842 + 279 * v) * t.sz * t.c2Q + (128 + 226 * v) * t.s2z * t.c2Q + 224 * t.s3z * t.c2Q +
        (-1594 + 282 * v) * t.cz * t.c2Q + (2162 - 207 * v) * t.c2z * t.c2Q + 561 * t.c3z * t.c2Q +
        343 * t.c4z * t.c2Q + 469 * s3psi * t.c2Q - 242 * c3psi * t.c2Q - 205 * t.sz * t.s3Q +
        262 * t.s3z * t.s3Q + 208 * t.cz * t.c3Q - 271 * t.c3z * t.c3Q - 382 * t.c3z * t.s4Q -
        376 * t.s3z * t.c4Q;
    d.eccentricity = ds * 1e-07;

    const double dp =
        (0.077108 + (0.007186 - 0.001533 * v) * v) * t.sV - 0.007075 * t.sz +
        (0.045803 - (0.014766 + 0.000536 * v) * v) * t.cV - 0.072586 * t.cQ -
        0.075825 * t.sz * t.sQ - 0.024839 * t.s2z * t.sQ - 0.008631 * t.s3z * t.sQ -
        0.150383 * t.cz * t.cQ + 0.026897 * t.c2z * t.cQ + 0.010053 * t.c3z * t.cQ -
        (0.013597 + 0.001719 * v) * t.sz * t.s2Q + 0.011981 * t.s2z * t.c2Q -
        (0.007742 - 0.001517 * v) * t.cz * t.s2Q + (0.013586 - 0.001375 * v) * t.c2z * t.s2Q -
        (0.013667 - 0.001239 * v) * t.sz * t.c2Q + (0.014861 + 0.001136 * v) * t.cz * t.c2Q -
        (0.013064 + 0.001628 * v) * t.c2z * t.c2Q;
    d.meanAnomaly = d.meanLongitude - CalcRadians(dp) / e;

    const double da =
        572 * t.sV - 1590 * t.s2z * t.cQ + 2933 * t.cV - 647 * t.s3z * t.cQ + 33629 * t.cz -
        344 * t.s4z * t.cQ - 3081 * t.c2z + 2885 * t.cz * t.cQ - 1423 * t.c3z +
        (2172 + 102 * v) * t.c2z * t.cQ - 671 * t.c4z + 296 * t.c3z * t.cQ - 320 * t.c5z -
        267 * t.s2z * t.s2Q + 1098 * t.sQ - 778 * t.cz * t.s2Q - 2812 * t.sz * t.sQ +
        495 * t.c2z * t.s2Q + 688 * t.s2z * t.sQ + 250 * t.c3z * t.s2Q - 393 * t.s3z * t.sQ -
        856 * t.sz * t.c2Q - 228 * t.s4z * t.sQ + 441 * t.s2z * t.c2Q + 2138 * t.cz * t.sQ +
        296 * t.c2z * t.c2Q - 999 * t.c2z * t.sQ + 211 * t.c3z * t.c2Q - 642 * t.c3z * t.sQ -
        427 * t.sz * t.s3Q - 325 * t.c4z * t.sQ + 398 * t.s3z * t.s3Q - 890 * t.cQ +
        344 * t.cz * t.c3Q + 2206 * t.sz * t.cQ - 427 * t.c3z * t.c3Q;
    d.semiMajorAxis = da * 1e-06;

    const double dl = 0.000747 * t.cz * t.sQ + 0.001069 * t.cz * t.cQ + 0.002108 * t.s2z * t.s2Q +
                      0.001261 * t.c2z * t.s2Q + 0.001236 * t.s2z * t.c2Q -
                      0.002075 * t.c2z * t.c2Q;
    d.latitude = CalcRadians(dl);
    return d;
}

Perturbations UranusPerturbations(const OuterArguments& x, double e)
{
    const double v = x.v;
    const double H = 2 * x.G - x.S;
    const double zeta = x.S - x.P, eta = x.S - x.Q, theta = x.G - x.S;
    const double sH = std::sin(H), cH = std::cos(H), s2H = std::sin(2 * H), c2H = std::cos(2 * H);
    const double sS = std::sin(x.S), cS = std::cos(x.S), s2S = std::sin(2 * x.S),
                 c2S = std::cos(2 * x.S);
    const double seta = std::sin(eta), ceta = std::cos(eta);
    Perturbations d;
    d.meanLongitude = CalcRadians((0.864319 - 0.001583 * v) * sH + (0.082222 - 0.006833 * v) * cH +
                                  0.036017 * s2H - 0.003019 * c2H + 0.008122 * std::sin(x.W));
    const double dp = 0.120303 * sH + 0.006197 * s2H + (0.019472 - 0.000947 * v) * cH;
    d.meanAnomaly = d.meanLongitude - CalcRadians(dp) / e;
    d.eccentricity = ((163 * v - 3349) * sH + 20981 * cH + 1311 * c2H) * 1e-07;
    d.semiMajorAxis = -0.003825 * cH;
    d.longitude = (0.010122 - 0.000988 * v) * std::sin(x.S + eta) +
                  (-0.038581 + (0.002031 - 0.00191 * v) * v) * std::cos(x.S + eta) +
                  (0.034964 - (0.001038 - 0.000868 * v) * v) * std::cos(2 * x.S + eta) +
                  0.005594 * std::sin(x.S + 3 * theta) - 0.014808 * std::sin(zeta) -
                  0.005794 * seta + 0.002347 * ceta + 0.009872 * std::sin(theta) +
                  0.008803 * std::sin(2 * theta) - 0.004308 * std::sin(3 * theta);
    d.latitude =
        CalcRadians((0.000458 * seta - 0.000642 * ceta - 0.000517 * std::cos(4 * theta)) * sS -
                    (0.000347 * seta + 0.000853 * ceta + 0.000517 * std::sin(4 * eta)) * cS +
                    0.000403 * (std::cos(2 * theta) * s2S + std::sin(2 * theta) * c2S));
    d.radius = (-25948 + 4985 * std::cos(zeta) - 1230 * cS + 3354 * ceta +
                904 * std::cos(2 * theta) + 894 * (std::cos(theta) - std::cos(3 * theta)) +
                (5795 * cS - 1165 * sS + 1388 * c2S) * seta +
                (1351 * cS + 5702 * sS + 1388 * s2S) * ceta) *
               1e-06;
    return d;
}

Perturbations NeptunePerturbations(const OuterArguments& x, double e)
{
    const double v = x.v;
    const double H = 2 * x.G - x.S;
    const double zeta = x.G - x.P, eta = x.G - x.Q, theta = x.G - x.S;
    const double sH = std::sin(H), cH = std::cos(H), s2H = std::sin(2 * H), c2H = std::cos(2 * H);
    const double s2t = std::sin(2 * theta), c2t = std::cos(2 * theta);
    const double sG = std::sin(x.G), cG = std::cos(x.G);
    Perturbations d;
    d.meanLongitude = CalcRadians((0.001089 * v - 0.589833) * sH + (0.004658 * v - 0.056094) * cH -
                                  0.024286 * s2H);
    const double dp = 0.024039 * sH - 0.025303 * cH + 0.006206 * s2H - 0.005992 * c2H;
    d.meanAnomaly = d.meanLongitude - CalcRadians(dp) / e;
    d.eccentricity = (4389 * sH + 1129 * s2H + 4262 * cH + 1089 * c2H) * 1e-07;
    d.semiMajorAxis = (8189 * cH - 817 * sH + 781 * c2H) * 1e-06;
    d.longitude = -0.009556 * std::sin(zeta) - 0.005178 * std::sin(eta) + 0.002572 * s2t -
                  0.002972 * c2t * sG - 0.002833 * s2t * cG;
    d.latitude = CalcRadians(0.000336 * c2t * sG + 0.000364 * s2t * cG);
    d.radius = (-40596 + 4992 * std::cos(zeta) + 2744 * std::cos(eta) + 2044 * std::cos(theta) +
                1051 * c2t) *
               1e-06;
    return d;
}

Perturbations PerturbationsOf(int planet, double T, const MeanAnomalies& m, double e)
{
    switch (planet) {
    case Mercury:
    case Venus:
    case Mars:
        return InnerPerturbations(planet, T, m);
    case Jupiter:
        return JupiterPerturbations(OuterArgumentsAt(T), e);
    case Saturn:
        return SaturnPerturbations(OuterArgumentsAt(T), e);
    case Uranus:
        return UranusPerturbations(OuterArgumentsAt(T), e);
    case Neptune:
        return NeptunePerturbations(OuterArgumentsAt(T), e);
    default:
        return {};
    }
}

double Magnitude(int planet, const PlanetElements& el, double r, double rho, double i, double k,
                 FaultSink& faults)
{
    const double base = el.magnitude + 5 * Log10(r * rho, faults);
    const double x = i / 100;
    switch (planet) {
    case Mercury:
        return base + 3.8 * x - 2.73 * x * x + 2 * x * x * x;
    case Venus:
        return base + 0.09 * x + 2.39 * x * x - 0.65 * x * x * x;
    case Mars:
        return base + 0.016 * i;
    case Jupiter:
        return base + 0.005 * i;
    case Saturn:
        // Deliberate: Saturn's own rule, without its row's magnitude.
        return 5 * std::log(r * rho / 0.000174 / std::sqrt(k)) / 2.30259 - 27.4 - 1;
    case Uranus:
        return base + 0.001 * i;
    default:
        return base;
    }
}

} // namespace

SunForPlanets SunForPlanetsAt(double T)
{
    const SunPlace sun = SunAt(T);
    SunForPlanets s;
    s.longitude = sun.trueLongitude;
    s.distance = sun.r;
    s.meanAnomaly = sun.M;
    s.nutationLongitude = sun.nutation.longitude;
    s.obliquity = TrueObliquity(T, sun.nutation);
    return s;
}

std::string_view ReadPlanetFile(const std::filesystem::path& programDir, PlanetTable& table)
{
    const std::optional<std::string> text = ReadTextFile(programDir / kPlanetFileName);
    if (!text)
        return kFileNotFound;
    std::size_t pos = 0;
    std::string_view fault;
    auto number = [&](double& out) {
        if (!fault.empty())
            return;
        const std::optional<std::string_view> field = NextSequentialField(*text, pos);
        if (!field) {
            fault = kInputPastEndOfFile;
            return;
        }
        const std::optional<double> value = ParseNumber(*field);
        if (!value)
            fault = kTypeMismatch;
        else
            out = *value;
    };
    for (PlanetRow& row : table) {
        const std::optional<std::string_view> name = NextSequentialField(*text, pos);
        if (!name)
            return kInputPastEndOfFile;
        row.name = std::string(*name);
        for (auto* quad :
             {&row.meanLongitude, &row.perihelion, &row.eccentricity, &row.inclination, &row.node})
            for (double& value : *quad)
                number(value);
        number(row.semiMajorAxis);
        number(row.diameter);
        number(row.magnitude);
        if (!fault.empty())
            return fault;
    }
    return {};
}

PlanetElements ElementsAt(const PlanetRow& row, double T)
{
    const auto& L = row.meanLongitude;
    PlanetElements el;
    el.meanLongitude = Reduce360(L[0] + 360.0 * Frac(L[1] * T) + L[2] * T * T + L[3] * T * T * T);
    el.dailyMotion = L[1] * kDailyMotionPerRevolution;
    el.perihelion = Reduce360(Cubic(row.perihelion, T));
    el.eccentricity = Cubic(row.eccentricity, T);
    el.inclination = Reduce360(Cubic(row.inclination, T));
    el.node = Reduce360(Cubic(row.node, T));
    el.semiMajorAxis = row.semiMajorAxis;
    el.diameter = row.diameter;
    el.magnitude = row.magnitude;
    return el;
}

PlanetPlace PlanetAt(const PlanetTable& table, int planet, double T, const SunForPlanets& sun,
                     FaultSink& faults)
{
    std::array<PlanetElements, kPlanetCount + 1> el{};
    for (int j = 1; j <= kPlanetCount; ++j)
        el[static_cast<std::size_t>(j)] = ElementsAt(table[static_cast<std::size_t>(j - 1)], T);
    const PlanetElements& p = el[static_cast<std::size_t>(planet)];

    // The Earth, seen from the Sun.
    const double earthLongitude = sun.longitude + kPi;
    const double R = sun.distance;
    const double xe = R * std::cos(earthLongitude), ye = R * std::sin(earthLongitude);

    PlanetPlace out;
    double lightDays = 0;
    double helioLongitude = 0, helioLatitude = 0, r = 0, x = 0, y = 0, z = 0;
    for (int pass = 0; pass < 2; ++pass) {
        MeanAnomalies m;
        m.sun = sun.meanAnomaly;
        for (int j = 1; j <= kPlanetCount; ++j) {
            const PlanetElements& e = el[static_cast<std::size_t>(j)];
            m.planet[static_cast<std::size_t>(j)] =
                CalcRadians(e.meanLongitude - e.perihelion - lightDays * e.dailyMotion);
        }
        const Perturbations d = PerturbationsOf(planet, T, m, p.eccentricity);

        const double ecc = p.eccentricity + d.eccentricity;
        const double E =
            SolveKepler(modpi2(m.planet[static_cast<std::size_t>(planet)] + d.meanAnomaly), ecc);
        const double trueAnomaly =
            2 * std::atan(std::sqrt((1 + ecc) / (1 - ecc)) * std::tan(E / 2));
        const double orbitRadius = (p.semiMajorAxis + d.semiMajorAxis) * (1 - ecc * ecc) /
                                   (1 + ecc * std::cos(trueAnomaly));
        // Longitude in the orbit: the perihelion moves by the difference of the corrections to
        // the mean longitude and the mean anomaly.
        const double orbitLongitude =
            trueAnomaly + CalcRadians(p.perihelion) + (d.meanLongitude - d.meanAnomaly);
        const double node = CalcRadians(p.node);
        const double u = orbitLongitude - node;
        const double inclination = CalcRadians(p.inclination);
        r = orbitRadius + d.radius;
        helioLatitude = CalcASN(std::sin(u) * std::sin(inclination), faults) + d.latitude;
        helioLongitude = modpi2(std::atan2(std::sin(u) * std::cos(inclination), std::cos(u)) +
                                node + CalcRadians(d.longitude));

        x = r * std::cos(helioLatitude) * std::cos(helioLongitude) - xe;
        y = r * std::cos(helioLatitude) * std::sin(helioLongitude) - ye;
        z = r * std::sin(helioLatitude);
        out.rho = std::sqrt(x * x + y * y + z * z);
        lightDays = out.rho * kLightDaysPerAU;
    }

    // Apparent place: nutation, then the annual aberration.
    double lam = modpi2(std::atan2(y, x)) + CalcRadians(sun.nutationLongitude);
    double beta = std::atan2(z, std::sqrt(x * x + y * y));
    const double fromSun = sun.longitude - lam;
    lam = modpi2(lam - kAberration * std::cos(fromSun) / std::cos(beta));
    beta -= kAberration * std::sin(fromSun) * std::sin(beta);
    const Equatorial eq = EclipticToEquatorial(lam, beta, sun.obliquity);

    const double rho = out.rho;
    out.helioLongitude = CalcDegrees(helioLongitude);
    out.helioLatitude = CalcDegrees(helioLatitude);
    out.longitude = CalcDegrees(lam);
    out.latitude = CalcDegrees(beta);
    out.raHours = CalcDegrees(eq.ra) / 15;
    out.decDegrees = CalcDegrees(eq.dec);
    out.r = r;
    out.R = R;
    out.elongation = CalcDegrees(CalcACS((R * R + rho * rho - r * r) / (2 * R * rho), faults));
    out.size = p.diameter / rho;
    const double k = (1 + std::cos(lam - helioLongitude)) / 2;
    out.illuminated = 100 * k;
    out.phaseAngle = CalcDegrees(CalcACS((r * r + rho * rho - R * R) / (2 * r * rho), faults));
    out.magnitude = Magnitude(planet, p, r, rho, out.phaseAngle, k, faults);
    return out;
}

} // namespace astro

namespace astro {

namespace {

// Passes reports on and notes that one came.
class NotingFaults : public FaultSink
{
public:
    explicit NotingFaults(FaultSink& inner) : inner_(inner) {}
    void ReportFault(std::string_view message, std::string_view location) override
    {
        reported = true;
        inner_.ReportFault(message, location);
    }
    void EndProcess(int exitCode) override { inner_.EndProcess(exitCode); }
    bool reported = false;

private:
    FaultSink& inner_;
};

} // namespace

PlanetOutputs CalcPlanets([[maybe_unused]] std::string_view planetName, std::int16_t planet,
                          const ObservingClock& clock, const Clock& computerClock,
                          const std::filesystem::path& programDir, FaultSink& faults)
{
    PlanetOutputs out;
    NotingFaults noting(faults);
    const UTInstant ut = ConvertToGMT(clock, computerClock, noting);
    if (noting.reported)
        return out;
    const double T = CalcJulian(ut.day, ut.month, ut.year) / 36525;
    PlanetTable table;
    if (const std::string_view fault = ReadPlanetFile(programDir, table); !fault.empty()) {
        faults.ReportFault(fault, kLocation);
        return out;
    }
    if (planet < 1 || planet > kPlanetCount) {
        faults.ReportFault(kSubscriptOutOfRange, kLocation);
        return out;
    }

    const PlanetPlace place = PlanetAt(table, planet, T, SunForPlanetsAt(T), faults);
    out.helioLongitude = LongitudeText(place.helioLongitude);
    out.helioLatitude = SignedAngleText(place.helioLatitude);
    out.longitude = LongitudeText(place.longitude);
    out.latitude = SignedAngleText(place.latitude);
    out.ra = Ra00Text(place.raHours);
    out.dec = Dec00Text(place.decDegrees);
    out.distance = FixedText(place.rho, 1, 4);
    out.elongation = FixedText(place.elongation, 1, 1);
    out.size = OptionalDigitsText(place.size, 1);
    out.phase = OptionalDigitsText(place.phaseAngle, 2);
    out.illumination = OptionalDigitsText(place.illuminated, 3);
    out.magnitude = OptionalDigitsText(place.magnitude, 4);
    out.place = place;
    out.valid = true;
    return out;
}

} // namespace astro
