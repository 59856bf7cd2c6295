// The column reports and the single-observation reports on real SQLite files, asserted on the
// recording surface: format and header strings from the settings files, the grid and log
// spreadsheet walks, the notes blocks, the entry summary and report 88's query and blocks.

#include "reports/LogReports.h"

#include "logbook/LogSpread.h"
#include "reports/ReportSettings.h"
#include "reports/ReportWindow.h"
#include "spread/AppState.h"
#include "tests/logbook/LogTestSession.h"

#include <QDate>
#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>

using namespace reports;

namespace {

// A recording surface that also keeps the cells of every table as they were handed over.
struct CellSurface : RecordingSurface
{
    std::vector<TableRows> bodies;
    void Table(std::string_view format, std::string_view header, const TableRows& body,
               Rgb headerColour, Rgb bodyColour) override
    {
        bodies.push_back(body);
        RecordingSurface::Table(format, header, body, headerColour, bodyColour);
    }
};

std::string GridRow(const std::map<int, std::string>& cells)
{
    std::string text;
    for (int col = 1; col <= 31; ++col) {
        const auto found = cells.find(col);
        text += (col > 1 ? "\t" : "") + (found != cells.end() ? found->second : std::string());
    }
    return text;
}

class LogReportsFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        data::RebuildLink(*s.logbook, s.prefs.cdDrive, s.prefs.UseCd);
        TMM.prefs = s.prefs;
        TMM.objectDb = std::move(s.objectDb);
        TMM.logbookDb = std::move(s.logbook);
        s.context.logbook = TMM.logbookDb.get();
        s.context.objectDb = TMM.objectDb.get();
    }

    // Writes the program folder's default settings file of a kind with the columns given
    // (index, width) on and every other off.
    void Settings(SettingsKind kind, const std::vector<std::pair<int, std::string>>& on,
                  const std::string& line = "1", const std::string& font = "Arial",
                  double size = 10)
    {
        ReportForm form = DesignForm(kind);
        form.cboLine = line;
        form.fontName = font;
        form.fontSize = size;
        for (ReportColumn& column : form.columns)
            column = {false, "1"};
        for (const auto& [index, width] : on)
            form.columns[static_cast<std::size_t>(index)] = {true, width};
        std::ofstream(s.f.dir.File(DefaultFileName(kind)), std::ios::binary)
            << WriteReportForm(form);
    }

    long long Log(const std::string& id, const std::string& date, const std::string& notes,
                  const std::string& type = "Default")
    {
        TMM.logbookDb->Execute(
            "Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
            "LocationObserved, Transparency, Seeing, Rating, EquipmentUsed, OtherEquipment, "
            "ShortDescription, ObservationText, SeenFlag, LogType) values ('" +
            id + "', '2000', '" + date +
            "', '21:00:00', 'Backyard', '5', '3', '4', '8 inch', ' ', '" + "Faint', '" + notes +
            "', -1, '" + type + "')");
        return std::stoll(
            testing_data::One(*TMM.logbookDb, "Select Max(ObservationNumber) From Logbook"));
    }

    void Run(int number)
    {
        surface.calls.clear();
        surface.bodies.clear();
        window.ReportNumber = number;
        window.Form_Load();
    }

    std::vector<std::string> Messages() const
    {
        std::vector<std::string> out;
        for (const auto& shown : ui().shown)
            out.push_back(shown.Text());
        return out;
    }
    const services::ScriptedUiPort& ui() const { return s.ui; }

    logtest::LogSession s;
    spread::AppState TMM{s.ui, s.f.dir, data::SettingsStore(s.f.dir.File("s.ini"))};
    ReportContext context{TMM, s.clock};
    CellSurface surface;
    ReportWindow window{context, surface};
};

