// The What's Up wizard's window over the built small edition, reached from the main window as a
// person reaches it: six pages clicked through to Finish, and the tab afterwards. With
// SELVANE_SCREENSHOTS naming a folder, each page and the tab after Finish are saved there.

#include "spread/ui/frmWhatsUpWizard.h"

#include "data/ObjectFilter.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/ui/ctlSpreadFilter.h"
#include "spread/ui/frmMainScreen.h"

#include "GuiApp.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace {

void Shot(QWidget& widget, const std::string& name)
{
    if (const char* folder = std::getenv("SELVANE_SCREENSHOTS")) {
        // Labels whose text just changed are laid out again first.
        QApplication::processEvents();
        widget.grab().save(QString(folder) + "/" + QString::fromStdString(name));
    }
}

// The main window over the small edition and a logbook with one observing site, tab 0 holding
// the Messier list as after the start; wiz1 opens the wizard, which is walked through its six
// pages with the apply box off. The tab then holds the Orion and Monoceros open clusters up to
// magnitude 9, at least 20 degrees up from the site at the clock's time, and the filter panel
// shows the values in force before.
TEST(WhatsUpWizardWindow, SixPagesToFinish)
{
    App();
    QTemporaryDir dir;
    const std::filesystem::path home = dir.path().toStdString();
    const std::filesystem::path resources(SELVANE_RESOURCE_DIR);
    std::filesystem::copy_file(resources / "Logbook2003-1.mdb", home / "Logbook2003-1.mdb");
    TestPort ui;
    spread::AppState state{ui, data::ProgramDir{home},
                           data::SettingsStore(home / "Selvane2000.ini")};
    data::OpenOptions readOnly;
    readOnly.readOnly = true;
    state.objectDb = data::Database::Open(resources / "SelvPro13000.mdb", readOnly);
    state.logbookDb = data::Database::Open(home / "Logbook2003-1.mdb");
    state.logbookDb->Execute("Insert Into ObservingSites (ProfileName, Latitude, Longitude, "
                             "EastWest, TimeZone) Values ('Backyard', 40.5, 74, 'W', 5)");
    state.prefs.Plat = 35;
    state.prefs.PLon = 106.6;
    state.prefs.PTz = 7;
    state.prefs.PDate = "03/15/2024";
    state.NoLoadYet = false;
    astro::FixedClock clock{{2024, 3, 15, 21, 40, 12}};
    spread::MainScreenHooks hooks;
    hooks.computerClock = &clock;
    spread::frmMainScreen window(state, ui, hooks);
    window.FilterPanel().ReloadLookups();
    window.FilterPanel().RefreshPref();
    window.resize(1300, 850);
    window.show();
    state.SQL = data::ShowMessierList().SQL;
    window.LoadCurrentTab("NOBUILD");

    bool driven = false;
    QTimer::singleShot(0, [&] {
        auto* w = dynamic_cast<spread::frmWhatsUpWizard*>(QApplication::activeModalWidget());
        driven = w != nullptr;
        if (!w) {
            if (QWidget* modal = QApplication::activeModalWidget())
                modal->close();
            return;
        }
        Click(*w->lstCon, "Ori-Orion");
        Click(*w->lstCon, "Mon-Monoceros");
        for (int page = 1; page <= spread::kWizardPages; ++page) {
            SCOPED_TRACE(page);
            EXPECT_EQ(w->fraStep->currentIndex(), page - 1);
            EXPECT_EQ(w->cmdNext->text(), page < 6 ? "Next >>" : "Finish");
            if (page == 2)
                Click(*w->lstType, "Open star cluster");
            if (page == 3)
                w->cbosort[0]->setCurrentText("Magnitude");
            if (page == 5) {
                w->cboSite->setCurrentIndex(1);
                emit w->cboSite->activated(1);
                EXPECT_EQ(w->lblSite->text(), "Latitude 40.5   Longitude 74   Time zone 5");
                QTest::mouseClick(w->cmdNow, Qt::LeftButton);
                EXPECT_EQ(w->txtTime->text(), "21:40");
            }
            if (page == 6) {
                w->txtMagU[0]->setText("9");
                w->txtMinAlt->setText("20");
            }
            Shot(*w, "wizard-page" + std::to_string(page) + ".png");
            QTest::mouseClick(w->cmdNext, Qt::LeftButton);
        }
        EXPECT_FALSE(w->isVisible());
    });
    window.Tool("wiz1")->trigger();
    ASSERT_TRUE(driven);

    const spread::Grid& grid = state.grids[0];
    ASSERT_GT(grid.MaxRows(), 3);
    double last = -99;
    for (int row = 1; row <= grid.MaxRows(); ++row) {
        SCOPED_TRACE(grid.Text(row, 4));
        EXPECT_TRUE(grid.Text(row, 15) == "Ori" || grid.Text(row, 15) == "Mon");
        EXPECT_EQ(grid.Text(row, 6), "OC");
        EXPECT_GE(std::stod(std::string(grid.Text(row, 10))), 20);
        const double magnitude = std::stod(std::string(grid.Text(row, 17)));
        EXPECT_LE(magnitude, 9);
        EXPECT_GE(magnitude, last);
        last = magnitude;
    }
    EXPECT_EQ(window.FilterPanel().lblConst->text(), "Ori-Orion;");
    Shot(window, "wizard-result.png");
}

} // namespace
