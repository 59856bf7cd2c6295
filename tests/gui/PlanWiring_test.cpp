// The plan tools and the fixed lists of the main window over the built small edition: clicks in
// the plan column, the plan keys of the command bar and the short-cut band, and the lists of
// the menus, each through the window as a person reaches it.

#include "spread/ui/frmMainScreen.h"

#include "data/ObjectFilter.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/PlanFile.h"
#include "spread/ui/BusyUiPort.h"
#include "spread/ui/GridModel.h"
#include "spread/ui/FrozenTableView.h"
#include "spread/ui/ctlSpreadFilter.h"

#include "GuiApp.h"

#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QProgressBar>
#include <QSplitter>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <QAction>
#include <QMenu>

#include <cstdlib>
#include <deque>
#include <filesystem>

#include <gtest/gtest.h>

namespace {

// The window with the small edition open and its pickers filled, as after the start.
struct Screen
{
    bool appReady = (App(), true);
    QTemporaryDir dir;
    TestPort ui;
    spread::AppState state{ui, data::ProgramDir{Dir()},
                           data::SettingsStore(Dir() / "Selvane2000.ini")};
    astro::FixedClock clock{{2024, 3, 15, 22, 0, 0}};
    std::unique_ptr<spread::frmMainScreen> window;

    Screen()
    {
        data::OpenOptions readOnly;
        readOnly.readOnly = true;
        const std::filesystem::path resources(SELVANE_RESOURCE_DIR);
        state.objectDb = data::Database::Open(resources / "SelvPro13000.mdb", readOnly);
        state.logbookDb = data::Database::Open(resources / "Logbook2003-1.mdb", readOnly);
        state.prefs.Plat = 40.5;
        state.prefs.PLon = 74;
        state.prefs.PTz = 5;
        state.NoLoadYet = false;
        spread::MainScreenHooks hooks;
        hooks.computerClock = &clock;
        window = std::make_unique<spread::frmMainScreen>(state, ui, hooks);
        window->FilterPanel().ReloadLookups();
        window->resize(1300, 850);
        window->show();
    }
    ~Screen() { window.reset(); }
    std::filesystem::path Dir() const { return dir.path().toStdString(); }
    spread::Grid& Grid(int tab) { return state.grids[static_cast<std::size_t>(tab)]; }
    std::string LastText() const { return ui.shown.empty() ? "" : ui.shown.back().LongMessage; }

    // The Messier list on the current tab, as the start loads it.
    void LoadMessierList()
    {
        state.SQL = data::ShowMessierList().SQL;
        window->LoadCurrentTab("NOBUILD");
    }
    // A person's click on a cell of the current tab (grid row and column from 1).
    void ClickCell(int row, int col)
    {
        QTableView& view = window->grdObject(window->CurrTab());
        const QModelIndex index = view.model()->index(row - 1, col - 1);
        view.scrollTo(index);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(index).center());
    }
    std::vector<std::string> PlanIds(int tab)
    {
        std::vector<std::string> ids;
        for (const spread::PlanEntry& e : state.plans[static_cast<std::size_t>(tab)].entries)
            ids.push_back(e.PlanObjectID);
        return ids;
    }
};

bool ShortCutBandHolds(spread::frmMainScreen& window, const QString& text)
{
    const auto* band = window.findChild<QToolBar*>("barShortCuts");
    for (const QAction* action : band->actions())
        if (action->text() == text)
            return true;
    return false;
}

