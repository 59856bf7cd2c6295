#include "charts/ChartEngine.h"

#include "charts/Projection.h"
#include "services/Fault.h"
#include "tests/TestFiles.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include "ChartFixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <string>

namespace {

using chartfixtures::EnsureGuiApplication;

const charts::ChartSky& Sky()
{
    return chartfixtures::ShippedSky();
}

const charts::ChartStar& StarNamed(const std::string& name)
{
    const auto& stars = Sky().stars;
    const auto found = std::find_if(stars.begin(), stars.end(),
                                    [&](const charts::ChartStar& s) { return s.name == name; });
    if (found == stars.end())
        throw std::runtime_error(name + " is not in the chart stars");
    return *found;
}

charts::ChartLayers NoLayers()
{
    return charts::ChartLayers{false, false, false, false, false, false, false, false};
}

// A 35 degree chart on M 42, as the finder chart of a row draws it.
charts::ChartRequest OrionRequest()
{
    charts::ChartRequest r;
    r.raHours = 5.588;
    r.decDeg = -5.39;
    r.fieldDeg = 35;
    r.width = 800;
    r.height = 600;
    return r;
}

const charts::DrawnObject* FindDrawn(const charts::ChartImage& chart, const std::string& id)
{
    for (const auto& d : chart.drawn)
        if (d.id == id)
            return &d;
    return nullptr;
}

TEST(LoadChartSky, ShippedDataIsComplete)
{
    const auto& sky = Sky();
    // Counts of the kstars-data 3.x lists: all stars to V 9.0, 88 constellations (Serpens in
    // two parts), 799 figure points, the Milky Way outline.
    EXPECT_EQ(sky.stars.size(), 125982u);
    EXPECT_EQ(sky.labels.size(), 89u);
    EXPECT_EQ(sky.figures.size(), 799u);
    EXPECT_EQ(sky.milkyWay.size(), 2136u);
    EXPECT_GT(sky.boundaries.size(), 13000u);
    EXPECT_TRUE(std::is_sorted(sky.stars.begin(), sky.stars.end(),
                               [](const auto& a, const auto& b) { return a.mag < b.mag; }));
    // Sirius leads; Betelgeuse keeps its catalogue J2000 position (05 55 10.31, +07 24 25.4).
    EXPECT_EQ(sky.stars.front().name, "Sirius");
    const auto& betelgeuse = StarNamed("Betelgeuse");
    EXPECT_NEAR(betelgeuse.raHours, 5 + 55 / 60.0 + 10.31 / 3600, 1e-5);
    EXPECT_NEAR(betelgeuse.decDeg, 7 + 24 / 60.0 + 25.4 / 3600, 1e-5);
    EXPECT_NEAR(betelgeuse.mag, 0.45, 1e-6);
    for (const auto& p : sky.boundaries) {
        ASSERT_GE(p.raHours, 0);
        ASSERT_LT(p.raHours, 24);
    }
}

TEST(LoadChartSky, MissingOrCutFilesFail)
{
    QTemporaryDir dir;
    const std::string folder = dir.path().toStdString();
    try {
        charts::LoadChartSky(folder);
        FAIL() << "an empty folder loaded";
    } catch (const services::Fault& fault) {
        EXPECT_EQ(std::string(fault.what()),
                  "Chart data file missing or damaged: " + folder + "/stars.dat");
        EXPECT_EQ(fault.Location(), "charts.LoadChartSky");
    }
    // A star file cut inside its records, then a figure line that is not a point.
    const std::filesystem::path shipped = SELVANE_RESOURCE_DIR;
    for (const char* file :
         {"stars.dat", "clines.dat", "cnames.dat", "cbounds.dat", "milkyway.dat"})
        std::filesystem::copy_file(shipped / file, std::filesystem::path(folder) / file);
    const std::string stars = test_files::ReadText(shipped / "stars.dat");
    test_files::WriteText(folder + "/stars.dat", stars.substr(0, 1000));
    EXPECT_THROW(
        {
            try {
                charts::LoadChartSky(folder);
            } catch (const services::Fault& fault) {
                EXPECT_EQ(std::string(fault.what()),
                          "Chart data file missing or damaged: " + folder + "/stars.dat");
                throw;
            }
        },
        services::Fault);
    test_files::WriteText(folder + "/stars.dat", stars);
    test_files::WriteText(folder + "/clines.dat", "M 1 2\nD one two\n");
    EXPECT_THROW(charts::LoadChartSky(folder), services::Fault);
}

TEST(ParseChartLayers, DefaultsStarsOnlyAndUnknownNames)
{
    const auto all = charts::ParseChartLayers(charts::kDefaultChartLayers);
    EXPECT_TRUE(all.layers.stars && all.layers.names && all.layers.dso && all.layers.lines &&
                all.layers.bounds && all.layers.conames && all.layers.milkyway && all.layers.grid);
    EXPECT_TRUE(all.unknown.empty());
    const auto blank = charts::ParseChartLayers("  ");
    EXPECT_TRUE(blank.layers.grid && blank.layers.stars);

    const auto starsOnly = charts::ParseChartLayers(charts::kStarsOnlyChartLayers);
    EXPECT_TRUE(starsOnly.layers.stars && starsOnly.layers.dso);
    EXPECT_FALSE(starsOnly.layers.names || starsOnly.layers.lines || starsOnly.layers.bounds ||
                 starsOnly.layers.conames || starsOnly.layers.milkyway || starsOnly.layers.grid);

    const auto odd = charts::ParseChartLayers(" Grid ,,STARS, planets ,milky way");
    EXPECT_TRUE(odd.layers.grid && odd.layers.stars);
    EXPECT_FALSE(odd.layers.milkyway);
    EXPECT_EQ(odd.unknown, (std::vector<std::string>{"planets", "milky way"}));
}

TEST(DsoLabel, MessierNumbersExtraNamesAndIdentifiers)
{
    EXPECT_EQ(charts::DsoLabel("42", "NGC 1976"), "M42");
    EXPECT_EQ(charts::DsoLabel(" 031 ", "NGC 224"), "M31");
    EXPECT_EQ(charts::DsoLabel("Collinder 69", "Cr 69"), "Collinder 69");
    EXPECT_EQ(charts::DsoLabel("", "NGC 2024"), "NGC 2024");
    EXPECT_EQ(charts::DsoLabel("  ", " IC 434 "), "IC 434");
    EXPECT_EQ(charts::DsoLabel("-5", "X"), "-5");
    EXPECT_EQ(charts::DsoLabel("12345678901234", "X"), "12345678901234");

    // Star names: Bayer designations get their Greek letter, proper names stay.
    EXPECT_EQ(charts::StarLabel("alp CMa"), "α CMa");
    EXPECT_EQ(charts::StarLabel("the1Tau"), "θ¹ Tau");
    EXPECT_EQ(charts::StarLabel("pi 3Ori"), "π³ Ori");
    EXPECT_EQ(charts::StarLabel("Betelgeuse"), "Betelgeuse");
    EXPECT_EQ(charts::StarLabel("alpha"), "alpha");
    EXPECT_EQ(charts::StarLabel("53  Eri"), "53 Eri");
}

// Betelgeuse lands where the projection puts it, and the dot is inked there, by day in black
// and by night in red.
TEST(RenderChart, KnownStarLandsOnItsPixel)
{
    EnsureGuiApplication();
    const auto& star = StarNamed("Betelgeuse");
    for (bool night : {false, true}) {
        SCOPED_TRACE(night);
        auto request = OrionRequest();
        request.nightMode = night;
        const auto chart = charts::RenderChart(Sky(), request, {});
        ASSERT_FALSE(chart.image.isNull());
        EXPECT_NEAR(chart.limitMag, charts::DefaultLimitMagnitude(35), 1e-12);
        const charts::Projection proj(request.raHours, request.decDeg, 35, 800, 600);
        const auto expected = proj.Project(star.raHours, star.decDeg);
        const auto* drawn = FindDrawn(chart, "S" + std::to_string(star.id));
        ASSERT_NE(drawn, nullptr);
        EXPECT_EQ(drawn->kind, charts::DrawnKind::Star);
        EXPECT_EQ(drawn->name, "Betelgeuse");
        EXPECT_NEAR(drawn->x, expected.x, 0.01);
        EXPECT_NEAR(drawn->y, expected.y, 0.01);
        EXPECT_GT(drawn->r, 3);
        const QColor ink =
            chart.image.pixelColor(static_cast<int>(expected.x), static_cast<int>(expected.y));
        if (night) {
            EXPECT_GT(ink.red(), 200);
            EXPECT_LT(ink.green(), 80);
        } else {
            EXPECT_LT(qGray(ink.rgb()), 60);
        }
        // Only things whose centre is in the image are listed.
        for (const auto& d : chart.drawn) {
            ASSERT_GE(d.x, 0);
            ASSERT_LT(d.x, 800);
            ASSERT_GE(d.y, 0);
            ASSERT_LT(d.y, 600);
            ASSERT_LE(*d.mag, chart.limitMag);
        }
    }
}

// Each layer alone changes the picture; no layers leaves the bare background; the star and
// object layers decide what is listed.
TEST(RenderChart, LayersOnAndOff)
{
    EnsureGuiApplication();
    std::vector<charts::PlotObject> objects(1);
    objects[0].raHours = 5.588;
    objects[0].decDeg = -5.39;
    objects[0].typeCode = 4;
    objects[0].sizeArcmin = 85;
    objects[0].objectId = "NGC 1976";
    objects[0].extraId = "42";

    auto request = OrionRequest();
    request.layers = NoLayers();
    const auto bare = charts::RenderChart(Sky(), request, objects);
    QImage white(800, 600, QImage::Format_RGB32);
    white.fill(Qt::white);
    EXPECT_EQ(bare.image, white);
    EXPECT_TRUE(bare.drawn.empty());

    const std::pair<const char*, bool charts::ChartLayers::*> single[] = {
        {"stars", &charts::ChartLayers::stars},     {"dso", &charts::ChartLayers::dso},
        {"lines", &charts::ChartLayers::lines},     {"bounds", &charts::ChartLayers::bounds},
        {"conames", &charts::ChartLayers::conames}, {"milkyway", &charts::ChartLayers::milkyway},
        {"grid", &charts::ChartLayers::grid},
    };
    for (const auto& [name, member] : single) {
        SCOPED_TRACE(name);
        request.layers = NoLayers();
        request.layers.*member = true;
        const auto chart = charts::RenderChart(Sky(), request, objects);
        EXPECT_NE(chart.image, white);
        const bool anyStar = std::any_of(chart.drawn.begin(), chart.drawn.end(),
                                         [](auto& d) { return d.kind == charts::DrawnKind::Star; });
        EXPECT_EQ(anyStar, member == &charts::ChartLayers::stars);
        EXPECT_EQ(FindDrawn(chart, "NGC 1976") != nullptr, member == &charts::ChartLayers::dso);
    }

    // The grid covers narrow fields, the poles and the whole sky too.
    for (const auto& [field, dec] : {std::pair{2.0, -5.39}, std::pair{2.0, 89.9},
                                     std::pair{180.0, 0.0}, std::pair{30.0, -90.0}}) {
        SCOPED_TRACE(field);
        SCOPED_TRACE(dec);
        request.layers = NoLayers();
        request.layers.grid = true;
        request.fieldDeg = field;
        request.decDeg = dec;
        const auto grid = charts::RenderChart(Sky(), request, {});
        // Some ink, and a gap between lines (not a solid smear of samples).
        const auto inked = [&] {
            int n = 0;
            for (int y = 0; y < 600; y += 3)
                for (int x = 0; x < 800; x += 3)
                    n += grid.image.pixel(x, y) != white.pixel(x, y);
            return n;
        }();
        EXPECT_GT(inked, 100);
        EXPECT_LT(inked, 800 * 600 / 9 / 4);
    }
    request = OrionRequest();

    // Star names come on top of the stars.
    request.layers = NoLayers();
    request.layers.stars = true;
    const auto stars = charts::RenderChart(Sky(), request, {});
    request.layers.names = true;
    const auto named = charts::RenderChart(Sky(), request, {});
    EXPECT_NE(stars.image, named.image);
    EXPECT_EQ(stars.drawn.size(), named.drawn.size());
}

// Objects: the label rule, the circle of flag 1 at its true size, nothing off the image and
// nothing for positions that are not numbers.
TEST(RenderChart, PlottedObjectsAndCircles)
{
    EnsureGuiApplication();
    auto request = OrionRequest();
    request.layers = NoLayers();
    request.layers.dso = true;
    std::vector<charts::PlotObject> objects(5);
    objects[0] = {5.588, -5.39, 4, 85, "NGC 1976", "42", "", false, 0};
    objects[1] = {5.588, -5.39, 4, 120, "NGC 1976", "42", "", false, 1};
    objects[2] = {5.45, 1.8, 2, 70, "Cr 69", "Collinder 69", "", true, 0};
    objects[3] = {18.0, 5.0, 1, 5, "NGC 6500", "", "", false, 0};
    objects[4] = {std::nan(""), 5.0, 1, 5, "NGC 0", "", "", false, 0};
    const auto chart = charts::RenderChart(Sky(), request, objects);
    ASSERT_EQ(chart.drawn.size(), 3u);
    EXPECT_EQ(chart.drawn[0].kind, charts::DrawnKind::Dso);
    EXPECT_EQ(chart.drawn[0].name, "M42");
    EXPECT_EQ(chart.drawn[0].code, 4);
    EXPECT_EQ(chart.drawn[1].kind, charts::DrawnKind::Circle);
    EXPECT_EQ(chart.drawn[2].name, "Collinder 69");

    // The circle is 120 arc minutes across at the centre, where one radian spans s pixels.
    const double s = charts::ProjectionScale(35, 800, 600);
    const double r = 2.0 * std::numbers::pi / 180 * s / 2;
    EXPECT_NEAR(chart.drawn[1].r, r, 1e-9);
    EXPECT_NEAR(chart.drawn[1].x, 400, 1e-9);
    const QColor ring = chart.image.pixelColor(static_cast<int>(std::lround(400 + r)), 300);
    EXPECT_GT(ring.red(), 200);
    EXPECT_LT(ring.green(), 150);
}

// Bad requests draw something sensible instead of failing.
TEST(RenderChart, BadRequestsAreClamped)
{
    EnsureGuiApplication();
    charts::ChartRequest request;
    request.raHours = std::nan("");
    request.decDeg = 400;
    request.fieldDeg = 0;
    request.width = -5;
    request.height = 0;
    request.limitMag = std::nan("");
    const auto chart = charts::RenderChart(Sky(), request, {});
    EXPECT_EQ(chart.image.size(), QSize(16, 16));
    EXPECT_EQ(chart.fieldDeg, 1);
    EXPECT_EQ(chart.limitMag, 9.0);

    // The whole sky around the south pole, widest field.
    request = OrionRequest();
    request.decDeg = -90;
    request.fieldDeg = 180;
    const auto wide = charts::RenderChart(Sky(), request, {});
    EXPECT_FALSE(wide.drawn.empty());
}

} // namespace
