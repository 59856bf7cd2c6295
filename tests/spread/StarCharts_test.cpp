// The spreadsheet's chart commands on a real object database: the 50,000 limit, the working
// file's rule for the two targets, type codes and signs on the way to the engine, the finder's
// panels, and the info text with the observers' notes.

#include "spread/StarCharts.h"

#include "services/ScriptedUiPort.h"
#include "tests/data/TestDatabases.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

using namespace spread;

namespace {

class StarChartsFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ui.echo = false;
        testing_data::MakeObjectDatabase(f.objectPath);
        testing_data::MakeLogbook(f.dir.File("log.mdb"));
        TMM.objectDb = data::Database::Open(f.objectPath);
        TMM.logbookDb = data::Database::Open(f.dir.File("log.mdb"));
        link.callLog = &calls;
    }

    // A grid row: observed, ObjectID, OtherID, Type, R.A., Dec., Epoch, Catalog.
    static std::string Row(const std::string& id, const std::string& type, const std::string& ra,
                           const std::string& dec, const std::string& catalog = "2000",
                           const std::string& other = "")
    {
        std::string cells[31];
        cells[3] = id;
        cells[4] = other;
        cells[5] = type;
        cells[6] = ra;
        cells[7] = dec;
        cells[8] = "2000";
        cells[15] = "12.5";
        cells[23] = catalog;
        std::string text;
        for (int i = 0; i < 31; ++i)
            text += (i ? "\t" : "") + cells[i];
        return text;
    }

    int Count(const std::string& prefix) const
    {
        int n = 0;
        for (const std::string& call : calls)
            n += call.starts_with(prefix) ? 1 : 0;
        return n;
    }

    int Shown(const std::string& text) const
    {
        int n = 0;
        for (const auto& shown : ui.shown)
            n += shown.Text() == text ? 1 : 0;
        return n;
    }

    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
    charts::ChartSky sky;
    charts::OwnChart own{f.dir.path, [this]() -> const charts::ChartSky& { return sky; }};
    charts::CdcBridge cdc{[]() -> std::unique_ptr<charts::Planetarium> {
                              throw charts::PlanetariumError("no planetarium here");
                          },
                          [this]() -> const charts::ChartSky& { return sky; }};
    charts::ChartLink link{own, cdc};
    std::vector<std::string> calls;
    astro::FixedClock clock{{2025, 11, 8, 21, 30, 0}};
    ChartContext c{TMM, link, 1, {}, {}, {}, clock};
};

TEST_F(StarChartsFixture, FiftyThousandObjectsAtMostAndTheMessageOnce)
{
    Grid& grid = TMM.grids[0];
    const std::string row = Row("NGC 1", "Gx", "00 07 15.8", "+27 42 29.0");
    for (int i = 0; i < charts::kMaxPlottedObjects + 2; ++i)
        grid.AppendRow(row);
    PlotAllObjects_Click(c);
    EXPECT_EQ(Count("DrawChart\t"), 1);
    EXPECT_EQ(Count("PlotDSO\t"), charts::kMaxPlottedObjects);
    EXPECT_EQ(own.Current()->objects.size(), static_cast<std::size_t>(charts::kMaxPlottedObjects));
    EXPECT_EQ(Shown("Some objects were not plotted because you have reached the maximum of 50000 "
                    "plotted objects at one time"),
              1);
    // The chart is open: DSO.DAT exists and a second own chart is refused; the planetarium
    // target does not look at it.
    EXPECT_TRUE(std::filesystem::exists(f.dir.File("DSO.DAT")));
    calls.clear();
    PlotAllObjects_Click(c);
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(Shown("Only 1 chart can be opened at a time"), 1);
    link.ChartTarget = "C";
    EXPECT_FALSE(ChartOpen(c));
    own.Closed(own.Current().get());
    EXPECT_FALSE(std::filesystem::exists(f.dir.File("DSO.DAT")));
}

