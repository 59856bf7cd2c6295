// The reports from the main window's keys over the small edition and the built chart data: the
// plan details and the finder sheet of the selected row previewed in the report window, the
// refusal of a solar-system row, the certificates' window, the sort choice of report 88, the
// printouts of the log view and Report Setup (Apply stores the file and builds the report
// again, Close does neither). With SELVANE_SCREENSHOT_DIR naming a folder, the previews are
// saved there as report-15.png and report-16.png.

#include "app/ChartWiring.h"
#include "app/ReportWiring.h"
#include "reports/ui/frmRSU.h"
#include "reports/ui/frmSortSelection.h"
#include "reports/ui/frmUserM.h"
#include "data/ObjectFilter.h"

#include "LogbookFolder.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QDir>
#include <QStatusBar>
#include <QTableView>

#include <gtest/gtest.h>

#include <functional>

namespace {

struct ReportScreen : LogbookFolder
{
    TestPort ui;
    spread::AppState state{ui, dir, data::SettingsStore(dir.File("Selvane2000.ini"))};
    astro::FixedClock clock{{2024, 1, 15, 21, 0, 0}};
    std::unique_ptr<spread::frmMainScreen> window;

    ReportScreen() : LogbookFolder({})
    {
        state.objectDb = std::move(objectDb);
        state.logbookDb = std::move(logbookDb);
        state.logbookPath = logbookPath;
        state.NoLoadYet = false;
        spread::MainScreenHooks hooks;
        hooks.computerClock = &clock;
        window = std::make_unique<spread::frmMainScreen>(state, ui, hooks);
        app::ScopeWiring scope;
        scope.TelescopeEnabled = [] { return false; };
        scope.ConnectTelescope = [] { return false; };
        scope.SpeechRegistered = [] { return false; };
        app::WireReports(*window, state, clock,
                         app::WireCharts(*window, state, ui, clock, scope, SELVANE_RESOURCE_DIR));
        window->resize(1100, 700);
        window->show();
        state.SQL = data::ShowMessierList().SQL;
        window->LoadCurrentTab("NOBUILD");
    }
    ~ReportScreen()
    {
        window.reset();
        Settle();
    }

    int Select(const std::string& id)
    {
        const spread::Grid& grid = state.grids[0];
        for (int row = 1; row <= grid.MaxRows(); ++row)
            if (grid.Text(row, 4) == id) {
                QTableView& view = window->grdObject(0);
                view.setCurrentIndex(view.model()->index(row - 1, 3));
                return row;
            }
        ADD_FAILURE() << id << " is not in the grid";
        return 0;
    }

    reports::frmUserM* Report() const
    {
        const QList<QWidget*> widgets = window->findChildren<QWidget*>();
        for (auto it = widgets.rbegin(); it != widgets.rend(); ++it)
            if (auto* report = dynamic_cast<reports::frmUserM*>(*it))
                return report;
        return nullptr;
    }
};

void Save(QWidget& widget, const char* name)
{
    const char* folder = std::getenv("SELVANE_SCREENSHOT_DIR");
    if (!folder || !*folder)
        return;
    QDir().mkpath(folder);
    Settle();
    EXPECT_TRUE(widget.grab().save(QDir(folder).filePath(name))) << name;
}

TEST(ReportWiring, SheetsOfTheSelectedRowInThePreview)
{
    ReportScreen s;
    s.Select("NGC 1976");
    s.window->ab_ToolClick("mnuopd");
    Settle();
    reports::frmUserM* plan = s.Report();
    ASSERT_NE(plan, nullptr);
    EXPECT_EQ(plan->windowTitle(), "Selvane 2003 Reporting");
    EXPECT_GE(plan->Surface().PageCount(), 1);
    EXPECT_TRUE(plan->chartOptions->isVisible());
    EXPECT_FALSE(plan->chkLand->isEnabled());
    EXPECT_EQ(plan->Sbar->currentMessage().toStdString(),
              "You are on Page 1 of " + std::to_string(plan->Surface().PageCount()));
    plan->resize(1000, 760);
    Save(*plan, "report-15.png");
    plan->close();
    Settle();

    s.window->ab_ToolClick("OFinder");
    Settle();
    reports::frmUserM* finder = s.Report();
    ASSERT_NE(finder, nullptr);
    EXPECT_EQ(finder->Surface().PageCount(), 1);
    finder->resize(1000, 760);
    Save(*finder, "report-16.png");
    finder->close();
    Settle();
    EXPECT_TRUE(s.ui.shown.empty()) << s.ui.shown.front().LongMessage;
}

TEST(ReportWiring, RefusalsOfTheMainWindow)
{
    ReportScreen s;
    const int row = s.Select("NGC 1976");
    s.state.grids[0].SetText(row, 24, "PLANETS");
    s.window->ab_ToolClick("mnuopd");
    Settle();
    EXPECT_EQ(s.Report(), nullptr);
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].LongMessage,
              "This option is currently not supported for Solar System objects in the observing "
              "plan.");
}

