// selvane-cli import-jet on the sample logbook of an earlier edition: what it adds, what it
// skips, what it refuses.

#include "CliRunner.h"

#include "data/Database.h"
#include "tests/data/TestDatabases.h"

#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <set>

namespace {

using testing_data::Dump;
using testing_data::One;
using testing_data::Rows;

const QString Sample = OLDLOG_SAMPLE;

bool HaveMdbTools()
{
    return !QStandardPaths::findExecutable("mdb-tables").isEmpty() &&
           !QStandardPaths::findExecutable("mdb-json").isEmpty();
}

std::unique_ptr<data::Database> OpenLogbook(const QString& home)
{
    data::OpenOptions options;
    options.wal = true; // as the program opens it, so a killed writer's log is rolled back
    return data::Database::Open(home.toStdString() + "/Logbook2003-1.mdb", options);
}

TEST(ImportJet, SampleLogbook)
{
    if (!HaveMdbTools())
        GTEST_SKIP() << "mdbtools is not installed";
    QTemporaryDir home;
    const QString dir = home.path();
    // The Owl cluster is logged already at the sample's date and time: it is not taken twice.
    ASSERT_EQ(0, clitest::RunCli(dir, {"log", "add", "ObjectID=NGC 457", "Catalog=NGC 2000",
                                       "mskDate=09/04/1999", "mskTime=22:40:00"})
                     .exit);

    const clitest::CliRun run = clitest::RunCli(dir, {"import-jet", Sample, "--type", "Visual"});
    ASSERT_EQ(0, run.exit) << run.err;
    EXPECT_EQ((std::vector<std::string>{"2", "3"}), run.lines);
    EXPECT_NE(std::string::npos, run.err.find("2 observations imported from"));
    EXPECT_NE(std::string::npos, run.err.find("1 already in the logbook"));
    EXPECT_EQ(std::string::npos, run.err.find("[E]")) << run.err;

    auto db = OpenLogbook(dir);
    EXPECT_EQ((std::vector<std::string>{"2|NGC 7662|2000|1999-09-04|22:10:00|Home|-1|Visual",
                                        "3|IC 434|2000|2000-01-29|20:00:00|Dark site|0|Visual"}),
              Rows(*db, "Select ObservationNumber, ObjectID, Catalog, DateObserved, "
                        "TimeObserved, LocationObserved, SeenFlag, LogType From Logbook "
                        "Where ObservationNumber > 1 Order By ObservationNumber"));
    // The dependent rows and lists are checked with the import itself. The object key and the
    // observed flag, as for an entry made in the entry window.
    data::OpenOptions readOnly;
    readOnly.readOnly = true;
    auto objects = data::Database::Open(dir.toStdString() + "/SelvPro708000.mdb", readOnly);
    EXPECT_EQ(One(*objects, "Select ID || '|' || Observed From SelvaneTable Where ObjectID = "
                            "'NGC 7662' And Catalog = '2000'"),
              One(*db, "Select DataRec From Logbook Where ObservationNumber = 2") + "|-1");
}

// Each refusal names the file (and the program where one failed), exits 1 and leaves the
// logbook as it was; usage errors exit 2.
TEST(ImportJet, BadInputLeavesTheLogbookAlone)
{
    QTemporaryDir home;
    const QString dir = home.path();
    ASSERT_EQ(0, clitest::RunCli(
                     dir, {"log", "add", "ObjectID=NGC 224", "Catalog=NGC 2000", "mskTime=21:00"})
                     .exit);
    const QString text = dir + "/notes.mdb";
    std::ofstream(text.toStdString()) << "Standard notes, no database\n";
    std::multiset<std::string> before;
    {
        auto db = OpenLogbook(dir);
        before = Dump(*db);
    }

    struct Case
    {
        const char* name;
        QStringList args;
        QString path; // PATH for the run; empty: the caller's
        int exit;
        std::vector<std::string> mentions;
    };
    // clang-format off
    const Case cases[] = {
        {"not a Jet file", {"import-jet", text}, "", 1, {text.toStdString(), "no Jet database"}},
        {"mdbtools missing", {"import-jet", Sample}, "/nonexistent", 1,
         {Sample.toStdString(), "mdb-tables (mdbtools) cannot be started"}},
        {"no file", {"import-jet"}, "", 2, {"import-jet needs a file"}},
        {"two files", {"import-jet", Sample, Sample}, "", 2, {"import-jet takes one file"}},
        {"unknown option", {"import-jet", Sample, "--types", "x"}, "", 2,
         {"unknown argument \"--types\""}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const clitest::CliRun run = clitest::RunCli(dir, c.args, "C", c.path);
        EXPECT_EQ(c.exit, run.exit) << run.err;
        EXPECT_TRUE(run.lines.empty());
        for (const std::string& mention : c.mentions)
            EXPECT_NE(std::string::npos, run.err.find(mention)) << run.err;
        auto db = OpenLogbook(dir);
        EXPECT_EQ(before, Dump(*db));
    }
}

} // namespace
