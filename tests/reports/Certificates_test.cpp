// The certificates and the statistics sheet on real SQLite files, asserted on the recording
// surface: one line per object however often it was logged, the counts in the footers, the
// catalogue rule of the Messier list, what is still to observe, and the lines of the sheet.

#include "reports/Certificates.h"

#include "astro/ObservingClock.h"
#include "data/DatabaseFiles.h"
#include "reports/ReportWindow.h"
#include "services/ScriptedUiPort.h"
#include "spread/AppState.h"
#include "tests/data/TestDatabases.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace reports;

namespace {

class CertificatesFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ui.echo = false;
        testing_data::MakeObjectDatabase(f.objectPath);
        testing_data::MakeLogbook(f.dir.File("log.mdb"));
        TMM.objectDb = data::Database::Open(f.objectPath);
        TMM.logbookDb = data::Database::Open(f.dir.File("log.mdb"));
        // The seeded logbook's two nights of NGC 224 are replaced by each test's own.
        TMM.logbookDb->Execute("Delete From Logbook");
        TMM.logbookDb->Execute("Delete From xref");
        for (const char* row : {"'NGC 40', 'H IV-58'", "'NGC 224', 'H V-18'", "'NGC 891', 'H V-19'",
                                "'NGC 7000', 'H V-37'"})
            TMM.logbookDb->Execute(std::string("Insert Into xref (NGC, Her) Values (") + row + ")");
        TMM.objectDb->Execute("Insert Into SelvaneTable (ID, ObjectID, ObjectType, Catalog, "
                              "Observed, MessierNumber) Values (4, 'NGC 1952', 'SNREM', '2000', "
                              "0, 1)");
        data::RebuildLink(*TMM.logbookDb, f.objectPath.string(), false);
    }

    void Log(const std::string& id, const std::string& catalog, const std::string& date)
    {
        TMM.logbookDb->Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, "
                               "TimeObserved, LocationObserved, Seeing, Transparency, "
                               "EquipmentUsed, ShortDescription, LogType) Values ('" +
                               id + "', '" + catalog + "', '" + date +
                               "', '21:30:00', 'Home', '4', '6', '8\" SCT', 'Bright core', "
                               "'Default')");
    }

    // The date of the first row the selection gives for a key.
    std::string FirstDate(const char* sql, const std::string& column, const std::string& value)
    {
        auto rs = TMM.logbookDb->OpenRecordset(sql, data::Snapshot);
        for (; !rs.Eof(); rs.MoveNext())
            if (rs.Fields(column).Value() == value)
                return rs.Fields("DateObserved").Value();
        return "<none>";
    }

    std::string ShortDate(const std::string& iso) { return ShortDateText(iso, context); }

    std::string Footer() const
    {
        std::string footer;
        for (const std::string& call : surface.calls)
            if (call.rfind("Footer ", 0) == 0)
                footer = call.substr(7);
        return footer;
    }

    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
    astro::FixedClock clock{{2025, 11, 8, 21, 30, 0}};
    ReportContext context{TMM, clock};
    RecordingSurface surface;
    ReportWindow window{context, surface};
};

