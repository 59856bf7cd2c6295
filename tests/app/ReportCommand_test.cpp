// selvane-cli report run as a program: PDF files read back with poppler's pdftotext and pdfinfo,
// the grid's values on the sheets, the logbook entries a report picks, and the refusals that
// leave no file.

#include "CliRunner.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace {

using clitest::CliRun;

class ReportCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        QFile settings(home.path() + "/s.ini");
        ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
        settings.write("[Preferences]\nFIRST=False\n");
    }

    CliRun Report(const QStringList& args)
    {
        return clitest::RunCli(home.path(), QStringList{"report"} + args);
    }
    CliRun Cli(const QStringList& args) { return clitest::RunCli(home.path(), args); }

    QString File(const char* name) const { return home.path() + "/" + name; }

    // The settings name report settings files that are not there yet (the program folder's
    // defaults are always seeded).
    void SetMissingSettingsFiles()
    {
        QFile settings(home.path() + "/s.ini");
        ASSERT_TRUE(settings.open(QIODevice::Append));
        settings.write(("defReport=" + File("mine.Rpt") + "\ndefReportL=" + File("mine.Rpl") +
                        "\n")
                           .toUtf8());
    }

    // A poppler tool's output for a file.
    static std::string Poppler(const char* tool, const QString& file,
                               const QStringList& options = {})
    {
        QProcess process;
        const bool text = QString(tool) == "pdftotext";
        process.start(tool, options + (text ? QStringList{file, "-"} : QStringList{file}));
        EXPECT_TRUE(process.waitForFinished(60000));
        return process.readAllStandardOutput().toStdString();
    }

    QTemporaryDir home;
};

