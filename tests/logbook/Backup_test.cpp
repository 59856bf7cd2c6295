// The logbook's backup, automatic copy and restore with their dialogues and messages, over a
// real logbook in a temporary program folder.

#include "logbook/Backup.h"

#include "LogTestSession.h"
#include "services/Fault.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;
using logtest::LogSession;
using testing_data::CountRows;

std::vector<std::string> Shown(const services::ScriptedUiPort& ui)
{
    std::vector<std::string> out;
    for (const auto& s : ui.shown)
        out.push_back(s.message.kind + " | " + s.message.ShortMessage + " | " +
                      s.message.LongMessage);
    return out;
}

TEST(BackupFileName, YearMonthDayPadded)
{
    EXPECT_EQ("B20030214.mdb", logbook::BackupFileName(QDate(2003, 2, 14)));
    EXPECT_EQ("B20261231.mdb", logbook::BackupFileName(QDate(2026, 12, 31)));
    EXPECT_EQ("B20000101.mdb", logbook::BackupFileName(QDate(2000, 1, 1)));
}

// The dialogue's answers: a cancel and the bare filter write nothing; a second backup on the
// same day is offered the same name and replaces the first.
TEST(BackupLog, DialogueAnswersAndTheNotice)
{
    LogSession s;
    const QDate day(2003, 2, 14);
    const std::string target = s.f.dir.Text("B20030214.mdb");
    s.ui.fileAnswers = {"", "*.mdb", target, target};
    EXPECT_EQ("", logbook::BackupLog(s.ui, *s.logbook, day));
    EXPECT_EQ("", logbook::BackupLog(s.ui, *s.logbook, day));
    EXPECT_TRUE(s.ui.shown.empty());
    EXPECT_FALSE(fs::exists(target));

    EXPECT_EQ(target, logbook::BackupLog(s.ui, *s.logbook, day));
    s.logbook->Execute("Insert Into Logbook (ObservationNumber, ObjectID) Values (9, 'NGC 7000')");
    EXPECT_EQ(target, logbook::BackupLog(s.ui, *s.logbook, day));
    auto copy = data::Database::Open(target);
    EXPECT_EQ(1, CountRows(*copy, "Logbook"));
    ASSERT_EQ(2u, s.ui.shown.size());
    EXPECT_EQ("I | Logbook Backed Up! | The logbook database has been backed up to " + target +
                  ".  If you need to restore it, please copy it into the Selvane 2003 folder "
                  "and rename it to Logbook2003-1.mdb",
              Shown(s.ui)[1]);
    EXPECT_FALSE(s.ui.busy);
}

TEST(AutoBackupLog, DueOnlyWithAFolder)
{
    LogSession s;
    const std::string folder = s.f.dir.Text("backups");
    fs::create_directory(folder);
    struct Row
    {
        std::string path;
        std::string written; // empty: not due
        bool faults;
    } rows[] = {
        {"", "", false},
        {"   ", "", false},
        {folder, folder + "/Logbook2003-1.mdb", false},
        {" " + folder + " ", folder + "/Logbook2003-1.mdb", false},
        {folder + "/missing", "", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("'" + row.path + "'");
        s.prefs.AutoBackupPath = row.path;
        EXPECT_EQ(!row.written.empty() || row.faults, logbook::AutoBackupDue(s.prefs));
        if (row.faults) {
            EXPECT_THROW(logbook::AutoBackupLog(s.ui, *s.logbook, s.prefs), services::Fault);
            continue;
        }
        EXPECT_EQ(row.written, logbook::AutoBackupLog(s.ui, *s.logbook, s.prefs));
        if (!row.written.empty()) {
            EXPECT_TRUE(fs::exists(row.written));
        }
    }
    EXPECT_FALSE(s.ui.busy);
}

TEST(SaveAutoBackupPath, CheckBoxAndFolder)
{
    LogSession s;
    const std::string folder = s.f.dir.path.string();
    struct Row
    {
        bool on;
        std::string box;
        bool kept;
        std::string path; // AutoBackupPath afterwards
    } rows[] = {
        {true, folder, true, folder},
        {false, folder, true, ""},
        {true, "  ", true, ""},
        {true, folder + "/nowhere", false, "earlier"},
        {false, folder + "/nowhere", true, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.box);
        s.ui.shown.clear();
        s.prefs.AutoBackupPath = "earlier";
        EXPECT_EQ(row.kept, logbook::SaveAutoBackupPath(s.ui, s.prefs, row.on, row.box));
        EXPECT_EQ(row.path, s.prefs.AutoBackupPath);
        EXPECT_EQ(row.kept ? 0u : 1u, s.ui.shown.size());
    }
}

TEST(RestoreLog, AskedFirstAndKeepsTheReplacedLogbook)
{
    LogSession s;
    s.logbook->Execute("Insert Into Logbook (ObservationNumber, ObjectID) Values (1, 'NGC 224')");
    const std::string backup = s.f.dir.Text("B20030214.mdb");
    s.ui.fileAnswers = {backup};
    logbook::BackupLog(s.ui, *s.logbook, QDate(2003, 2, 14));
    s.logbook->Execute("Insert Into Logbook (ObservationNumber, ObjectID) Values (2, 'NGC 1976')");
    s.ui.shown.clear();
    s.ui.asked.clear();
    const std::string keep = s.f.dir.Text("LogbookBeforeRestore.mdb");

    s.ui.answers = {false};
    EXPECT_FALSE(logbook::RestoreLog(s.ui, s.f.dir, s.logbook, s.logbookPath, backup));
    EXPECT_EQ(std::vector<std::string>{"Your logbook will be replaced by the backup " + backup +
                                       ".  The logbook as it stands now will be kept as " + keep +
                                       ".  Do you want to continue?"},
              s.ui.asked);
    EXPECT_EQ(2, CountRows(*s.logbook, "Logbook"));
    EXPECT_FALSE(fs::exists(keep));

    s.ui.answers = {true};
    EXPECT_TRUE(logbook::RestoreLog(s.ui, s.f.dir, s.logbook, s.logbookPath, backup));
    EXPECT_EQ(1, CountRows(*s.logbook, "Logbook"));
    EXPECT_EQ(2, CountRows(*data::Database::Open(keep), "Logbook"));
    EXPECT_EQ(std::vector<std::string>{"I | Logbook Restored! | Your logbook has been restored "
                                       "from " +
                                       backup + ".  The logbook it replaced was kept as " + keep +
                                       "."},
              Shown(s.ui));

    // A file that is no logbook is refused before any question.
    const std::string text = s.f.dir.Text("notes.txt");
    std::ofstream(text) << "clear skies";
    s.ui.asked.clear();
    EXPECT_THROW(logbook::RestoreLog(s.ui, s.f.dir, s.logbook, s.logbookPath, text),
                 services::Fault);
    EXPECT_TRUE(s.ui.asked.empty());
    EXPECT_EQ(1, CountRows(*s.logbook, "Logbook"));
}

} // namespace
