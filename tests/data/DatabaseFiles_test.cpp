#include "data/DatabaseFiles.h"

#include "TestDatabases.h"
#include "data/Preferences.h"
#include "data/SettingsStore.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "tests/TestFiles.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace testing_data;

namespace {

struct Session
{
    TestFolder f;
    services::ScriptedUiPort ui;
    data::SettingsStore store{f.dir.File("settings.ini")};
    data::Preferences prefs;
    std::unique_ptr<data::Database> objectDb;
    std::unique_ptr<data::Database> logbook;
    std::string logbookPath;

    Session()
    {
        ui.echo = false;
        ui.strict = true;
        prefs.cdDrive = f.objectPath.string();
        MakeObjectDatabase(f.objectPath);
        MakeLogbook(f.dir.File(data::LogbookName));
    }
};

// A mountinfo line for a mount point, file system type and options.
std::string MountLine(const std::string& point, const std::string& type, const std::string& opts)
{
    return "36 25 11:0 / " + point + " " + opts + " shared:1 - " + type + " /dev/sr0 " + opts +
           "\n";
}

std::vector<std::string> Texts(const services::ScriptedUiPort& ui)
{
    std::vector<std::string> out;
    for (const auto& s : ui.shown)
        out.push_back(s.message.ShortMessage + " | " + s.message.LongMessage);
    return out;
}

} // namespace

