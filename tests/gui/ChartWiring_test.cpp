// The star charts on the main window over a copy of the small edition and the built chart data:
// the chart of the selected object in its window, the working file DSO.DAT while it is open,
// the refusal of a second own chart, a click on the object, zoom and night colours, the finder
// and the plot window. With SELVANE_SCREENSHOT_DIR naming a folder, the windows are saved there
// as chart-m42-35.png, chart-m42-5.png, chart-night.png, chart-finder.png and
// chart-plotfile.png. The chart window alone is tried over a document filled by hand.

#include "app/ChartWiring.h"
#include "charts/ChartView.h"
#include "charts/ui/ChartWindow.h"
#include "charts/ui/frmGotoCon.h"
#include "charts/ui/frmStPlot.h"
#include "charts/ui/frmStarChart.h"
#include "data/ObjectFilter.h"
#include "services/Vb.h"
#include "spread/Grid.h"
#include "spread/ui/GridModel.h"

#include "LogbookFolder.h"

#include <QAction>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QPointer>
#include <QTextBrowser>
#include <QTimer>

#include <cmath>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using charts::ui::ChartWindow;

void Save(QWidget& widget, const char* name)
{
    const char* folder = std::getenv("SELVANE_SCREENSHOT_DIR");
    if (!folder || !*folder)
        return;
    QDir().mkpath(folder);
    Settle();
    EXPECT_TRUE(widget.grab().save(QDir(folder).filePath(name))) << name;
}

// The windows of a type among the main window's children (the chart windows have no
// meta-object of their own, so findChildren cannot tell them from other widgets).
template <typename T> QList<T*> Windows(QObject& parent)
{
    QList<T*> found;
    for (QWidget* widget : parent.findChildren<QWidget*>())
        if (auto* window = dynamic_cast<T*>(widget))
            found.push_back(window);
    return found;
}

template <typename T> T* Window(QObject& parent)
{
    const QList<T*> found = Windows<T>(parent);
    return found.isEmpty() ? nullptr : found.front();
}

struct ChartScreen : LogbookFolder
{
    // A DSO.DAT left behind by an earlier run, which the start deletes.
    bool leftover = (std::ofstream(dir.File("DSO.DAT")) << "left\n", true);
    TestPort ui;
    spread::AppState state{ui, dir, data::SettingsStore(dir.File("Selvane2000.ini"))};
    astro::FixedClock clock{{2024, 1, 15, 21, 0, 0}};
    std::unique_ptr<spread::frmMainScreen> window;

    ChartScreen() : LogbookFolder({})
    {
        state.objectDb = std::move(objectDb);
        state.logbookDb = std::move(logbookDb);
        state.logbookPath = logbookPath;
        state.NoLoadYet = false;
        state.prefs.Plat = 40.5;
        state.prefs.PLon = 74;
        state.prefs.PTz = 5;
        spread::MainScreenHooks hooks;
        hooks.computerClock = &clock;
        window = std::make_unique<spread::frmMainScreen>(state, ui, hooks);
        // The telescope stays disabled: no mount is part of these tests.
        app::ScopeWiring scope;
        scope.TelescopeEnabled = [] { return false; };
        scope.ConnectTelescope = [] { return false; };
        scope.SpeechRegistered = [] { return false; };
        app::WireCharts(*window, state, ui, clock, scope, SELVANE_RESOURCE_DIR);
        window->resize(1100, 700);
        window->show();
        state.SQL = data::ShowMessierList().SQL;
        window->LoadCurrentTab("NOBUILD");
    }
    ~ChartScreen()
    {
        window.reset();
        Settle();
    }

    void Select(const std::string& id)
    {
        const spread::Grid& grid = state.grids[0];
        for (int row = 1; row <= grid.MaxRows(); ++row)
            if (grid.Text(row, 4) == id) {
                QTableView& view = window->grdObject(0);
                view.setCurrentIndex(view.model()->index(row - 1, 3));
                return;
            }
        ADD_FAILURE() << id << " is not in the grid";
    }
    QList<ChartWindow*> Charts() const { return Windows<ChartWindow>(*window); }
    fs::path WorkFile() const { return dir.path / "DSO.DAT"; }
};

