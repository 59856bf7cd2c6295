// The Sun and Moon windows from the main window's keys, Goto without a telescope, and the
// status band's phase icon, on the offscreen platform. With SELVANE_SCREENSHOTS naming a
// folder, the windows are saved there as sun.png and moon.png, and the status band's icon at
// four ages as moon-icons.png.

#include "app/SolarSystemWiring.h"
#include "astro/ui/frmMoon.h"
#include "astro/ui/frmSun.h"
#include "spread/AppState.h"
#include "spread/ui/frmMainScreen.h"

#include "GuiApp.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

#include <gtest/gtest.h>

namespace {

struct Session
{
    Session()
    {
        for (int i = 1; i <= 8; ++i) {
            const QString name = QString("moon%1.ico").arg(i, 2, 10, QChar('0'));
            QFile::copy(QString(SELVANE_SOURCE_RESOURCES) + "/" + name, folder.filePath(name));
        }
        // Greenwich on a winter evening of 2024, 24-hour times.
        state.prefs.UseRealTime = "N";
        state.prefs.PDate = "2024-01-15";
        state.prefs.Ptime = "20:00";
        state.prefs.Plat = 51.4769;
        state.prefs.PLon = 0;
        state.prefs.PTz = 0;
        state.prefs.PStd = "S";
        state.prefs.timesAMPM = false;
    }

    QApplication& app = App();
    QTemporaryDir folder;
    TestPort ui;
    spread::AppState state{ui, data::ProgramDir{folder.path().toStdString()},
                           data::SettingsStore(folder.filePath("s.ini").toStdString())};
    const astro::FixedClock clock{{2024, 1, 15, 20, 0, 0}};
};

const char* ScreenshotFolder()
{
    const char* folder = std::getenv("SELVANE_SCREENSHOTS");
    return folder && *folder ? folder : nullptr;
}

QString Text(QWidget& window, const char* name)
{
    auto* label = window.findChild<QLabel*>(name);
    return label ? label->text() : QString("<no %1>").arg(name);
}

TEST(SolarSystemWiring, SunAndMoonWindowsAndGoto)
{
    Session s;
    spread::frmMainScreen window(s.state, s.ui, {});
    app::WireSolarSystem(window, s.state, s.ui, s.clock);

    window.ab_ToolClick("athesun");
    auto* sun = window.findChild<astro::ui::frmSun*>("athesun");
    ASSERT_NE(sun, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(sun));
    EXPECT_EQ(sun->windowTitle(), "Sun");
    EXPECT_TRUE(Text(*sun, "lblDistance").startsWith("0.98"));
    EXPECT_TRUE(Text(*sun, "lblSunrise").startsWith("0")) << Text(*sun, "lblSunrise").toStdString();
    EXPECT_TRUE(Text(*sun, "lblDark").startsWith("Dark from 18:"))
        << Text(*sun, "lblDark").toStdString();
    EXPECT_TRUE(Text(*sun, "lblTransit").startsWith("12:0"));
    if (const char* folder = ScreenshotFolder()) {
        QDir().mkpath(folder);
        EXPECT_TRUE(sun->grab().save(QDir(folder).filePath("sun.png")));
    }
    QTest::mouseClick(sun->cmdGoto, Qt::LeftButton);
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].ShortMessage, "Attention!");

    window.ab_ToolClick("athemoon");
    auto* moon = window.findChild<astro::ui::frmMoon*>("athemoon");
    ASSERT_NE(moon, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(moon));
    EXPECT_EQ(Text(*moon, "lblNextFull").left(10), "2024-01-25");
    EXPECT_EQ(Text(*moon, "lblNextNew").left(10), "2024-02-09");
    EXPECT_FALSE(moon->findChild<QLabel*>("imgPhase")->pixmap().isNull());
    EXPECT_FALSE(Text(*moon, "lblMoonrise").isEmpty());
    if (const char* folder = ScreenshotFolder()) {
        EXPECT_TRUE(moon->grab().save(QDir(folder).filePath("moon.png")));
    }
    // A second click shows the same window again, for the clock as it is now.
    s.state.prefs.PDate = "2024-01-25";
    window.ab_ToolClick("athemoon");
    EXPECT_EQ(window.findChildren<QWidget*>("athemoon").size(), 1);
    EXPECT_EQ(Text(*moon, "lblNextFull").left(10), "2024-01-25");
    EXPECT_EQ(Text(*moon, "lblNextNew").left(10), "2024-02-09");
    EXPECT_EQ(s.ui.shown.size(), 1u);
}

TEST(SolarSystemWiring, PhaseIconFollowsTheDate)
{
    Session s;
    spread::frmMainScreen window(s.state, s.ui, {});
    app::WireSolarSystem(window, s.state, s.ui, s.clock);
    auto* icon = window.statusBar()->findChild<QLabel*>("imgMoonPhase");
    ASSERT_NE(icon, nullptr);
    // New, waxing crescent, full and last quarter in 2024.
    const char* dates[4] = {"2024-01-11", "2024-01-14", "2024-01-25", "2024-02-02"};
    const char* tips[4] = {"0.", "3.", "14.", "22."};
    QImage sheet(360, 4 * 40, QImage::Format_ARGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (int i = 0; i < 4; ++i) {
        s.state.prefs.PDate = dates[i];
        app::UpdateMoonPhaseIcon(window, s.state, s.ui, s.clock);
        EXPECT_FALSE(icon->pixmap().isNull());
        EXPECT_TRUE(icon->toolTip().startsWith(QString("Moon's age ") + tips[i]))
            << icon->toolTip().toStdString();
        painter.drawPixmap(8, i * 40 + 8, icon->pixmap());
        painter.drawText(44, i * 40 + 24, QString(dates[i]) + "   " + icon->toolTip());
    }
    painter.end();
    if (const char* folder = ScreenshotFolder()) {
        QDir().mkpath(folder);
        EXPECT_TRUE(sheet.save(QDir(folder).filePath("moon-icons.png")));
    }
    EXPECT_TRUE(s.ui.shown.empty());
}

} // namespace
