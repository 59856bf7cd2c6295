// The whole-or-absent copies of a database: a backup through SQLite's online backup, and a
// restore of a backup into the open logbook, over real files in a temporary folder.

#include "data/DatabaseFiles.h"

#include "TestDatabases.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace testing_data;
namespace fs = std::filesystem;

namespace {

struct Logbook
{
    TestFolder f;
    std::unique_ptr<data::Database> db;
    std::string path;

    explicit Logbook(int extraRows = 0)
    {
        MakeLogbook(f.dir.File(data::LogbookName));
        data::OpenTheDatabase(f.dir, db, path);
        for (int i = 0; i < extraRows; ++i)
            db->Execute("Insert Into Logbook (ObjectID, Catalog) Values ('NGC " +
                        std::to_string(i) + "', '2000')");
    }
};

// A second logbook file of n rows whose objects start with prefix, with a page size of its own.
fs::path MakeOtherLogbook(const TestFolder& f, const std::string& name, int n,
                          const std::string& prefix, int pageSize)
{
    const fs::path path = f.dir.File(name);
    {
        sqlite3* raw = nullptr;
        sqlite3_open(path.c_str(), &raw);
        const std::string sql =
            "PRAGMA page_size=" + std::to_string(pageSize) + "; CREATE TABLE Unused (x)";
        sqlite3_exec(raw, sql.c_str(), nullptr, nullptr, nullptr);
        sqlite3_close(raw);
    }
    MakeLogbook(path);
    auto db = data::Database::Open(path);
    db->Execute("Delete From Logbook");
    for (int i = 0; i < n; ++i)
        db->Execute("Insert Into Logbook (ObservationNumber, ObjectID) Values (" +
                    std::to_string(i + 1) + ", '" + prefix + std::to_string(i) + "')");
    return path;
}

TEST(BackupDatabase, WholeCopyWithoutWriteAheadLog)
{
    Logbook l(40);
    const fs::path target = l.f.dir.File("B20030214.mdb");
    std::ofstream(target) << "an older backup";
    // Rows still in the write-ahead log reach the copy too.
    data::BackupDatabase(*l.db, target);
    EXPECT_FALSE(fs::exists(target.string() + ".partial"));
    data::OpenOptions readOnly;
    readOnly.readOnly = true;
    auto copy = data::Database::Open(target, readOnly);
    EXPECT_EQ(42, CountRows(*copy, "Logbook"));
    EXPECT_EQ("delete", One(*copy, "PRAGMA journal_mode"));
    EXPECT_EQ("ok", One(*copy, "PRAGMA integrity_check"));

    // A folder that is not there: the fault names the file, and nothing is left behind.
    const std::string missing = l.f.dir.Text("no such folder/B.mdb");
    try {
        data::BackupDatabase(*l.db, missing);
        ADD_FAILURE() << "no fault";
    } catch (const services::Fault& e) {
        EXPECT_EQ(0u, std::string(e.what()).find("Cannot write '" + missing + ".partial'"));
    }
}

TEST(RestoreDatabase, FilesThatAreNoLogbookAreRefused)
{
    Logbook l;
    const std::string text = l.f.dir.Text("notes.mdb");
    std::ofstream(text) << "clear skies";
    const std::string jet = l.f.dir.Text("old.mdb");
    std::ofstream(jet) << std::string("\0\1\0\0Standard Jet DB\0", 20) << std::string(200, 'x');
    const std::string objects = l.f.objectPath.string();
    MakeObjectDatabase(objects);
    const std::string missing = l.f.dir.Text("gone.mdb");
    const std::string other = l.f.dir.Text("other.mdb");
    data::Database::Open(other, data::OpenOptions{.create = true})
        ->Execute("Create Table Logbook (Observer Text)");
    const std::string folder = l.f.dir.path.string();
    struct Row
    {
        std::string source;
        std::string message;
    } rows[] = {
        {missing, "Could not find file '" + missing + "'."},
        {text, "Unrecognized database format '" + text + "'."},
        {jet, "'" + jet +
                  "' is a Jet database of the earlier edition, which Selvane cannot read. "
                  "Selvane reads SQLite 3 databases only."},
        {objects, "'" + objects + "' is not a logbook: it holds no Logbook table."},
        {other, "'" + other +
                    "' is not a logbook: its Logbook table lacks a field (no such column: "
                    "ObservationNumber)."},
        {folder, "'" + folder + "' is a folder, not a logbook."},
        {l.path, "'" + l.path + "' is the logbook itself; there is nothing to restore."},
    };
    const fs::path keep = l.f.dir.File(data::BeforeRestoreName);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.source);
        try {
            data::RestoreDatabase(l.f.dir, l.db, l.path, row.source, keep);
            ADD_FAILURE() << "no fault";
        } catch (const services::Fault& e) {
            EXPECT_EQ(row.message, e.what());
        }
        ASSERT_TRUE(l.db);
        EXPECT_EQ(2, CountRows(*l.db, "Logbook"));
        EXPECT_EQ("wal", One(*l.db, "PRAGMA journal_mode"));
        EXPECT_FALSE(fs::exists(keep));
    }
}