TEST_F(ReportCommandTest, SheetsOfTheGridRowWrittenAsPdf)
{
    // Row 2 of the start list is M 2.
    const CliRun run = Report({"12", "--pdf", File("sheet.pdf"), "--row", "2"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_EQ(run.lines.size(), 2u);
    EXPECT_EQ(run.lines[0], "Report\tPages\tFile");
    EXPECT_EQ(run.lines[1], "12\t1\t" + File("sheet.pdf").toStdString());
    const std::string text = Poppler("pdftotext", File("sheet.pdf"), {"-layout"});
    for (const char* expected : {"Selvane 2003 Observation Log Entry", "Object Data :", "NGC 7089",
                                 "21 33 27.0", "LOW POWER FIELD DRAWING", "Ocular (Power)"})
        EXPECT_NE(text.find(expected), std::string::npos) << expected << "\n" << text;
    const std::string info = Poppler("pdfinfo", File("sheet.pdf"));
    EXPECT_NE(info.find("612 x 792 pts (letter)"), std::string::npos) << info;

    // The quick printout of the list, in landscape on A4.
    const CliRun quick = Report({"quick", "--pdf", File("quick.pdf"), "--paper", "a4"});
    ASSERT_EQ(quick.exit, 0) << quick.err;
    const std::string quickInfo = Poppler("pdfinfo", File("quick.pdf"));
    EXPECT_NE(quickInfo.find("842 x 595"), std::string::npos) << quickInfo;
    EXPECT_NE(Poppler("pdftotext", File("quick.pdf")).find("NGC 1952"), std::string::npos);
}

TEST_F(ReportCommandTest, NotesOfTheLogbookInTheirOrder)
{
    for (const auto& [id, date, notes] : {std::tuple{"NGC 224", "10/01/2024", "Dust lane seen"},
                                          std::tuple{"NGC 7000", "08/01/2025", "Pelican too"}})
        ASSERT_EQ(Cli({"log", "add", QString("ObjectID=") + id, "Catalog=2000",
                       QString("DateObserved=") + date, "TimeObserved=21:00",
                       QString("ObservationText=") + notes})
                      .exit,
                  0);
    const CliRun run = Report({"1111", "--pdf", File("notes.pdf"), "--answer", "yes"});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_NE(run.err.find("[?] NOTES PRINTOUT: Click Yes to print ALL notes"), std::string::npos);
    const std::string text = Poppler("pdftotext", File("notes.pdf"));
    const std::size_t newer = text.find("Object ID: NGC 7000");
    const std::size_t older = text.find("Object ID: NGC 224");
    ASSERT_NE(newer, std::string::npos) << text;
    ASSERT_NE(older, std::string::npos) << text;
    EXPECT_LT(newer, older);
    EXPECT_NE(text.find("Pelican too"), std::string::npos);
}

// A report settings file in the program folder: the line spacing, the font, then the columns
// (index, width in inches) on and the others off.
void WriteSettings(const QString& path, int columns,
                   const std::vector<std::pair<int, const char*>>& on)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("\"1\",\"Arial\",9\r\n");
    for (int i = 0; i < columns; ++i) {
        const auto found =
            std::find_if(on.begin(), on.end(), [i](const auto& c) { return c.first == i; });
        file.write(found != on.end() ? QByteArray("1,\"") + found->second + "\"\r\n"
                                     : QByteArray("0,\"1\"\r\n"));
    }
}

TEST_F(ReportCommandTest, ColumnReportsFromTheirSettingsFiles)
{
    // Without its settings file the report stops at the settings window.
    SetMissingSettingsFiles();
    CliRun run = Report({"2", "--pdf", File("db.pdf")});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("frmRSU.Form_Load"), std::string::npos) << run.err;
    EXPECT_FALSE(QFile::exists(File("db.pdf")));

    WriteSettings(File("mine.Rpt"), 31, {{3, "1.2"}, {4, "1"}, {14, ".6"}});
    run = Report({"2", "--pdf", File("db.pdf")});
    ASSERT_EQ(run.exit, 0) << run.err;
    std::string text = Poppler("pdftotext", File("db.pdf"), {"-layout"});
    for (const char* expected : {"Object Id", "Other Id", "Const", "NGC 7089", "M 2", "Page 1"})
        EXPECT_NE(text.find(expected), std::string::npos) << expected << "\n" << text;
    EXPECT_EQ(text.find("Decl."), std::string::npos);

    for (const auto& [id, date, type] : {std::tuple{"NGC 224", "10/01/2024", "Default"},
                                         std::tuple{"NGC 7000", "08/01/2025", "Galaxies"}})
        ASSERT_EQ(Cli({"log", "add", QString("ObjectID=") + id, "Catalog=2000",
                       QString("DateObserved=") + date, "TimeObserved=21:00",
                       QString("LogType=") + type, "ObservationText=Seen | well; twice"})
                      .exit,
                  0);
    WriteSettings(File("mine.Rpl"), 27, {{0, "1.2"}, {2, ".8"}, {15, "1"}});
    run = Report({"3", "--pdf", File("log.pdf"), "--log-type", "Galaxies"});
    ASSERT_EQ(run.exit, 0) << run.err;
    text = Poppler("pdftotext", File("log.pdf"), {"-layout"});
    EXPECT_NE(text.find("NGC 7000"), std::string::npos) << text;
    EXPECT_EQ(text.find("NGC 224"), std::string::npos) << text;
    EXPECT_NE(text.find("Log Type"), std::string::npos) << text;
    run = Report({"30", "--pdf", File("log.pdf"), "--log-sql",
                  "Select * From Logbook Where ObjectID = 'NGC 224'"});
    ASSERT_EQ(run.exit, 0) << run.err;
    text = Poppler("pdftotext", File("log.pdf"), {"-layout"});
    EXPECT_NE(text.find("NGC 224"), std::string::npos) << text;
    EXPECT_EQ(text.find("NGC 7000"), std::string::npos) << text;

    // The notes box: only the notes, "|" and ";" as written.
    WriteSettings(File("mine.Rpl"), 27, {{0, "1"}, {3, "1"}});
    run = Report({"3", "--pdf", File("notes.pdf")});
    ASSERT_EQ(run.exit, 0) << run.err;
    text = Poppler("pdftotext", File("notes.pdf"));
    EXPECT_NE(text.find("Notes For Object : NGC 7000"), std::string::npos) << text;
    EXPECT_NE(text.find("Seen | well; twice"), std::string::npos) << text;

    EXPECT_EQ(Report({"3", "--pdf", File("x.pdf"), "--log-type", "A", "--log-sql", "B"}).exit, 2);
}

