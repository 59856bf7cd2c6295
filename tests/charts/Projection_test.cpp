#include "charts/Projection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

constexpr double kDeg = std::numbers::pi / 180.0;

// A point F/2 from the centre along the shorter side lands on the image edge: that is what the
// scale formula promises, for narrow, medium and the widest fields.
TEST(Projection, HalfFieldReachesTheShorterEdge)
{
    for (double field : {1.0, 35.0, 60.0, 180.0}) {
        SCOPED_TRACE(field);
        const charts::Projection proj(6.0, 20.0, field, 1600, 1200);
        const auto north = proj.Project(6.0, 20.0 + field / 2);
        EXPECT_NEAR(north.x, 800, 1e-6);
        EXPECT_NEAR(north.y, 0, 1e-6);
        const auto south = proj.Project(6.0, 20.0 - field / 2);
        EXPECT_NEAR(south.y, 1200, 1e-6);
        EXPECT_TRUE(north.drawn && south.drawn);
        const auto centre = proj.Project(6.0, 20.0);
        EXPECT_NEAR(centre.x, 800, 1e-9);
        EXPECT_NEAR(centre.y, 600, 1e-9);
        EXPECT_NEAR(centre.k, 1, 1e-12);
    }
    // Portrait images measure the field across the width.
    const charts::Projection tall(0, 0, 90, 300, 900);
    EXPECT_NEAR(tall.Project(0, 45).y, 450 - 150, 1e-6);
}

TEST(Projection, FieldClampAndScale)
{
    EXPECT_EQ(charts::ClampField(0), 1);
    EXPECT_EQ(charts::ClampField(-20), 1);
    EXPECT_EQ(charts::ClampField(500), 180);
    EXPECT_EQ(charts::ClampField(std::nan("")), 180);
    EXPECT_EQ(charts::ClampField(35), 35);
    // s = min(W,H) / (4 tan(F/4)): 180 degrees gives min/4.
    EXPECT_NEAR(charts::ProjectionScale(180, 1600, 1200), 300, 1e-9);
    EXPECT_NEAR(charts::ProjectionScale(999, 1600, 1200), 300, 1e-9);
    // Zero or negative sizes count as one pixel, never a division by zero.
    EXPECT_TRUE(std::isfinite(charts::ProjectionScale(35, 0, -4)));
}

// North up, east left, also across RA 0/24 and with the centre at either pole.
TEST(Projection, OrientationWrapAndPoles)
{
    const charts::Projection nearZero(23.9, 10, 20, 800, 600);
    const auto east = nearZero.Project(0.1, 10);
    const auto eastWrapped = nearZero.Project(24.1, 10);
    const auto west = nearZero.Project(23.7, 10);
    EXPECT_LT(east.x, 400);
    EXPECT_GT(west.x, 400);
    EXPECT_NEAR(east.x, eastWrapped.x, 1e-6);
    EXPECT_NEAR(east.y, eastWrapped.y, 1e-6);
    EXPECT_NEAR(east.x - 400, 400 - west.x, 1e-6); // symmetric about the centre's hour circle
    EXPECT_LT(nearZero.Project(23.9, 15).y, 300);  // north is up

    // Centred on the north pole: every hour circle runs out from the centre, equal distances
    // for equal declinations, and 12 h lies opposite 0 h.
    const charts::Projection pole(0, 90, 40, 600, 600);
    const double r = pole.Scale() * 2 * std::tan(10 * kDeg / 2);
    for (double ra : {0.0, 3.0, 6.0, 12.0, 23.99}) {
        SCOPED_TRACE(ra);
        const auto p = pole.Project(ra, 80);
        EXPECT_NEAR(std::hypot(p.x - 300, p.y - 300), r, 1e-6);
    }
    const auto a = pole.Project(0, 80);
    const auto b = pole.Project(12, 80);
    EXPECT_NEAR(a.x + b.x, 600, 1e-6);
    EXPECT_NEAR(a.y + b.y, 600, 1e-6);

    const charts::Projection southPole(5, -90, 40, 600, 600);
    EXPECT_NEAR(southPole.Project(17, -90).x, 300, 1e-6);
    EXPECT_TRUE(southPole.Project(11, -75).drawn);
}

// Points behind the observer have k running to infinity and must not be drawn; points merely
// far out at the widest field still are.
TEST(Projection, BehindTheObserverIsNotDrawn)
{
    const charts::Projection proj(6, 0, 180, 1600, 1200);
    EXPECT_FALSE(proj.Project(18, 0).drawn);   // the antipode: k is infinite
    EXPECT_FALSE(proj.Project(17.9, 0).drawn); // 178.5 degrees out
    EXPECT_FALSE(proj.Project(16, 0).drawn);   // 150 degrees out
    EXPECT_TRUE(proj.Project(15.5, 0).drawn);  // 142.5 degrees out
    EXPECT_TRUE(proj.Project(12, 0).drawn);    // 90 degrees: the edge of the shorter side
    EXPECT_FALSE(proj.Project(std::nan(""), 0).drawn);
    // The image corners at 180 degrees lie well inside the drawn region.
    const auto corner = proj.Unproject(0, 0);
    EXPECT_TRUE(proj.Project(corner.raHours, corner.decDeg).drawn);
}

// Inverse then forward returns to the pixel, and the inverse keeps RA in 0..24 h.
TEST(Projection, RoundTripsOverTheImage)
{
    struct Centre
    {
        double ra, dec, field;
    };
    for (const Centre c : {Centre{0, 0, 35}, Centre{23.99, 45, 60}, Centre{12, 90, 180},
                           Centre{3, -90, 90}, Centre{0.01, -30, 1}}) {
        SCOPED_TRACE(c.ra);
        SCOPED_TRACE(c.dec);
        const charts::Projection proj(c.ra, c.dec, c.field, 640, 480);
        for (double x = 0; x <= 640; x += 80) {
            for (double y = 0; y <= 480; y += 80) {
                const auto sky = proj.Unproject(x, y);
                ASSERT_TRUE(sky.valid);
                EXPECT_GE(sky.raHours, 0);
                EXPECT_LT(sky.raHours, 24);
                EXPECT_LE(std::abs(sky.decDeg), 90);
                const auto back = proj.Project(sky.raHours, sky.decDeg);
                EXPECT_NEAR(back.x, x, 1e-6);
                EXPECT_NEAR(back.y, y, 1e-6);
            }
        }
    }
}

} // namespace