// Clicks in the plan column tag and untag rows in the order of tagging; record refuses a
// second start; mnusaveps writes a file that reads back as the same entries, and the file
// opened from the short-cut band loads exactly its rows.
TEST(PlanWiring, ClickTagsRowsAndTheSavedPlanReadsBack)
{
    Screen s;
    s.LoadMessierList();
    spread::Grid& grid = s.Grid(0);
    ASSERT_EQ(grid.MaxRows(), 110);
    const std::string m3(grid.Text(3, 4)), m31(grid.Text(31, 4)), m42(grid.Text(42, 4));

    s.ClickCell(31, 1);
    s.ClickCell(3, 1);
    s.ClickCell(42, 1);
    EXPECT_EQ(s.window->lblMisc->text(), "RECORD MODE");
    EXPECT_EQ(s.PlanIds(0), (std::vector<std::string>{m31, m3, m42}));
    EXPECT_EQ(grid.Text(3, 1), "X");
    EXPECT_EQ(s.window->Model(0).data(s.window->Model(0).index(2, 0), Qt::DisplayRole).toString(),
              "X");
    // A click on another column tags nothing; a second click on a tagged row untags it.
    s.ClickCell(5, 4);
    s.ClickCell(3, 1);
    EXPECT_EQ(grid.Text(3, 1), " ");
    EXPECT_EQ(s.PlanIds(0), (std::vector<std::string>{m31, m42}));

    s.window->ab_ToolClick("record");
    EXPECT_EQ(s.LastText(), spread::AlreadyStartedText);

    const std::string saved = (s.Dir() / "night").string(); // ".PLN" is added
    s.ui.saveAnswers.push_back(saved);
    s.window->ab_ToolClick("mnusaveps");
    EXPECT_TRUE(ShortCutBandHolds(*s.window, "night.PLN"));
    const spread::PlanRead read = spread::ReadPlanText(spread::ReadPlanBytes(saved + ".PLN"));
    EXPECT_EQ(read.format, spread::PlanFormat::New);
    EXPECT_EQ(read.entries, s.state.plans[0].entries);

    // The plan stays on tab 0; tab 1 opens the file through the short-cut band.
    s.window->SetCurrTab(1);
    EXPECT_EQ(s.window->lblMisc->text(), "0 Object(s) In Your Plan");
    s.window->ab_ToolClick("night.PLN");
    EXPECT_EQ(s.PlanIds(1), (std::vector<std::string>{m31, m42}));
    ASSERT_EQ(s.Grid(1).MaxRows(), 2);
    for (int row = 1; row <= 2; ++row)
        EXPECT_EQ(s.Grid(1).Text(row, 1), "X");
    EXPECT_EQ(s.window->Model(1).rowCount(), 2);
}

// The first four columns stay in view while the grid scrolls sideways, and a click on them
// still reaches the grid: scrolled to the far right, the plan column tags a row.
TEST(PlanWiring, FirstFourColumnsStayInViewWhenScrolledSideways)
{
    Screen s;
    s.LoadMessierList();
    auto& view = static_cast<spread::FrozenTableView&>(s.window->grdObject(0));
    QTableView& frozen = view.FrozenView();
    QApplication::processEvents();
    for (int col = 0; col < view.model()->columnCount(); ++col)
        EXPECT_EQ(frozen.isColumnHidden(col),
                  col >= spread::kFrozenCols || view.isColumnHidden(col))
            << col;
    ASSERT_GT(view.horizontalScrollBar()->maximum(), 0);
    view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->maximum());
    QApplication::processEvents();
    EXPECT_TRUE(frozen.isVisible());
    EXPECT_EQ(frozen.width(), view.FrozenWidth());
    EXPECT_GT(view.FrozenWidth(), 0);
    EXPECT_EQ(frozen.geometry().left(), view.verticalHeader()->width() + view.frameWidth());
    // The main view's own first columns have scrolled out to the left.
    EXPECT_LT(view.columnViewportPosition(3), 0);

    const spread::Grid& grid = s.Grid(0);
    const std::string m7(grid.Text(7, 4));
    const QModelIndex cell = frozen.model()->index(6, 0);
    frozen.scrollTo(cell);
    QTest::mouseClick(frozen.viewport(), Qt::LeftButton, {}, frozen.visualRect(cell).center());
    EXPECT_EQ(s.PlanIds(0), (std::vector<std::string>{m7}));
    EXPECT_EQ(grid.Text(7, 1), "X");
    if (const char* shots = std::getenv("SELVANE_SCREENSHOTS"))
        s.window->grab().save(QString(shots) + "/frozen-columns.png");
    // Scrolling down moves both views together.
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->value() + 10);
    EXPECT_EQ(frozen.verticalScrollBar()->value(), view.verticalScrollBar()->value());
}