TEST(FindCdDrive, ReadOnlyOpticalMountsHoldingTheDatabase)
{
    TestFolder f;
    const std::string disc = f.dir.Text("disc");
    const std::string images = f.dir.Text("disc2");
    const std::string empty = f.dir.Text("empty disc");
    std::filesystem::create_directories(disc);
    std::filesystem::create_directories(images + "/DSSImages");
    std::filesystem::create_directories(empty);
    std::ofstream(disc + "/SelvPro708000.mdb") << "x";
    std::ofstream(images + "/DSSImages/SelvPro708000.mdb") << "x";
    std::string emptyEscaped = empty;
    emptyEscaped.replace(emptyEscaped.find(' '), 1, "\\040");

    struct Row
    {
        const char* name;
        std::string table;
        std::string root;
    };
    const std::vector<Row> rows = {
        {"iso9660 read-only", MountLine(disc, "iso9660", "ro,relatime"), disc + "/"},
        {"udf read-only", MountLine(disc, "udf", "ro"), disc + "/"},
        {"in DSSImages", MountLine(images, "iso9660", "ro"), images + "/"},
        {"writable udf is a hard disk", MountLine(disc, "udf", "rw,relatime"), ""},
        {"read-only ext4 is no CD", MountLine(disc, "ext4", "ro"), ""},
        {"CD without the database", MountLine(emptyEscaped, "iso9660", "ro"), ""},
        {"first CD that holds it",
         MountLine(emptyEscaped, "iso9660", "ro") + MountLine(disc, "iso9660", "ro"), disc + "/"},
        {"no mounts", "", ""},
        {"garbage lines", "nonsense\n1 2 3\n", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        services::ScriptedUiPort ui;
        ui.echo = false;
        EXPECT_EQ(row.root, data::FindCdDrive(ui, [&] { return row.table; }));
        EXPECT_TRUE(ui.shown.empty());
    }
    services::ScriptedUiPort ui;
    ui.echo = false;
    EXPECT_EQ("", data::FindCdDrive(ui, []() -> std::string {
                  throw services::Fault("no mount table", "");
              }));
    ASSERT_EQ(1u, ui.shown.size());
    EXPECT_NE(std::string::npos,
              ui.shown[0].Text().find("BI_GetCDROMDrive failed: Unexpected error."));
}

TEST(OpenObjectDatabase, MediaDecidesUseCdAndWrites)
{
    Session s;
    const std::string root = s.f.dir.path.string() + "/";
    // The test folder plays the disc: the database lies in its root.
    auto onDisc = [&] { return MountLine(s.f.dir.path.string(), "iso9660", "ro"); };
    auto noDisc = [] { return std::string(); };

    std::string failure;
    ASSERT_TRUE(data::OpenObjectDatabase(s.ui, s.prefs, s.store, s.objectDb, &failure, onDisc));
    EXPECT_TRUE(s.prefs.UseCd);
    EXPECT_EQ(data::ReadOnlyMessage, [&] {
        try {
            s.objectDb->Execute("Update SelvaneTable Set Observed = True Where ID = 1");
        } catch (const services::Fault& e) {
            return std::string(e.what());
        }
        return std::string("written");
    }());
    // The new UseCd is in the store at once.
    EXPECT_EQ("True", s.store.Get("UseCd", ""));

    ASSERT_TRUE(data::OpenObjectDatabase(s.ui, s.prefs, s.store, s.objectDb, &failure, noDisc));
    EXPECT_FALSE(s.prefs.UseCd);
    EXPECT_EQ(1, s.objectDb->Execute("Update SelvaneTable Set Observed = True Where ID = 1"));
    EXPECT_EQ("False", s.store.Get("UseCd", ""));

    // A file that cannot be opened leaves the handle as it was.
    data::Database* before = s.objectDb.get();
    s.prefs.cdDrive = s.f.dir.Text("SelvPro13000.mdb");
    EXPECT_FALSE(data::OpenObjectDatabase(s.ui, s.prefs, s.store, s.objectDb, &failure, noDisc));
    EXPECT_EQ(before, s.objectDb.get());
    EXPECT_EQ("Could not find file '" + s.prefs.cdDrive + "'.", failure);
}

TEST(RebuildLink, FollowsCdDrive)
{
    Session s;
    std::string path;
    data::OpenTheDatabase(s.f.dir, s.logbook, path);
    EXPECT_EQ(s.f.dir.Text(data::LogbookName), path);

    data::RebuildLink(*s.logbook, s.f.dir.Text("missing.mdb"), false);
    EXPECT_FALSE(s.logbook->IsAttached(data::LinkSchema));
    EXPECT_FALSE(std::filesystem::exists(s.f.dir.File("missing.mdb")));

    data::RebuildLink(*s.logbook, s.prefs.cdDrive, false);
    EXPECT_EQ(3, CountRows(*s.logbook, "SelvaneTable"));

    // Pointing elsewhere drops the old link first.
    const auto small = s.f.dir.File("SelvPro13000.mdb");
    {
        auto db = data::Database::Open(s.f.objectPath);
        db->Execute("Delete From SelvaneTable Where ID > 1");
    }
    std::filesystem::copy_file(s.f.objectPath, small);
    data::RebuildLink(*s.logbook, small.string(), true);
    EXPECT_EQ(1, CountRows(*s.logbook, "SelvaneTable"));
    // The link reads only.
    EXPECT_THROW(s.logbook->Execute("Delete From SelvaneTable"), services::Fault);
}

TEST(CheckConvertLog, FindsAnEarlierLogbookInTheFolder)
{
    struct Row
    {
        const char* name;
        const char* list;    // nullptr: no convertlog.txt
        const char* present; // a file made in the folder, or nullptr
        std::string found;
        bool logged;
    };
    const std::vector<Row> rows = {
        {"only the current logbook", "\"Logbook2003-1.mdb\"\r\n", nullptr, "", false},
        {"current in another case", "\"LOGBOOK2003-1.MDB\"\r\n", nullptr, "", false},
        {"earlier one present", "\"Logbook2001.mdb\",\"Logbook2002.mdb\"\r\n", "logbook2002.MDB",
         "logbook2002.MDB", false},
        {"earlier one absent", "\"Logbook2001.mdb\"\r\n", nullptr, "", false},
        {"no list", nullptr, nullptr, "", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Session s;
        if (row.list)
            std::ofstream(s.f.dir.File(data::ConvertListName)) << row.list;
        if (row.present)
            std::ofstream(s.f.dir.File(row.present)) << "x";
        s.ui.SetErrorLog(s.f.dir.File("errorlog.txt"));
        EXPECT_EQ(row.found, data::CheckConvertLog(s.ui, s.f.dir));
        EXPECT_TRUE(s.ui.shown.empty());
        const std::string text = test_files::ReadText(s.f.dir.File("errorlog.txt"));
        EXPECT_EQ(row.logged, text.find("TMM.CheckConvertLog") != std::string::npos) << text;
    }
}

TEST(CompactSelvaneDatabase, QuestionsNoticesAndResult)
{
    Session s;
    ASSERT_TRUE(data::OpenObjectDatabase(s.ui, s.prefs, s.store, s.objectDb, nullptr,
                                         [] { return std::string(); }));
    s.objectDb->Execute("Delete From SelvaneTable Where ID = 3");
    s.ui.answers = {true};
    data::CompactSelvaneDatabase(s.ui, s.f.dir, s.prefs, s.store, s.objectDb,
                                 [] { return std::string(); });
    ASSERT_EQ(1u, s.ui.asked.size());
    EXPECT_EQ("Have you made a backup of your Selvane database " + s.prefs.cdDrive +
                  "? You must answer YES to continue ",
              s.ui.asked[0]);
    EXPECT_EQ((std::vector<std::string>{
                  "Compact Database | Selvane will now compact the currently selected database.  "
                  "This operation will only work if the database is located on your hard drive "
                  "and will take some time to complete.",
                  "Compact and Repair Database | Your database has been compacted and repaired "
                  "successfully."}),
              Texts(s.ui));
    ASSERT_TRUE(s.objectDb);
    EXPECT_EQ(2, CountRows(*s.objectDb, "SelvaneTable"));
    EXPECT_FALSE(std::filesystem::exists(s.f.dir.File(data::CompactTargetName)));
}

TEST(CompactSelvaneDatabase, AnsweredNoOrOnCdChangesNothing)
{
    Session s;
    const auto bytes = std::filesystem::file_size(s.f.objectPath);
    s.ui.answers = {false};
    data::CompactSelvaneDatabase(s.ui, s.f.dir, s.prefs, s.store, s.objectDb,
                                 [] { return std::string(); });
    EXPECT_TRUE(s.ui.shown.empty());

    auto onDisc = [&] { return MountLine(s.f.dir.path.string(), "udf", "ro"); };
    data::CompactSelvaneDatabase(s.ui, s.f.dir, s.prefs, s.store, s.objectDb, onDisc);
    EXPECT_EQ((std::vector<std::string>{"INVALID OPERATION | You cannot compact the database "
                                        "since it resides on a CD-ROM drive."}),
              Texts(s.ui));
    EXPECT_EQ(1u, s.ui.asked.size());
    EXPECT_EQ(bytes, std::filesystem::file_size(s.f.objectPath));
}

// A failure at each step, standing for a crash there, leaves the original name holding a whole
// database with every row, and both handles open again.
TEST(CompactSelvaneLogbook, FailureAtEveryStepKeepsTheLogbook)
{
    using data::CompactStep;
    for (CompactStep failing : {CompactStep::CloseHandle, CompactStep::DeleteTarget,
                                CompactStep::CopyCompact, CompactStep::SyncCopy,
                                CompactStep::ReplaceOriginal, CompactStep::Reopen}) {
        SCOPED_TRACE(static_cast<int>(failing));
        Session s;
        data::OpenTheDatabase(s.f.dir, s.logbook, s.logbookPath);
        for (int i = 0; i < 50; ++i)
            s.logbook->Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved) Values "
                               "('NGC " + std::to_string(i) + "', '2000', #1/2/2004#)");
        // A stale compact copy from an earlier break must not get in the way.
        std::ofstream(s.f.dir.File(data::CompactTargetName)) << "left over";
        s.ui.answers = {true};
        auto hook = [&](CompactStep step) {
            if (step == failing)
                throw services::Fault("disk full", "");
        };
        EXPECT_THROW(data::CompactSelvaneLogbook(s.ui, s.f.dir, s.logbook, s.logbookPath, hook),
                     services::Fault);
        // The file under the original name, opened afresh, holds every row.
        {
            auto reopened = data::Database::Open(s.f.dir.File(data::LogbookName));
            EXPECT_EQ(52, CountRows(*reopened, "Logbook"));
            EXPECT_EQ("ok", One(*reopened, "PRAGMA integrity_check"));
        }
        if (failing != CompactStep::CloseHandle) {
            ASSERT_TRUE(s.logbook);
            EXPECT_EQ(52, CountRows(*s.logbook, "Logbook"));
        }
    }
}

TEST(CompactSelvaneLogbook, CompactsAndKeepsWriteAheadLog)
{
    Session s;
    data::OpenTheDatabase(s.f.dir, s.logbook, s.logbookPath);
    s.logbook->Execute("Insert Into Logbook (ObjectID) Values ('NGC 7000')");
    s.ui.answers = {true};
    data::CompactSelvaneLogbook(s.ui, s.f.dir, s.logbook, s.logbookPath);
    EXPECT_EQ("Have you made a backup of your Selvane Logbook " + s.logbookPath +
                  "? You must answer YES to continue ",
              s.ui.asked.at(0));
    EXPECT_EQ((std::vector<std::string>{
                  "Compact and Repair Logbook | Selvane will now compact and repair your logbook.",
                  "Compact and Repair Logbook | Your logbook has been compacted and repaired "
                  "successfully."}),
              Texts(s.ui));
    EXPECT_EQ(3, CountRows(*s.logbook, "Logbook"));
    EXPECT_EQ("wal", One(*s.logbook, "PRAGMA journal_mode"));
}