// plogone asks for the order first: Cancel opens nothing, OK opens report 88 with the boxes'
// answer.
TEST(ReportWiring, LogbookReportAfterItsSortSelection)
{
    ReportScreen s;
    QTimer::singleShot(0, [] {
        auto* choice =
            dynamic_cast<reports::ui::frmSortSelection*>(QApplication::activeModalWidget());
        ASSERT_NE(choice, nullptr);
        choice->cmdCancel->click();
    });
    s.window->ab_ToolClick("plogone");
    Settle();
    EXPECT_EQ(s.Report(), nullptr);

    QTimer::singleShot(0, [] {
        auto* choice =
            dynamic_cast<reports::ui::frmSortSelection*>(QApplication::activeModalWidget());
        ASSERT_NE(choice, nullptr);
        EXPECT_EQ(choice->cboSort[0]->itemText(0), "");
        choice->cboSort[0]->setCurrentText("DateObserved");
        choice->chkDesc[0]->setChecked(true);
        choice->cboSort[2]->setCurrentText("ObjectID");
        choice->txtObject->setText("NGC*");
        Save(*choice, "frmSortSelection.png");
        choice->cmdOK->click();
    });
    s.window->ab_ToolClick("plogone");
    Settle();
    reports::frmUserM* report = s.Report();
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->Window().ReportNumber, 88);
    const reports::SortSelection& chosen = report->Window().sortSelection;
    EXPECT_EQ(chosen.column, (std::array<std::string, 3>{"DateObserved", "", "ObjectID"}));
    EXPECT_EQ(chosen.descending, (std::array<bool, 3>{true, false, false}));
    EXPECT_EQ(chosen.like, "NGC*");
    EXPECT_GE(report->Surface().PageCount(), 1);
    report->resize(1000, 760);
    Save(*report, "report-88.png");
}

TEST(ReportWiring, CertificateOpensWithStillToObserve)
{
    ReportScreen s;
    s.window->ab_ToolClick("herschelcert");
    Settle();
    reports::frmUserM* report = s.Report();
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->Window().ReportNumber, 7);
    EXPECT_TRUE(report->chkMissing->isVisibleTo(report));
    EXPECT_EQ(report->Surface().PageCount(), 1);
    EXPECT_TRUE(s.ui.shown.empty());
    Save(*report, "report-herschel-certificate.png");
}

// Runs action on the settings window once what comes next has shown it modally.
void OnSetupWindow(std::function<void(reports::frmRSU&)> action)
{
    QTimer::singleShot(0, [action = std::move(action)] {
        auto* setup = dynamic_cast<reports::frmRSU*>(QApplication::activeModalWidget());
        ASSERT_NE(setup, nullptr);
        action(*setup);
    });
}

TEST(ReportSetupWiring, ApplyStoresTheFileAndBuildsTheReportAgain)
{
    ReportScreen s;
    s.window->ab_ToolClick("logreport");
    Settle();
    reports::frmUserM* report = s.Report();
    ASSERT_NE(report, nullptr);
    QSignalSpy previews(report->Command9, &QPushButton::clicked);
    OnSetupWindow([](reports::frmRSU& setup) { setup.cmdClose->click(); });
    report->ReportS->click();
    EXPECT_EQ(previews.count(), 0);

    OnSetupWindow([](reports::frmRSU& setup) {
        EXPECT_EQ(setup.windowTitle().toStdString(), "Logbook Report Setup");
        setup.Check1[26]->click();
        setup.cmdApply->click();
    });
    report->ReportS->click();
    EXPECT_EQ(previews.count(), 1);
    EXPECT_EQ(s.state.prefs.defReportL, s.dir.Text("default2.Rpl"));
    EXPECT_EQ(s.state.prefs.defReport, "");
}

} // namespace
