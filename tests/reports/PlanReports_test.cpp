// The sheets for the telescope on real SQLite files, asserted on the recording surface: the
// table strings of the at-scope sheet, the plan report's seventeen lines and its two sections,
// rows that are no database object, the finder page's refusal and charts, the observed objects
// of a plan, and the quick printout's widths.

#include "reports/PlanReports.h"

#include "astro/ObservingClock.h"
#include "services/ScriptedUiPort.h"
#include "spread/AppState.h"
#include "spread/StarCharts.h"
#include "tests/data/TestDatabases.h"

#include "tests/charts/ChartFixtures.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <string>

using namespace reports;

namespace {

// The 31 cells of a grid row, by column number from 1.
std::string GridRow(const std::map<int, std::string>& cells)
{
    std::string text;
    for (int col = 1; col <= 31; ++col) {
        const auto found = cells.find(col);
        text += (col > 1 ? "\t" : "") + (found != cells.end() ? found->second : std::string());
    }
    return text;
}

const std::map<int, std::string> kOrion{
    {3, "X"},           {4, "NGC 1976"},      {5, "M 42"},   {6, "BRTNB"},  {7, "05 35 24.0"},
    {8, "-05 27 00.0"}, {10, "35.2"},         {11, "180.1"}, {12, "19:02"}, {13, "00:31"},
    {14, "06:00"},      {15, "Ori"},          {16, "85"},    {17, "4.0"},   {24, "2000"},
    {25, "m42.png"},    {26, "H1"},           {27, "2"},     {28, "5"},     {29, "225"},
    {30, "250"},        {31, "Great nebula"},
};

class PlanReportsFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        chartfixtures::EnsureGuiApplication();
        ui.echo = false;
        testing_data::MakeObjectDatabase(f.objectPath);
        testing_data::MakeLogbook(f.dir.File("log.mdb"));
        TMM.objectDb = data::Database::Open(f.objectPath);
        TMM.logbookDb = data::Database::Open(f.dir.File("log.mdb"));
        TMM.prefs.SVImagePath = f.dir.path.string();
    }

    // Replaces both databases by a file without tables: any query is a fault.
    void BreakDatabases()
    {
        data::OpenOptions create;
        create.create = true;
        TMM.objectDb = data::Database::Open(f.dir.File("empty.mdb"), create);
        TMM.objectDb->Execute("Create Table Unrelated (x Integer)");
        TMM.logbookDb = data::Database::Open(f.dir.File("empty.mdb"));
    }

    int Count(const std::string& line) const
    {
        return static_cast<int>(std::count(surface.calls.begin(), surface.calls.end(), line));
    }

    int Faults() const
    {
        int n = 0;
        for (const auto& shown : ui.shown)
            n += shown.message.ShortMessage == "The Following Error Has Occurred" ? 1 : 0;
        return n;
    }

    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
    astro::FixedClock clock{{2025, 11, 8, 21, 30, 0}};
    ReportContext context{TMM, clock};
    RecordingSurface surface;
    ReportWindow window{context, surface};
};

