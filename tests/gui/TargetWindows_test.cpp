// frmNTOS and frmTarget on the offscreen platform over the built small edition. With
// SELVANE_SHOTS=DIR set, the windows are saved there as PNG pictures.

#include "scope/ui/frmNearby.h"
#include "scope/ui/frmTarget.h"

#include "GuiApp.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>

#include <filesystem>

namespace {

class TargetWindows : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        const std::filesystem::path resources(SELVANE_RESOURCE_DIR);
        for (const char* name : {"SelvPro13000.mdb", "con9.txt", "conbound.txt"})
            std::filesystem::copy_file(resources / name, TMM.dir.File(name));
        TMM.objectDb = data::Database::Open(TMM.dir.File("SelvPro13000.mdb"), {});
        TMM.prefs.ObCat = "All Catalogs";
        TMM.prefs.Obtod = "All Types";
    }

    static void Shoot(QWidget& window, const char* name)
    {
        const QString dir = qEnvironmentVariable("SELVANE_SHOTS");
        QApplication::processEvents();
        if (!dir.isEmpty())
            window.grab().save(dir + "/" + name);
    }

    QApplication& app = App(); // before the port, which owns widgets
    QTemporaryDir folder;
    TestPort ui;
    spread::AppState TMM{ui, data::ProgramDir{folder.path().toStdString()},
                         data::SettingsStore(folder.filePath("test.ini").toStdString())};
};

TEST_F(TargetWindows, NtosSearchesAndTogglesThePlan)
{
    int planChanges = 0;
    scope::ui::NearbyHooks hooks;
    hooks.PlanChanged = [&] { ++planChanges; };
    scope::ui::frmNearby window(TMM, scope::SearchWindow::NTOS, hooks);

    window.Open(); // no home target yet
    EXPECT_FALSE(window.isVisible());
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].ShortMessage, "Target Object Not Specified");

    TMM.target.TargetRA = "05 35 17.3";
    TMM.target.TargetDec = "-05 23 23.0";
    TMM.prefs.gDegScope = 0.5;
    window.Open();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.cboDegrees->currentText(), "0.5");
    EXPECT_EQ(window.cboDegrees->count(), 8);
    window.cboDegrees->setCurrentText("1");
    window.Command2->click();
    EXPECT_EQ(window.lblRA->text(), "Target RA: 05h 35m 17s");
    EXPECT_EQ(window.lblConst->text(), "Const: Ori");
    EXPECT_TRUE(window.lblWait->text().isEmpty());
    ASSERT_GE(window.vaSpread1->rowCount(), 3);
    EXPECT_EQ(window.vaSpread1->item(0, 1)->text(), "NGC 1976");
    EXPECT_EQ(window.vaSpread1->item(0, 3)->text(), ".0");
    EXPECT_TRUE(window.vaSpread1->isColumnHidden(8));

    // A double click puts the row in the current tab's plan, a second one takes it out.
    emit window.vaSpread1->cellDoubleClicked(1, 0);
    EXPECT_EQ(window.vaSpread1->item(1, 0)->text(), "X");
    ASSERT_EQ(TMM.plans[0].entries.size(), 1u);
    EXPECT_EQ(TMM.plans[0].entries[0].PlanObjectID, "NGC 1982");
    Shoot(window, "ntos.png");
    emit window.vaSpread1->cellDoubleClicked(1, 0);
    EXPECT_EQ(window.vaSpread1->item(1, 0)->text(), "");
    EXPECT_TRUE(TMM.plans[0].entries.empty());
    EXPECT_EQ(planChanges, 2);
}

TEST_F(TargetWindows, TargetSwitchAndTheScopeRefusal)
{
    TMM.target.TargetObjectID = "NGC 1976";
    TMM.target.TargetCatalog = "2000";
    TMM.target.TargetRA = "05 35 17.3";
    TMM.target.TargetDec = "-05 23 23.0";
    int switched = 0;
    scope::ui::frmTarget window(TMM.target, ui, [&] { ++switched; });
    window.Open();
    EXPECT_EQ(window.lblHome->text(), "NGC 1976");
    EXPECT_EQ(window.lblDec->text(), "-05 23 23.0");
    EXPECT_EQ(window.cmdTurn->text(), "Turn On");
    EXPECT_EQ(window.lblOnOff->text(), "Targeting is Off");

    window.cmdTurn->click();
    EXPECT_TRUE(TMM.target.TargetingOn);
    EXPECT_EQ(window.cmdTurn->text(), "Turn Off");
    EXPECT_EQ(window.lblOnOff->text(), "Targeting is On");
    EXPECT_EQ(switched, 1);
    Shoot(window, "target.png");

    window.chkScopeHome->setChecked(true);
    EXPECT_EQ(window.lblHome->text(), "");
    window.cmdTurn->click(); // no telescope enabled
    EXPECT_TRUE(TMM.target.TargetingOn);
    EXPECT_EQ(switched, 1);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].ShortMessage, "Scope Not Enabled");
    EXPECT_EQ(ui.shown[0].kind, "E");
    Shoot(window, "target-scope.png");
}

} // namespace