// The pixel of an object on the chart, as the engine drew it.
QPoint PixelOfObject(ChartWindow& chart, const std::string& id)
{
    for (const charts::DrawnObject& d : chart.Rendered().drawn)
        if (d.kind == charts::DrawnKind::Dso && d.id == id)
            return {int(std::lround(d.x)), int(std::lround(d.y))};
    ADD_FAILURE() << id << " is not drawn";
    return {};
}

// A pixel of the chart where a click hits nothing drawn.
QPoint EmptySky(ChartWindow& chart)
{
    const std::vector<charts::DrawnObject>& drawn = chart.Rendered().drawn;
    for (int y = 5; y < chart.Canvas()->height(); y += 7)
        for (int x = 5; x < chart.Canvas()->width(); x += 7)
            if (!charts::PickDrawnObject(drawn, x, y))
                return {x, y};
    ADD_FAILURE() << "no empty sky on the chart";
    return {};
}

// The chart of the selected object opens a window with DSO.DAT beside it; a second own chart is
// refused while it is open; a click on the object shows its info text; zoom steps the field;
// the program's night vision turns the chart red on black; closing ends the chart.
TEST(ChartWiring, OwnChartWindowOfTheSelectedObject)
{
    ChartScreen s;
    EXPECT_FALSE(fs::exists(s.WorkFile()));
    s.Select("NGC 1976");
    s.window->ab_ToolClick("chartsob");
    Settle();
    ASSERT_EQ(s.Charts().size(), 1);
    QPointer<ChartWindow> chart = s.Charts().front();
    EXPECT_TRUE(fs::exists(s.WorkFile()));
    EXPECT_TRUE(chart->isVisible());
    const charts::ChartDocument& document = chart->Document();
    ASSERT_FALSE(document.objects.empty());
    EXPECT_EQ(document.objects.front().objectId, "NGC 1976");
    EXPECT_EQ(chart->windowTitle().toStdString(),
              document.heading.empty() ? charts::kProgramTitle : document.heading);
    // M 42 at J2000 5h 35.3m, -5 deg 23', to the grid's rounding.
    EXPECT_NEAR(chart->CentreRaHours(), 5.588, 0.02);
    EXPECT_NEAR(chart->CentreDecDeg(), -5.39, 0.1);

    s.ui.shown.clear();
    s.window->ab_ToolClick("chartsob");
    Settle();
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].ShortMessage, "Invalid Usage");
    EXPECT_EQ(s.ui.shown[0].LongMessage, "Only 1 chart can be opened at a time");
    EXPECT_EQ(s.Charts().size(), 1);

    chart->SetField(35);
    QTest::mouseClick(chart->Canvas(), Qt::LeftButton, {}, PixelOfObject(*chart, "NGC 1976"));
    ASSERT_FALSE(document.infos.empty());
    QTextBrowser expected;
    expected.setHtml(QString::fromStdString(charts::InfoTextHtml(document.infos.front())));
    EXPECT_FALSE(chart->txtInfo->toPlainText().trimmed().isEmpty());
    EXPECT_EQ(chart->txtInfo->toPlainText(), expected.toPlainText());
    Save(*chart, "chart-m42-35.png");
    // A click on empty sky clears the panel.
    QTest::mouseClick(chart->Canvas(), Qt::LeftButton, {}, EmptySky(*chart));
    EXPECT_TRUE(chart->txtInfo->toPlainText().isEmpty());

    chart->cmdZoomIn->trigger();
    EXPECT_NEAR(chart->FieldDeg(), 35 / 1.5, 1e-9);
    QTest::keyClick(chart.data(), Qt::Key_Minus);
    EXPECT_NEAR(chart->FieldDeg(), 35, 1e-9);
    EXPECT_NEAR(chart->Rendered().fieldDeg, 35, 1e-9);
    chart->SetField(5);
    Save(*chart, "chart-m42-5.png");
    EXPECT_NEAR(chart->Rendered().fieldDeg, 5, 1e-9);

    s.window->ToggleNightVision();
    Settle();
    EXPECT_TRUE(chart->Night());
    chart->SetField(35);
    Save(*chart, "chart-night.png");
    s.window->ToggleNightVision();
    Settle();
    EXPECT_FALSE(chart->Night());

    // Save PNG and Save PDF write the picture to the names the save dialog gives.
    const QString png = QString::fromStdString(s.dir.File("m42.png").string());
    const QString pdf = QString::fromStdString(s.dir.File("m42.pdf").string());
    s.ui.saveAnswers = {png.toStdString(), pdf.toStdString()};
    chart->cmdSavePng->trigger();
    chart->cmdSavePdf->trigger();
    const QImage saved(png);
    EXPECT_EQ(saved.size(), chart->Canvas()->size());
    QFile written(pdf);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_TRUE(written.readAll().startsWith("%PDF-"));

    chart->close();
    Settle();
    EXPECT_FALSE(fs::exists(s.WorkFile()));
    EXPECT_TRUE(chart.isNull());
    EXPECT_TRUE(s.Charts().isEmpty());
    // With the chart closed a new one opens.
    s.window->ab_ToolClick("chartsob");
    Settle();
    EXPECT_EQ(s.Charts().size(), 1);
}