TEST_F(PlanReportsFixture, AtScopeSheetOfTheCurrentRowAndBlank)
{
    TMM.grids[0].AppendRow(GridRow({{4, "NGC 224"}}));
    TMM.grids[0].AppendRow(GridRow(kOrion));
    context.row = 2;
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    ASSERT_TRUE(picture.save(QString::fromStdString(f.dir.File("m42.png").string())));

    printAtScopeLog(window, false);
    const std::vector<std::string> tables = surface.Tables();
    ASSERT_EQ(tables.size(), 5u);
    EXPECT_EQ(tables[0], "^1400|^1500|^1500|^1500|^1000|^1000|^1000|^1000; "
                         "ObjectID|Other Name|R.A.|Dec.|Mag.|Size|Type|Const; "
                         "NGC 1976|M 42|05 35 24.0|-05 27 00.0|4.0|85|BRTNB|Ori;");
    EXPECT_EQ(tables[1], "^1400|^1500|^2000|^1500|^1500; "
                         "Observed|Hersch #|Sky Chart #|Uranometria #|Millennium #; "
                         " Yes|H1|5|225|250;");
    EXPECT_EQ(tables[2], "+^2000|+^3100|+^3500|+^1300; "
                         "Observer's Name|Address|Observing Site|Elevation; "
                         "\r\n|\r\n|\r\n|\r\n;");
    EXPECT_EQ(tables[3], "+^1200|+^1200|+^1000|+^1000|+^1700|+^1600|+^1200|+^1000; "
                         "Seeing (1-5)|Transparency (1-7)|Date UT|Time UT|Scope Make|Scope "
                         "Type|Scope Size|Focal Length; "
                         "\r\n|\r\n|\r\n|\r\n|\r\n|\r\n|\r\n|\r\n;");
    EXPECT_EQ(tables[4], "+^2000|+^2000|+<2000; Was this Object hard to identify in starfield|"
                         "Was this the first time you saw this object|Colors Noted; "
                         "  YES   NO| YES  NO|;");
    EXPECT_EQ(surface.calls.front(), "Orientation 0");
    EXPECT_TRUE(surface.Has("Margins 1140 1440 200 500"));
    EXPECT_TRUE(surface.Has("Paragraph Selvane 2003 Observation Log Entry"));
    EXPECT_EQ(Count("Paragraph " + std::string(59, '_')), 10);
    EXPECT_TRUE(surface.Has("DrawPicture 40x30 8080 6080 10960 8960"));
    EXPECT_TRUE(surface.Has("Circle 4000 12350 2000"));
    EXPECT_TRUE(surface.Has("Circle 8500 12350 2000"));
    EXPECT_TRUE(surface.Has("Footer This Log Entry Sheet is a modified version of the National "
                            "Deep Sky Observers (NDSOS) Visual Log Form.  11/08/25"));
    EXPECT_EQ(surface.calls.back(), "EndDoc");
    EXPECT_EQ(surface.PageCount(), 1);
    // The ocular line is written after the circles, below them in the flow.
    const auto circle =
        std::find(surface.calls.begin(), surface.calls.end(), "Circle 8500 12350 2000");
    const auto ocular =
        std::find_if(surface.calls.begin(), surface.calls.end(),
                     [](const std::string& c) { return c.find("Ocular") != c.npos; });
    EXPECT_LT(circle, ocular);

    // A row not observed and without a picture.
    surface.calls.clear();
    context.row = 1;
    printAtScopeLog(window, false);
    EXPECT_EQ(surface.Tables()[1], "^1400|^1500|^2000|^1500|^1500; "
                                   "Observed|Hersch #|Sky Chart #|Uranometria #|Millennium #; "
                                   " No||||;");
    EXPECT_EQ(Count("DrawPicture 40x30 8080 6080 10960 8960"), 0);

    // Report 13: empty cells; the grid is not read, so nothing of the row nor its picture shows.
    surface.calls.clear();
    context.row = 2;
    printAtScopeLog(window, true);
    const std::vector<std::string> blank = surface.Tables();
    ASSERT_EQ(blank.size(), 5u);
    EXPECT_EQ(blank[0], "^1400|^1500|^1500|^1500|^1000|^1000|^1000|^1000; "
                        "ObjectID|Other Name|R.A.|Dec.|Mag.|Size|Type|Const; |||||||;");
    EXPECT_EQ(blank[1], "^1400|^1500|^2000|^1500|^1500; "
                        "Observed|Hersch #|Sky Chart #|Uranometria #|Millennium #; ||||;");
    for (const std::string& call : surface.calls)
        EXPECT_EQ(call.find("NGC 1976"), std::string::npos) << call;
    EXPECT_EQ(Count("DrawPicture 40x30 8080 6080 10960 8960"), 0);
    EXPECT_EQ(Faults(), 0);
}

