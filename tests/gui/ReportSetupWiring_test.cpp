// Report Setup of the report window opened from the main window's keys: the log report opens
// the log's settings window, Apply stores the file and builds the report again, Close does
// neither.

#include "app/ChartWiring.h"
#include "app/ReportWiring.h"
#include "reports/ui/frmRSU.h"
#include "reports/ui/frmUserM.h"

#include "LogbookFolder.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

struct SetupScreen : LogbookFolder
{
    TestPort ui;
    spread::AppState state{ui, dir, data::SettingsStore(dir.File("Selvane2000.ini"))};
    astro::FixedClock clock{{2024, 1, 15, 21, 0, 0}};
    std::unique_ptr<spread::frmMainScreen> window;

    SetupScreen() : LogbookFolder({})
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
        window->show();
    }
    ~SetupScreen()
    {
        window.reset();
        Settle();
    }

    reports::frmUserM* Report() const
    {
        for (QDialog* dialog : window->findChildren<QDialog*>())
            if (auto* report = dynamic_cast<reports::frmUserM*>(dialog))
                return report;
        return nullptr;
    }
};

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
    SetupScreen s;
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
