// The report table and the text and notes reports, recorded: what each asks of the surface,
// its questions and messages, and the report window's page commands.

#include "reports/ReportWindow.h"
#include "reports/TextReports.h"

#include "logbook/LogEntryForm.h"
#include "services/ScriptedUiPort.h"
#include "spread/AppState.h"
#include "tests/data/TestDatabases.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace reports;

namespace {

struct FixedClock : astro::Clock
{
    astro::LocalDateTime Now() const override { return {2026, 11, 24, 21, 30, 0}; }
};

class ReportsFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ui.echo = false;
        testing_data::MakeLogbook(f.dir.File("log.mdb"));
        TMM.logbookDb = data::Database::Open(f.dir.File("log.mdb"));
        TMM.logbookDb->Execute("Delete From Logbook");
    }

    void Log(const std::string& id, const std::string& date, const std::string& notes)
    {
        TMM.logbookDb->Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, "
                               "TimeObserved, LocationObserved, Transparency, Seeing, "
                               "EquipmentUsed, ObservationText, LogType) values ('" +
                               id + "', '2000', '" + date +
                               "', '21:00:00', 'Backyard', '5', '3', '8 inch', '" + notes +
                               "', 'Default')");
    }

    ReportWindow& Open(int number)
    {
        window.ReportNumber = number;
        window.Form_Load();
        return window;
    }

    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
    FixedClock clock;
    ReportContext context{TMM, clock};
    RecordingSurface s;
    ReportWindow window{context, s};
};

TEST_F(ReportsFixture, TableRefusesWithoutItsInputAndOrientsTheSheets)
{
    // The summary of the entry window without an open entry.
    Open(134);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].Text(), "Please open an observation of the logbook first");
    EXPECT_FALSE(s.Has("StartDoc"));
    // The sheets of the current row, on an empty tab.
    Open(15);
    ASSERT_EQ(ui.shown.size(), 2u);
    EXPECT_EQ(ui.shown[1].Text(), kNoRowText);
    EXPECT_FALSE(s.Has("StartDoc"));

    // The sheets for the telescope are portrait, with the box off; 15 and 16 show the chart
    // options from the settings.
    TMM.prefs.repChartFOV = 12.5;
    TMM.prefs.ShowCircle = 30;
    ReportWindow sheet(context, s);
    sheet.chkLand = true;
    sheet.ReportNumber = 15;
    sheet.chkLand_Click();
    EXPECT_FALSE(sheet.chkLand);
    EXPECT_FALSE(sheet.chkLandEnabled);
    EXPECT_TRUE(sheet.chartOptionsVisible);
    EXPECT_EQ(sheet.txtFov, "12.5");
    EXPECT_EQ(ReportWindow(context, s).txtFov, "12.5");
    TMM.prefs.repChartFOV = 15;
    EXPECT_EQ(ReportWindow(context, s).txtFov, "15");
    EXPECT_EQ(sheet.txtCircle, "30");
    sheet.ReportNumber = 151;
    sheet.chkLand = true;
    sheet.chkLand_Click();
    EXPECT_TRUE(sheet.chkLand);
    EXPECT_TRUE(s.Has("Orientation 1"));

    sheet.ObsPlanSort("Date/Time");
    EXPECT_EQ(sheet.ObsPlanOrderBy(), "Order By DateObserved, TimeObserved");
    sheet.ObsPlanSort("Nonsense");
    EXPECT_EQ(sheet.ObsPlanOrderBy(), "");

    EXPECT_TRUE(ReportWindow::Known(1112));
    EXPECT_TRUE(ReportWindow::Known(902));
    EXPECT_FALSE(ReportWindow::Known(9));
}

TEST_F(ReportsFixture, PageCommandsStayWithinTheDocument)
{
    s.StartDoc();
    s.NewPage();
    s.NewPage();
    s.EndDoc();
    EXPECT_EQ(window.Sbar(), "You are on Page 1 of 3");
    window.Previous();
    EXPECT_EQ(window.Page(), 1);
    window.Last();
    window.Next();
    EXPECT_EQ(window.Sbar(), "You are on Page 3 of 3");
    window.First();
    window.Next();
    EXPECT_EQ(window.Page(), 2);

    window.ZoomIn();
    EXPECT_EQ(window.Zoom(), 110);
    window.ZoomNormal();
    window.ZoomOut();
    EXPECT_EQ(window.Zoom(), 90);

    EXPECT_EQ(window.PrintRange(), std::make_pair(1, 3)); // To "9999"
    window.txtFrom = "2";
    window.txtTo = "";
    EXPECT_EQ(window.PrintRange(), std::make_pair(2, 3));
    window.txtTo = "2";
    EXPECT_EQ(window.PrintRange(), std::make_pair(2, 2));
}

