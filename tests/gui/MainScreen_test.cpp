#include "spread/ui/frmMainScreen.h"

#include "services/ErrorLog.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/LoadTheGrid.h"
#include "spread/ui/BusyUiPort.h"
#include "spread/ui/GridModel.h"
#include "tests/TestFiles.h"

#include <QAction>
#include "GuiApp.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolBar>

#include <deque>
#include <fstream>
#include <set>

#include <gtest/gtest.h>

namespace {

// A window over a temporary program folder and its own settings file.
struct Screen
{
    bool appReady = (App(), true);
    QTemporaryDir dir;
    TestPort ui;
    spread::AppState state{ui, data::ProgramDir{Dir()},
                           data::SettingsStore(Dir() / "Selvane2000.ini")};
    int saveColumns = 0;
    int loadForm = 0;
    std::vector<std::string> loads;
    astro::FixedClock clock{{2026, 11, 21, 23, 5, 59}};
    std::unique_ptr<spread::frmMainScreen> window;

    Screen()
    {
        App();
        spread::MainScreenHooks hooks;
        hooks.LoadForm = [this] { ++loadForm; };
        hooks.SaveTheColumns = [this] { ++saveColumns; };
        hooks.LoadTheGrid = [this](const std::string& mode) { loads.push_back(mode); };
        hooks.computerClock = &clock;
        window = std::make_unique<spread::frmMainScreen>(state, ui, hooks);
    }
    ~Screen() { window.reset(); }
    std::filesystem::path Dir() const { return dir.path().toStdString(); }
    std::string Setting(const std::string& key) { return state.settings.Get(key, "<none>"); }
    std::string LastText() const { return ui.shown.empty() ? "" : ui.shown.back().LongMessage; }
};

void CollectMenuActions(const QMenu& menu, std::set<QString>& keys)
{
    for (QAction* action : menu.actions()) {
        if (action->menu())
            CollectMenuActions(*action->menu(), keys);
        else if (!action->objectName().isEmpty())
            keys.insert(action->objectName());
    }
}

TEST(frmMainScreen, EveryKeyIsReachableFromAMenuTheToolBarOrTheGridMenu)
{
    Screen s;
    std::set<QString> reachable;
    for (QAction* top : s.window->menuBar()->actions())
        if (top->menu())
            CollectMenuActions(*top->menu(), reachable);
    CollectMenuActions(s.window->gridmenu(), reachable);
    for (const QToolBar* bar : s.window->findChildren<QToolBar*>())
        if (bar->objectName() != "barShortCuts")
            for (QAction* action : bar->actions())
                reachable.insert(action->objectName());
    for (const auto& tool : spread::CommandTable())
        EXPECT_TRUE(reachable.count(QString::fromUtf8(tool.key.data(), tool.key.size())))
            << tool.key;
}

// No click ends the program: every tool, on a grid tab and on an image tab, returns with at
// most one message and the window still open.
TEST(frmMainScreen, NoClickEndsTheProgram)
{
    for (int tab : {0, 6}) {
        SCOPED_TRACE("tab " + std::to_string(tab));
        Screen s;
        s.window->show();
        s.window->SetCurrTab(tab);
        for (const auto& tool : spread::CommandTable()) {
            if (tool.key == "exit")
                continue;
            SCOPED_TRACE(std::string(tool.key));
            const std::size_t before = s.ui.shown.size();
            // A preference window waits for its Cancel, as a person would give it.
            QTimer::singleShot(0, [] {
                if (QWidget* modal = QApplication::activeModalWidget())
                    modal->close();
            });
            s.ui.saveAnswers.assign(1, ""); // a save dialogue is cancelled
            s.window->Tool(std::string(tool.key))->trigger();
            EXPECT_LE(s.ui.shown.size(), before + 1);
        }
        EXPECT_TRUE(s.window->isVisible());
        EXPECT_FALSE(s.window->ClosingDown());
        s.window->Night().SetNightVision(false);
    }
}

TEST(frmMainScreen, TabGuardThroughTheWindow)
{
    struct Row
    {
        const char* key;
        int tab;
        const char* message;
    };
    const Row rows[] = {
        {"findobject", 5, "Please select a spreadsheet tab first"},
        {"scds", 6, "Please select a spreadsheet tab first"},
        {"findobject", 2, "This command is not available in this version."},
        {"tolSpread", 5, "Please specify a spreadsheet tab first"},
        {"tolSpread", 1, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.key) + " on tab " + std::to_string(row.tab));
        Screen s;
        s.window->SetCurrTab(row.tab);
        s.window->Tool(row.key)->trigger();
        EXPECT_EQ(s.LastText(), row.message);
        if (*row.message) {
            EXPECT_EQ(s.ui.shown.back().kind, "I");
        }
    }
}

