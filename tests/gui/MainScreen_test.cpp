#include "spread/ui/frmMainScreen.h"

#include "services/ErrorLog.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/LoadTheGrid.h"
#include "spread/ui/BusyUiPort.h"
#include "spread/ui/GridModel.h"

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

// The program's port with its real busy window and progress bar; only the modal message and
// input windows, which would wait for a person, are replaced by a record and a queue.
class TestPort : public spread::BusyUiPort
{
public:
    std::vector<services::Message> shown;
    std::deque<std::string> inputAnswers;
    std::vector<std::string> prompts;

    void DisplayMessage(const services::Message& message) override { shown.push_back(message); }
    bool Ask(const std::string& question, const std::string&, bool) override
    {
        ADD_FAILURE() << "Unexpected question: " << question;
        return false;
    }
    std::string InputBox(const std::string& prompt, const std::string& title,
                         const std::string& defaultText) override
    {
        prompts.push_back(prompt + "|" + title + "|" + defaultText);
        if (inputAnswers.empty()) {
            ADD_FAILURE() << "Unanswered input box: " << prompt;
            return {};
        }
        std::string answer = inputAnswers.front();
        inputAnswers.pop_front();
        return answer;
    }
};

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

TEST(frmMainScreen, BusyWindowClickCancelsALongLoadAndKeepsTheRows)
{
    Screen s;
    s.window->show();
    spread::Grid grid;
    constexpr int total = 200000;
    s.ui.Busy(services::BusyKind::Loading);
    s.ui.Progress(total);
    EXPECT_FALSE(s.window->isEnabled());
    EXPECT_TRUE(s.ui.BusyWindow().isVisible());
    EXPECT_TRUE(s.window->tolProgress->isVisible());
    // The click arrives through the event pump, as a person's click would, after a few rows.
    int pumpsBeforeClick = 3;
    bool cancelled = false;
    int row = 0;
    while (row < total && !cancelled) {
        grid.AppendRow(" \t \t \tNGC " + std::to_string(++row));
        s.ui.Step(row);
        if (row % 10 == 0) {
            if (--pumpsBeforeClick == 0)
                QTimer::singleShot(0, &s.ui.BusyWindow(),
                                   [&] { QTest::mouseClick(&s.ui.BusyWindow(), Qt::LeftButton); });
            cancelled = s.ui.Pump();
        }
    }
    s.ui.EndBusy();
    EXPECT_TRUE(cancelled);
    EXPECT_GE(grid.MaxRows(), 30);
    EXPECT_LT(grid.MaxRows(), total);
    EXPECT_EQ(grid.Text(grid.MaxRows(), 4), "NGC " + std::to_string(grid.MaxRows()));
    EXPECT_TRUE(s.window->isEnabled());
    EXPECT_FALSE(s.ui.BusyWindow().isVisible());
    EXPECT_FALSE(s.window->tolProgress->isVisible());

    // The next load starts without the old click.
    s.ui.Busy(services::BusyKind::Loading);
    EXPECT_FALSE(s.ui.Pump());
    s.ui.EndBusy();
}

// The real load of the full edition, stopped by one click on the busy window: the rows loaded
// so far stay, formatted, and the window is usable again.
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
        disabledWhileLoading = !s.window->isEnabled() && s.ui.BusyWindow().isVisible();
        QTest::mouseClick(&s.ui.BusyWindow(), Qt::LeftButton);
    });
    spread::GridLoad load;
    spread::LoadTheGrid(s.state, s.state.grids[0], spread::LoadMode::NoBuild, load, s.clock);
    const int total = static_cast<int>(
        s.state.objectDb->OpenRecordset("Select Count(*) From SelvaneTable", data::Snapshot)
            .Fields(0)
            .Long());
    const spread::Grid& grid = s.state.grids[0];
    EXPECT_TRUE(disabledWhileLoading);
    EXPECT_TRUE(load.cancelled);
    EXPECT_GT(grid.MaxRows(), 0);
    EXPECT_LT(grid.MaxRows(), total);
    EXPECT_EQ(grid.Header(4), "ObjectID"); // formatted like a full load
    EXPECT_FALSE(s.state.QueryRunning);
    EXPECT_TRUE(s.window->isEnabled());
    EXPECT_FALSE(s.ui.BusyWindow().isVisible());
    s.window->RefreshGrid(0);
    EXPECT_EQ(s.window->Model(0).rowCount(), grid.MaxRows());
}