TEST_F(PlanReportsFixture, BatchSheetsAPagePerRowInOneDocument)
{
    for (const char* id : {"NGC 224", "Mars", "NGC 7000"})
        TMM.grids[0].AppendRow(GridRow({{4, id}, {24, id[0] == 'M' ? "PLANETS" : "2000"}}));
    printbatchscopelog(window);
    EXPECT_EQ(Count("StartDoc"), 1);
    EXPECT_EQ(Count("NewPage"), 2);
    EXPECT_EQ(Count("EndDoc"), 1);
    EXPECT_EQ(surface.calls.back(), "EndDoc");
    EXPECT_EQ(surface.PageCount(), 3);
    // The first cell of each object data table's body, page by page.
    std::vector<std::string> ids;
    for (const std::string& table : surface.Tables()) {
        if (!table.starts_with("^1400|^1500|^1500"))
            continue;
        const std::string body = table.substr(table.rfind("; ") + 2);
        ids.push_back(body.substr(0, body.find('|')));
    }
    EXPECT_EQ(ids, (std::vector<std::string>{"NGC 224", "Mars", "NGC 7000"}));

    // An empty tab: the frame of one empty page.
    surface.calls.clear();
    TMM.grids[0].SetMaxRows(0);
    printbatchscopelog(window);
    EXPECT_EQ(surface.calls.front(), "Orientation 0");
    EXPECT_EQ(Count("StartDoc"), 1);
    EXPECT_EQ(Count("EndDoc"), 1);
    EXPECT_TRUE(surface.Tables().empty());
}

TEST_F(PlanReportsFixture, PlanReportLinesAndTheTwoSections)
{
    // NGC 224 without its other names: the blank cells print as n/a.
    TMM.grids[0].AppendRow(GridRow({{4, "NGC 224"},
                                    {7, "00 42 44.3"},
                                    {8, "+41 16 09.0"},
                                    {6, "GALXY"},
                                    {15, "And"},
                                    {24, "2000"},
                                    {10, "12.5"},
                                    {11, "45.0"},
                                    {12, "15:10"},
                                    {13, "22:40"},
                                    {14, "08:20"}}));
    TMM.logbookDb->Execute("Update Logbook Set ObservationText = '<p>Dust <b>lane</b> seen</p>' "
                           "Where ObservationNumber = 1");
    printplanreport(window);
    EXPECT_TRUE(surface.Has("Header \r\nSelvane 2003 Observing Plan Details Report\r\n"));
    EXPECT_TRUE(surface.Has("HeaderFont Arial 10"));
    EXPECT_TRUE(surface.Has("Footer Selvane 2003||11/08/25  Page %d"));
    EXPECT_TRUE(surface.Has("Paragraph OBJECT DATA FOR NGC 224"));
    EXPECT_TRUE(surface.Has("Font Courier New 10"));
    const std::vector<std::string> expected{
        "OTHER ID|n/a;",      "HERSCHELL DESIGNATION|n/a;",
        "R.A.|00 42 44.3;",   "DECLINATION|+41 16 09.0;",
        "MAGNITUDE|n/a;",     "SIZE|n/a;",
        "TYPE|GALXY;",        "CONSTELLATION|And;",
        "SKY CHART #|n/a;",   "URANOMETRIA|n/a;",
        "MILLENNIUM #|n/a;",  "ALTITUDE|12.5;",
        "AZIMUTH|45.0;",      "OBJECT RISES|15:10;",
        "OBJECT SETS|08:20;", "OBJECT OPTIMUM|22:40;",
        "DESCRIPTION|;",
    };
    std::vector<std::string> lines;
    for (const std::string& table : surface.Tables()) {
        EXPECT_TRUE(table.starts_with("2700|3000;  ")) << table;
        lines.push_back(table.substr(12));
    }
    EXPECT_EQ(lines, expected);
    // Newest first; the rich notes of the older one as plain text.
    const std::vector<std::string> paragraphs = surface.Paragraphs();
    const auto from = std::find(paragraphs.begin(), paragraphs.end(), "PERSONAL OBSERVATIONS\r\n");
    ASSERT_NE(from, paragraphs.end());
    EXPECT_EQ(std::vector<std::string>(from, paragraphs.end()),
              (std::vector<std::string>{"PERSONAL OBSERVATIONS\r\n", "03/01/03 22:00:00\r\n",
                                        "02/14/03 21:30:00\r\n", "\r\nDust lane seen\r\n",
                                        "NOTES FROM OTHER OBSERVERS\r\n",
                                        "* there are no notes from other observers *"}));
    EXPECT_EQ(surface.calls.back(), "EndDoc");

    // Another log type with a quote in its name finds nothing; other observers' notes print.
    surface.calls.clear();
    TMM.prefs.Ltype = "O'Hara";
    TMM.logbookDb->Execute("Insert Into UserCatalog (ObjectID, Author, Notes) Values "
                           "('NGC 224', 'Lord Rosse', 'Spiral arms')");
    printplanreport(window);
    const std::vector<std::string> other = surface.Paragraphs();
    const auto at = std::find(other.begin(), other.end(), "PERSONAL OBSERVATIONS\r\n");
    ASSERT_NE(at, other.end());
    EXPECT_EQ(std::vector<std::string>(at, other.end()),
              (std::vector<std::string>{
                  "PERSONAL OBSERVATIONS\r\n",
                  "* the logbook does not contain any entries for this object *",
                  "NOTES FROM OTHER OBSERVERS\r\n",
                  "Lord Rosse  \r\n------------------------------------\r\nSpiral arms\r\n\r\n"}));
    EXPECT_EQ(Faults(), 0);
}

