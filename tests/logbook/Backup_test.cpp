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

// A cancel and the bare filter write nothing; a chosen file gets the copy and the notice.
TEST(BackupLog, DialogueAnswersAndTheNotice)
{
    LogSession s;
    const QDate day(2003, 2, 14);
    const std::string target = s.f.dir.Text("B20030214.mdb");
    s.ui.fileAnswers = {"", "*.mdb", target};
    EXPECT_EQ("", logbook::BackupLog(s.ui, *s.logbook, day));
    EXPECT_EQ("", logbook::BackupLog(s.ui, *s.logbook, day));
    EXPECT_TRUE(s.ui.shown.empty());
    EXPECT_FALSE(fs::exists(target));

    s.logbook->Execute("Insert Into Logbook (ObservationNumber, ObjectID) Values (9, 'NGC 7000')");
    EXPECT_EQ(target, logbook::BackupLog(s.ui, *s.logbook, day));
    EXPECT_EQ(1, CountRows(*data::Database::Open(target), "Logbook"));
    EXPECT_EQ(std::vector<std::string>{"I | Logbook Backed Up! | The logbook database has been "
                                       "backed up to " +
                                       target +
                                       ".  If you need to restore it, please copy it into the "
                                       "Selvane 2003 folder and rename it to Logbook2003-1.mdb"},
              Shown(s.ui));
    EXPECT_FALSE(s.ui.busy);
}

// A file that is no logbook is refused before the question; No changes nothing; Yes restores
// and says where the replaced logbook went.
TEST(RestoreLog, QuestionAndNotice)
{
    LogSession s;
    const std::string text = s.f.dir.Text("notes.txt");
    std::ofstream(text) << "clear skies";
    EXPECT_THROW(logbook::RestoreLog(s.ui, s.f.dir, s.logbook, s.logbookPath, text),
                 services::Fault);
    EXPECT_TRUE(s.ui.asked.empty());

    const std::string backup = s.f.dir.Text("B20030214.mdb");
    s.ui.fileAnswers = {backup};
    logbook::BackupLog(s.ui, *s.logbook, QDate(2003, 2, 14));
    s.logbook->Execute("Insert Into Logbook (ObservationNumber, ObjectID) Values (2, 'NGC 1976')");
    s.ui.shown.clear();
    const std::string keep = s.f.dir.Text("LogbookBeforeRestore.mdb");
    s.ui.answers = {false, true};
    EXPECT_FALSE(logbook::RestoreLog(s.ui, s.f.dir, s.logbook, s.logbookPath, backup));
    EXPECT_EQ("Your logbook will be replaced by the backup " + backup +
                  ".  The logbook as it stands now will be kept as " + keep +
                  ".  Do you want to continue?",
              s.ui.asked.back());
    EXPECT_EQ(1, CountRows(*s.logbook, "Logbook"));
    EXPECT_FALSE(fs::exists(keep));

    EXPECT_TRUE(logbook::RestoreLog(s.ui, s.f.dir, s.logbook, s.logbookPath, backup));
    EXPECT_EQ(0, CountRows(*s.logbook, "Logbook"));
    EXPECT_EQ(std::vector<std::string>{"I | Logbook Restored! | Your logbook has been restored "
                                       "from " +
                                       backup + ".  The logbook it replaced was kept as " + keep +
                                       "."},
              Shown(s.ui));
}

} // namespace
