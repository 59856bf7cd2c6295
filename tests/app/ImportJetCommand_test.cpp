// selvane-cli import-jet on the sample logbook of an earlier edition: what it adds, what it
// skips, what it refuses, and imports killed with SIGKILL at random moments, which must leave
// the logbook with every row it held and either all of the import or none of it.
// SELVANE_IMPORT_CRASH_CASES sets the number of killed imports (100 by default).

#include "CliRunner.h"

#include "data/Database.h"

#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <set>

namespace {

namespace fs = std::filesystem;

const QString Sample = OLDLOG_SAMPLE;

bool HaveMdbTools()
{
    return !QStandardPaths::findExecutable("mdb-tables").isEmpty() &&
           !QStandardPaths::findExecutable("mdb-json").isEmpty();
}

std::string One(data::Database& db, const std::string& sql)
{
    auto rs = db.OpenRecordset(sql, data::Snapshot);
    return rs.Eof() ? std::string("<none>") : rs.Fields(0).Value();
}

std::vector<std::string> Rows(data::Database& db, const std::string& sql)
{
    std::vector<std::string> rows;
    for (auto rs = db.OpenRecordset(sql, data::Snapshot); !rs.Eof(); rs.MoveNext()) {
        std::string row;
        for (int i = 0; i < rs.FieldCount(); ++i)
            row += (i ? "|" : "") + (rs.Fields(i).IsNull() ? "<null>" : rs.Fields(i).Value());
        rows.push_back(row);
    }
    return rows;
}

std::unique_ptr<data::Database> OpenLogbook(const QString& home)
{
    data::OpenOptions options;
    options.wal = true; // as the program opens it, so a killed writer's log is rolled back
    return data::Database::Open(home.toStdString() + "/Logbook2003-1.mdb", options);
}

// Every row of every table of the logbook, each prefixed with its table (SQLite's counters
// of given numbers left out).
std::multiset<std::string> Dump(data::Database& db)
{
    std::multiset<std::string> rows;
    for (const std::string& table :
         Rows(db, "Select name From sqlite_master Where type = 'table' And substr(name, 1, 7) <> "
                  "'sqlite_' Order By name"))
        for (const std::string& row : Rows(db, "Select * From [" + table + "]"))
            rows.insert(table + ": " + row);
    return rows;
}

// A run as the runner starts one, with the program search path path.
clitest::CliRun RunWithPath(const QString& home, const QStringList& args, const QString& path)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name :
         {"SELVANE_HOME", "SELVANE_SETTINGS", "LC_ALL", "LC_TIME", "LC_NUMERIC", "LANGUAGE"})
        env.remove(name);
    env.insert("LANG", "C");
    env.insert("PATH", path);
    QProcess run;
    run.setProcessEnvironment(env);
    run.start(SELVANE_CLI, QStringList{"--home", home, "--settings", home + "/s.ini"} + args);
    EXPECT_TRUE(run.waitForFinished(120000));
    return clitest::Finish(run);
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

    {
        auto db = OpenLogbook(dir);
        EXPECT_EQ(
            (std::vector<std::string>{"2|NGC 7662|2000|1999-09-04|22:10:00|Home|-1|Visual",
                                      "3|IC 434|2000|2000-01-29|20:00:00|Dark site|0|Visual"}),
            Rows(*db, "Select ObservationNumber, ObjectID, Catalog, DateObserved, "
                      "TimeObserved, LocationObserved, SeenFlag, LogType From Logbook "
                      "Where ObservationNumber > 1 Order By ObservationNumber"));
        const std::string note =
            One(*db, "Select ObservationText From Logbook Where ObservationNumber = 2");
        EXPECT_NE(std::string::npos, note.find("Bright <b>blue</b> disc")) << note;
        EXPECT_EQ((std::vector<std::string>{"2|Drawing|C:\\Sketches\\ngc7662.bmp"}),
                  Rows(*db, "Select ObservationNumber, ImageDescription, ImagePath From "
                            "ImageLog"));
        EXPECT_EQ("0|0", One(*db, "Select darkframe || '|' || flatfield From CCDLog Where "
                                  "ObservationNumber = 3"));
        // The night was in the logbook already; the lists gain what they lacked, once.
        EXPECT_EQ("1", One(*db, "Select count(*) From SessionLog Where SessionDate = "
                                "'1999-09-04'"));
        EXPECT_EQ("1", One(*db, "Select count(*) From Equipment Where Equipment = "
                                "'6in Newtonian'"));
        EXPECT_EQ("1", One(*db, "Select count(*) From ObservingSites Where ProfileName = 'Home'"));
        // The object key and the observed flag, as for an entry made in the entry window.
        data::OpenOptions readOnly;
        readOnly.readOnly = true;
        auto objects = data::Database::Open(dir.toStdString() + "/SelvPro708000.mdb", readOnly);
        EXPECT_EQ(One(*objects, "Select ID || '|' || Observed From SelvaneTable Where ObjectID = "
                                "'NGC 7662' And Catalog = '2000'"),
                  One(*db, "Select DataRec From Logbook Where ObservationNumber = 2") + "|-1");
    }

    // A second import finds every entry logged and adds nothing.
    const clitest::CliRun again = clitest::RunCli(dir, {"import-jet", Sample});
    EXPECT_EQ(0, again.exit) << again.err;
    EXPECT_TRUE(again.lines.empty());
    auto db = OpenLogbook(dir);
    EXPECT_EQ("3", One(*db, "Select count(*) From Logbook"));
    EXPECT_EQ("1", One(*db, "Select count(*) From Equipment Where Equipment = '6in Newtonian'"));
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
    const Case cases[] = {
        {"no such file",
         {"import-jet", dir + "/none.mdb"},
         "",
         1,
         {(dir + "/none.mdb").toStdString(), "cannot be opened"}},
        {"not a Jet file", {"import-jet", text}, "", 1, {text.toStdString(), "no Jet database"}},
        {"mdbtools missing",
         {"import-jet", Sample},
         "/nonexistent",
         1,
         {Sample.toStdString(), "mdb-tables (mdbtools) cannot be started"}},
        {"no file", {"import-jet"}, "", 2, {"import-jet needs a file"}},
        {"two files", {"import-jet", Sample, Sample}, "", 2, {"import-jet takes one file"}},
        {"unknown option",
         {"import-jet", Sample, "--types", "x"},
         "",
         2,
         {"unknown argument \"--types\""}},
        {"empty type", {"import-jet", Sample, "--type", ""}, "", 2, {"--type needs a log type"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const clitest::CliRun run =
            c.path.isEmpty() ? clitest::RunCli(dir, c.args) : RunWithPath(dir, c.args, c.path);
        EXPECT_EQ(c.exit, run.exit) << run.err;
        EXPECT_TRUE(run.lines.empty());
        for (const std::string& mention : c.mentions)
            EXPECT_NE(std::string::npos, run.err.find(mention)) << run.err;
        auto db = OpenLogbook(dir);
        EXPECT_EQ(before, Dump(*db));
    }
}

TEST(ImportJetCrash, KilledImportsAreWholeOrAbsent)
{
    if (!HaveMdbTools())
        GTEST_SKIP() << "mdbtools is not installed";
    const int cases = std::getenv("SELVANE_IMPORT_CRASH_CASES")
                          ? std::atoi(std::getenv("SELVANE_IMPORT_CRASH_CASES"))
                          : 100;
    QTemporaryDir home;
    const QString dir = home.path();
    const fs::path logbook = dir.toStdString() + "/Logbook2003-1.mdb";
    for (const char* object : {"NGC 224", "NGC 7662"})
        ASSERT_EQ(0, clitest::RunCli(dir, {"log", "add", QString("ObjectID=") + object,
                                           "Catalog=NGC 2000", "mskTime=21:00"})
                         .exit);
    // The logbook as it stands before every import; the program closed it cleanly.
    const fs::path pristine = dir.toStdString() + "/pristine.mdb";
    fs::copy_file(logbook, pristine);
    auto restore = [&] {
        for (const char* suffix : {"", "-wal", "-shm", "-journal"})
            fs::remove(logbook.string() + suffix);
        fs::copy_file(pristine, logbook);
    };
    auto dump = [&] {
        auto db = OpenLogbook(dir);
        EXPECT_EQ("ok", One(*db, "PRAGMA integrity_check"));
        return Dump(*db);
    };

    const std::multiset<std::string> none = dump();
    // The time a whole import takes: the median of three.
    std::vector<qint64> times;
    for (int i = 0; i < 3; ++i) {
        restore();
        QElapsedTimer timer;
        timer.start();
        const clitest::CliRun full = clitest::RunCli(dir, {"import-jet", Sample});
        times.push_back(timer.elapsed());
        ASSERT_EQ(0, full.exit) << full.err;
    }
    std::sort(times.begin(), times.end());
    const qint64 typical = times[1];
    const std::multiset<std::string> all = dump();
    std::vector<std::string> lost;
    std::set_difference(none.begin(), none.end(), all.begin(), all.end(), std::back_inserter(lost));
    ASSERT_TRUE(lost.empty()) << lost.front();
    ASSERT_GT(all.size(), none.size());

    std::mt19937 random(20261124);
    int completed = 0, killedNone = 0, killedAll = 0, killedWriting = 0;
    for (int i = 0; i < cases; ++i) {
        restore();
        QProcess process;
        clitest::StartCli(process, dir, {"import-jet", Sample});
        // Mostly late in the run, where the file has been read and the logbook is written.
        const int wait = static_cast<int>(typical / 2 + random() % (typical * 3 / 5 + 1));
        if (!process.waitForFinished(wait)) {
            process.kill();
            process.waitForFinished(10000);
        }
        const clitest::CliRun run = clitest::Finish(process);
        // Frames left in the write-ahead log by a killed run: it was writing when it died.
        const fs::path wal = logbook.string() + "-wal";
        const bool walLeft = fs::exists(wal) && fs::file_size(wal) > 0;
        const std::multiset<std::string> after = dump();
        SCOPED_TRACE("trial " + std::to_string(i) + " after " + std::to_string(wait) + " ms");
        if (run.exit == 0) {
            ++completed;
            EXPECT_EQ(all, after);
            continue;
        }
        ASSERT_EQ(-1, run.exit) << run.err; // killed, never a refusal
        if (after == none) {
            ++killedNone;
            killedWriting += walLeft ? 1 : 0;
        } else if (after == all)
            ++killedAll;
        else
            ADD_FAILURE() << "a killed import left part of itself";
    }
    std::cout << "[ figures  ] " << cases << " imports (a run takes " << typical
              << " ms): " << completed << " completed, " << killedNone
              << " killed with nothing written (" << killedWriting
              << " of them with frames in the write-ahead log, rolled back), " << killedAll
              << " killed after the import was committed\n";
}

} // namespace
