// The report window's "Still to observe" box on the offscreen platform: shown for the
// certificates only, started from the setting, and stored when the observer changes it.

#include "reports/ui/frmUserM.h"

#include "astro/ObservingClock.h"
#include "services/ScriptedUiPort.h"
#include "spread/AppState.h"
#include "tests/data/TestDatabases.h"

#include <QApplication>
#include <QCheckBox>
#include <QTest>

#include <gtest/gtest.h>

namespace {

TEST(frmUserM, StillToObserveFollowsAndStoresTheSetting)
{
    static int argc = 1;
    static char name[] = "selvane_reports_gui_tests";
    static char* argv[] = {name, nullptr};
    if (QApplication::instance() == nullptr)
        new QApplication(argc, argv);

    testing_data::TestFolder f;
    testing_data::MakeLogbook(f.dir.File("log.mdb"));
    services::ScriptedUiPort ui;
    ui.strict = true;
    ui.echo = false;
    spread::AppState state{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
    state.logbookDb = data::Database::Open(f.dir.File("log.mdb"));
    state.prefs.CertMissing = true;
    astro::FixedClock clock;
    reports::ReportContext context{state, clock};

    reports::frmUserM window(context);
    window.Window().ReportNumber = 7;
    window.Form_Load();
    EXPECT_TRUE(window.chkMissing->isVisibleTo(&window));
    EXPECT_TRUE(window.chkMissing->isChecked());
    EXPECT_EQ(window.Surface().PageCount(), 1);

    QTest::mouseClick(window.chkMissing, Qt::LeftButton);
    EXPECT_FALSE(window.Window().chkMissing);
    EXPECT_FALSE(state.prefs.CertMissing);
    EXPECT_EQ(data::SettingsStore(f.dir.File("s.ini")).Get("CertMissing", ""), "False");
    EXPECT_TRUE(ui.shown.empty());

    reports::frmUserM text(context);
    text.Window().ReportNumber = 10;
    text.Form_Load();
    EXPECT_FALSE(text.chkMissing->isVisibleTo(&text));
}

} // namespace