TEST_F(LogReportsFixture, DatabaseReportWalksTheCurrentTabThroughTheChosenColumns)
{
    Settings(SettingsKind::Database, {{0, ".5"}, {3, "1.2"}, {9, ".6"}, {14, ".5"}, {30, "2"}},
             "2 - Double", "Times New Roman", 12);
    TMM.objectDb->Execute(
        "Update SelvaneTable Set Description = 'Bright | wide; with dark lanes' Where ID = 2");
    TMM.CurrTab = 1;
    TMM.grids[1].AppendRow(
        GridRow({{1, "X"}, {4, "  NGC 1976 "}, {10, "+35.20"}, {15, "Ori"}, {27, "2"}}));
    TMM.grids[1].AppendRow(GridRow({{4, "Sky spot"}, {27, ""}}));
    TMM.grids[0].AppendRow(GridRow({{4, "not this tab"}}));
    Run(2);

    const std::string date = PresentDate(context);
    EXPECT_TRUE(surface.Has("Header D a t a b a s e  R e p o r t\r\n"));
    EXPECT_TRUE(surface.Has("Footer Selvane 2003|D a t a b a s e  R e p o r t" +
                            std::string(21, ' ') + date + "  |Page %d"));
    EXPECT_TRUE(surface.Has("LineSpacing 200"));
    EXPECT_TRUE(surface.Has("Font Times New Roman 12"));
    ASSERT_EQ(surface.Tables().size(), 1u);
    EXPECT_EQ(surface.Tables()[0],
              "+^720|+<1728|+>864|+^720|+<2880; Plan|Object Id|Alt|Const|Description; "
              "X|NGC 1976|+35.20|Ori|Bright | wide; with dark lanes;|Sky spot|||;");
    // The description is one cell however many separators it holds.
    ASSERT_EQ(surface.bodies[0].size(), 2u);
    EXPECT_EQ(surface.bodies[0][0].size(), 5u);
    EXPECT_EQ(surface.bodies[0][0][4], "Bright | wide; with dark lanes");
    EXPECT_TRUE(Messages().empty());

    // An empty tab: the frame and the header row; a silly font size prints at 10.
    Settings(SettingsKind::Database, {{3, "1"}}, "1", "Arial", 900);
    TMM.CurrTab = 2;
    Run(2);
    EXPECT_EQ(surface.Tables(), std::vector<std::string>{"+<1440; Object Id; "});
    EXPECT_TRUE(surface.Has("Font Arial 10"));
    EXPECT_TRUE(surface.Has("EndDoc"));

    // No column on: ";" for format and header, and an empty table.
    Settings(SettingsKind::Database, {});
    TMM.CurrTab = 1;
    Run(2);
    EXPECT_EQ(surface.Tables(), std::vector<std::string>{"; ; "});
}

