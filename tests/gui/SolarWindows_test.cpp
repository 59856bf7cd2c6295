// The solar-system windows from the main window's keys: the summary table and a planet's
// window, for the observing clock of the settings, over the shipped Planet.dat.

#include "GuiApp.h"

#include "app/SolarSystemWiring.h"
#include "astro/ui/frmPlanets1.h"
#include "astro/ui/frmSolarSummary.h"
#include "data/ProgramDir.h"
#include "spread/AppState.h"
#include "spread/ui/frmMainScreen.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace {

const std::filesystem::path kResources = SELVANE_RESOURCE_DIR;

struct Screen
{
    bool appReady = (App(), true);
    QTemporaryDir temp;
    data::ProgramDir dir{temp.path().toStdString()};
    TestPort ui;
    spread::AppState state{ui, dir, data::SettingsStore(dir.File("Selvane2000.ini"))};
    astro::FixedClock clock{{2024, 3, 15, 22, 0, 0}};
    std::unique_ptr<spread::frmMainScreen> window;

    Screen()
    {
        for (const char* file :
             {"Planet.dat", "moon01.ico", "moon02.ico", "moon03.ico", "moon04.ico", "moon05.ico",
              "moon06.ico", "moon07.ico", "moon08.ico"})
            std::filesystem::copy_file(kResources / file, dir.File(file));
        state.prefs.UseRealTime = "N";
        state.prefs.PDate = "2024-03-15";
        state.prefs.Ptime = "22:00";
        state.prefs.Plat = 46.5;
        state.prefs.PLon = 90.2;
        state.prefs.PTz = 6;
        state.prefs.PStd = "S";
        state.prefs.timesAMPM = false;
        state.NoLoadYet = false;
        spread::MainScreenHooks hooks;
        hooks.computerClock = &clock;
        window = std::make_unique<spread::frmMainScreen>(state, ui, hooks);
        app::WireSolarSystem(*window, state, ui, clock);
    }

    void Shoot(QWidget& widget, const char* name)
    {
        if (const char* folder = std::getenv("SELVANE_SCREENSHOTS"); folder && *folder) {
            QDir().mkpath(folder);
            QApplication::processEvents();
            EXPECT_TRUE(widget.grab().save(QDir(folder).filePath(name)));
        }
    }
};

TEST(SolarWindows, PlanetWindowFromItsKey)
{
    Screen s;
    s.window->ab_ToolClick("athejupiter");
    auto* planet = s.window->findChild<astro::ui::frmPlanets1*>("frmPlanets1");
    ASSERT_NE(planet, nullptr);
    EXPECT_TRUE(planet->isVisible());
    EXPECT_EQ(planet->windowTitle(), "JUPITER");
    // Jupiter on 2024 March 16, 4h UT (astropy: 02h 47m 38s, +15.246 degrees, 5.6104 AU),
    // magnitude about -2.1.
    EXPECT_EQ(planet->lblValue[4]->text().left(8), "02h 47m ");
    EXPECT_EQ(planet->lblValue[5]->text().left(7), "+15\u00b014'");
    EXPECT_NEAR(planet->lblValue[6]->text().toDouble(), 5.6104, 0.0005);
    EXPECT_NEAR(planet->lblValue[11]->text().toDouble(), -2.1, 0.2);
    for (QLabel* value : planet->lblValue)
        EXPECT_FALSE(value->text().isEmpty()) << value->objectName().toStdString();
    s.Shoot(*planet, "planet-window.png");

    // The same window shows the next planet asked for.
    s.window->ab_ToolClick("athepluto");
    EXPECT_EQ(planet->windowTitle(), "PLUTO");
    EXPECT_EQ(s.window->findChildren<astro::ui::frmPlanets1*>().size(), 1);

    // No telescope driver exists yet: Goto says so, as the Sun's and Moon's windows do.
    QTest::mouseClick(planet->cmdGoto, Qt::LeftButton);
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_NE(s.ui.shown[0].LongMessage.find("telescope"), std::string::npos);
}

TEST(SolarWindows, SummaryFromItsKey)
{
    Screen s;
    s.window->ab_ToolClick("athesummary");
    auto* summary = s.window->findChild<astro::ui::frmSolarSummary*>("frmSolarSummary");
    ASSERT_NE(summary, nullptr);
    EXPECT_TRUE(summary->isVisible());
    QTableWidget* grid = summary->grdSummary;
    ASSERT_EQ(grid->rowCount(), 10);
    EXPECT_EQ(grid->item(0, 0)->text(), "Sun");
    EXPECT_EQ(grid->item(1, 0)->text(), "Moon");
    const int first = 2; // the planets follow the Sun and Moon
    EXPECT_EQ(grid->item(first, 0)->text(), "Mercury");
    EXPECT_EQ(grid->item(first + 7, 0)->text(), "Pluto");
    for (int r = 0; r < grid->rowCount(); ++r)
        for (int c = 0; c < grid->columnCount(); ++c)
            EXPECT_NE(grid->item(r, c), nullptr);
    EXPECT_TRUE(s.ui.shown.empty());
    // 2024 March 15 at 46.5 N: the night is dark; the Moon is a crescent of about 5 days.
    EXPECT_TRUE(summary->lblNight->text().startsWith("Dark from "))
        << summary->lblNight->text().toStdString();
    EXPECT_TRUE(summary->lblMoon->text().startsWith("Moon's age "))
        << summary->lblMoon->text().toStdString();
    s.Shoot(*summary, "solar-summary.png");

    // A short Planet.dat: the fault is reported once per planet and the lines are left out.
    std::filesystem::resize_file(s.dir.File("Planet.dat"), 40);
    s.window->ab_ToolClick("athesummary");
    EXPECT_EQ(grid->rowCount(), first);
    ASSERT_EQ(s.ui.shown.size(), 8u);
}

} // namespace
