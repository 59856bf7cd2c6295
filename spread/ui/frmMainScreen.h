#pragma once
// The main window: the command bar built from the command table (main menu, tool bar, the
// grid's context menu, the short-cut band), the four stacked client views of which one is
// visible, the status band, and the order of start and shut-down. Every click on a tool reaches
// the one dispatcher ab_ToolClick.

#include "spread/CommandTable.h"
#include "spread/LoadForm.h"
#include "spread/MainShell.h"
#include "spread/Plans.h"
#include "spread/ui/FrozenTableView.h"
#include "spread/ui/NightVision.h"

#include <QMainWindow>

#include <array>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QSplashScreen;
class QSplitter;
class QStackedWidget;
class QTabWidget;
class QTableView;
class QTimer;
class QToolBar;

namespace spread {

struct AppState;
class BusyUiPort;
class Grid;
class GridModel;
class ctlSpreadFilter;

// What the window asks of the rest of the program. Each is optional: a missing one does
// nothing, or makes its command say that it is not available.
struct MainScreenHooks
{
    std::function<void()> LoadForm;       // the spreadsheet's start: settings, databases, tab 0
    std::function<void()> SaveTheColumns; // the column profiles
    // A click on a cell of a grid tab: tab 0 to 4, grid row from 1, grid column from 1.
    std::function<void(int tab, int row, int col)> GridClick;
    // LoadTheGrid on the current tab with a mode text ("NO BUILD" from the real-time timer);
    // missing: the window's own LoadCurrentTab.
    std::function<void(const std::string& mode)> LoadTheGrid;
    // The computer clock of the real-time mode; nullptr: the machine's own.
    const astro::Clock* computerClock = nullptr;
};

class frmMainScreen : public QMainWindow
{
public:
    // Given: state, the application state (settings, preferences, program folder, logbook);
    //   ui, the same port as state.ui: its busy window and progress bar are attached here.
    frmMainScreen(AppState& state, BusyUiPort& ui, MainScreenHooks hooks,
                  QWidget* parent = nullptr);
    ~frmMainScreen() override;

    // The start: the splash with its version line for at least minimumSplashMs, the session's
    // error log deleted, LoadForm, and the window shown.
    void Form_Load(const std::string& version, int minimumSplashMs = 1000);
    // Closes the splash if it is still up (LoadForm does so when it has finished).
    void UnloadStartupImage();
    // The hooks through which LoadForm reaches this window: tools shown, enabled and captioned,
    // the short-cut band, the setup wizard, the grids hidden while tab 0 loads, the splash, the
    // tab captions.
    LoadFormHooks MakeLoadFormHooks();
    // Writes the status band's texts that the routines left in the state.
    void ShowStatusBand();

    CommandDispatcher& Dispatcher() { return *dispatcher_; }
    void ab_ToolClick(const std::string& key);

    // 0 to 4 spreadsheet tabs, 5 and 6 image tabs.
    int CurrTab() const;
    void SetCurrTab(int tab);
    bool ChartLoaded = false;

    // The grid store a spreadsheet tab shows, at first the state's grid of the tab; nullptr for
    // an empty tab. The grid stays owned by the caller. RefreshGrid repaints a tab after its
    // grid changed (rows, texts, hidden rows).
    void SetGrid(int tab, Grid* grid);
    Grid* GetGrid(int tab) const { return grids_.at(tab); }
    void RefreshGrid(int tab);
    GridModel& Model(int tab) { return *models_.at(tab); }
    QTableView& grdObject(int tab) { return *views_.at(tab); }

    // The filter panel above the grid tabs of the spreadsheet view, in a splitter so that the
    // list stays visible; its Refresh and Apply load the current tab.
    ctlSpreadFilter& FilterPanel() { return *filter_; }
    QSplitter& SpreadSplitter() { return *spreadSplitter_; }

    // LoadTheGrid on the current tab with a mode text ("BUILD" through the filter panel's SQL
    // builder), the marks of the tab's plan, then the tab and the status band repainted.
    // Nothing on an image tab; without an object database it says so once.
    void LoadCurrentTab(const std::string& mode);
    // The current tab and the status band repainted after a routine changed them.
    void ShowCurrentTab();

    // A click on a grid cell (row and column from 1): column 1 toggles the row's plan mark.
    void GridCellClicked(int tab, int row, int col);
    // The grid row selected on the current tab, from 1; 0 when none.
    int SelectedRow() const;
    // cboPlan_Click: the plan file of the program folder with this name (a plan of the
    // short-cut band) opened into the current tab.
    void OpenPlan(const std::string& name);
    // The steps the plan routines ask of the window, for the current tab.
    PlanHooks MakePlanHooks();

    void SwitchToSpread();
    void ResetFilterOnTab();
    void FilterGridOnTab(const std::string& text);

