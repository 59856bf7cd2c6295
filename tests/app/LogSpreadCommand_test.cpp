// selvane-cli logspread and logsearch run as a program in a fresh program folder over the
// shipped object database; the logbook's rows are written straight into its file.

#include "CliRunner.h"

#include "data/Database.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using clitest::CliRun;

class LogSpreadCli : public ::testing::Test
{
protected:
    CliRun Run(QStringList args) { return clitest::RunCli(home.path(), args); }

    // The logbook of the folder (made by a first run) with three entries:
    //   1 NGC 224 seen, a CCD row with flat field, an image, notes; log type Default
    //   2 NGC 7000 not seen, log type Galaxies
    //   3 NGC 1976 seen, a tab in its short description; log type Default
    void Seed()
    {
        ASSERT_EQ(0, Run({"logspread"}).exit);
        auto db = data::Database::Open(home.filePath("Logbook2003-1.mdb").toStdString());
        db->Execute("Insert Into PerLogType (LogType, LogTypeDesc) Values ('Galaxies', 'G')");
        const char* rows[] = {
            "1, 'NGC 224', '2000', '2026-11-20', '21:30:00', -1, 'Dust lane', ' ', 'Default'",
            "2, 'NGC 7000', '2000', '2024-08-02', '23:00:00', 0, ' ', ' ', 'Galaxies'",
            "3, 'NGC 1976', '2000', '2025-01-15', '20:00:00', -1, Null, 'a\tb', 'Default'"};
        for (const char* row : rows)
            db->Execute("Insert Into Logbook (ObservationNumber, ObjectID, Catalog, "
                        "DateObserved, TimeObserved, SeenFlag, ObservationText, "
                        "ShortDescription, LogType) Values (" +
                        std::string(row) + ")");
        db->Execute("Insert Into CCDLog (ObservationNumber, ImageName, flatfield) Values (1, "
                    "'m31.fit', -1)");
        db->Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, ImagePath) "
                    "Values (1, 'Core', '/img/m31.png')");
    }

    QTemporaryDir home;
};

// Cells of a printed row by column number (from 1), joined by "|".
std::string Cells(const std::string& line, std::initializer_list<int> cols)
{
    const auto cells = clitest::Split(line, '\t');
    std::string out;
    for (int col : cols)
        out += (out.empty() ? "" : "|") + cells.at(static_cast<std::size_t>(col - 1));
    return out;
}

TEST_F(LogSpreadCli, ViewPagesSortsAndTypes)
{
    CliRun run = Run({"logspread"});
    ASSERT_EQ(0, run.exit) << run.err;
    ASSERT_EQ(1u, run.lines.size());
    EXPECT_EQ(0u, run.lines[0].find("Object ID\tObs #\tImage\tNotes\tType\tConst\tCatalog\tDate"));
    EXPECT_NE(std::string::npos, run.lines[0].find("\tDark Frame\tFlat Field\tCCD Picture "
                                                   "Rating\tSeen Flag"));
    EXPECT_EQ("[status] 0 Objects\n", run.err);

    Seed();
    run = Run({"logspread", "--sort", "8:desc"});
    ASSERT_EQ(0, run.exit) << run.err;
    ASSERT_EQ(4u, run.lines.size());
    // Object ID, Obs #, Image, Notes, Type, Const, Date, Short Description, CCD Image Name,
    // Dark Frame, Flat Field, Seen Flag.
    const std::initializer_list<int> cols{1, 2, 3, 4, 5, 6, 8, 15, 17, 25, 26, 28};
    EXPECT_EQ("NGC 224|1|1|1|Gx|And|11/20/26| |m31.fit|0|1|-1", Cells(run.lines[1], cols));
    EXPECT_EQ("NGC 1976|3|0|0|Nb|Ori|01/15/25|a\\tb||0|0|-1", Cells(run.lines[2], cols));
    EXPECT_EQ("NGC 7000|2|0|0|Nb|Cyg|08/02/24| ||0|0|0", Cells(run.lines[3], cols));
    EXPECT_EQ("[status] 3 Objects\n", run.err);

    // Two keys: the object id, descending, orders within each log type.
    run = Run({"logspread", "--sort", "LogType", "--sort", "1:desc"});
    ASSERT_EQ(0, run.exit) << run.err;
    EXPECT_EQ("1 3 2", Cells(run.lines[1], {2}) + " " + Cells(run.lines[2], {2}) + " " +
                           Cells(run.lines[3], {2}));

    run = Run({"logspread", "--type", "Galaxies"});
    ASSERT_EQ(2u, run.lines.size());
    EXPECT_EQ("NGC 7000", Cells(run.lines[1], {1}));

    run = Run({"logspread", "--notes"});
    EXPECT_EQ((std::vector<std::string>{"Object\tOtherID\tDate\tCatalog\tObs #",
                                        "NGC 224\tM 31\t11/20/26\t2000\t1"}),
              run.lines);
    run = Run({"logspread", "--images"});
    EXPECT_EQ(
        (std::vector<std::string>{"Object\tImage Desc\tImage Path", "NGC 224\tCore\t/img/m31.png"}),
        run.lines);

    // A statement of the user's in place of the view's query.
    run = Run({"logspread", "--sql", "Select * From Logbook Where SeenFlag = 0"});
    ASSERT_EQ(2u, run.lines.size());
    EXPECT_EQ("NGC 7000|2||0|0|0", Cells(run.lines[1], {1, 2, 5, 25, 26, 28}));
    run = Run({"logspread", "--sql", "Select * From Nowhere"});
    EXPECT_EQ(1, run.exit);
    EXPECT_TRUE(run.lines.empty());
}