TEST_F(ReportsFixture, FullAndNewMoonsOfTheAskedYearInTheRegionalOrder)
{
    ui.inputAnswers = {"1899"};
    Open(150);
    EXPECT_EQ(ui.shown.at(0).Text(), "Please enter a year after 1900");
    EXPECT_EQ(ui.shown.at(0).message.ShortMessage, "Invalid Input!");
    EXPECT_FALSE(s.Has("StartDoc"));

    ui.inputAnswers = {"2025"};
    Open(150);
    EXPECT_TRUE(s.Has("Paragraph Dates of Full and New Moons - 2025"));
    const std::vector<std::string> lines = s.Paragraphs();
    const auto count = std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
        return line.ends_with("/2025") &&
               (line.starts_with("New Moon on ") || line.starts_with("Full Moon on "));
    });
    EXPECT_GE(count, 24);
    EXPECT_LE(count, 26);
    // 2025 January 13 22:27 UT full, January 29 12:36 UT new.
    EXPECT_TRUE(s.Has("Paragraph Full Moon on 01/13/2025"));
    EXPECT_TRUE(s.Has("Paragraph New Moon on 01/29/2025"));

    TMM.prefs.dateformat = "dd.mm.yyyy";
    TMM.prefs.datesep = ".";
    s.calls.clear();
    ui.inputAnswers = {"2025"};
    Open(150);
    EXPECT_TRUE(s.Has("Paragraph Full Moon on 13.01.2025"));
    EXPECT_EQ(std::count_if(s.calls.begin(), s.calls.end(),
                            [](const std::string& c) {
                                return c.find("2024") != c.npos || c.find("2026") != c.npos;
                            }),
              1); // only the footer's present date
}

TEST_F(ReportsFixture, NotesOfTheSelectionOrOfOneBox)
{
    Log("NGC 224", "2024-10-01", "<p>Dust lane <b>clear</b></p>");
    Log("NGC 7000", "2025-08-01", "North America | Pelican; wide");
    Log("NGC 1976", "2023-01-15", "");
    window.NotesSQL("Select Logbook.*, 'M 42' As OtherID From Logbook");

    // Yes: every note of the selection, newest first, in its rich text.
    ui.answers = {true};
    Open(1111);
    EXPECT_EQ(ui.asked.at(0), "Click Yes to print ALL notes or No to print selected note");
    const std::vector<std::string> p = s.Paragraphs();
    ASSERT_GE(p.size(), 4u);
    EXPECT_EQ(p[0], "Object ID: NGC 7000 - M 42");
    EXPECT_EQ(p[1], "Date Obs : 08/01/25 21:00:00   Location : Backyard");
    EXPECT_EQ(p[2], "Sky Conditions :  Transparency = 5  Seeing = 3");
    EXPECT_EQ(p[3], "Equipment : 8 inch");
    EXPECT_TRUE(s.Has("RichText North America | Pelican; wide"));
    EXPECT_TRUE(s.Has("Header NOTES FROM LOGBOOK:\r\n"));
    EXPECT_TRUE(s.Has("Footer Selvane 2003||Page %d"));

    // No: the one box under its title.
    s.calls.clear();
    ui.answers = {false};
    window.ObjectIDToPrint("Object ID : NGC 224 - M 31");
    window.RichTextToPrint("<p>Only this</p>");
    Open(1111);
    EXPECT_EQ(s.Paragraphs(), (std::vector<std::string>{"Object ID : NGC 224 - M 31", "", ""}));
    EXPECT_TRUE(s.Has("RichText <p>Only this</p>"));

    // 1112: the log information, plain text, a blank note left out, a rule behind each record.
    s.calls.clear();
    Open(1112);
    EXPECT_TRUE(s.Has("Header MY LOGBOOK INFORMATION:\r\n"));
    EXPECT_TRUE(s.Has("Paragraph Dust lane clear"));
    const std::vector<std::string> q = s.Paragraphs();
    EXPECT_EQ(std::count(q.begin(), q.end(), std::string(146, '-')), 3);
    EXPECT_TRUE(s.Has("Font Arial 12 B"));
    EXPECT_EQ(std::count_if(q.begin(), q.end(), [](const std::string& l) { return l.empty(); }), 3);

    // A selection that cannot run is a fault of the routine.
    window.NotesSQL("Select Nothing From Nowhere");
    Open(1112);
    ASSERT_FALSE(ui.shown.empty());
    EXPECT_NE(ui.shown.back().message.LongMessage.find("frmUserM.PrintNotes"), std::string::npos)
        << ui.shown.back().message.LongMessage;
}

TEST_F(ReportsFixture, NotesOfTheOpenEntry)
{
    Open(18);
    EXPECT_EQ(ui.shown.at(0).message.ShortMessage, "Invalid Usage");

    data::CurrentObject current;
    logbook::LogContext logContext{ui,   TMM.logbookDb.get(), nullptr, TMM.prefs, TMM.dir, current,
                                   clock};
    logbook::LogEntryForm entry(logContext);
    entry.f.txtObjectID = "NGC 7000";
    entry.f.RichTextBox1 = "<p>Session</p>";
    entry.f.rchNotes = "<p>Observing</p>";
    entry.f.rchNotesccd = "CCD";
    context.entry = &entry;
    for (const auto& [number, header, text] :
         {std::tuple{17, "Observation Text For Object NGC 7000 ", "<p>Observing</p>"},
          std::tuple{18, "Session Notes ", "<p>Session</p>"},
          std::tuple{19, "Observing Notes ", "<p>Observing</p>"},
          std::tuple{20, "CCD Notes ", "CCD"}}) {
        s.calls.clear();
        Open(number);
        EXPECT_TRUE(s.Has(std::string("Header ") + header)) << number;
        EXPECT_TRUE(s.Has(std::string("RichText ") + text)) << number;
        EXPECT_TRUE(s.Has("HeaderFont Arial 10"));
    }
}

} // namespace