TEST_F(LogReportsFixture, LogReportPrintsTheLogSpreadsheetOrOnlyItsNotes)
{
    const long long m31 = Log("NGC 224", "2003-02-14", "<b>Dust lane</b> | seen; clearly");
    Log("NGC 7000", "2003-03-01", " ");
    Log("NGC 1976", "2003-03-02", "Trapezium", "Galaxies");
    TMM.logbookDb->Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, ImagePath) "
                           "Values (" +
                           std::to_string(m31) + ", 'Sketch', 'm31.png')");
    Settings(SettingsKind::Log, {{0, "1.1"}, {2, ".5"}, {7, "1"}, {14, ".8"}});
    // The report loads its own log spreadsheet, all types.
    Run(3);
    ASSERT_EQ(surface.Tables().size(), 1u) << testing::PrintToString(Messages());
    const std::string head = "+>1584|+>720|+>1440|+>1152; Object|Image Available|Date|Desc; ";
    EXPECT_EQ(surface.Tables()[0].substr(0, head.size()), head);
    ASSERT_EQ(surface.bodies[0].size(), 3u);
    const services::vb::Regional regional = data::RegionalOf(TMM.prefs);
    const auto row = [&](const std::string& id) {
        for (const auto& cells : surface.bodies[0])
            if (cells[0] == id)
                return cells;
        return std::vector<std::string>{};
    };
    EXPECT_EQ(row("NGC 224"),
              (std::vector<std::string>{"NGC 224", "Yes",
                                        logbook::LogDateCell("2003-02-14", regional), "Faint"}));
    EXPECT_EQ(row("NGC 7000")[1], "No");
    EXPECT_TRUE(surface.Has("Header L o g b o o k  R e p o r t\r\n"));

    // With the notes box on only the notes blocks are printed; a "|" or ";" in a note is text.
    Settings(SettingsKind::Log, {{0, "1"}, {3, "1"}});
    Run(3);
    EXPECT_TRUE(surface.Tables().empty());
    const std::vector<std::string> paragraphs = surface.Paragraphs();
    const auto at = std::find(paragraphs.begin(), paragraphs.end(), "Notes For Object : NGC 224");
    ASSERT_NE(at, paragraphs.end());
    ASSERT_LT(at + 2, paragraphs.end());
    EXPECT_EQ(*(at - 1), "");
    EXPECT_EQ(*(at + 1), std::string(56, '-'));
    EXPECT_EQ(*(at + 2), "Dust lane | seen; clearly");
    const auto empty =
        std::find(paragraphs.begin(), paragraphs.end(), "Notes For Object : NGC 7000");
    ASSERT_LT(empty + 2, paragraphs.end());
    EXPECT_EQ(*(empty + 2), "  * NOTES HAVE NOT BEEN ENTERED *");
    EXPECT_EQ(std::count(paragraphs.begin(), paragraphs.end(), std::string(56, '-')), 3);

    // The caller's spreadsheet: 3 prints it as it stands, 30 refreshes it first.
    Settings(SettingsKind::Log, {{0, "1"}});
    logbook::LogSpread view(s.context);
    view.Init();
    view.cboLogTypeFilter = "Galaxies";
    view.SQLFromEntry();
    ASSERT_TRUE(view.LoadTheGrid());
    context.logSpread = &view;
    Log("NGC 891", "2003-04-01", " ", "Galaxies");
    Run(3);
    EXPECT_EQ(surface.Tables()[0], "+>1440; Object; NGC 1976;");
    Run(30);
    EXPECT_EQ(surface.Tables()[0], "+>1440; Object; NGC 1976;NGC 891;");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(LogReportsFixture, SummaryOfTheOpenEntry)
{
    const long long n = Log("NGC 224", "2003-02-14", "Dust lane");
    TMM.logbookDb->Execute("Insert Into CCDLog (ObservationNumber, ImageName, ExposureTime, "
                           "darkframe, flatfield) Values (" +
                           std::to_string(n) + ", 'm31.fit', '30s', -1, 0)");
    QImage picture(60, 30, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    const std::string path = s.f.dir.File("m31.png").string();
    ASSERT_TRUE(picture.save(QString::fromStdString(path)));
    TMM.logbookDb->Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, ImagePath) "
                           "Values (" +
                           std::to_string(n) + ", 'The core', '" + path + "')");
    // No entry open: a message and no document.
    Run(134);
    EXPECT_FALSE(surface.Has("StartDoc"));
    ASSERT_EQ(Messages().size(), 1u);

    auto form = s.Open();
    ASSERT_GT(form->RowOf(n), 0);
    form->GridClick(form->RowOf(n));
    context.entry = form.get();
    Run(134);
    EXPECT_TRUE(surface.Has("Header Selvane 2003 Logbook Summary Report For Object NGC 224"));
    EXPECT_TRUE(surface.Has("Footer Selvane 2003||Page %d"));
    EXPECT_TRUE(surface.Has("Pictures 1 60x30 7200 3600 0"));
    const std::vector<std::string> p = surface.Paragraphs();
    const auto has = [&](const std::string& line) {
        return std::find(p.begin(), p.end(), line) != p.end();
    };
    for (const char* line :
         {"The core", "Object :     NGC 224", "Object Seen  Yes", "Location     Backyard",
          "Short Note   Faint", "CCD LOGBOOK INFO", "Image Name   m31.fit", "Exposure     30s",
          "Dark Frame    Yes", "Flat Field    No", "SESSION NOTES", "OBSERVING NOTES", "Dust lane"})
        EXPECT_TRUE(has(line)) << line;
    EXPECT_TRUE(has("Date Obs.    " + ShortDateText("2003-02-14", context)));
    EXPECT_TRUE(surface.Has("Font Courier New 10"));
}