TEST_F(PlanReportsFixture, NonDatabaseRowsQueryNothingAndFaultsKeepThePages)
{
    TMM.grids[0].AppendRow(GridRow({{3, "X"}, {4, "Mars"}, {5, "Planet"}, {24, "PLANETS"}}));
    BreakDatabases();
    printplanreport(window);
    EXPECT_EQ(surface.Tables().size(), 17u);
    EXPECT_TRUE(surface.Has("Table 2700|3000;  OTHER ID|Planet;"));
    EXPECT_EQ(Count("Paragraph PERSONAL OBSERVATIONS\r\n"), 0);
    surface.calls.clear();
    printAtScopeLog(window, false);
    EXPECT_EQ(surface.Tables()[0].substr(surface.Tables()[0].rfind("; ") + 2),
              "Mars|Planet||||||;");
    EXPECT_EQ(Faults(), 0);

    // A database object on the same broken files: the fault is reported at the routine and the
    // pages built so far stay, ended.
    surface.calls.clear();
    TMM.grids[0].Clip(1, GridRow({{4, "NGC 224"}, {24, "2000"}}));
    printplanreport(window);
    EXPECT_EQ(Faults(), 1);
    ASSERT_FALSE(ui.shown.empty());
    EXPECT_NE(ui.shown.back().Text().find("Occurred in : frmUserM.printplanreport"),
              std::string::npos);
    EXPECT_EQ(surface.Tables().size(), 17u);
    EXPECT_EQ(surface.calls.back(), "EndDoc");
}

TEST_F(PlanReportsFixture, FinderRefusedWhileAChartIsOpenAndItsChartsOtherwise)
{
    TMM.grids[0].AppendRow(GridRow(kOrion));
    charts::ChartSky sky;
    charts::OwnChart own{f.dir.path, [&]() -> const charts::ChartSky& { return sky; }};
    charts::CdcBridge cdc{[]() -> std::unique_ptr<charts::Planetarium> {
                              throw charts::PlanetariumError("no planetarium here");
                          },
                          [&]() -> const charts::ChartSky& { return sky; }};
    charts::ChartLink link{own, cdc};
    spread::ChartContext charts{TMM, link, 1, {}, {}, {}, clock};
    context.charts = &charts;

    std::ofstream(own.WorkFile()) << "open";
    printchartreport(window);
    EXPECT_TRUE(surface.calls.empty());
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].Text(), "Please close your star chart first before running this report");
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Invalid Usage");
    EXPECT_EQ(ui.shown[0].message.kind, "I");

    std::filesystem::remove(own.WorkFile());
    ui.shown.clear();
    printchartreport(window);
    EXPECT_TRUE(ui.shown.empty());
    EXPECT_TRUE(surface.Has("Margins 1140 1440 200 1000"));
    EXPECT_TRUE(surface.Has("Paragraph Selvane 2003 Finder Chart"));
    EXPECT_TRUE(surface.Has("Paragraph FINDER CHART FOR : NGC 1976"));
    EXPECT_TRUE(surface.Has("Table 2700|2750|2700|2750;  OTHER ID|M 42|R.A.|05 35 24.0;"
                            "TYPE|BRTNB|DECLINATION|-05 27 00.0;MAGNITUDE|4.0|SIZE|85;"
                            "CONSTELLATION|Ori|SKY CHART #|5;URANOMETRIA|225|MILLENNIUM #|250;"));
    EXPECT_TRUE(surface.Has("Pictures 1 700x700 6000 6000 0"));
    EXPECT_TRUE(surface.Has("Pictures 2 480x480 4000 4000 400"));
    EXPECT_TRUE(surface.Has("Paragraph Eyepiece Chart                                         "
                            "          Telrad Chart"));
    EXPECT_FALSE(std::filesystem::exists(own.WorkFile()));
    EXPECT_EQ(surface.calls.back(), "EndDoc");

    // An eyepiece circle with the telrads: the override is said once, not once per chart.
    window.chkTelrad = true;
    window.txtCircle = "30";
    printchartreport(window);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Overriden");
}

