#include "charts/ChartView.h"

#include "charts/Projection.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace charts {
namespace {

DrawnObject Drawn(DrawnKind kind, std::string id, double x, double y, double r)
{
    DrawnObject d;
    d.kind = kind;
    d.id = std::move(id);
    d.x = x;
    d.y = y;
    d.r = r;
    return d;
}

TEST(PickDrawnObject, NearestWithinRadiusPlusSlack)
{
    const std::vector<DrawnObject> drawn = {
        Drawn(DrawnKind::Star, "S1", 100, 100, 2),   Drawn(DrawnKind::Dso, "M 42", 105, 100, 10),
        Drawn(DrawnKind::Circle, "C", 300, 300, 50), Drawn(DrawnKind::Star, "S2", 400, 400, 1),
        Drawn(DrawnKind::Dso, "NGC 1", 400, 400, 1),
    };
    struct Row
    {
        double x, y;
        std::optional<std::size_t> picked;
    };
    const Row rows[] = {
        {100, 100, 0},   // on the star, well inside M 42's reach too
        {101, 100, 0},   // 1/6 of the star's reach, 4/14 of M 42's: the star
        {104, 100, 1},   // nearer M 42's centre
        {100, 106.9, 1}, // 6.9 px from the star (reach 2 + 4 missed), inside M 42
        {300, 354, 2},   // inside the circle, 4 px past its rim
        {300, 354.5, std::nullopt},
        {119, 100, 1},           // exactly radius + slack from M 42's centre
        {400, 400, 4},           // star and object on one spot: the object
        {600, 50, std::nullopt}, // empty sky
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.x) + "," + std::to_string(row.y));
        EXPECT_EQ(PickDrawnObject(drawn, row.x, row.y), row.picked);
    }
    EXPECT_EQ(PickDrawnObject({}, 0, 0), std::nullopt);
}

TEST(DocumentObjectIndex, MatchesObjectIdAndPosition)
{
    ChartDocument document;
    PlotObject a;
    a.objectId = "NGC 2070";
    a.raHours = 5.6;
    a.decDeg = -69;
    PlotObject b = a;
    b.raHours = 5.7;
    PlotObject c = a;
    c.objectId = "M 42";
    document.objects = {a, b, c};

    DrawnObject drawn = Drawn(DrawnKind::Dso, "NGC 2070", 0, 0, 4);
    drawn.raHours = 5.7;
    drawn.decDeg = -69;
    EXPECT_EQ(DocumentObjectIndex(document, drawn), 1u); // the one at the drawn position
    drawn.raHours = 1;
    EXPECT_EQ(DocumentObjectIndex(document, drawn), 0u); // elsewhere: the first of that ID
    drawn.id = "M 31";
    EXPECT_EQ(DocumentObjectIndex(document, drawn), std::nullopt);
    DrawnObject star = Drawn(DrawnKind::Star, "M 42", 0, 0, 2); // a star never is an object
    EXPECT_EQ(DocumentObjectIndex(document, star), std::nullopt);
}

TEST(PanCentre, TheOldCentreFollowsTheDrag)
{
    struct Row
    {
        double ra, dec, field, dx, dy;
        double tolerancePx;
    };
    const Row rows[] = {
        {5.588, -5.39, 35, 80, -40, 1},
        {23.9, 0, 10, -60, 0, 1}, // across 0 h
        // Far from the equator the meridians converge: north stays up, so the picture turns a
        // little under the pointer (2.5 px here).
        {0, -60, 60, 30, 20, 3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.ra);
        const SkyPosition centre = PanCentre(row.ra, row.dec, row.field, 800, 600, row.dx, row.dy);
        ASSERT_TRUE(centre.valid);
        EXPECT_GE(centre.raHours, 0);
        EXPECT_LT(centre.raHours, 24);
        EXPECT_LE(std::abs(centre.decDeg), 90);
        // The sky that was in the middle now lies where the pointer took it.
        const Projection moved(centre.raHours, centre.decDeg, row.field, 800, 600);
        const ChartPoint old = moved.Project(row.ra, row.dec);
        EXPECT_NEAR(old.x, 400 + row.dx, row.tolerancePx);
        EXPECT_NEAR(old.y, 300 + row.dy, row.tolerancePx);
    }
    // Dragged down over the pole: the centre comes down the other side, at 0 h, about 11.8
    // degrees (200 px at 974.6 px per radian) from where it was.
    const SkyPosition pole = PanCentre(12, 89, 35, 800, 600, 0, 200);
    EXPECT_NEAR(pole.raHours, 0, 1e-6);
    EXPECT_NEAR(pole.decDeg, 79.2, 0.1);
    const SkyPosition still = PanCentre(5.5, 20, 35, 800, 600, 0, 0);
    EXPECT_NEAR(still.raHours, 5.5, 1e-9);
    EXPECT_NEAR(still.decDeg, 20, 1e-9);
    // Dragging the picture to the right brings eastern sky (greater right ascension) in.
    EXPECT_GT(PanCentre(5.5, 0, 35, 800, 600, 100, 0).raHours, 5.5);
}

TEST(FinderZoomFactor, ListEntriesAndTypedFactors)
{
    struct Row
    {
        const char* text;
        std::optional<double> factor;
    };
    const Row rows[] = {{"01x", 1},         {"07x", 7},          {"15x", 15},
                        {" 2.5", 2.5},      {"3x", 3},           {"x", std::nullopt},
                        {"", std::nullopt}, {"0", std::nullopt}, {"-3", std::nullopt}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(FinderZoomFactor(row.text), row.factor);
    }
    EXPECT_NEAR(FinderZoomField(75, 3), 25, 1e-12);
    EXPECT_NEAR(FinderZoomField(3, 15), 1, 1e-12);     // under a degree: the narrowest
    EXPECT_NEAR(FinderZoomField(75, 0.1), 180, 1e-12); // past the whole sky: the widest
    EXPECT_NEAR(FinderZoomField(15, 0), 15, 1e-12);
}

} // namespace
} // namespace charts