// A backup of another page size replaces the content in the open logbook, the replaced
// content is kept, and a restore from the kept file itself brings it back.
TEST(RestoreDatabase, ReplacesContentKeepsTheOldAndUndoes)
{
    Logbook l(3);
    MakeObjectDatabase(l.f.objectPath);
    l.db->Attach(l.f.objectPath, data::LinkSchema, false);
    const fs::path backup = MakeOtherLogbook(l.f, "B20030214.mdb", 7, "IC ", 1024);
    const fs::path keep = l.f.dir.File(data::BeforeRestoreName);

    data::RestoreDatabase(l.f.dir, l.db, l.path, backup, keep);
    ASSERT_TRUE(l.db);
    EXPECT_EQ(7, CountRows(*l.db, "Logbook"));
    EXPECT_EQ("IC 6", One(*l.db, "Select ObjectID From Logbook Where ObservationNumber = 7"));
    EXPECT_EQ("wal", One(*l.db, "PRAGMA journal_mode"));
    EXPECT_EQ("ok", One(*l.db, "PRAGMA integrity_check"));
    {
        auto kept = data::Database::Open(keep);
        EXPECT_EQ(5, CountRows(*kept, "Logbook"));
    }
    EXPECT_FALSE(fs::exists(keep.string() + ".partial"));

    data::RestoreDatabase(l.f.dir, l.db, l.path, keep, keep);
    EXPECT_EQ(5, CountRows(*l.db, "Logbook"));
    auto kept = data::Database::Open(keep);
    EXPECT_EQ(7, CountRows(*kept, "Logbook"));
}

} // namespace

// Regression: with another connection holding the logbook and its write-ahead log just reset
// to empty, the compact copy was renamed over the file that connection went on writing to.
TEST(CompactSelvaneLogbook, RefusedWhileAnotherConnectionHoldsIt)
{
    Logbook l;
    services::ScriptedUiPort ui;
    ui.echo = false;
    ui.answers = {true};
    data::OpenOptions wal;
    wal.wal = true;
    auto other = data::Database::Open(l.path, wal);
    One(*other, "PRAGMA wal_checkpoint(TRUNCATE)");
    try {
        data::CompactSelvaneLogbook(ui, l.f.dir, l.db, l.path);
        ADD_FAILURE() << "no fault";
    } catch (const services::Fault& e) {
        EXPECT_EQ("'" + l.path + "' is in use by another program; it was not compacted.",
                  std::string(e.what()));
    }
    other->Execute("Insert Into Logbook (ObservationNumber, ObjectID) Values (3, 'NGC 7000')");
    other.reset();
    ASSERT_TRUE(l.db);
    EXPECT_EQ(3, CountRows(*l.db, "Logbook"));
}
