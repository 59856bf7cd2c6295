// The report settings windows on the offscreen platform: the controls show the file that was
// opened, clicks and typing reach the file written, the font dialogue's choice is shown, Apply
// closes the window with the setting stored, and the log window's notes box speaks.
// With SELVANE_SHOTS set to a folder, a picture of each window is left there.

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

QApplication& App()
{
    static int argc = 1;
    static char name[] = "selvane_rsu_gui_tests";
    static char* argv[] = {name, nullptr};
    static QApplication* app = new QApplication(argc, argv);
    return *app;
}

std::string ReadBytes(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

struct Fixture
{
    Fixture()
    {
        App();
        ui.strict = true;
        ui.echo = false;
    }
    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
};

void Shot(QWidget& window, const char* name)
{
    const QString folder = qEnvironmentVariable("SELVANE_SHOTS");
    if (folder.isEmpty())
        return;
    QDir().mkpath(folder);
    QApplication::processEvents();
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
    EXPECT_EQ(window.windowTitle().toStdString(), "Database Report Setup");
    window.Form_Load();
    ASSERT_EQ(window.Check1.size(), 31u);
    EXPECT_EQ(window.Check1[30]->text().toStdString(), "Description");
    EXPECT_TRUE(window.Check1[30]->isChecked());
    EXPECT_EQ(window.tWid[30]->text().toStdString(), "2,5");
    EXPECT_EQ(window.tWid[3]->objectName().toStdString(), "tWid_3");
    EXPECT_EQ(window.cboLine->currentText().toStdString(), "2 - Double");
    EXPECT_EQ(window.lblfont->text().toStdString(), "Arial, 10");
    window.show();
    Shot(window, "frmRSU.png");

    // New clears the boxes; a click and typing make the file that Save writes.
    QTest::mouseClick(window.cmdNew, Qt::LeftButton);
    for (int i = 0; i < 31; ++i) {
        EXPECT_FALSE(window.Check1[i]->isChecked()) << i;
        EXPECT_TRUE(window.tWid[i]->text().isEmpty()) << i;
    }
    window.Check1[6]->click();
    QTest::keyClicks(window.tWid[6], "1.25");
    window.cboLine->setEditText("3");
    window.chooseFont = [](const QFont& current) -> std::optional<QFont> {
        EXPECT_EQ(current.family().toStdString(), "Arial");
        QFont chosen("Liberation Serif");
        chosen.setPointSizeF(14.5);
        return chosen;
    };
    QTest::mouseClick(window.cmdFont, Qt::LeftButton);
    EXPECT_EQ(window.lblfont->text().toStdString(), "Liberation Serif, 14.5");
    fx.ui.fileAnswers = {fx.f.dir.Text("mine")};
    QTest::mouseClick(window.cmdSave, Qt::LeftButton);
    reports::ReportForm saved = reports::DesignForm(reports::SettingsKind::Database);
    reports::ReadReportForm(ReadBytes(fx.f.dir.File("mine.Rpt")), saved);
    EXPECT_EQ(saved, window.Setup().form);
    EXPECT_EQ(saved.columns[6], (reports::ReportColumn{true, "1.25"}));
    EXPECT_EQ(saved.cboLine, "3");
    EXPECT_EQ(saved.fontName, "Liberation Serif");
    EXPECT_EQ(saved.fontSize, 14.5);

    // Open of a short file changes no control; a cancelled font dialogue neither.
    std::ofstream(fx.f.dir.File("short.Rpt"), std::ios::binary)
        << "\"1\",\"Arial\",10\r\n1,\"1\"\r\n";
    fx.ui.fileAnswers = {fx.f.dir.Text("short.Rpt")};
    window.chooseFont = [](const QFont&) { return std::optional<QFont>(); };
    QTest::mouseClick(window.cmdOpen, Qt::LeftButton);
    QTest::mouseClick(window.cmdFont, Qt::LeftButton);
    EXPECT_TRUE(window.Check1[6]->isChecked());
    EXPECT_EQ(window.tWid[6]->text().toStdString(), "1.25");
    EXPECT_EQ(window.lblfont->text().toStdString(), "Liberation Serif, 14.5");
    ASSERT_EQ(fx.ui.shown.size(), 1u);
    EXPECT_EQ(fx.ui.shown[0].message.LongMessage,
              "Input past end of file\nOccurred in : frmRSU.cmdOpen_Click");

    // Apply writes the held file, stores it and closes the window.
    window.tWid[6]->setText("2");
    QTest::mouseClick(window.cmdApply, Qt::LeftButton);
    EXPECT_EQ(window.result(), QDialog::Accepted);
    EXPECT_EQ(fx.TMM.prefs.defReport, fx.f.dir.Text("mine.Rpt"));
    EXPECT_NE(ReadBytes(fx.f.dir.File("mine.Rpt")).find("1,\"2\"\r\n"), std::string::npos);
}

TEST(frmRSU, TheLogWindowsNotesBoxSpeaksWhenClickedOn)
{
    Fixture fx;
    reports::frmRSU window(reports::SettingsKind::Log, fx.TMM);
    window.Form_Load(); // no default2.Rpl in the folder: the design stays
    EXPECT_EQ(window.windowTitle().toStdString(), "Logbook Report Setup");
    ASSERT_EQ(window.Check1.size(), 27u);
    EXPECT_EQ(window.tWid[0]->objectName().toStdString(), "txtWidth_0");
    EXPECT_EQ(window.tWid[0]->text().toStdString(), "1.1");
    ASSERT_EQ(fx.ui.shown.size(), 1u);
    EXPECT_EQ(fx.ui.shown[0].message.LongMessage,
              "File not found\nOccurred in : frmRSU2.Form_Load");
    window.show();
    Shot(window, "frmrsu2.png");

    QCheckBox* notes = window.Check1[reports::kNotesColumn];
    EXPECT_EQ(notes->text().toStdString(), "Observing Notes");
    QTest::mouseClick(notes, Qt::LeftButton);
    ASSERT_EQ(fx.ui.shown.size(), 2u);
    EXPECT_EQ(fx.ui.shown[1].message.ShortMessage, "Notes only will be displayed");
    QTest::mouseClick(notes, Qt::LeftButton);
    EXPECT_EQ(fx.ui.shown.size(), 2u);
    EXPECT_FALSE(notes->isChecked());

    // Close keeps the file and the setting as they were.
    QTest::mouseClick(window.cmdClose, Qt::LeftButton);
    EXPECT_EQ(window.result(), QDialog::Rejected);
    EXPECT_EQ(fx.TMM.prefs.defReportL, "");
    EXPECT_FALSE(std::filesystem::exists(fx.f.dir.File("default2.Rpl")));
}
