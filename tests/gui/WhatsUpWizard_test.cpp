// The What's Up wizard's window over the built small edition, reached from the main window as
// a person reaches it: the keys wiz1 and tolWUW, six pages clicked through, the tab and the
// filter panel afterwards; and the What's Up lists of wiz2 and wiz3. With SELVANE_SCREENSHOTS
// naming a folder, each page and the tab after Finish are saved there.

#include "spread/ui/frmWhatsUpWizard.h"

#include "data/ObjectFilter.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/ui/frmMainScreen.h"
#include "spread/ui/ctlSpreadFilter.h"

#include "GuiApp.h"

#include <QAction>
#include <QCheckBox>
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
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using spread::frmWhatsUpWizard;

void Shot(QWidget& widget, const char* name)
{
    if (const char* folder = std::getenv("SELVANE_SCREENSHOTS")) {
        // Labels whose text just changed are laid out again first.
        QApplication::processEvents();
        widget.grab().save(QString(folder) + "/" + name);
    }
}

// The main window over the small edition and a logbook with one observing site, tab 0 holding
// the Messier list, as after the start.
struct Screen
{
    bool appReady = (App(), true);
    QTemporaryDir dir;
    TestPort ui;
    spread::AppState state{ui, data::ProgramDir{Dir()},
                           data::SettingsStore(Dir() / "Selvane2000.ini")};
    astro::FixedClock clock{{2024, 3, 15, 21, 40, 12}};
    std::unique_ptr<spread::frmMainScreen> window;

    Screen()
    {
        const std::filesystem::path resources(SELVANE_RESOURCE_DIR);
        std::filesystem::copy_file(resources / "Logbook2003-1.mdb", Dir() / "Logbook2003-1.mdb");
        data::OpenOptions readOnly;
        readOnly.readOnly = true;
        state.objectDb = data::Database::Open(resources / "SelvPro13000.mdb", readOnly);
        state.logbookDb = data::Database::Open(Dir() / "Logbook2003-1.mdb");
        state.logbookDb->Execute("Insert Into ObservingSites (ProfileName, Latitude, Longitude, "
                                 "EastWest, TimeZone) Values ('Backyard', 40.5, 74, 'W', 5)");
        state.prefs.Plat = 35;
        state.prefs.PLon = 106.6;
        state.prefs.PTz = 7;
        state.prefs.PDate = "03/15/2024";
        state.NoLoadYet = false;
        spread::MainScreenHooks hooks;
        hooks.computerClock = &clock;
        window = std::make_unique<spread::frmMainScreen>(state, ui, hooks);
        window->FilterPanel().ReloadLookups();
        window->FilterPanel().RefreshPref();
        window->resize(1300, 850);
        window->show();
        state.SQL = data::ShowMessierList().SQL;
        window->LoadCurrentTab("NOBUILD");
    }
    ~Screen() { window.reset(); }
    std::filesystem::path Dir() const { return dir.path().toStdString(); }
    spread::Grid& Grid(int tab) { return state.grids[static_cast<std::size_t>(tab)]; }

    // Clicks the tool with the wizard left to drive, which runs once the window is up.
    void Open(const std::string& key, const std::function<void(frmWhatsUpWizard&)>& drive)
    {
        bool driven = false;
        QTimer::singleShot(0, [&] {
            auto* wizard = dynamic_cast<frmWhatsUpWizard*>(QApplication::activeModalWidget());
            driven = wizard != nullptr;
            if (wizard)
                drive(*wizard);
            if (QWidget* modal = QApplication::activeModalWidget())
                modal->close();
        });
        window->Tool(key)->trigger();
        EXPECT_TRUE(driven) << key;
    }
};

double Number(std::string_view cell)
{
    return std::stod(std::string(cell));
}

// A person's click on an entry of a list: it toggles the entry.
void Click(QListWidget& list, const char* text)
{
    const auto found = list.findItems(text, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << text;
    list.scrollToItem(found[0]);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(found[0]).center());
}