// The finder of the selected row: three panels, the first active; a click activates another.
TEST(ChartWiring, FinderOfTheSelectedRow)
{
    ChartScreen s;
    s.Select("NGC 1976");
    s.window->ab_ToolClick("mnufinder");
    Settle();
    auto* finder = Window<charts::ui::frmStarChart>(*s.window);
    ASSERT_NE(finder, nullptr);
    EXPECT_EQ(finder->txtLab[0]->text().toStdString(), " Field of View is 75 degrees.");
    QTest::mouseClick(finder->picChart[1], Qt::LeftButton);
    EXPECT_EQ(finder->model.ActivePanel(), 1);
    EXPECT_EQ(finder->txtLab[1]->palette().color(QPalette::Window), QColor(255, 255, 255));
    EXPECT_EQ(finder->txtLab[0]->palette().color(QPalette::Window), QColor(192, 192, 192));
    finder->txtZoom->setText("3");
    QTest::keyClick(finder->txtZoom, Qt::Key_Return);
    EXPECT_NEAR(finder->model.panels[1].fieldDeg, 5, 1e-9); // 15 degrees over 3
    finder->SetActiveField(15);
    finder->resize(1050, 400);
    Save(*finder, "chart-finder.png");
}

// Go to Constellation: a click on a list entry charts that constellation.
TEST(ChartWiring, GotoConstellationChartsTheEntry)
{
    ChartScreen s;
    s.window->ab_ToolClick("mnugotocon");
    Settle();
    auto* chooser = Window<charts::ui::frmGotoCon>(*s.window);
    ASSERT_NE(chooser, nullptr);
    EXPECT_EQ(chooser->Label1->text(),
              "Select a constellation from the list above to go to that constellation.");
    Click(*chooser->cboCon, "Ori-Orion");
    Settle();
    ASSERT_EQ(s.Charts().size(), 1);
    const charts::ChartDocument& document = s.Charts().front()->Document();
    EXPECT_EQ(document.constellation, "Ori");
    // Orion's label lies near 5.6 h, +6 degrees.
    EXPECT_NEAR(document.raHours, 5.6, 1.0);
    EXPECT_NEAR(document.decDeg, 6, 10);
}

// The plot window of mnuplote: entries typed and added, then charted on the own chart.
TEST(ChartWiring, PlotWindowChartsItsEntries)
{
    ChartScreen s;
    s.window->ab_ToolClick("mnuplote");
    Settle();
    auto* plot = Window<charts::ui::frmStPlot>(*s.window);
    ASSERT_NE(plot, nullptr);
    EXPECT_EQ(plot->model.ChartTarget, "D");
    plot->txtFov->setText("20");
    plot->txtObjName->setText("Orion's belt");
    plot->cboType->setCurrentIndex(6); // "07 - Dbl"
    const char* entries[][7] = {{"5", "40", "46", "-1", "56", "34", "Alnitak"},
                                {"5", "36", "13", "-1", "12", "7", "Alnilam"},
                                {"5", "32", "0", "-0", "17", "57", "Mintaka"}};
    for (const auto& entry : entries) {
        for (int i = 0; i < 6; ++i)
            plot->fields[static_cast<std::size_t>(i)]->setText(entry[i]);
        plot->txtName->setText(entry[6]);
        plot->Command1->click();
    }
    ASSERT_EQ(plot->model.List1.size(), 3u);
    Save(*plot, "chart-plotfile.png");
    plot->SSCommand4->click();
    Settle();
    ASSERT_EQ(s.Charts().size(), 1);
    const charts::ChartDocument& document = s.Charts().front()->Document();
    ASSERT_EQ(document.objects.size(), 3u);
    EXPECT_EQ(document.objects[2].objectId, "Mintaka");
    EXPECT_LT(document.objects[2].decDeg, 0); // "-0 17" stays south
    EXPECT_NEAR(document.fieldDeg, 20, 1e-9);
}

