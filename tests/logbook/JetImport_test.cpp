// The reading of earlier logbooks: the sample file's captured mdb-json text (so the mapping is
// checked where mdbtools is absent), the sample file itself through mdbtools, the failures of
// file and programs, and killed imports.

#include "LogTestSession.h"

#include "logbook/JetImport.h"
#include "services/Fault.h"
#include "services/RtfReader.h"
#include "tests/TestFiles.h"

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <set>
#include <sstream>
#include <thread>

namespace {

namespace fs = std::filesystem;

const std::string SampleDir = OLDLOG_DIR;
const std::string SampleFile = SampleDir + "/oldlog-sample.mdb";

using test_files::ReadText;

// The tables as captured from the sample with mdb-json (tables.txt lists them).
logbook::JetTables CapturedSample()
{
    logbook::JetTables tables;
    std::istringstream names(ReadText(SampleDir + "/tables.txt"));
    for (std::string name; std::getline(names, name);)
        if (!name.empty())
            tables.tables.emplace_back(name, ReadText(SampleDir + "/" + name + ".json"));
    return tables;
}

// A row as "column=value|..."; null as <null>.
std::string Flat(const logbook::ImportRow& row)
{
    std::string text;
    for (const auto& [name, value] : row)
        text += (text.empty() ? "" : "|") + name + "=" + value.value_or("<null>");
    return text;
}

std::string Flat(const std::vector<logbook::ImportRow>& rows)
{
    std::string text;
    for (const auto& row : rows)
        text += "[" + Flat(row) + "]";
    return text;
}

TEST(JetBatch, CapturedSample)
{
    const logbook::ImportBatch b = logbook::JetBatch(CapturedSample(), SampleFile);
    ASSERT_EQ(3u, b.entries.size());
    // Neither the old number nor the old object key is carried over; the old logbook had no
    // log types. The note written by the rich text box keeps its bold word.
    EXPECT_EQ("ObjectID=NGC 7662|Catalog=2000|DateObserved=1999-09-04|TimeObserved=22:10:00|"
              "LocationObserved=Home|EquipmentUsed=6in Newtonian|OtherEquipment=Barlow "
              "2x\r\nOIII\r\n|Seeing=Mostly Stable|Transparency=Clear|Rating=A|"
              "ShortDescription=Blue snowball|ObservationText=<p "
              "style=\"white-space:pre-wrap\">Bright <b>blue</b> disc</p>|SeenFlag=-1",
              Flat(b.entries[0].logbook));
    EXPECT_EQ("Bright blue disc", logbook::RichPlainText(*b.entries[0].logbook[11].second));
    // Blank lines, tabs and runs of blanks survive into the plain text that reports read.
    EXPECT_EQ("a  b\n\n\tc", logbook::RichPlainText(services::RtfToHtml(
                                 "{\\rtf1 a  b\\par\r\n\\par\r\n\\tab c\\par\r\n}")));
    EXPECT_EQ("ObjectID=NGC 457|Catalog=2000|DateObserved=1999-09-04|TimeObserved=22:40:00|"
              "LocationObserved=Home|EquipmentUsed=6in Newtonian|Seeing=Mostly Stable|"
              "Transparency=Clear|Rating=B|ShortDescription=Owl cluster|ObservationText=Two "
              "bright eyes|SeenFlag=-1",
              Flat(b.entries[1].logbook));
    EXPECT_EQ("IC 434|0",
              *b.entries[2].logbook[0].second + "|" + *b.entries[2].logbook.back().second);

    // Dependent rows follow their entry: the drawing of observation 1, the CCD row of 5.
    EXPECT_EQ("[ImageDescription=Drawing|ImagePath=C:\\Sketches\\ngc7662.bmp]",
              Flat(b.entries[0].images));
    EXPECT_EQ("darkframe=0|flatfield=0", b.entries[2].ccd ? Flat(*b.entries[2].ccd) : "");
    EXPECT_FALSE(b.entries[0].ccd || b.entries[1].ccd);
    EXPECT_TRUE(b.entries[1].images.empty() && b.entries[2].images.empty());
    EXPECT_EQ("[SessionDate=1999-09-04|sessiontext=Good night, some haze]", Flat(b.sessions));
    EXPECT_EQ("[LogType=Default|LogTypeDesc=Default]", Flat(b.logTypes));
    EXPECT_EQ("[Equipment=6in Newtonian]", Flat(b.equipment));
    EXPECT_EQ("[ProfileName=Home|Location=Home|Latitude=52|Longitude=0.1|EastWest=E|TimeZone=0]",
              Flat(b.sites));
}

// Logbooks written by other hands: names in other cases, a time kept as a Jet date/time,
// Yes/No written as booleans or numbers, nulls, JSON escapes, columns this logbook lacks, rows
// out of order, dependent rows without an entry, RTF in the CCD and session notes.
TEST(JetBatch, OtherWritersForms)
{
    logbook::JetTables t;
    t.tables = {
        {"LOGBOOK", "{\"observationnumber\":7,\"objectid\":\"M 1\",\"dateobserved\":\"2001-02-03 "
                    "00:00:00\",\"timeobserved\":\"1899-12-30 21:05:09\",\"SeenFlag\":true,"
                    "\"LogType\":\"Sketch\",\"Weather\":\"cold\",\"DataRec\":99}\n"
                    "{\"ObservationNumber\":3,\"ObjectID\":\"O'Brien \\\"tail\\\" \\u00e9 "
                    "\\ud83d\\ude00\",\"Catalog\":null,\"DateObserved\":\"12/31/1998\","
                    "\"TimeObserved\":\"10:30 PM\",\"SeenFlag\":false}\n\n"
                    "{\"ObjectID\":\"no number\",\"SeenFlag\":-1}\n"
                    "{\"ObservationNumber\":5,\"ObjectID\":\"NGC 1\",\"SeenFlag\":1}\n"},
        {"ccdlog", "{\"ObservationNumber\":7,\"Notes\":\"{\\\\rtf1 \\\\i cold\\\\i0\\\\par}\","
                   "\"DarkFrame\":true,\"FlatField\":0,\"ExposureTime\":30}\n"
                   "{\"ObservationNumber\":7,\"Notes\":\"second row\"}\n"
                   "{\"ObservationNumber\":42,\"Notes\":\"no entry\"}\n"},
        {"ImageLog", "{\"Sequence\":2,\"ObservationNumber\":3,\"ImagePath\":\"a.jpg\"}\n"
                     "{\"Sequence\":3,\"ObservationNumber\":42,\"ImagePath\":\"lost.jpg\"}\n"
                     "{\"Sequence\":4,\"ObservationNumber\":3,\"ImagePath\":\"b.jpg\"}\n"},
        {"SESSIONLOG", "{\"sessiondate\":\"2001-02-03 00:00:00\",\"SessionText\":\"{\\\\rtf1 "
                       "\\\\ul windy\\\\ulnone\\\\par}\"}\n"},
    };
    const logbook::ImportBatch b = logbook::JetBatch(t, "x.mdb");
    std::string entries;
    for (const logbook::ImportEntry& e : b.entries)
        entries += "[" + Flat(e.logbook) + "] ccd " + (e.ccd ? Flat(*e.ccd) : "-") + " images " +
                   Flat(e.images) + "\n";
    EXPECT_EQ("[ObjectID=O'Brien \"tail\" \xC3\xA9 \xF0\x9F\x98\x80|Catalog=<null>|"
              "DateObserved=12/31/1998|TimeObserved=10:30 PM|SeenFlag=0] ccd - images "
              "[ImagePath=a.jpg][ImagePath=b.jpg]\n"
              "[ObjectID=NGC 1|SeenFlag=-1] ccd - images \n"
              "[ObjectID=M 1|DateObserved=2001-02-03|TimeObserved=21:05:09|SeenFlag=-1|"
              "LogType=Sketch] ccd ExposureTime=30|darkframe=-1|flatfield=0|Notes=<p "
              "style=\"white-space:pre-wrap\"><i>cold</i></p> images \n"
              "[ObjectID=no number|SeenFlag=-1] ccd - images \n",
              entries);
    EXPECT_EQ(
        "[SessionDate=2001-02-03|sessiontext=<p style=\"white-space:pre-wrap\"><u>windy</u></p>]",
        Flat(b.sessions));

    // A line that is no JSON object names row, table and file.
    for (const char* bad : {"{\"a\":1", "{\"a\":[1]}", "{\"a\":\"\\x\"}", "{\"a\":1} x"}) {
        SCOPED_TRACE(bad);
        t.tables = {{"Logbook", std::string("{\"ObjectID\":\"M 1\"}\n") + bad + "\n"}};
        try {
            logbook::JetBatch(t, "/o/old.mdb");
            ADD_FAILURE() << "no fault";
        } catch (const services::Fault& f) {
            EXPECT_STREQ("The earlier logbook /o/old.mdb cannot be read: mdb-json gave row 2 of "
                         "table Logbook in a form that cannot be read.",
                         f.what());
        }
    }
}

bool HaveMdbTools()
{
    return !QStandardPaths::findExecutable("mdb-tables").isEmpty() &&
           !QStandardPaths::findExecutable("mdb-json").isEmpty();
}

// The captured text is what mdbtools gives for the sample today.
TEST(ReadJetFile, SampleThroughMdbTools)
{
    if (!HaveMdbTools())
        GTEST_SKIP() << "mdbtools is not installed";
    const logbook::JetTables read = logbook::ReadJetFile(SampleFile);
    const logbook::JetTables captured = CapturedSample();
    ASSERT_EQ(captured.tables.size(), read.tables.size());
    for (std::size_t i = 0; i < read.tables.size(); ++i) {
        SCOPED_TRACE(read.tables[i].first);
        EXPECT_EQ(captured.tables[i], read.tables[i]);
    }
}

// Each failure names the file and, where a program failed, the program; stand-in programs
// play the failing tools.
TEST(ReadJetFile, Failures)
{
    QTemporaryDir temp;
    const std::string dir = temp.path().toStdString();
    auto script = [&](const std::string& name, const std::string& body) {
        const std::string path = dir + "/" + name;
        std::ofstream(path) << "#!/bin/sh\n" << body << "\n";
        QFile::setPermissions(QString::fromStdString(path),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    };
    const std::string notJet = dir + "/notes.mdb";
    std::ofstream(notJet) << "Standard text, not a database at all\n";
    const std::string okTables = script("tables-ok", "echo Logbook");
    const std::string okJson = script("json-ok", "echo '{\"ObjectID\":\"M 1\"}'");

    struct Case
    {
        const char* name;
        std::string file, tables, json;
        int timeoutMs;
        std::string message;
    };
    const std::string S = SampleFile;
    const Case cases[] = {
        {"not a Jet file", notJet, okTables, okJson, 5000,
         notJet + " is not a logbook of an earlier edition: it is no Jet database."},
        {"no Logbook table", S, script("tables-other", "printf 'Other\\nLogbooks\\n'"), okJson,
         5000, S + " is not a logbook of an earlier edition: it has no Logbook table."},
        {"mdb-tables missing", S, dir + "/mdb-tables", okJson, 5000,
         "The earlier logbook " + S + " cannot be read: the program " + dir +
             "/mdb-tables (mdbtools) cannot be started. Is mdbtools installed?"},
        {"mdb-json fails", S, okTables,
         script("json-fails", "echo 'Error: Table Logbook does not exist' >&2; exit 1"), 5000,
         "The earlier logbook " + S + " cannot be read: " + dir +
             "/json-fails (mdbtools) failed with status 1: Error: Table Logbook does not "
             "exist."},
        {"mdb-tables hangs", S, script("tables-hang", "exec sleep 30"), okJson, 300,
         "The earlier logbook " + S + " cannot be read: " + dir +
             "/tables-hang (mdbtools) did not finish within 300 milliseconds."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        try {
            logbook::ReadJetFile(c.file, {c.tables, c.json, c.timeoutMs});
            ADD_FAILURE() << "no fault";
        } catch (const services::Fault& f) {
            EXPECT_EQ(c.message, std::string(f.what()));
        }
    }
    // The stand-ins themselves work.
    EXPECT_EQ(1u, logbook::ReadJetFile(S, {okTables, okJson, 5000}).tables.size());
}

// Imports of an earlier logbook killed with SIGKILL at random moments: each runs in a child
// process that opens the logbook and the object database as the program does and writes the
// sample's entries (repeated, so that the transaction lasts long enough for kills to fall in
// it). Afterwards the logbook must hold every row it held and either all of the import or none.
// SELVANE_IMPORT_CRASH_CASES sets the number of killed imports (100 by default).

// The sample's entries, then copies of them a year apart for each year back to 1900.
logbook::ImportBatch RepeatedSample(int copies)
{
    logbook::ImportBatch batch = logbook::JetBatch(CapturedSample(), SampleFile);
    const std::vector<logbook::ImportEntry> sample = batch.entries;
    for (int year = 1900; year < 1900 + copies; ++year)
        for (logbook::ImportEntry entry : sample) {
            for (auto& [name, value] : entry.logbook)
                if (name == "DateObserved")
                    value = std::to_string(year) + value->substr(4);
            batch.entries.push_back(entry);
        }
    return batch;
}

// Every row of every table of the logbook (SQLite's counters left out), after the integrity
// check; the program's opening rolls a killed writer's log back.
std::multiset<std::string> Dump(const std::string& path)
{
    data::OpenOptions options;
    options.wal = true;
    auto db = data::Database::Open(path, options);
    EXPECT_EQ("ok", testing_data::One(*db, "PRAGMA integrity_check"));
    return testing_data::Dump(*db);
}

// The import in a child process; its exit status, -1 when killed after killAfter.
int ImportInChild(logtest::LogSession& s, const logbook::ImportBatch& batch,
                  std::optional<std::chrono::microseconds> killAfter)
{
    const pid_t pid = fork();
    if (pid == 0) {
        int status = 1;
        try {
            std::unique_ptr<data::Database> objectDb, logbookDb;
            std::string path;
            data::OpenObjectDatabase(s.ui, s.prefs, s.store, objectDb, nullptr,
                                     [] { return std::string(); });
            data::OpenTheDatabase(s.f.dir, logbookDb, path);
            data::RebuildLink(*logbookDb, s.prefs.cdDrive, s.prefs.UseCd);
            logbook::LogContext ctx{s.ui,    logbookDb.get(), objectDb.get(), s.prefs,
                                    s.f.dir, s.current,       s.clock};
            logbook::ImportEntries(ctx, batch, "Default");
            status = 0;
        } catch (...) {
        }
        _exit(status);
    }
    if (killAfter) {
        std::this_thread::sleep_for(*killAfter);
        kill(pid, SIGKILL);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(JetImportCrash, KilledImportsAreWholeOrAbsent)
{
    const int cases = std::getenv("SELVANE_IMPORT_CRASH_CASES")
                          ? std::atoi(std::getenv("SELVANE_IMPORT_CRASH_CASES"))
                          : 100;
    logtest::LogSession s;
    // What the logbook holds before: two entries with their CCD and image rows, and a night.
    for (const char* sql :
         {"Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, SeenFlag, "
          "LogType) Values ('NGC 224', '2000', '2026-01-02', '20:00:00', -1, 'Default')",
          "Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, SeenFlag, "
          "LogType) Values ('NGC 7662', '2000', '1999-09-04', '21:00:00', 0, 'Galaxies')",
          "Insert Into CCDLog (ObservationNumber, ImageName) Values (1, 'm31.fit')",
          "Insert Into ImageLog (ObservationNumber, ImagePath) Values (2, '/sketch.png')",
          "Insert Into SessionLog (SessionDate, sessiontext) Values ('1999-09-04', 'mine')"})
        s.logbook->Execute(sql);
    const logbook::ImportBatch batch = RepeatedSample(60);
    // Children open their own connections.
    s.context.logbook = s.context.objectDb = nullptr;
    s.logbook.reset();
    s.objectDb.reset();
    const std::string path = s.logbookPath;
    const std::string pristine = path + ".pristine";
    fs::copy_file(path, pristine);
    auto restore = [&] {
        for (const char* suffix : {"", "-wal", "-shm", "-journal"})
            fs::remove(path + suffix);
        fs::copy_file(pristine, path);
    };

    const std::multiset<std::string> none = Dump(path);
    std::vector<std::chrono::microseconds> times;
    for (int i = 0; i < 3; ++i) {
        restore();
        const auto start = std::chrono::steady_clock::now();
        ASSERT_EQ(0, ImportInChild(s, batch, std::nullopt));
        times.push_back(std::chrono::duration_cast<std::chrono::microseconds>(
            std::chrono::steady_clock::now() - start));
    }
    std::sort(times.begin(), times.end());
    const auto typical = times[1];
    const std::multiset<std::string> all = Dump(path);
    std::vector<std::string> lost;
    std::set_difference(none.begin(), none.end(), all.begin(), all.end(), std::back_inserter(lost));
    ASSERT_TRUE(lost.empty()) << lost.front();
    const auto entries = [](const std::multiset<std::string>& rows) {
        return std::count_if(rows.begin(), rows.end(),
                             [](const std::string& row) { return row.rfind("Logbook: ", 0) == 0; });
    };
    ASSERT_EQ(entries(none) + static_cast<long>(batch.entries.size()), entries(all));

    std::mt19937 random(20261124);
    int completed = 0, killedNone = 0, killedAll = 0, killedWriting = 0;
    for (int i = 0; i < cases; ++i) {
        restore();
        const std::chrono::microseconds wait(random() % (typical.count() * 11 / 10 + 1));
        const int status = ImportInChild(s, batch, wait);
        const bool walLeft = fs::exists(path + "-wal") && fs::file_size(path + "-wal") > 0;
        const std::multiset<std::string> after = Dump(path);
        SCOPED_TRACE("trial " + std::to_string(i) + ", killed after " +
                     std::to_string(wait.count()) + " us");
        if (status == 0) {
            ++completed;
            EXPECT_EQ(all, after);
            continue;
        }
        ASSERT_EQ(-1, status); // killed, never a refusal
        if (after == none) {
            ++killedNone;
            killedWriting += walLeft ? 1 : 0;
        } else if (after == all) {
            ++killedAll;
        } else {
            ADD_FAILURE() << "a killed import left part of itself";
        }
    }
    std::cout << "[ figures  ] " << cases << " imports of " << batch.entries.size()
              << " entries (one takes " << typical.count() / 1000 << " ms): " << completed
              << " completed, " << killedNone << " killed with nothing written (" << killedWriting
              << " of them with the import's frames in the write-ahead log, rolled back), "
              << killedAll << " killed after the commit\n";
}

} // namespace