void Type(QLineEdit& box, const QString& text)
{
    box.setFocus();
    box.selectAll();
    QTest::keyClick(&box, Qt::Key_Delete);
    QTest::keyClicks(&box, text);
}

// Six pages through wiz1 with the apply box off: each page's heading, hint and buttons, the
// wizard's rows on the tab, and the filter panel showing the values put back.
TEST(WhatsUpWizardWindow, SixPagesToFinish)
{
    Screen s;
    s.Open("wiz1", [&](frmWhatsUpWizard& w) {
        w.show();
        const char* const names[] = {"wizard-page1.png", "wizard-page2.png", "wizard-page3.png",
                                     "wizard-page4.png", "wizard-page5.png", "wizard-page6.png"};
        for (int page = 1; page <= spread::kWizardPages; ++page) {
            SCOPED_TRACE(page);
            const spread::WizardPageText& text =
                spread::WizardPageTexts[static_cast<std::size_t>(page - 1)];
            EXPECT_EQ(w.lblHeading->text().toStdString(), text.heading);
            EXPECT_EQ(w.lblHint->text().toStdString(), text.hint);
            EXPECT_EQ(w.fraStep->currentIndex(), page - 1);
            EXPECT_EQ(w.cmdNext->text(), page < 6 ? "Next >>" : "Finish");
            EXPECT_EQ(w.cmdBack->isEnabled(), page > 1);
            switch (page) {
            case 1:
                EXPECT_EQ(w.lstCon->count(), 89);
                EXPECT_TRUE(w.lstCon->selectedItems().isEmpty());
                Click(*w.lstCon, "Ori-Orion");
                Click(*w.lstCon, "Mon-Monoceros");
                break;
            case 2:
                EXPECT_EQ(w.lstType->item(0)->text(), "All Types");
                Click(*w.lstType, "Open star cluster");
                break;
            case 3:
                w.cbosort[0]->setCurrentText("Magnitude");
                w.cbosort[1]->setCurrentText("<none>");
                break;
            case 4:
                EXPECT_EQ(w.lstCat->item(0)->text(), "All Catalogs");
                break;
            case 5:
                EXPECT_EQ(w.txtDate->text(), "03/15/24");
                EXPECT_EQ(w.cboSite->currentText(), "");
                w.cboSite->setCurrentIndex(1);
                emit w.cboSite->activated(1);
                EXPECT_EQ(w.lblSite->text(), "Latitude 40.5   Longitude 74   Time zone 5");
                QTest::mouseClick(w.cmdNow, Qt::LeftButton);
                EXPECT_EQ(w.txtTime->text(), "21:40");
                break;
            default:
                Type(*w.txtMagU[0], "9");
                Type(*w.txtMinAlt, "20");
                EXPECT_EQ(w.chkwizapply->text(), "Apply wizard preferences to rest of Selvane");
                EXPECT_EQ(w.chkwizapply->toolTip(), "When checked, any changes made on the "
                                                    "wizard screen will be propogated in "
                                                    "Selvane");
                EXPECT_FALSE(w.chkwizapply->isChecked());
                break;
            }
            Shot(w, names[page - 1]);
            QTest::mouseClick(w.cmdNext, Qt::LeftButton);
        }
        EXPECT_FALSE(w.isVisible());
    });

    // The wizard's rows: Orion and Monoceros open clusters up to magnitude 9, at least 20
    // degrees up from the site at 21:40, by magnitude.
    const spread::Grid& grid = s.Grid(0);
    ASSERT_GT(grid.MaxRows(), 3);
    double last = -99;
    for (int row = 1; row <= grid.MaxRows(); ++row) {
        SCOPED_TRACE(grid.Text(row, 4));
        EXPECT_TRUE(grid.Text(row, 15) == "Ori" || grid.Text(row, 15) == "Mon");
        EXPECT_EQ(grid.Text(row, 6), "OC");
        EXPECT_GE(Number(grid.Text(row, 10)), 20);
        const double magnitude = Number(grid.Text(row, 17));
        EXPECT_LE(magnitude, 9);
        EXPECT_GE(magnitude, last);
        last = magnitude;
    }
    EXPECT_EQ(s.window->grdObject(0).model()->rowCount(), grid.MaxRows());
    // Everything went back: the panel shows the filter in force before.
    spread::ctlSpreadFilter& panel = s.window->FilterPanel();
    EXPECT_EQ(panel.lblConst->text(), "Ori-Orion;");
    EXPECT_EQ(panel.txtMagUpper[0]->text(), "999");
    EXPECT_DOUBLE_EQ(s.state.prefs.Plat, 35);
    EXPECT_DOUBLE_EQ(s.state.prefs.PLon, 106.6);
    EXPECT_EQ(s.state.prefs.Ptime, "22:00");
    Shot(*s.window, "wizard-result.png");
}

