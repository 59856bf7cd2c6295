// The telescope on the main window against the real indiserver and Debian's
// indi_simulator_telescope (skipped when the server is not installed): the chooser over the
// INDI server and Alpaca discovery of the settings, the toggle and the tools it opens, the
// position window, the control panel and the solar-system Goto. With SELVANE_SCREENSHOT_DIR
// naming a folder, the chooser, the open Telescope menu, the position window and the panel are
// saved there as scope-chooser.png, scope-menu-enabled.png, scope-position.png and
// scope-panel.png.

#include "app/ScopeWiring.h"
#include "data/Preferences.h"
#include "data/SettingsStore.h"
#include "scope/Speech.h"
#include "scope/ui/frmChooser.h"
#include "scope/ui/frmScopePanel.h"
#include "scope/ui/frmScopePos.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/ui/GridModel.h"
#include "spread/ui/frmMainScreen.h"

#include "../scope/AlpacaServer.h"
#include "../scope/IndiSimulator.h"
#include "GuiApp.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdlib>
#include <sstream>

#include <gtest/gtest.h>

namespace {

QString ScreenshotDir()
{
    const char* folder = std::getenv("SELVANE_SCREENSHOT_DIR");
    if (!folder || !*folder)
        return {};
    QDir().mkpath(folder);
    return folder;
}

void Save(QWidget& widget, const char* name)
{
    const QString folder = ScreenshotDir();
    if (!folder.isEmpty()) {
        EXPECT_TRUE(widget.grab().save(QDir(folder).filePath(name))) << name;
    }
}

bool Enabled(spread::frmMainScreen& window, const char* key)
{
    const QAction* tool = window.Tool(key);
    return tool && tool->isEnabled();
}

std::vector<std::string> Titles(const std::vector<services::Message>& shown)
{
    std::vector<std::string> titles;
    for (const services::Message& m : shown)
        titles.push_back(m.ShortMessage);
    return titles;
}

TEST(ScopeWiring, ChooserToggleToolsPositionAndPanelAgainstTheSimulator)
{
    if (!inditest::ServerInstalled())
        GTEST_SKIP() << "indiserver and indi_simulator_telescope are not installed";
    App();
    inditest::IndiSimulator simulator;
    ASSERT_TRUE(simulator.Start());
    alpaca_test::AlpacaServer alpaca({{"GET configureddevices", {alpaca_test::ValueJson(R"([
        {"DeviceName":"Observatory Mount","DeviceType":"Telescope","DeviceNumber":0,"UniqueID":"m"}
    ])")}}});
    alpaca_test::DiscoveryResponder responder(
        {R"({"AlpacaPort": )" + std::to_string(alpaca.Port()) + "}"});

    QTemporaryDir folder;
    TestPort ui;
    const std::string settingsFile = folder.filePath("s.ini").toStdString();
    spread::AppState state{ui, data::ProgramDir{folder.path().toStdString()},
                           data::SettingsStore(settingsFile)};
    state.prefs.indiserver = simulator.Address();
    state.prefs.alpacadiscovery = responder.Address();
    state.prefs.Plat = 51.4769;
    state.prefs.ScopeDelay1 = 1;
    const astro::FixedClock clock{{2024, 1, 15, 20, 0, 0}};
    std::ostringstream heard;
    scope::StreamSpeech speech(heard, false);
    spread::frmMainScreen window(state, ui, {});
    const app::ScopeWiring wiring = app::WireScope(window, state, ui, clock, speech);
    wiring.ResetMenu();
    EXPECT_EQ(window.Tool("lx200enable")->text(), "Enable The Telescope");
    EXPECT_TRUE(Enabled(window, "lx200enable"));
    for (const char* key : {"cspos", "gotoobject", "sync", "sslococ", "scopepanel"})
        EXPECT_FALSE(Enabled(window, key)) << key;

    // The solar-system Goto while the telescope is not enabled keeps the old message.
    wiring.Goto({6, 0, 0}, {10, 0, 0});
    ASSERT_EQ(Titles(ui.shown), std::vector<std::string>{"Attention!"});
    ui.shown.clear();

    // Scope Setup: the chooser lists the simulator and the Alpaca device; the pick is saved.
    bool listed = false;
    QTimer::singleShot(0, [&] {
        auto* chooser = dynamic_cast<scope::ui::frmChooser*>(QApplication::activeModalWidget());
        ASSERT_NE(chooser, nullptr);
        auto* list = chooser->findChild<QListWidget*>("lstDevices");
        listed = list->count() == 2;
        EXPECT_EQ(list->count(), 2)
            << chooser->findChild<QLabel*>("lblStatus")->text().toStdString();
        for (int row = 0; row < list->count(); ++row)
            if (list->item(row)->text().startsWith("Telescope Simulator"))
                list->setCurrentRow(row);
        Save(*chooser, "scope-chooser.png");
        chooser->accept();
    });
    window.ab_ToolClick("scopesetup");
    EXPECT_TRUE(listed);
    ASSERT_EQ(state.prefs.telescopetype, simulator.Identifier());
    EXPECT_EQ(data::SettingsStore(settingsFile).Get("telescopetype", ""), simulator.Identifier());

    // The toggle opens the tools; lx200cp stays closed for this driver.
    window.ab_ToolClick("lx200enable");
    EXPECT_EQ(window.Tool("lx200enable")->text(), "Disconnect Telescope");
    for (const char* key : {"cspos", "gotoobject", "sync", "sslococ", "plotscope", "scopepanel"})
        EXPECT_TRUE(Enabled(window, key)) << key;
    EXPECT_FALSE(Enabled(window, "lx200cp"));
    ASSERT_EQ(Titles(ui.shown), std::vector<std::string>{"Connection Established"});
    ui.shown.clear();
    if (!ScreenshotDir().isEmpty()) {
        auto* menu = window.findChild<QMenu*>("Telescopeb");
        ASSERT_NE(menu, nullptr);
        window.show();
        menu->popup(window.mapToGlobal(QPoint(40, 30)));
        QTest::qWait(200);
        Save(*menu, "scope-menu-enabled.png");
        menu->hide();
    }

    // Sync on the selected row's cells: the mount reads the row's place afterwards.
    spread::Grid grid;
    grid.AppendRow("\t\t\tM42\t\t\t05 35 17.3\t-05 23 28.0\t2000.0");
    window.SetGrid(0, &grid);
    window.SetCurrTab(0);
    window.grdObject(0).setCurrentIndex(window.Model(0).index(0, 4));
    ASSERT_EQ(window.SelectedRow(), 1);
    window.ab_ToolClick("sync");
    ASSERT_EQ(Titles(ui.shown), std::vector<std::string>{"Scope Aligned"});
    ui.shown.clear();

    // The position window fills its four labels.
    window.ab_ToolClick("cspos");
    auto* position = window.findChild<scope::ui::frmScopePos*>("frmScopePos");
    ASSERT_NE(position, nullptr);
    EXPECT_EQ(position->windowTitle().toStdString(), simulator.Identifier() + " Current Position");
    for (QLabel* label : {position->lblRa, position->lblDec, position->lblAlt, position->lblAzm})
        EXPECT_FALSE(label->text().isEmpty()) << label->objectName().toStdString();
    EXPECT_TRUE(position->lblRa->text().startsWith("5h 35m 1"))
        << position->lblRa->text().toStdString();
    EXPECT_TRUE(position->lblDec->text().startsWith("-5h 23m 2"))
        << position->lblDec->text().toStdString();
    Save(*position, "scope-position.png");
    EXPECT_TRUE(ui.shown.empty()) << ui.shown[0].LongMessage;

    // The panel reads the position on a timer; a lost mount empties the labels and stops the
    // timer after one fault, until the next Refresh.
    window.ab_ToolClick("scopepanel");
    auto* panel = window.findChild<scope::ui::frmScopePanel*>("frmScopePanel");
    ASSERT_NE(panel, nullptr);
    EXPECT_FALSE(panel->lblDec->text().isEmpty());
    EXPECT_TRUE(panel->TimerActive());
    Save(*panel, "scope-panel.png");
    EXPECT_TRUE(ui.shown.empty());
    simulator.Stop();
    QTest::qWait(1500); // one tick of ScopeDelay1 = 1 s, and time for a second one
    EXPECT_FALSE(panel->TimerActive());
    EXPECT_TRUE(panel->lblDec->text().isEmpty());
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_NE(ui.shown[0].LongMessage.find("frmScopePanel.Refresh"), std::string::npos);
    QTest::qWait(1200);
    EXPECT_EQ(ui.shown.size(), 1u);
    ui.shown.clear();

    // Disconnecting closes the tools again.
    window.ab_ToolClick("lx200enable");
    EXPECT_EQ(window.Tool("lx200enable")->text(), "Enable The Telescope");
    EXPECT_FALSE(Enabled(window, "cspos"));
    EXPECT_FALSE(Enabled(window, "scopepanel"));
    panel->close();
    position->close();
}

} // namespace