TEST_F(ReportCommandTest, EntryReportsInTheChosenOrder)
{
    for (const auto& [id, date] :
         {std::tuple{"NGC 224", "10/01/2024"}, std::tuple{"NGC 7000", "08/01/2025"},
          std::tuple{"M 42", "09/01/2025"}})
        ASSERT_EQ(Cli({"log", "add", QString("ObjectID=") + id, "Catalog=2000",
                       QString("DateObserved=") + date, "TimeObserved=21:00",
                       "LocationObserved=Backyard"})
                      .exit,
                  0);
    CliRun run = Report({"134", "--pdf", File("sum.pdf"), "--entry", "2"});
    ASSERT_EQ(run.exit, 0) << run.err;
    std::string text = Poppler("pdftotext", File("sum.pdf"), {"-layout"});
    for (const char* expected : {"Logbook Summary Report For Object NGC 7000", "Object :     NGC 7000",
                                 "Location     Backyard", "CCD LOGBOOK INFO", "OBSERVING NOTES"})
        EXPECT_NE(text.find(expected), std::string::npos) << expected << "\n" << text;

    run = Report({"88", "--pdf", File("log.pdf"), "--sort-by", "ObjectID:desc", "--like", "NGC*"});
    ASSERT_EQ(run.exit, 0) << run.err;
    text = Poppler("pdftotext", File("log.pdf"));
    const std::size_t first = text.find("Object Observed: NGC 7000");
    const std::size_t second = text.find("Object Observed: NGC 224");
    ASSERT_NE(first, std::string::npos) << text;
    ASSERT_NE(second, std::string::npos) << text;
    EXPECT_LT(first, second);
    EXPECT_EQ(text.find("M 42"), std::string::npos);
    EXPECT_NE(text.find("October"), std::string::npos) << text;

    EXPECT_EQ(Report({"88", "--pdf", File("x.pdf"), "--sort-by", "A", "--sort-by", "B", "--sort-by",
                      "C", "--sort-by", "D"})
                  .exit,
              2);
    run = Report({"88", "--pdf", File("x.pdf"), "--sort-by", "NoSuchColumn"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_FALSE(QFile::exists(File("x.pdf")));
}

TEST_F(ReportCommandTest, RefusalsLeaveNoFile)
{
    EXPECT_EQ(Report({"9", "--pdf", File("x.pdf")}).exit, 2);
    EXPECT_EQ(Report({"12"}).exit, 2);
    EXPECT_EQ(Report({"90", "--pdf", File("x.pdf")}).exit, 2);
    EXPECT_EQ(Report({"12", "--pdf", File("x.pdf"), "--paper", "legal"}).exit, 2);

    CliRun run = Report({"12", "--pdf", File("x.pdf"), "--row", "500"});
    EXPECT_EQ(run.exit, 1);
    run = Report({"150", "--pdf", File("x.pdf"), "--input", "1850"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("[E] Invalid Input!: Please enter a year after 1900"), std::string::npos)
        << run.err;
    run = Report({"16", "--pdf", File("x.pdf"), "--chart-open"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("Please close your star chart first before running this report"),
              std::string::npos)
        << run.err;
    SetMissingSettingsFiles();
    run = Report({"3", "--pdf", File("x.pdf")});
    EXPECT_EQ(run.exit, 1);
    run = Report({"13", "--pdf", home.path() + "/no/such/folder/x.pdf"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("Cannot write"), std::string::npos) << run.err;
    EXPECT_FALSE(QFile::exists(File("x.pdf")));

    // A blank sheet on an empty list still prints its frame.
    run = Report({"13", "--pdf", File("blank.pdf"), "--sql",
                  "Select * From SelvaneTable Where ObjectID = 'none'"});
    EXPECT_EQ(run.exit, 0) << run.err;
}

} // namespace