// The real load of the full edition, stopped by one click on the busy window: the rows loaded
// so far stay, formatted, the window is usable again, and the next load starts without the old
// click.
TEST(frmMainScreen, BusyWindowClickCancelsTheFullEditionLoad)
{
    const std::filesystem::path fullEdition =
        std::filesystem::path(SELVANE_RESOURCE_DIR) / "SelvPro708000.mdb";
    ASSERT_TRUE(std::filesystem::exists(fullEdition))
        << fullEdition << " is made by the selvane_databases target";
    Screen s;
    s.window->show();
    data::OpenOptions readOnly;
    readOnly.readOnly = true;
    s.state.objectDb = data::Database::Open(fullEdition, readOnly);
    s.state.SQL = "Select * From SelvaneTable";
    s.state.CurrTab = 0;
    bool disabledWhileLoading = false;
    QTimer::singleShot(0, &s.ui.BusyWindow(), [&] {
        disabledWhileLoading = !s.window->isEnabled() && s.ui.BusyWindow().isVisible() &&
                               s.window->tolProgress->isVisible();
        QTest::mouseClick(&s.ui.BusyWindow(), Qt::LeftButton);
    });
    spread::GridLoad load;
    spread::LoadTheGrid(s.state, s.state.grids[0], spread::LoadMode::NoBuild, load, s.clock);
    const int total = static_cast<int>(
        s.state.objectDb->OpenRecordset("Select Count(*) From SelvaneTable", data::Snapshot)
            .Fields(0)
            .Long());
    const spread::Grid& grid = s.state.grids[0];
    EXPECT_TRUE(disabledWhileLoading && load.cancelled);
    EXPECT_GT(grid.MaxRows(), 0);
    EXPECT_LT(grid.MaxRows(), total);
    EXPECT_EQ(grid.Header(4), "ObjectID"); // formatted like a full load
    EXPECT_TRUE(s.window->isEnabled() && !s.state.QueryRunning);
    EXPECT_FALSE(s.ui.BusyWindow().isVisible() || s.window->tolProgress->isVisible());
    s.window->RefreshGrid(0);
    EXPECT_EQ(s.window->Model(0).rowCount(), grid.MaxRows());
    s.ui.Busy(services::BusyKind::Loading);
    EXPECT_FALSE(s.ui.Pump());
    s.ui.EndBusy();
}

