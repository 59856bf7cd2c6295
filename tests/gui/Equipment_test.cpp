// The equipment window and the other-equipment picker on the offscreen platform, over a program
// folder and a logbook in a temporary directory. With SELVANE_SCREENSHOTS naming a folder, the
// equipment window is saved there as equipment-window.png.

#include "logbook/ui/frmEQDialog.h"
#include "logbook/ui/frmEditEquipment.h"

#include "../data/TestDatabases.h"
#include "logbook/Equipment.h"
#include "services/ScriptedUiPort.h"

#include "GuiApp.h"
#include "tests/TestFiles.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include <cstdlib>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using logbook::ui::frmEditEquipment;
using logbook::ui::frmEQDialog;

std::string Pad(const std::string& name)
{
    return name + std::string(33 - name.size(), ' ');
}

using test_files::ReadText;

std::vector<std::string> Rows(const QListWidget* list)
{
    std::vector<std::string> rows;
    for (int i = 0; i < list->count(); ++i)
        rows.push_back(list->item(i)->text().toStdString());
    return rows;
}

struct Folder
{
    bool appReady = (App(), true);
    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    std::unique_ptr<data::Database> logbook;

    Folder()
    {
        ui.echo = false;
        const fs::path path = f.dir.File("Logbook2003-1.mdb");
        testing_data::MakeLogbook(path);
        logbook = data::Database::Open(path);
    }
    void Write(const std::string& name, const std::string& text)
    {
        test_files::WriteText(f.dir.File(name), text);
    }
};

void Click(QListWidget* list, int row)
{
    list->setCurrentRow(row);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualItemRect(list->item(row)).center());
}

TEST(frmEditEquipment, AddDeleteAndTheBoxesOfAScope)
{
    Folder d;
    const std::string sct = Pad("8 inch f/10 Schmidt-Cassegrain") + "10.0 203";
    d.Write("scope.dat", Pad("80 mm f/6 apochromatic refractor") + "06.0 080\r\n" + sct +
                             "\r\n" + Pad("10 inch f/4.7 Dobsonian") + "04.7 254\r\n");
    d.Write("ccd.dat", "Mono CCD 1.3 MP\n");
    frmEditEquipment window(d.ui, d.f.dir, {}, d.logbook.get());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.List1->count(), 3);

    // A click on a row puts its columns back in the boxes.
    Click(window.List1, 1);
    EXPECT_EQ(
        (window.Text1[0]->text() + "|" + window.Text1[1]->text() + "|" + window.Text1[2]->text())
            .toStdString(),
        Pad("8 inch f/10 Schmidt-Cassegrain") + "| 203|10.0");

    if (const char* folder = std::getenv("SELVANE_SCREENSHOTS"); folder && *folder) {
        QDir().mkpath(folder);
        EXPECT_TRUE(window.grab().save(QDir(folder).filePath("equipment-window.png")));
    }

    // A 40-character name warns once, is added cut to 33, and the pick list follows.
    window.Text1[0]->setText("Forty character telescope name, exactly.");
    window.Text1[1]->setText("130");
    window.Text1[2]->setText("5");
    QTest::mouseClick(window.cmdAdd, Qt::LeftButton);
    ASSERT_EQ(d.ui.shown.size(), 1u);
    const std::string added = "Forty character telescope name, e05.0 130";
    EXPECT_EQ(Rows(window.List1).back(), added);
    EXPECT_EQ(window.Text1[0]->text().toStdString(), "Forty character telescope name, e");
    EXPECT_EQ(logbook::LoadEquipmentTable(*d.logbook),
              (std::vector<std::string>{"80 mm f/6 apochromatic refractor",
                                        "8 inch f/10 Schmidt-Cassegrain",
                                        "10 inch f/4.7 Dobsonian",
                                        "Forty character telescope name, e", "Mono CCD 1.3 MP"}));

    // Delete takes the chosen row out of the list, the file and the pick list.
    window.List1->setCurrentRow(0);
    QTest::mouseClick(window.cmdDelete, Qt::LeftButton);
    EXPECT_EQ(ReadText(d.f.dir.File("scope.dat")),
              sct + "\n" + Pad("10 inch f/4.7 Dobsonian") + "04.7 254\n" + added + "\n");
    EXPECT_EQ(logbook::LoadEquipmentTable(*d.logbook).front(), "8 inch f/10 Schmidt-Cassegrain");
    EXPECT_EQ(d.ui.shown.size(), 1u);
}