TEST_F(CertificatesFixture, HerschelObjectLoggedManyTimesCountsOnceWithTheFirstRow)
{
    for (const char* date : {"2004-03-01", "2001-07-15", "2009-12-24", "2003-01-02", "2006-05-05"})
        Log("NGC 891", "2000", date);
    Log("NGC 7000", "2000", "2010-08-01");
    // Catalogue "2000" only: the same NGC number in another catalogue is no Herschel object.
    Log("NGC 40", "NGC", "2011-09-09");

    window.ReportNumber = 7;
    window.Command9_Click();
    const std::string first = FirstDate(kHerschelSql, "Her", "H V-19");
    EXPECT_EQ(surface.Paragraphs(),
              (std::vector<std::string>{"Hersch #:H V-19, NGC #: NGC 891 on " + ShortDate(first),
                                        "Hersch #:H V-37, NGC #: NGC 7000 on 08/01/10"}));
    EXPECT_TRUE(surface.Has("Header Observed Herschel Objects Report (Herschel Certificate)"));
    EXPECT_TRUE(surface.Has("HeaderFont Arial 10"));
    EXPECT_TRUE(surface.Has("Font Arial 12"));
    EXPECT_EQ(Footer(), "You have observed 2 Herschel Objects so far.||11/08/25  Page %d");
    // The footer is set after the body, so that it stands on every page.
    EXPECT_EQ(surface.calls[surface.calls.size() - 2].rfind("Footer ", 0), 0u);

    // The long form: one block per object, the date in the long form.
    surface.calls.clear();
    window.ReportNumber = 77;
    window.Command9_Click();
    const std::vector<std::string> lines = surface.Paragraphs();
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(lines[6], "Herschell Object : H V-37 was observed on Sunday, August 1, 2010");
    EXPECT_EQ(lines[7], "Time Observed : 21:30:00");
    EXPECT_EQ(lines[8], "Seeing Conditions : 4   Transparency : 6");
    EXPECT_EQ(lines[9], "Primary Equipment : 8\" SCT");
    EXPECT_EQ(lines[10], "Notes : Bright core");
    EXPECT_EQ(Footer(), "You have observed 2 Herschel Objects so far.||11/08/25  Page %d");
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(CertificatesFixture, NoHerschelObjectPrintsAnEmptyPageWithTheCount)
{
    Log("NGC 1976", "2000", "2004-03-01");
    window.ReportNumber = 7;
    window.Command9_Click();
    EXPECT_TRUE(surface.Paragraphs().empty());
    EXPECT_EQ(surface.PageCount(), 1);
    EXPECT_EQ(Footer(), "You have observed 0 Herschel Objects so far.||11/08/25  Page %d");
}

TEST_F(CertificatesFixture, MessierObjectCountsOnlyUnderItsIdInCatalogue2000)
{
    for (const char* date : {"2004-03-01", "2001-07-15", "2009-12-24", "2003-01-02", "2006-05-05"})
        Log("NGC 224", "2000", date);
    // M 42 logged in another catalogue, and under its Messier name: neither names the row of
    // catalogue "2000".
    Log("NGC 1976", "NGC", "2002-02-02");
    Log("M42", "MESSIER", "2002-02-03");

    window.ReportNumber = 133;
    window.Command9_Click();
    const std::string first = FirstDate(kMessierSql, "MessierNumber", "31");
    EXPECT_EQ(surface.Paragraphs(), std::vector<std::string>{"M31 on " + ShortDate(first)});
    EXPECT_TRUE(surface.Has("Header Observed Messier Objects Report (Messier Certificate)"));
    EXPECT_EQ(Footer(), "You have observed 1 Messier Objects so far.||11/08/25  Page %d");

    surface.calls.clear();
    window.ReportNumber = 4;
    window.Command9_Click();
    const std::vector<std::string> lines = surface.Paragraphs();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0].rfind("M31 was observed on ", 0), 0u) << lines[0];
    EXPECT_EQ(Footer(), "You have observed 1 Messier Objects so far.| |Page %d");
    EXPECT_TRUE(ui.shown.empty());

    // Without the link to the object database the selection fails into the report's fault.
    TMM.logbookDb->Detach(data::LinkSchema);
    window.ReportNumber = 133;
    window.Command9_Click();
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_NE(ui.shown[0].Text().find("frmUserM.Printmessierreport1"), std::string::npos);
}

TEST_F(CertificatesFixture, StillToObserveListsExactlyTheMissingOnes)
{
    Log("NGC 224", "2000", "2004-03-01");
    Log("NGC 224", "2000", "2005-03-01");
    Log("NGC 7000", "2000", "2004-03-01");
    Log("NGC 40", "NGC", "2004-03-01");

    window.ReportNumber = 7;
    window.Command9_Click();
    EXPECT_FALSE(surface.Has(std::string("Paragraph ") + kStillToObserve));

    TMM.prefs.CertMissing = true;
    ReportWindow fresh{context, surface};
    EXPECT_TRUE(fresh.chkMissing);
    for (int number : {7, 77}) {
        surface.calls.clear();
        fresh.ReportNumber = number;
        fresh.Command9_Click();
        const std::vector<std::string> lines = surface.Paragraphs();
        ASSERT_GE(lines.size(), 2u);
        EXPECT_EQ(lines[lines.size() - 2], kStillToObserve) << number;
        EXPECT_EQ(lines.back(), "H IV-58,  H V-19") << number;
    }
    surface.calls.clear();
    fresh.ReportNumber = 133;
    fresh.Command9_Click();
    const std::string first = ShortDate(FirstDate(kMessierSql, "MessierNumber", "31"));
    EXPECT_EQ(surface.Paragraphs(),
              (std::vector<std::string>{"M31 on " + first, "", kStillToObserve, "M1,  M42"}));
    EXPECT_TRUE(ListsMissing(4) && ListsMissing(7) && ListsMissing(77) && ListsMissing(133));
    EXPECT_FALSE(ListsMissing(8) || ListsMissing(2));
}

