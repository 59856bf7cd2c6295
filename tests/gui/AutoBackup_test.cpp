// The automatic backup window, and the backup commands and the shut-down copy on the main
// window, over a logbook in a temporary program folder on the offscreen platform. With
// SELVANE_SCREENSHOTS naming a folder, the window is saved there as autobackup.png.

#include "logbook/ui/frmAutoBackup.h"

#include "../data/TestDatabases.h"
#include "app/BackupWiring.h"
#include "data/DatabaseFiles.h"
#include "data/Preferences.h"
#include "spread/AppState.h"
#include "spread/ui/frmMainScreen.h"

#include "GuiApp.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using logbook::ui::frmAutoBackup;

class FolderPort : public TestPort
{
public:
    std::deque<std::string> folders;
    std::string AskFolder(const std::string& prompt) override
    {
        prompts.push_back(prompt);
        if (folders.empty())
            return {};
        std::string folder = folders.front();
        folders.pop_front();
        return folder;
    }
};

struct Session
{
    Session()
    {
        testing_data::MakeObjectDatabase(f.objectPath);
        testing_data::MakeLogbook(f.dir.File(data::LogbookName));
        state.prefs.cdDrive = f.objectPath.string();
        data::OpenTheDatabase(f.dir, state.logbookDb, state.logbookPath);
        fs::create_directory(backups);
    }

    QApplication& app = App(); // before the port's busy window
    testing_data::TestFolder f;
    FolderPort ui;
    spread::AppState state{ui, f.dir, data::SettingsStore(f.dir.File("Selvane2000.ini"))};
    std::string backups = f.dir.Text("backups");
};

TEST(frmAutoBackup, FolderCheckBoxAndOK)
{
    Session s;
    frmAutoBackup window(s.ui, s.state.prefs, s.state.settings, data::LogbookName);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_FALSE(window.Check1->isChecked());
    EXPECT_EQ("Your backup will be named Logbook2003-1.mdb and will reside at the location you "
              "specified above.  You can restore your backup log at any time by copying it into "
              "the Selvane 2003 folder.",
              window.lblCurrentLog->text().toStdString());

    // A cancelled chooser changes nothing; a chosen folder fills the box and turns the copy on.
    QTest::mouseClick(window.Command1, Qt::LeftButton);
    EXPECT_FALSE(window.Check1->isChecked());
    s.ui.folders = {s.backups};
    QTest::mouseClick(window.Command1, Qt::LeftButton);
    EXPECT_EQ(std::vector<std::string>(2, "Please select a path for the Logbook Backup to reside"),
              s.ui.prompts);
    EXPECT_EQ(s.backups, window.txtPath->text().toStdString());
    EXPECT_TRUE(window.Check1->isChecked());
    if (const char* folder = std::getenv("SELVANE_SCREENSHOTS"); folder && *folder) {
        QDir().mkpath(folder);
        // The picture shows a folder as an observer would choose it.
        window.txtPath->setText("/home/observer/Backups/Selvane");
        EXPECT_TRUE(window.grab().save(QDir(folder).filePath("autobackup.png")));
        window.txtPath->setText(QString::fromStdString(s.backups));
    }

    // A folder that does not exist is refused and the window stays.
    window.txtPath->setText(QString::fromStdString(s.backups + "/gone"));
    QTest::mouseClick(window.cmdOK, Qt::LeftButton);
    ASSERT_EQ(1u, s.ui.shown.size());
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ("", s.state.prefs.AutoBackupPath);

    window.txtPath->setText(QString::fromStdString(s.backups));
    QTest::mouseClick(window.cmdOK, Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(s.backups, s.state.prefs.AutoBackupPath);
    data::SettingsStore reread(s.f.dir.File("Selvane2000.ini"));
    EXPECT_EQ(s.backups, reread.Get("AutoBackupPath", ""));
}

// The menu's backup and compaction reach their routines; the shut-down copies the logbook
// into the folder of AutoBackupPath.
TEST(BackupWiring, MenuCommandsAndShutDownCopy)
{
    Session s;
    const astro::FixedClock clock{{2003, 2, 14, 22, 0, 0}};
    spread::frmMainScreen window(s.state, s.ui, {});
    app::WireBackup(window, s.state, clock);

    s.ui.saveAnswers = {s.backups + "/B20030214.mdb"};
    window.ab_ToolClick("actBackLog");
    EXPECT_TRUE(fs::exists(s.backups + "/B20030214.mdb"));
    ASSERT_EQ(1u, s.ui.shown.size());
    EXPECT_EQ("Logbook Backed Up!", s.ui.shown[0].ShortMessage);

    s.ui.askAnswers = {true};
    window.ab_ToolClick("compactlog");
    ASSERT_EQ(3u, s.ui.shown.size());
    EXPECT_EQ("Your logbook has been compacted and repaired successfully.",
              s.ui.shown[2].LongMessage);
    ASSERT_TRUE(s.state.logbookDb);
    EXPECT_EQ(2, testing_data::CountRows(*s.state.logbookDb, "Logbook"));
    // The logbook opened again reaches the object table through its link.
    EXPECT_EQ(3, testing_data::CountRows(*s.state.logbookDb, "SelvaneTable"));

    s.state.prefs.AutoBackupPath = s.backups;
    window.CloseApplication();
    EXPECT_TRUE(fs::exists(s.backups + "/Logbook2003-1.mdb"));
    EXPECT_EQ(3u, s.ui.shown.size());
}

} // namespace