TEST(EyepieceFields, TrueFieldsWithTheFirstTelescope)
{
    testing_data::TestFolder f;
    // 80 mm at f/6 gives 480 mm; 32 mm with 52 degrees gives 15x and 3.467 degrees.
    std::ofstream(f.dir.File("scope.dat")) << "80 mm f/6 apochromatic refractor 06.0 080\n"
                                              "8 inch f/10 Schmidt-Cassegrain   10.0 203\n";
    std::ofstream(f.dir.File("eyepiece.dat")) << "32 mm Plossl                     32.0 52\n"
                                                 "broken                           00.0 52\n"
                                                 "12.5 mm orthoscopic              12.5 45\n"
                                                 "9 mm orthoscopic                 09.0 45\n"
                                                 "6 mm ultra wide field            06.0 82\n"
                                                 "4 mm ortho                       04.0 40\n";
    const std::vector<EyepieceField> fields = EyepieceFields(f.dir);
    ASSERT_EQ(fields.size(), 4u);
    EXPECT_EQ(fields[0].name, "32 mm Plossl");
    EXPECT_NEAR(fields[0].power, 15, 1e-9);
    EXPECT_NEAR(fields[0].trueFieldDeg, 52.0 / 15, 1e-9);
    EXPECT_NEAR(fields[1].power, 38.4, 1e-9);
    EXPECT_NEAR(fields[3].trueFieldDeg, 82.0 / 80, 1e-9);

    // The circles land on the picture at its scale: a 15 degree chart 300 pixels wide draws the
    // 3.467 degree field 34.7 pixels from the centre.
    chartfixtures::EnsureGuiApplication();
    QImage chart(300, 300, QImage::Format_RGB32);
    chart.fill(Qt::black);
    DrawEyepieceCircles(chart, 15, {fields[0]});
    EXPECT_NE(chart.pixel(150 + 35, 150), QColor(Qt::black).rgb());
    EXPECT_EQ(chart.pixel(150 + 20, 150), QColor(Qt::black).rgb());

    std::filesystem::remove(f.dir.File("scope.dat"));
    EXPECT_TRUE(EyepieceFields(f.dir).empty());
}

