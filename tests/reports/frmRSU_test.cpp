// The report settings windows on the offscreen platform: the controls show the file opened,
// clicks and typing reach the file saved, the font chosen is shown, Apply closes the window,
// and the log window's notes box speaks. With SELVANE_SHOTS naming a folder, a picture of each
// window is left there.

#include "reports/ui/frmRSU.h"

#include "services/ScriptedUiPort.h"
#include "spread/AppState.h"
#include "tests/data/TestDatabases.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace {

struct Fixture
{
    Fixture()
    {
        static int argc = 1;
        static char name[] = "selvane_rsu_gui_tests";
        static char* argv[] = {name, nullptr};
        static QApplication* app = new QApplication(argc, argv);
        (void)app;
        ui.strict = true;
        ui.echo = false;
    }
    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
};

void Shot(QWidget& window, const char* name)
{
    window.show();
    const QString folder = qEnvironmentVariable("SELVANE_SHOTS");
    if (!folder.isEmpty() && QDir().mkpath(folder))
        window.grab().save(QDir(folder).filePath(QString::fromLatin1(name)));
}

} // namespace

TEST(frmRSU, ControlsCarryTheFormBothWays)
{
    Fixture fx;
    reports::ReportForm held = reports::DesignForm(reports::SettingsKind::Database);
    held.columns[30] = {true, "2,5"};
    held.cboLine = "2 - Double";
    std::ofstream(fx.f.dir.File("Default.Rpt"), std::ios::binary) << reports::WriteReportForm(held);
    reports::frmRSU window(reports::SettingsKind::Database, fx.TMM);
    window.Form_Load();
    Shot(window, "frmRSU.png");
    EXPECT_EQ(window.windowTitle().toStdString(), "Database Report Setup");
    ASSERT_EQ(window.Check1.size(), 31u);
    EXPECT_EQ(window.Check1[30]->text().toStdString(), "Description");
    EXPECT_TRUE(window.Check1[30]->isChecked());
    EXPECT_EQ(window.tWid[30]->text().toStdString(), "2,5");
    EXPECT_EQ(window.cboLine->currentText().toStdString(), "2 - Double");

    QTest::mouseClick(window.cmdNew, Qt::LeftButton);
    EXPECT_FALSE(window.Check1[30]->isChecked());
    EXPECT_EQ(window.tWid[30]->text().toStdString(), "");
    QTest::mouseClick(window.Check1[6], Qt::LeftButton);
    QTest::keyClicks(window.tWid[6], "1.25");
    window.chooseFont = [](const QFont&) { return std::optional<QFont>(QFont("Serif", 14)); };
    QTest::mouseClick(window.cmdFont, Qt::LeftButton);
    EXPECT_EQ(window.lblfont->text().toStdString(), "Serif, 14");
    fx.ui.fileAnswers = {fx.f.dir.Text("mine")};
    QTest::mouseClick(window.cmdSave, Qt::LeftButton);
    std::ifstream in(fx.f.dir.File("mine.Rpt"), std::ios::binary);
    std::ostringstream saved;
    saved << in.rdbuf();
    EXPECT_EQ(saved.str().substr(0, 37), "\"2 - Double\",\"Serif\",14\r\n0,\"\"\r\n0,\"\"\r\n");
    EXPECT_NE(saved.str().find("\r\n1,\"1.25\"\r\n"), std::string::npos);

    QTest::mouseClick(window.cmdApply, Qt::LeftButton);
    EXPECT_EQ(window.result(), QDialog::Accepted);
    EXPECT_EQ(fx.TMM.prefs.defReport, fx.f.dir.Text("mine.Rpt"));
}

TEST(frmRSU, TheLogWindowsNotesBoxSpeaksWhenClickedOn)
{
    Fixture fx;
    reports::frmRSU window(reports::SettingsKind::Log, fx.TMM);
    window.Form_Load(); // no default2.Rpl: the design stays
    Shot(window, "frmrsu2.png");
    EXPECT_EQ(window.windowTitle().toStdString(), "Logbook Report Setup");
    ASSERT_EQ(window.Check1.size(), 27u);
    EXPECT_EQ(window.tWid[0]->text().toStdString(), "1.1");
    QCheckBox* notes = window.Check1[reports::kNotesColumn];
    QTest::mouseClick(notes, Qt::LeftButton);
    QTest::mouseClick(notes, Qt::LeftButton);
    ASSERT_EQ(fx.ui.shown.size(), 2u); // the fault of the opening, then one note
    EXPECT_EQ(fx.ui.shown[1].message.ShortMessage, "Notes only will be displayed");

    QTest::mouseClick(window.cmdClose, Qt::LeftButton);
    EXPECT_EQ(window.result(), QDialog::Rejected);
    EXPECT_EQ(fx.TMM.prefs.defReportL, "");
}