TEST(frmMainScreen, TabCaptionRenameByRightClick)
{
    struct Row
    {
        int tab;
        std::deque<std::string> answers;
        const char* caption;  // the tab's text afterwards
        const char* saved;    // the setting afterwards, "" when none was written
        const char* proposal; // the caption proposed in the input box, "" when none is asked
    };
    const Row rows[] = {
        {2, {"Galaxies"}, "Galaxies", "Galaxies", "Selvane3"},
        {0, {"It's M31 & co"}, "It's M31 & co", "It's M31 & co", "Selvane1"},
        {4, {""}, "Selv 5", "", "Selvane5"},
        {5, {}, "Image Gallery", "", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("tab " + std::to_string(row.tab));
        Screen s;
        s.window->show();
        s.ui.inputAnswers = row.answers;
        QTabBar* bar = s.window->sstab1().tabBar();
        QTest::mouseClick(bar, Qt::RightButton, {}, bar->tabRect(row.tab).center());
        EXPECT_EQ(s.window->sstab1().tabText(row.tab).toStdString(), row.caption);
        if (*row.proposal) {
            ASSERT_EQ(s.ui.prompts.size(), 1u);
            EXPECT_EQ(s.ui.prompts[0],
                      std::string("Enter a Caption for this Tab|Selvane 2003|") + row.proposal);
        } else {
            EXPECT_TRUE(s.ui.prompts.empty());
        }
        const std::string key = "tab" + std::to_string(row.tab + 1) + "caption";
        EXPECT_EQ(s.Setting(key), *row.saved ? row.saved : "<none>");
    }
}

TEST(frmMainScreen, CaptionsComeFromTheSettingsWithDefaults)
{
    Screen s;
    s.state.settings.Save("tab2caption", "Tonight");
    s.window->GetTabCaptions();
    const char* expected[] = {"Selv 1", "Tonight",       "Selv 3",    "Selv 4",
                              "Selv 5", "Image Gallery", "Log Images"};
    for (int tab = 0; tab < 7; ++tab)
        EXPECT_EQ(s.window->sstab1().tabText(tab).toStdString(), expected[tab]) << tab;
}

TEST(frmMainScreen, RealTimeModeReloadsAtTheRefreshTime)
{
    struct Row
    {
        const char* UseRealTime;
        const char* RefreshTime;
        int intervalMs;
        std::vector<std::string> loads;
        const char* PDate;
        const char* lblTime;
    };
    const Row rows[] = {
        {"Y", "60", 60000, {"NO BUILD"}, "11/21/26", "Time: 23:05"},
        {"Y", "0", 0, {}, "", "Time: 11:05:59 PM"},
        {"N", "60", 60000, {}, "", "Time: "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.UseRealTime) + " every " + row.RefreshTime);
        Screen s;
        s.state.prefs.UseRealTime = row.UseRealTime;
        s.state.prefs.RefreshTime = row.RefreshTime;
        s.state.RealTimeRearm = true;
        s.window->Timer2_Timer();
        EXPECT_EQ(s.window->RealTime().timer1IntervalMs, row.intervalMs);
        s.window->Timer3_Timer();
        s.window->Timer1_Timer();
        EXPECT_EQ(s.loads, row.loads);
        EXPECT_EQ(s.state.prefs.PDate, row.PDate);
        EXPECT_EQ(s.window->lblTime->text().toStdString(), row.lblTime);
    }
}

bool SamePalette(const QPalette& a, const QPalette& b)
{
    for (int group = 0; group < QPalette::NColorGroups; ++group)
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            const auto g = static_cast<QPalette::ColorGroup>(group);
            const auto r = static_cast<QPalette::ColorRole>(role);
            if (a.brush(g, r) != b.brush(g, r))
                return false;
        }
    return true;
}

TEST(NightVision, RoundTripRestoresThePaletteExactly)
{
    Screen s;
    spread::Grid grid;
    grid.AppendRow(" \t \t \tM31");
    s.window->SetGrid(0, &grid);
    const QPalette day = QApplication::palette();
    const QModelIndex cell = s.window->Model(0).index(0, 3);
    const QVariant dayBack = cell.data(Qt::BackgroundRole);

    s.window->show();
    s.window->Tool("redmode")->trigger();
    QApplication::processEvents();
    EXPECT_TRUE(s.window->Night().NightMode());
    EXPECT_FALSE(SamePalette(QApplication::palette(), day));
    EXPECT_EQ(QApplication::palette().color(QPalette::Button), QColor(128, 0, 0));
    EXPECT_EQ(cell.data(Qt::BackgroundRole).value<QColor>(), spread::NightGridBack);
    EXPECT_EQ(s.window->palette().color(QPalette::Window), QColor(128, 0, 0));

    s.window->Tool("redmode")->trigger();
    EXPECT_FALSE(s.window->Night().NightMode());
    EXPECT_TRUE(SamePalette(QApplication::palette(), day));
    EXPECT_EQ(cell.data(Qt::BackgroundRole), dayBack);
}