TEST(frmEditEquipment, EachTabReadsAndWritesItsOwnFile)
{
    Folder d;
    d.Write("scope.dat", "");
    d.Write("exp.dat", "Stack of 10 x 60 s\n");
    frmEditEquipment window(d.ui, d.f.dir, {}, d.logbook.get());
    window.show();
    EXPECT_TRUE(d.ui.shown.empty());

    // eyepiece.dat is missing: the error at the tab, an empty list, and Add makes the file.
    window.sstab1->setCurrentIndex(1);
    ASSERT_EQ(d.ui.shown.size(), 1u);
    EXPECT_EQ(window.List2->count(), 0);
    window.Text2[0]->setText("25 mm Plossl");
    window.Text2[1]->setText("25");
    window.Text2[2]->setText("52");
    QTest::mouseClick(window.cmdAdd, Qt::LeftButton);
    EXPECT_EQ(ReadText(d.f.dir.File("eyepiece.dat")), Pad("25 mm Plossl") + "25.0 52\n");
    EXPECT_EQ(logbook::LoadEquipmentTable(*d.logbook), std::vector<std::string>{"25 mm Plossl"});

    // Modes are no pick: the table stays as the three other lists make it.
    window.sstab1->setCurrentIndex(3);
    EXPECT_EQ(Rows(window.List4), std::vector<std::string>{"Stack of 10 x 60 s"});
    window.text3[1]->setText(QString(101, 'm'));
    QTest::mouseClick(window.cmdAdd, Qt::LeftButton);
    ASSERT_EQ(d.ui.shown.size(), 2u);
    EXPECT_EQ(d.ui.shown[1].message.ShortMessage, "Maximum length exceeded");
    EXPECT_EQ(window.List4->count(), 2);
    EXPECT_EQ(logbook::LoadEquipmentTable(*d.logbook), std::vector<std::string>{"25 mm Plossl"});

    // A file changed outside is read again when its tab is shown.
    d.Write("exp.dat", "Single frame 1x1 binning\n");
    window.sstab1->setCurrentIndex(0);
    window.sstab1->setCurrentIndex(3);
    EXPECT_EQ(Rows(window.List4), std::vector<std::string>{"Single frame 1x1 binning"});
}

TEST(frmEQDialog, AddRemoveAndPick)
{
    Folder d;
    for (const char* pick : {"8 inch SCT", " ", "Red dot finder", "UHC filter"})
        d.logbook->Execute(std::string("Insert Into Equipment (Equipment) Values ('") + pick +
                           "')");
    {
        frmEQDialog dialog(d.ui, *d.logbook, {"Dew heater"});
        EXPECT_EQ(Rows(dialog.List1),
                  (std::vector<std::string>{"8 inch SCT", " ", "Red dot finder", "UHC filter"}));
        EXPECT_EQ(dialog.Lines(), std::vector<std::string>{"Dew heater"});

        dialog.List1->setCurrentRow(1); // a blank pick
        QTest::mouseClick(dialog.cmdAdd, Qt::LeftButton);
        dialog.List1->setCurrentRow(3);
        QTest::mouseClick(dialog.cmdAdd, Qt::LeftButton);
        dialog.List1->setCurrentRow(2);
        QTest::mouseClick(dialog.cmdAdd, Qt::LeftButton);
        EXPECT_EQ(dialog.Lines(),
                  (std::vector<std::string>{"Dew heater", "UHC filter", "Red dot finder"}));

        dialog.List2->setCurrentRow(0);
        QTest::mouseClick(dialog.cmdRemove, Qt::LeftButton);
        EXPECT_EQ(dialog.Lines(), (std::vector<std::string>{"UHC filter", "Red dot finder"}));
    }

    // Pick hands the lines back on OK only.
    auto answer = [](bool ok, int addRow) {
        QTimer::singleShot(0, [ok, addRow] {
            auto* dialog = dynamic_cast<frmEQDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            dialog->List1->setCurrentRow(addRow);
            QTest::mouseClick(dialog->cmdAdd, Qt::LeftButton);
            QTest::mouseClick(ok ? dialog->cmdOK : dialog->cmdCancel, Qt::LeftButton);
        });
    };
    std::vector<std::string> lines{"Dew heater"};
    answer(false, 0);
    EXPECT_FALSE(frmEQDialog::Pick(nullptr, d.ui, *d.logbook, lines));
    EXPECT_EQ(lines, std::vector<std::string>{"Dew heater"});
    answer(true, 0);
    EXPECT_TRUE(frmEQDialog::Pick(nullptr, d.ui, *d.logbook, lines));
    EXPECT_EQ(lines, (std::vector<std::string>{"Dew heater", "8 inch SCT"}));
    EXPECT_TRUE(d.ui.shown.empty());
}

} // namespace