TEST_F(PlanReportsFixture, ObservedObjectsOfAPlan)
{
    // NGC 224 logged three times (two in the fixture), NGC 1976 once, NGC 7000 not in the plan.
    TMM.logbookDb->Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
                           "LocationObserved, Seeing, DataRec) Values ('NGC 224', '2000', "
                           "'2004-08-12', '23:15:00', 'Dark site', '4', 1)");
    TMM.logbookDb->Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
                           "DataRec) Values ('NGC 1976', '2000', '2004-01-02', '20:00:00', 2)");
    TMM.logbookDb->Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
                           "DataRec) Values ('NGC 7000', '2000', '2004-07-02', '23:00:00', 3)");
    std::ofstream(f.dir.File("mine.PLN"), std::ios::binary)
        << "\"NGC 224\",\"2000\",1,\"\"\r\n\"NGC 1976\",\"2000\",2,\"\"\r\n";
    window.ObsPlan("mine.PLN");
    window.ObsPlanSort("Date/Time");
    PrintPlanObjectsObserved(window);
    EXPECT_TRUE(surface.Has("Orientation 1"));
    EXPECT_TRUE(surface.Has("Footer Selvane 2003||Page %d"));
    EXPECT_TRUE(surface.Has("Paragraph Observing Plan : mine.PLN            The following objects "
                            "have been observed in this plan"));
    const std::vector<std::string> tables = surface.Tables();
    ASSERT_EQ(tables.size(), 1u);
    EXPECT_EQ(tables[0], "+<1440|+<850|+<2000|+<1440|+<2000|+<1440|+<1440|+^650|+<1440; "
                         "ObjectID|Catalog|Date/Time|Location|Equipment|Seeing|Trans|Rating|Notes; "
                         "NGC 224|2000|02/14/03 21:30:00|Home|||||;"
                         "NGC 224|2000|03/01/03 22:00:00|Field|||||;"
                         "NGC 1976|2000|01/02/04 20:00:00||||||;"
                         "NGC 224|2000|08/12/04 23:15:00|Dark site||4|||;");
    EXPECT_EQ(surface.calls.back(), "EndDoc");

    // A shipped plan: bare NGC numbers of an older table, looked up again, with the Herschel
    // column.
    surface.calls.clear();
    std::ofstream(f.dir.File("HCLUB1.PLN"), std::ios::binary)
        << "\"1976\",\"2000\",47\r\n\"9999\",\"2000\",48\r\n";
    window.ObsPlan("HCLUB1.PLN");
    window.ObsPlanSort("ObjectID");
    PrintPlanObjectsObserved(window);
    ASSERT_EQ(surface.Tables().size(), 1u);
    EXPECT_EQ(surface.Tables()[0],
              "+<1440|+<1440|+<850|+<2000|+<1440|+<2000|+<1440|+<1440|+^650|+<1440; "
              "ObjectID|Hersch|Catalog|Date/Time|Location|Equipment|Seeing|Trans|Rating|Notes; "
              "NGC 1976|H1|2000|01/02/04 20:00:00||||||;");

    // A plan that cannot be read: a message and no document.
    surface.calls.clear();
    window.ObsPlan("gone.PLN");
    PrintPlanObjectsObserved(window);
    EXPECT_TRUE(surface.calls.empty());
    ASSERT_FALSE(ui.shown.empty());
    EXPECT_EQ(ui.shown.back().Text(), "The plan file gone.PLN could not be read");
    EXPECT_EQ(ui.shown.back().message.ShortMessage, "Invalid Plan");
    EXPECT_EQ(Faults(), 0);
}

TEST_F(PlanReportsFixture, QuickPrintoutColumnsRowsAndWidths)
{
    spread::Grid grid;
    grid.SetTag("All Messier Objects");
    for (int col = 0; col <= 31; ++col) {
        grid.SetColWidth(col, 0);
        grid.SetHeader(col, "H" + std::to_string(col));
    }
    grid.SetColWidth(4, 10);
    grid.SetColWidth(17, 5);
    grid.SetTypeHAlign(17, spread::HAlign::Right);
    grid.AppendRow(GridRow({{4, "M 1"}, {17, "8.4"}}));
    grid.AppendRow(GridRow({{4, "M 2"}, {17, "6.5"}}));
    grid.AppendRow(GridRow({{4, "M 3"}, {17, "6.2"}}));
    grid.SetRowHidden(2, true);
    QuickPrintout(grid, surface, context);
    // 10 characters of Arial 8 (89 twips each) and 120 twips of room.
    EXPECT_EQ(surface.Tables(), (std::vector<std::string>{"<1009|>564; H4|H17; M 1|8.4;M 3|6.2;"}));
    EXPECT_TRUE(surface.Has("Orientation 1"));
    EXPECT_TRUE(surface.Has("Margins 500 500 500 1000"));
    EXPECT_TRUE(surface.Has("Header All Messier Objects"));
    EXPECT_TRUE(surface.Has("Font Arial 8"));
    EXPECT_TRUE(surface.Has("Footer Selvane 2003||11/08/25  Page %d"));

    // Wider than the landscape page (15840 less 1000 of margins): scaled down to fit, the print
    // with it; columns blank in every row shown are left out.
    surface.calls.clear();
    for (int col = 1; col <= 31; ++col)
        grid.SetColWidth(col, 20);
    for (int col = 1; col <= 30; ++col)
        grid.SetText(1, col, "x");
    QuickPrintout(grid, surface, context);
    const std::vector<TableColumn> columns =
        ParseTableFormat(surface.Tables()[0].substr(0, surface.Tables()[0].find(' ')));
    ASSERT_EQ(columns.size(), 30u);
    EXPECT_TRUE(surface.Has("Font Arial 6"));
    int total = 0;
    for (const TableColumn& c : columns)
        total += c.width;
    EXPECT_LE(total, 14840);
    EXPECT_GE(total, 14840 - 31);
}

} // namespace