// The chart window alone over a document filled by hand: the telescope's crosshair read every
// second until a reading fails, and the object menu's Slew here, Centre and Add to plan.
TEST(ChartWindow, CrosshairAndObjectMenu)
{
    App();
    TestPort ui;
    const charts::ChartSky sky = charts::LoadChartSky(SELVANE_RESOURCE_DIR);
    auto document = std::make_shared<charts::ChartDocument>();
    document->raHours = 5.588;
    document->decDeg = -5.39;
    document->fieldDeg = 20;
    document->heading = "M 42";
    document->crosshairDelay = 1;
    charts::PlotObject m42;
    m42.raHours = 5.588;
    m42.decDeg = -5.39;
    m42.typeCode = 4;
    m42.sizeArcmin = 85;
    m42.objectId = "NGC 1976";
    document->objects = {m42};
    document->infos = {""};

    int reads = 0;
    std::vector<std::string> slews, plans;
    const charts::ChartDocument* closed = nullptr;
    charts::ui::ChartWindowHooks hooks;
    hooks.ReadTelescope = [&]() -> std::optional<std::pair<double, double>> {
        // The third reading fails, as it does for a mount switched off.
        if (++reads > 2)
            return std::nullopt;
        return std::pair{5.9, -2.0};
    };
    hooks.Slew = [&](double raHours, double decDeg, const std::string& id) {
        slews.push_back(id + " " + services::vb::Format(raHours, "0.000") + " " +
                        services::vb::Format(decDeg, "0.00"));
    };
    hooks.AddToPlan = [&](std::size_t index, const std::string& id) {
        plans.push_back(std::to_string(index) + " " + id);
    };
    hooks.Closed = [&](const charts::ChartDocument* d) { closed = d; };
    auto* chart = new ChartWindow(
        ui, [&]() -> const charts::ChartSky& { return sky; }, document, hooks);
    chart->show();

    ASSERT_TRUE(QTest::qWaitFor([&] { return reads == 2; }, 5000));
    ASSERT_TRUE(chart->Crosshair().has_value());
    EXPECT_NEAR(chart->Crosshair()->first, 5.9, 1e-12);
    ASSERT_TRUE(QTest::qWaitFor([&] { return reads == 3; }, 5000));
    EXPECT_FALSE(chart->Crosshair().has_value());
    QTest::qWait(1300);
    EXPECT_EQ(reads, 3); // no reading after the failed one

    // A right click on the object, then one entry of its menu.
    const auto choose = [&](const QString& entry) {
        QTimer::singleShot(0, [entry] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            for (QAction* action : menu->actions())
                if (action->text() == entry)
                    QTest::mouseClick(menu, Qt::LeftButton, {},
                                      menu->actionGeometry(action).center());
        });
        const QPoint at = PixelOfObject(*chart, "NGC 1976");
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, chart->Canvas()->mapToGlobal(at));
        QApplication::sendEvent(chart->Canvas(), &event);
        Settle();
    };
    chart->SetCentre(6.0, 0);
    choose("Slew here");
    EXPECT_EQ(slews, std::vector<std::string>{"NGC 1976 5.588 -5.39"});
    choose("Add to plan");
    EXPECT_EQ(plans, std::vector<std::string>{"0 NGC 1976"});
    choose("Centre");
    EXPECT_NEAR(chart->CentreRaHours(), 5.588, 1e-9);
    EXPECT_NEAR(chart->CentreDecDeg(), -5.39, 1e-9);

    chart->close();
    Settle();
    EXPECT_EQ(closed, document.get());
}

} // namespace