TEST_F(LogSpreadCli, SearchStatementsAndTheirGrids)
{
    Seed();
    CliRun run = Run({"logsearch", "--object", "NGC", "--const", "And-Andromeda", "--date",
                      "2026-11-01", "2026-11-30", "--seen"});
    ASSERT_EQ(0, run.exit) << run.err;
    ASSERT_EQ(4u, run.lines.size());
    EXPECT_EQ(0u, run.lines[0].find("SQL1\tSELECT SelvaneTable.ObjectID, "));
    const std::string tail = " and SelvaneTable.ObjectID like 'NGC*'  and DateObserved >= "
                             "#11/01/2026# and DateObserved <= #11/30/2026# and "
                             "SelvaneTable.Constellation = 'And'  and Logbook.SeenFlag = -1";
    EXPECT_EQ(tail, run.lines[0].substr(run.lines[0].size() - tail.size()));
    EXPECT_NE(std::string::npos, run.lines[1].find(">=#11/01/2026# and DateObserved <=#11/30"));
    EXPECT_EQ(0u, run.lines[2].find("Object ID\tObs #\tCatalog\tDate"));
    EXPECT_EQ(0u, run.lines[3].find("NGC 224\t1\t2000\t"));

    run = Run({"logsearch", "--not-seen", "--spread"});
    ASSERT_EQ(0, run.exit) << run.err;
    EXPECT_EQ("SQL1\tSelect * From Logbook Where LogType = 'Default'  and Logbook.SeenFlag <> -1",
              run.lines[0]);
    // Entry 2 is the one not seen, but it is of another log type.
    EXPECT_EQ(3u, run.lines.size());
    EXPECT_EQ("[status] 0 Objects\n", run.err);

    // The id without the join: the database refuses the statement.
    run = Run({"logsearch", "--object", "NGC"});
    EXPECT_EQ(1, run.exit);
    EXPECT_EQ(2u, run.lines.size());
    EXPECT_NE(std::string::npos, run.err.find("frmLogEntryNew.LoadObservations"));
}

TEST_F(LogSpreadCli, UsageErrors)
{
    const QStringList bad[] = {
        {"logspread", "--sort", "9"},
        {"logspread", "--sort", "3"},
        {"logspread", "--sort", "1", "--sort", "2", "--sort", "5", "--sort", "6"},
        {"logspread", "--type", "Default", "--sql", "Select * From Logbook"},
        {"logspread", "--notes", "--images"},
        {"logspread", "--sort", "1:up"},
        {"logsearch", "--date", "2026-13-01", "2026-12-01"},
        {"logsearch", "--seen", "--not-seen"},
        {"logsearch", "--object"},
        {"logsearch", "--answer", "maybe"},
    };
    for (const QStringList& args : bad) {
        SCOPED_TRACE(args.join(' ').toStdString());
        const CliRun run = Run(args);
        EXPECT_EQ(2, run.exit);
        EXPECT_TRUE(run.lines.empty());
    }
}

} // namespace