TEST_F(CertificatesFixture, StatisticsLinesAndTotals)
{
    TMM.objectDb->Execute("Insert Into ValidObjectTypes (ObjectType, ObjectTypeDesc) Values "
                          "('BRTNB', 'Bright nebula')");
    TMM.objectDb->Execute("Update SelvaneTable Set Observed = 0");
    TMM.objectDb->Execute("Update SelvaneTable Set Observed = -1 Where ID In (1, 3)");
    Log("NGC 224", "2000", "2004-03-01");
    Log("NGC 891", "2000", "2005-03-01");
    Log("MARS", "PLANETS", "2003-08-27");
    Log("SUN", "PLANETS", "2001-01-01");
    Log("C/1995 O1", "COMET", "1997-03-30");
    Log("C/1995 O1", "COMET", "1997-04-02");
    Log("1 Ceres", "ASTEROID", "1999-12-01");
    TMM.logbookDb->Execute("Update Logbook Set LocationObserved = ' ' Where ObjectID = 'NGC 891'");
    // Another log type is not the observer's own log, but its Herschel object counts.
    Log("NGC 7000", "2000", "2020-01-01");
    TMM.logbookDb->Execute("Update Logbook Set LogType = 'Club' Where DateObserved = '2020-01-01'");

    window.ReportNumber = 8;
    window.Command9_Click();
    EXPECT_TRUE(ui.shown.empty());
    EXPECT_EQ(surface.Paragraphs(),
              (std::vector<std::string>{
                  "Logbook Statistics :",
                  "",
                  "1. Count of total number of objects you have observed for each type of object.",
                  "",
                  "     Galaxy               =     1",
                  "     Bright nebula        =     1",
                  "     The Sun has been observed",
                  "     Mars has been observed",
                  "     Comet C/1995 O1 has been observed",
                  "     Asteroid 1 Ceres has been observed",
                  "                               =========",
                  "                  Total Objects :  6",
                  "",
                  "2. Messier Objects Observed : 1",
                  "",
                  "3. Herschel Objects Observed : 3",
                  "",
                  "4. Date of Last Logged Observation : 03/01/05",
                  "5. Location of Last Logged Observation : Not Recorded",
              }));
    EXPECT_TRUE(surface.Has("Font Courier New 10"));
    EXPECT_EQ(Footer(), "Selvane 2003||11/08/25  Page %d");
}

TEST_F(CertificatesFixture, StatisticsOfAnEmptyLogbookOnReadOnlyMedia)
{
    TMM.objectDb->Execute("Update SelvaneTable Set Observed = 0");
    TMM.prefs.UseCd = true;
    window.ReportNumber = 8;
    window.Command9_Click();
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.kind, "I");
    EXPECT_EQ(ui.shown[0].message.ShortMessage, kCdRomNoteTitle);
    EXPECT_EQ(ui.shown[0].Text(), kCdRomNote);
    const std::vector<std::string> lines = surface.Paragraphs();
    ASSERT_EQ(lines.size(), 14u);
    EXPECT_EQ(lines[4], "     Galaxy               =     0");
    EXPECT_EQ(lines[6], "                  Total Objects :  0");
    EXPECT_EQ(lines[8], "2. Messier Objects Observed : None");
    EXPECT_EQ(lines[10], "3. Herschel Objects Observed : None");
    EXPECT_EQ(lines[12], "4. Date of Last Logged Observation : n/a");
    EXPECT_EQ(lines[13], "5. Location of Last Logged Observation : n/a");
}

} // namespace