    // Tab captions from tab1caption..tab5caption; the image tabs keep theirs.
    void GetTabCaptions();
    // The input box of a right-click on a grid tab's title; the answer is kept in the tab's
    // caption setting. A cancelled or empty answer changes nothing.
    void RenameTab(int tab);
    QTabWidget& sstab1() { return *sstab1_; }

    // The key redmode: night vision on or off, then every grid repainted in its colours.
    void ToggleNightVision();
    NightVision& Night() { return night_; }

    // The plans and queries of the short-cut band, by file name (the key of their tool).
    void SetShortCuts(const std::vector<std::string>& plans,
                      const std::vector<std::string>& queries);
    // The same from LoadTPlan's lists.
    void ShowShortCutTools(const ShortCutTools& tools);

    // The preference windows, modal over the main window; true when OK kept the values.
    bool ShowPreferenceWindow(const std::string& key);
    bool ShowSetupWizard();
    // wiz1 and tolWUW: the What's Up wizard, modal over the window, on the current tab; the
    // filter panel and the status band show afterwards what stays in force.
    void ShowWhatsUpWizard();
    // wiz2 and wiz3: the What's Up list of the Messier or the Herschel objects on the tab.
    void ShowWhatsUpList(bool herschel);

    // The real-time timers: stopped while a grid loads, started again after it.
    void StopTimers();
    void StartTimers();
    void Timer1_Timer();
    void Timer2_Timer();
    void Timer3_Timer();
    const RealTimeTimers& RealTime() const { return realTime_; }

    void CloseApplication();
    // The automatic logbook copy of the shut-down; it decides itself whether the copy is due.
    void SetAutoBackup(std::function<void()> backup) { autoBackup_ = std::move(backup); }
    bool ClosingDown() const { return shutDown_->ClosingDown(); }

    // The tool of a key (one action however many bands it stands in); nullptr for none.
    QAction* Tool(const std::string& key) const;
    QMenu& gridmenu() { return *gridmenu_; }
    QToolBar& Toolbar() { return *toolbar_; }
    QStackedWidget& ClientViews() { return *views4_; }

    QLabel* lblDate = nullptr;
    QLabel* lblTime = nullptr;
    QLabel* lblLat = nullptr;
    QLabel* lblLong = nullptr;
    QLabel* lblMisc = nullptr;
    QLabel* lblNOM = nullptr;
    QProgressBar* tolProgress = nullptr;
    QComboBox* rowret = nullptr;
    QLineEdit* tolFind = nullptr;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildCommandBar();
    void BuildClientViews();
    void BuildStatusBand();
    void FillActions();
    void FillPlanActions();
    void FillListActions();
    void FillExportActions();
    // Runs a load routine on the current tab (CurrTab kept in the state), then repaints.
    void RunLoad(const std::function<void()>& routine);
    // The plan of the current tab; nullptr, after "Please select a spreadsheet tab first",
    // on an image tab.
    TabPlan* CurrentPlan();
    // False, after saying so, when no object database is open.
    bool DatabaseOpen();
    // A fixed list of the menus on the current tab, after its refusals.
    void ShowFixedList(data::FixedListKind kind, const std::function<data::FixedList()>& make);
    const astro::Clock& ComputerClock() const;
    void ShowGridMenu(int tab, const QPoint& pos);
    void TabChanged(int tab);
    void ShowRowCount(int tab);
    void RebuildToolbarIcons();
    void AutoBackupLogbook();
    // A shut-down step whose subsystem is not in this version: it does nothing yet.
    void DisconnectTelescope();
    void SaveCommandBarLayout();

    AppState& state_;
    BusyUiPort& ui_;
    std::filesystem::path programDir_;
    MainScreenHooks hooks_;
    std::unique_ptr<CommandDispatcher> dispatcher_;
    std::unique_ptr<ShutDown> shutDown_;
    std::function<void()> autoBackup_;
    NightVision night_;
    std::map<std::string, QAction*, std::less<>> tools_;
    QMenu* gridmenu_ = nullptr;
    QToolBar* toolbar_ = nullptr;
    QToolBar* shortCuts_ = nullptr;
    QStackedWidget* views4_ = nullptr;
    QTabWidget* sstab1_ = nullptr;
    QSplitter* spreadSplitter_ = nullptr;
    ctlSpreadFilter* filter_ = nullptr;
    std::array<FrozenTableView*, kGridTabs> views_{};
    std::array<GridModel*, kGridTabs> models_{};
    std::array<Grid*, kGridTabs> grids_{};
    std::array<int, kGridTabs> lastCol_{};
    QSplashScreen* splash_ = nullptr;
    astro::SystemClock systemClock_;
    RealTimeTimers realTime_;
    QTimer* Timer1_ = nullptr;
    QTimer* Timer2_ = nullptr;
    QTimer* Timer3_ = nullptr;
    bool resetLayout_ = false;
};

} // namespace spread