TEST_F(StarChartsFixture, TypeCodesSignsAndLabels)
{
    EXPECT_EQ(charts::ChartTypeCode("Dblst"), 7);
    EXPECT_EQ(charts::ChartTypeCode("GxCl"), 1);
    EXPECT_EQ(charts::ChartTypeCode("HII"), 4);
    EXPECT_EQ(charts::ChartTypeCode("Quasar"), 9);
    EXPECT_EQ(charts::ChartTypeCode("MOON"), 20);
    Grid& grid = TMM.grids[0];
    grid.AppendRow(Row("NGC 2", "Dblst", "05 35 17.3", "-00 30 00.0", "2000", "M 99"));
    grid.AppendRow(Row("Mars", "", "10 00 00.0", "+12 00 00.0", "PLANETS"));
    grid.AppendRow(Row("C/2023 A3", "", "11 00 00.0", "-05 30 00.0", "COMET"));
    grid.AppendRow(Row("Thing", "???", "23 59 59.9", "-89 59 59.0"));
    PlotAllObjects_Click(c);
    ASSERT_EQ(Count("PlotDSO\t"), 4);
    const auto field = [&](int call, int index) {
        std::size_t at = 0;
        const std::string& line = calls[static_cast<std::size_t>(call)];
        for (int i = 0; i < index; ++i)
            at = line.find('\t', at) + 1;
        return line.substr(at, line.find('\t', at) - at);
    };
    // Row 1 "-00 30": degrees 0, the sign on the minutes and a north flag of 0.
    EXPECT_EQ(field(0, 3), "0");
    EXPECT_EQ(field(0, 4), "-30");
    EXPECT_EQ(field(1, 3), "0");
    EXPECT_EQ(field(1, 4), "-30");
    EXPECT_EQ(field(1, 5), "0");
    EXPECT_EQ(field(1, 6), "7");
    EXPECT_EQ(field(1, 9), "M 99"); // the other name labels an object without a Messier number
    EXPECT_EQ(field(2, 6), "14");
    EXPECT_EQ(field(3, 6), "23");
    EXPECT_EQ(field(4, 6), "9");
    EXPECT_EQ(field(4, 5), "0");
    const auto& objects = own.Current()->objects;
    EXPECT_NEAR(objects[0].decDeg, -0.5, 1e-9);
    EXPECT_NEAR(objects[3].decDeg, -(89 + 59 / 60.0 + 59 / 3600.0), 1e-6);
    EXPECT_EQ(charts::DsoLabel(objects[0].extraId, objects[0].objectId), "M 99");
}

TEST_F(StarChartsFixture, SelectedRowInfoWithNotesAndThePrintChartsCircles)
{
    TMM.logbookDb->Execute("Insert Into UserCatalog (ObjectID, Author, Notes) Values "
                           "('NGC 1976', 'Ann', 'Trapezium sharp'), ('NGC 1976', 'Bob', 'Wings')");
    TMM.grids[0].AppendRow(Row("NGC 1976", "Nb", "05 35 17.3", "-05 23 28.0", "2000", "M 42"));
    ChartSOB(c, "D");
    ASSERT_EQ(own.Current()->infos.size(), 1u);
    const std::string& info = own.Current()->infos[0];
    EXPECT_NE(info.find("\\ORA HOURS    :\\D 05\\ORA MINUTES  :\\D 35.3"), std::string::npos);
    EXPECT_NE(info.find("\\ODECL DEGREES:\\D -05\\ODECL MINUTE :\\D 23.5"), std::string::npos);
    EXPECT_NE(info.find("OTHER LOGBOOK INFO\\L\\U\\OAnn Notes\\D Trapezium sharp\\OBob Notes"),
              std::string::npos);
    EXPECT_EQ(charts::InfoTextHtml("\\O\\L\\UOBJECT ID :\\D M <42>\\L\\U\\OTYPE :\\D Nb"),
              "<b><u>OBJECT ID :</b> M &lt;42&gt;</u><br><b>TYPE :</b> Nb");
    own.Closed(own.Current().get());

    // Telrads and an eyepiece circle both asked for: the circle alone, flagged 1. The picture
    // is drawn with fonts, which need the GUI application.
    static int argc = 1;
    static char name[] = "spread_tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        new QGuiApplication(argc, argv);
    calls.clear();
    PrintChartOptions options;
    options.telrads = true;
    options.circle = 20;
    options.width = options.height = 200;
    const std::optional<charts::ChartImage> picture = PrintChart(c, options);
    ASSERT_TRUE(picture.has_value());
    EXPECT_EQ(picture->image.size(), QSize(200, 200));
    EXPECT_EQ(Shown("Eyepiece circles override telrads.  As a result, no telrads will show on "
                    "your chart"),
              1);
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_TRUE(calls[2].starts_with("PlotDSO\t"));
    EXPECT_NE(calls[2].find("\t20\tNGC 1976\t"), std::string::npos);
    EXPECT_TRUE(calls[2].ends_with("\t1"));
    EXPECT_EQ(calls[3], "CloseChart");
    EXPECT_FALSE(std::filesystem::exists(f.dir.File("DSO.DAT")));
}

} // namespace