TEST(NightVision, OffWithoutOnAndOnTwiceKeepTheDayPalette)
{
    Screen s;
    const QPalette day = QApplication::palette();
    spread::NightVision night;
    night.SetNightVision(false);
    EXPECT_TRUE(SamePalette(QApplication::palette(), day));
    night.SetNightVision(true);
    night.SetNightVision(true); // must not take the night colours as the ones to go back to
    night.SetNightVision(false);
    EXPECT_TRUE(SamePalette(QApplication::palette(), day));
}

TEST(frmMainScreen, ExitThenCloseSavesOnceAndRestoresTheDay)
{
    Screen s;
    s.window->show();
    const QPalette day = QApplication::palette();
    s.window->Tool("redmode")->trigger();
    s.window->Tool("exit")->trigger();
    s.window->close();
    EXPECT_EQ(s.saveColumns, 1);
    EXPECT_EQ(s.Setting("major"), "1");
    EXPECT_TRUE(s.window->ClosingDown());
    EXPECT_FALSE(s.window->isVisible());
    EXPECT_TRUE(SamePalette(QApplication::palette(), day));
    EXPECT_TRUE(std::filesystem::exists(s.Dir() / "UserLayout.tb2"));
}

TEST(frmMainScreen, RebuildToolbarIconsDropsTheLayoutForGood)
{
    Screen s;
    for (const char* name : {"UserLayout.tb2", "Skybar.lyt"})
        std::ofstream(s.Dir() / name) << "old";
    s.window->Tool("rtool")->trigger();
    EXPECT_EQ(s.LastText(), "Please restart Selvane 2003");
    EXPECT_EQ(s.ui.shown.back().ShortMessage, "Toolbar Icons have been reset");
    EXPECT_FALSE(std::filesystem::exists(s.Dir() / "Skybar.lyt"));
    s.window->CloseApplication();
    EXPECT_FALSE(std::filesystem::exists(s.Dir() / "UserLayout.tb2"));
    EXPECT_EQ(s.saveColumns, 2);
}

TEST(frmMainScreen, StartKeepsTheSplashUpAndBeginsANewErrorLog)
{
    Screen s;
    std::ofstream(s.Dir() / services::ErrorLogFileName) << "last session";
    QElapsedTimer clock;
    clock.start();
    s.window->Form_Load("1.0.0");
    EXPECT_GE(clock.elapsed(), 1000);
    EXPECT_EQ(s.loadForm, 1);
    EXPECT_TRUE(s.window->isVisible());
    EXPECT_FALSE(std::filesystem::exists(s.Dir() / services::ErrorLogFileName));
}

} // namespace

TEST(frmMainScreen, ExportKeysWriteTheCurrentTabsList)
{
    Screen s;
    spread::Grid& grid = s.state.grids[2];
    grid.SetMaxRows(1);
    grid.Clip(1, " \t \t \tNGC 224\tM 31\tGx\t00 42 44.3\t+41 16 09.0");
    s.window->SetCurrTab(2);
    const std::filesystem::path book = s.Dir() / "tab.xlsx", page = s.Dir() / "tab.htm",
                                list = s.Dir() / "tab.skylist";
    s.ui.saveAnswers = {book.string(), page.string(), (s.Dir() / "tab").string()};
    for (const char* key : {"exportexcel", "exporthtml", "skylist"})
        s.window->Tool(key)->trigger();
    EXPECT_GT(std::filesystem::file_size(book), 1000u);
    const std::string pageText = test_files::ReadText(page);
    const std::string skyText = test_files::ReadText(list);
    EXPECT_NE(pageText.find("<td>NGC 224</td><td>M 31</td>"), std::string::npos);
    EXPECT_NE(skyText.find("CatalogNumber=NGC 224\n   CatalogNumber=M 31\n"), std::string::npos);
    EXPECT_EQ(s.LastText(), "Finished exporting file to " + list.string());

    s.window->SetCurrTab(5);
    s.window->Tool("exportexcel")->trigger();
    EXPECT_EQ(s.LastText(), "Please select a spreadsheet tab first");
}