TEST(frmMainScreen, TabCaptionRenameByRightClick)
{
    struct Row
    {
        int tab;
        std::deque<std::string> answers;
        const char* caption; // the tab's text afterwards
        const char* saved;   // the setting afterwards, "" when none was written
        const char* proposal;
    };
    const Row rows[] = {
        {2,
         {"Galaxies"},
         "Galaxies",
         "Galaxies",
         "Enter a Caption for this Tab|Selvane 2003|Selvane3"},
        {0,
         {"It's M31 & co"},
         "It's M31 & co",
         "It's M31 & co",
         "Enter a Caption for this Tab|Selvane 2003|Selvane1"},
        {4, {""}, "Selv 5", "", "Enter a Caption for this Tab|Selvane 2003|Selvane5"},
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
            EXPECT_EQ(s.ui.prompts[0], row.proposal);
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

// Not a check: with SELVANE_SCREENSHOTS naming a folder, saves the main window in day and in
// night vision there, for a person to look at.
TEST(frmMainScreen, Screenshots)
{
    const QString folder = qEnvironmentVariable("SELVANE_SCREENSHOTS");
    if (folder.isEmpty())
        GTEST_SKIP() << "SELVANE_SCREENSHOTS not set";
    Screen s;
    spread::Grid grid;
    const char* headers[] = {
        "pln",     "img",         "obs",     "ObjectID",   "Other ID", "Type",     "R.A.",
        "Dec.",    "Epoch",       "Alt",     "Azm",        "Rise",     "Transit",  "Set",
        "Const",   "Size",        "Mag 1",   "Mag 2",      "mcode",    "Gal Lon",  "Gal Lat",
        "Pos Ang", "Sep",         "Catalog", "Image Path", "Herschel", "RecordID", "Sky#",
        "Ura#",    "Millennium#", "Desc"};
    for (int col = 1; col <= spread::kGridCols; ++col)
        grid.SetHeader(col, headers[col - 1]);
    const char* rows[] = {
        "X\tX\t \tM 1\tNGC 1952\tSNR\t05 34 31.9\t+22 00 "
        "52.0\t2000\t+35.20\t101.33\t16:02\t23:31\t07:00\tTau\t6.00\t8.40\t0.00\t "
        "\t184.6\t-5.8\t0.0\t0.0\t2000\t \t \t2085\t5\t135\t136\tCrab Nebula",
        " \tX\tX\tM 31\tNGC 224\tGx\t00 42 44.3\t+41 16 "
        "09.0\t2000\t+62.81\t68.10\t12:11\t19:40\t03:09\tAnd\t178.00\t3.40\t0.00\tSb\t121.2\t-21."
        "6\t35.0\t0.0\t2000\t \tH 1\t1\t4\t60\t104\tAndromeda Galaxy",
        " \t \t \tM 42\tNGC 1976\tEN+*\t05 35 17.3\t-05 23 "
        "28.0\t2000\t+12.40\t130.92\t18:30\t23:33\t04:36\tOri\t85.00\t4.00\t0.00\t "
        "\t209.0\t-19.4\t0.0\t0.0\t2000\t \t \t3\t11\t225\t258\tOrion Nebula",
        " \t \tX\tM 45\tMel 22\tOC\t03 47 00.0\t+24 07 "
        "00.0\t2000\t+51.07\t92.61\t14:20\t21:45\t05:10\tTau\t110.00\t1.20\t0.00\t "
        "\t166.6\t-23.5\t0.0\t0.0\t2000\t \t \t5\t4\t132\t137\tPleiades",
        " \t \t \tM 57\tNGC 6720\tPN\t18 53 35.1\t+33 01 "
        "45.0\t2000\t-4.12\t320.44\t09:20\t17:46\t02:13\tLyr\t1.40\t8.80\t15.30\t "
        "\t63.2\t13.9\t0.0\t0.0\t2000\t \tH 13\t6720\t8\t117\t1153\tRing Nebula",
    };
    for (const char* row : rows)
        grid.AppendRow(row);
    for (int col = 1; col <= spread::kGridCols; ++col)
        grid.SetColWidth(col, std::max(grid.MaxTextColWidth(col) + 1, 4.0));
    grid.SetTag("All Messier Objects");
    s.window->SetGrid(0, &grid);
    s.window->lblDate->setText("Date: 11/21/26");
    s.window->lblTime->setText("Time: 22:00");
    s.window->lblLat->setText("Lat: 46\u00b030'00\"");
    s.window->lblLong->setText("Lon: 90\u00b012'00\"  Time Zone : 6");
    s.window->resize(1380, 820);
    s.window->show();
    QApplication::processEvents();
    s.window->grab().save(folder + "/main-day.png");
    s.window->Tool("redmode")->trigger();
    QApplication::processEvents();
    s.window->grab().save(folder + "/main-night.png");
    s.window->Tool("redmode")->trigger();
}

} // namespace