TEST_F(LogReportsFixture, LogSingleOrderAndQuery)
{
    SortSelection sort;
    EXPECT_EQ(LogSingleOrder(sort), "");
    EXPECT_EQ(LogSingleSql(sort, "Default"),
              "SELECT * FROM Logbook LEFT JOIN CCDLog ON Logbook.ObservationNumber = "
              "CCDLog.ObservationNumber Where LogType = 'Default' ");
    sort.column = {"ObjectID", "", "DateObserved"};
    sort.descending = {true, true, false};
    sort.like = "NGC*";
    EXPECT_EQ(LogSingleOrder(sort), "ObjectID Desc,DateObserved");
    EXPECT_EQ(LogSingleSql(sort, "Bob's"),
              "SELECT * FROM Logbook LEFT JOIN CCDLog ON Logbook.ObservationNumber = "
              "CCDLog.ObservationNumber Where LogType = 'Bob''s'  and ObjectID Like 'NGC*'  Order "
              "By ObjectID Desc,DateObserved");
    sort.column = {"", "", "Seeing"};
    sort.descending = {false, false, true};
    EXPECT_EQ(LogSingleOrder(sort), "Seeing Desc");
}

TEST_F(LogReportsFixture, LogSinglePrintsOneBlockPerEntry)
{
    // An empty logbook prints the frame.
    Run(88);
    EXPECT_TRUE(surface.Has("Header Selvane 2003 LOGBOOK"));
    EXPECT_TRUE(surface.Has("EndDoc"));
    EXPECT_TRUE(surface.Paragraphs().empty());
    EXPECT_TRUE(surface.Tables().empty());

    const long long m31 = Log("NGC 224", "2003-02-14", "Dust | lane; seen");
    Log("NGC 7000", "2003-03-01", " ");
    Log("M 42", "2003-03-02", "Trapezium");
    Log("NGC 891", "2003-03-03", "Edge on", "Galaxies");
    TMM.logbookDb->Execute("Insert Into CCDLog (ObservationNumber, ImageName, Notes, darkframe) "
                           "Values (" +
                           std::to_string(m31) + ", 'm31.fit', 'Guided', -1)");
    window.sortSelection.column = {"ObjectID", "", ""};
    window.sortSelection.descending = {true, false, false};
    window.sortSelection.like = "NGC*";
    Run(88);
    const std::vector<std::string> p = surface.Paragraphs();
    std::vector<std::string> headings;
    std::copy_if(p.begin(), p.end(), std::back_inserter(headings),
                 [](const std::string& line) { return line.starts_with("Object Observed: "); });
    const services::vb::Regional regional = data::RegionalOf(TMM.prefs);
    EXPECT_EQ(headings,
              (std::vector<std::string>{
                  "Object Observed: NGC 7000  Date: " +
                      services::vb::FormatDate(QDate(2003, 3, 1), "Long Date", regional),
                  "Object Observed: NGC 224  Date: " +
                      services::vb::FormatDate(QDate(2003, 2, 14), "Long Date", regional)}));
    // Two entry tables and one CCD table, for the entry with an image name only.
    const std::vector<std::string> tables = surface.Tables();
    ASSERT_EQ(tables.size(), 3u);
    EXPECT_TRUE(tables[0].starts_with("<1800|<5000; Desc |Data; Observation #|"));
    EXPECT_NE(tables[1].find(";ObjectID|NGC 224;Catalog|2000;Date Observed|" +
                             ShortDateText("2003-02-14", context) + ";"),
              std::string::npos);
    EXPECT_NE(tables[2].find("Image Name|m31.fit;"), std::string::npos);
    EXPECT_NE(tables[2].find("Dark Frame|Yes;Flat Field|No;"), std::string::npos);
    EXPECT_EQ(std::count(p.begin(), p.end(), "CCD General Information :"), 1);
    for (const char* line : {"Observation Notes:", "Dust | lane; seen", "CCD Notes :", "Guided",
                             "Primary Equipment Used: 8 inch"})
        EXPECT_NE(std::find(p.begin(), p.end(), line), p.end()) << line;
    EXPECT_EQ(std::count(p.begin(), p.end(), "Observation Notes:"), 1);
    EXPECT_EQ(std::count_if(p.begin(), p.end(),
                            [](const std::string& l) { return l.starts_with("Additional"); }),
              0);
    EXPECT_TRUE(Messages().empty());
}

} // namespace