// tolWUW opens the same wizard; Cancel after page 1 leaves its list in force and the panel
// shows it; the apply box is written at its click. On an image tab the wizard does not open.
TEST(WhatsUpWizardWindow, CancelKeepsPageOneAndTheTabGuard)
{
    Screen s;
    const std::size_t rows = static_cast<std::size_t>(s.Grid(0).MaxRows());
    s.Open("tolWUW", [&](frmWhatsUpWizard& w) {
        Click(*w.lstCon, "Lyr-Lyra");
        QTest::mouseClick(w.cmdNext, Qt::LeftButton);
        EXPECT_EQ(w.lblHeading->text(), "2. Select the object types to include");
        QTest::mouseClick(w.chkwizapply, Qt::LeftButton);
        QTest::mouseClick(w.cmdCancel, Qt::LeftButton);
    });
    EXPECT_EQ(s.window->FilterPanel().lblConst->text(), "Lyr-Lyra;");
    EXPECT_EQ(s.state.prefs.Obcon, "Lyr-Lyra;");
    EXPECT_EQ(s.state.settings.Get("wizapppref", ""), "True");
    EXPECT_EQ(static_cast<std::size_t>(s.Grid(0).MaxRows()), rows);

    const std::size_t shown = s.ui.shown.size();
    s.window->SetCurrTab(6);
    QTimer::singleShot(0, [] {
        if (QWidget* modal = QApplication::activeModalWidget())
            modal->close();
    });
    s.window->Tool("wiz1")->trigger();
    ASSERT_EQ(s.ui.shown.size(), shown + 1);
    EXPECT_EQ(s.ui.shown.back().LongMessage, "Please select a spreadsheet tab first");
    EXPECT_EQ(s.ui.shown.back().ShortMessage, "Invalid Usage!");
}

// wiz2 and wiz3 fill the current tab with the Messier and Herschel objects that are up, and
// leave the sort settings as they were.
TEST(WhatsUpWizardWindow, WhatsUpListsOnTheCurrentTab)
{
    Screen s;
    s.window->SetCurrTab(1);
    s.window->Tool("wiz2")->trigger();
    const spread::Grid& messier = s.Grid(1);
    ASSERT_GT(messier.MaxRows(), 10);
    EXPECT_EQ(messier.Tag(), "What's Up - Messier Objects");
    for (int row = 1; row <= messier.MaxRows(); ++row)
        EXPECT_GE(Number(messier.Text(row, 10)), 0) << messier.Text(row, 4);
    EXPECT_EQ(s.window->grdObject(1).model()->rowCount(), messier.MaxRows());

    s.window->SetCurrTab(2);
    s.window->Tool("wiz3")->trigger();
    const spread::Grid& herschel = s.Grid(2);
    ASSERT_GT(herschel.MaxRows(), 10);
    // PsSort 1 sorts by altitude, ascending.
    for (int row = 2; row <= herschel.MaxRows(); ++row)
        EXPECT_LE(Number(herschel.Text(row - 1, 10)), Number(herschel.Text(row, 10)));
    EXPECT_EQ(s.state.prefs.sort1, "");
    EXPECT_EQ(s.state.prefs.Pminalt, "");
}

} // namespace