// A normal load marks the rows of the tab's plan by record id, so marks survive Refresh and
// rows that leave the list stay in the plan; closeplan ends plan mode and reloads the filter's
// list without marks.
TEST(PlanWiring, MarksSurviveALoadAndClosePlanReturnsToTheFilter)
{
    Screen s;
    s.LoadMessierList();
    s.ClickCell(42, 1);
    // The grid menu's "add to plan" tags the row the right-click selected.
    QTableView& view = s.window->grdObject(0);
    const QModelIndex m45 = view.model()->index(44, 5);
    view.scrollTo(m45);
    emit view.customContextMenuRequested(view.visualRect(m45).center());
    s.window->gridmenu().close();
    s.window->Tool("mnuaddtoplan")->trigger();
    s.window->ab_ToolClick("refresh");
    EXPECT_EQ(s.Grid(0).Text(42, 1), "X");
    EXPECT_EQ(s.Grid(0).Text(45, 1), "X");
    EXPECT_EQ(s.Grid(0).Text(44, 1), " ");
    EXPECT_EQ(s.window->lblMisc->text(), "2 Object(s) In Your Plan");

    s.window->ab_ToolClick("show");
    ASSERT_EQ(s.Grid(0).MaxRows(), 2);
    EXPECT_EQ(s.Grid(0).Text(1, 4), "NGC 1976");

    s.window->ab_ToolClick("closeplan");
    EXPECT_FALSE(s.state.plans[0].PlanActive);
    EXPECT_EQ(s.Grid(0).Tag(), "");
    ASSERT_GT(s.Grid(0).MaxRows(), 0);
    for (int row = 1; row <= s.Grid(0).MaxRows(); ++row)
        EXPECT_EQ(s.Grid(0).Text(row, 1), " ");
    // The filter's default constellation is Orion.
    EXPECT_EQ(s.Grid(0).Text(1, 15), "Ori");

    s.window->ab_ToolClick("closeplan");
    EXPECT_EQ(s.LastText(), spread::NotTaggedText);
}

// The fixed lists of the menus: each loads the current tab with its tag; the tab guard and the
// read-only media refusal come before any load.
TEST(PlanWiring, FixedListsThroughTheirKeys)
{
    struct Row
    {
        const char* key;
        int tab;
        bool useCd;
        const char* tag;     // empty: refused
        const char* message; // the refusal, or empty
    };
    const Row rows[] = {
        {"messier", 1, false, "All Messier Objects", ""},
        {"herschelshow", 2, false, "Herschel Objects", ""},
        {"mnueight", 0, false, "Objects brighter than 8th Magnitude", ""},
        {"observed", 3, true, "Objects that have been observed", ""},
        {"messier3", 4, false, "Messier Objects Not Yet Observed", ""},
        {"messier2", 0, true, "", data::ReadOnlyMediaText},
        {"herschelnotobs", 1, true, "", data::ReadOnlyMediaText},
        {"image", 5, false, "", data::NotSpreadsheetTabText},
    };
    Screen s;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.key);
        s.ui.shown.clear();
        s.state.prefs.UseCd = row.useCd;
        s.window->SetCurrTab(row.tab);
        s.window->ab_ToolClick(row.key);
        if (*row.message) {
            EXPECT_EQ(s.LastText(), row.message);
            continue;
        }
        const spread::Grid& grid = s.Grid(row.tab);
        EXPECT_EQ(grid.Tag(), row.tag);
        EXPECT_EQ(s.window->Model(row.tab).rowCount(), grid.MaxRows());
        EXPECT_EQ(s.window->lblNOM->text().toStdString(),
                  std::to_string(grid.MaxRows()) + " Objects");
        EXPECT_FALSE(s.state.UseLogDatabase);
    }
    EXPECT_EQ(s.Grid(1).MaxRows(), 110);
}

// The filter panel stands above the grid tabs; its Apply loads the current tab from the
// choices made in it.
TEST(PlanWiring, FilterPanelAboveTheTabsLoadsTheCurrentTab)
{
    Screen s;
    EXPECT_EQ(s.window->SpreadSplitter().widget(0), &s.window->FilterPanel());
    EXPECT_EQ(s.window->SpreadSplitter().widget(1), &s.window->sstab1());
    s.window->SetCurrTab(2);
    s.state.prefs.Obcon = "Cyg-Cygnus;";
    s.window->FilterPanel().RefreshPref();
    s.window->ab_ToolClick("apply");
    const spread::Grid& grid = s.Grid(2);
    ASSERT_GT(grid.MaxRows(), 0);
    for (int row = 1; row <= grid.MaxRows(); ++row)
        EXPECT_EQ(grid.Text(row, 15), "Cyg");
    EXPECT_NE(s.state.SQL.find("Constellation = 'Cyg'"), std::string::npos);
    EXPECT_EQ(s.Grid(0).MaxRows(), 0);
}

} // namespace
