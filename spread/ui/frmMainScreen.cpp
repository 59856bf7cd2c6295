#include "spread/ui/frmMainScreen.h"

#include "services/ErrorLog.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/AppState.h"
#include "spread/Export.h"
#include "spread/Grid.h"
#include "spread/Spreadsheet.h"
#include "spread/WhatsUpWizard.h"
#include "spread/ui/BusyUiPort.h"
#include "spread/ui/GridModel.h"
#include "spread/ui/PreferenceWindows.h"
#include "spread/ui/ctlSpreadFilter.h"
#include "spread/ui/frmWhatsUpWizard.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QProgressBar>
#include <QSplashScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QThread>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <system_error>
#include <tuple>

namespace spread {

namespace {

constexpr const char* LayoutFileName = "UserLayout.tb2";
constexpr const char* ShortCutLayoutFileName = "Skybar.lyt";
constexpr int kPlanCol = 1;

QString Q(std::string_view s)
{
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

// The splash: the program's name and "Version #" with the version numbers.
QPixmap StartupImage(const std::string& version)
{
    QPixmap pixmap(480, 260);
    pixmap.fill(QColor(10, 14, 40));
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(255, 255, 255, 200));
    for (const auto& star : {QPoint(40, 30), QPoint(400, 60), QPoint(300, 25), QPoint(90, 200),
                             QPoint(430, 210), QPoint(200, 50), QPoint(350, 180)})
        painter.drawEllipse(star, 1, 1);
    QFont title = painter.font();
    title.setPointSize(34);
    title.setBold(true);
    painter.setFont(title);
    painter.setPen(QColor(230, 230, 255));
    painter.drawText(QRect(0, 60, 480, 80), Qt::AlignCenter, "Selvane");
    QFont small = painter.font();
    small.setPointSize(11);
    small.setBold(false);
    painter.setFont(small);
    painter.drawText(QRect(0, 140, 480, 30), Qt::AlignCenter,
                     "The deep-sky observing planner and logbook");
    painter.drawText(QRect(0, 210, 470, 30), Qt::AlignRight | Qt::AlignVCenter,
                     Q("Version #" + version));
    return pixmap;
}

} // namespace

frmMainScreen::frmMainScreen(AppState& state, BusyUiPort& ui, MainScreenHooks hooks,
                             QWidget* parent)
    : QMainWindow(parent), state_(state), ui_(ui), programDir_(state.dir.path),
      hooks_(std::move(hooks))
{
    setObjectName("frmMainScreen");
    setWindowTitle("Selvane 2003");
    resize(1280, 800);

    CommandDispatcher::Context context;
    context.CurrTab = [this] { return CurrTab(); };
    context.SetGridTooltipText = [] {};
    context.OpenPlan = [this](const std::string& key) { OpenPlan(key); };
    dispatcher_ = std::make_unique<CommandDispatcher>(ui_, std::move(context));

    ShutDownSteps steps;
    steps.SaveTheColumns = hooks_.SaveTheColumns;
    steps.SavePreferences = [this] {
        data::SavePreferences(state_.prefs, state_.settings);
        state_.settings.Sync();
    };
    steps.AutoBackup = [this] { AutoBackupLogbook(); };
    steps.DisconnectTelescope = [this] { DisconnectTelescope(); };
    steps.RestoreColours = [this] {
        if (night_.NightMode())
            night_.SetNightVision(false);
    };
    steps.SaveLayout = [this] { SaveCommandBarLayout(); };
    steps.UnloadWindows = [] {
        const auto windows = QApplication::topLevelWidgets();
        for (auto it = windows.rbegin(); it != windows.rend(); ++it)
            if ((*it)->isVisible())
                (*it)->close();
        QCoreApplication::quit();
    };
    shutDown_ = std::make_unique<ShutDown>(ui_, std::move(steps));

    BuildClientViews();
    BuildCommandBar();
    BuildStatusBand();
    FillActions();
    ui_.SetMainWindow(this);
    ui_.SetProgressBar(tolProgress);
    for (int tab = 0; tab < kGridTabs; ++tab)
        SetGrid(tab, &state_.grids[static_cast<std::size_t>(tab)]);
    GetTabCaptions();

    Timer1_ = new QTimer(this);
    Timer2_ = new QTimer(this);
    Timer3_ = new QTimer(this);
    Timer2_->setInterval(1000);
    Timer3_->setInterval(1000);
    connect(Timer1_, &QTimer::timeout, this, [this] { Timer1_Timer(); });
    connect(Timer2_, &QTimer::timeout, this, [this] { Timer2_Timer(); });
    connect(Timer3_, &QTimer::timeout, this, [this] { Timer3_Timer(); });
}

frmMainScreen::~frmMainScreen()
{
    // The models point at grids owned elsewhere; detach before those go.
    for (GridModel* model : models_)
        model->SetGrid(nullptr);
}

void frmMainScreen::BuildClientViews()
{
    views4_ = new QStackedWidget(this);
    views4_->setObjectName("ClientViews");

    auto* ctlSpread1 = new QWidget(views4_);
    ctlSpread1->setObjectName("ctlSpread1");
    auto* layout = new QVBoxLayout(ctlSpread1);
    layout->setContentsMargins(2, 2, 2, 2);
    spreadSplitter_ = new QSplitter(Qt::Vertical, ctlSpread1);
    spreadSplitter_->setObjectName("spreadSplitter");
    filter_ = new ctlSpreadFilter(state_, spreadSplitter_);
    filter_->setObjectName("ctlSpreadFilter");
    sstab1_ = new QTabWidget(spreadSplitter_);
    sstab1_->setObjectName("sstab1");
    spreadSplitter_->addWidget(filter_);
    spreadSplitter_->addWidget(sstab1_);
    spreadSplitter_->setStretchFactor(0, 0);
    spreadSplitter_->setStretchFactor(1, 1);
    spreadSplitter_->setCollapsible(1, false);
    spreadSplitter_->setSizes({230, 520});
    layout->addWidget(spreadSplitter_);
    connect(filter_, &ctlSpreadFilter::RefreshRequested, this,
            [this] { RunLoad([this] { RefreshFromPanel(state_, *filter_, ComputerClock()); }); });
    connect(filter_, &ctlSpreadFilter::ApplyRequested, this,
            [this] { RunLoad([this] { ApplyFromPanel(state_, *filter_, ComputerClock()); }); });
    for (int tab = 0; tab < kGridTabs; ++tab) {
        auto* view = new FrozenTableView(kFrozenCols, sstab1_);
        view->setObjectName(QString("grdObject%1").arg(tab));
        auto* model = new GridModel(view);
        view->setModel(model);
        view->setSelectionBehavior(QAbstractItemView::SelectRows);
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
        view->setContextMenuPolicy(Qt::CustomContextMenu);
        view->verticalHeader()->setDefaultSectionSize(20);
        view->horizontalHeader()->setHighlightSections(false);
        QFont font("Courier New");
        font.setStyleHint(QFont::TypeWriter);
        font.setPointSize(9);
        view->setFont(font);
        connect(view, &QTableView::clicked, this, [this, tab](const QModelIndex& index) {
            GridCellClicked(tab, index.row() + 1, index.column() + 1);
        });
        connect(view, &QTableView::doubleClicked, this,
                [this](const QModelIndex&) { ab_ToolClick("mnuqvcs"); });
        connect(view, &QTableView::customContextMenuRequested, this,
                [this, tab](const QPoint& pos) { ShowGridMenu(tab, pos); });
        views_[tab] = view;
        models_[tab] = model;
        sstab1_->addTab(view, Q(DefaultTabCaption(tab)));
    }
    for (const char* caption : ImageTabCaptions) {
        auto* gallery = new QListWidget(sstab1_);
        gallery->setViewMode(QListView::IconMode);
        sstab1_->addTab(gallery, caption);
    }
    sstab1_->tabBar()->installEventFilter(this);
    connect(sstab1_, &QTabWidget::currentChanged, this, [this](int tab) { TabChanged(tab); });
    views4_->addWidget(ctlSpread1);

    for (const char* name : {"ctlLogSpread1", "ctlQuickChart1", "ctlQuickChart2"}) {
        auto* view = new QWidget(views4_);
        view->setObjectName(name);
        views4_->addWidget(view);
    }
    views4_->setCurrentIndex(0);
    setCentralWidget(views4_);
}

void frmMainScreen::BuildCommandBar()
{
    for (const CommandTool& tool : CommandTable()) {
        auto* action = new QAction(Q(MenuText(tool)), this);
        action->setObjectName(Q(tool.key));
        action->setToolTip(Q(tool.hint));
        action->setStatusTip(Q(tool.hint));
        const std::string key(tool.key);
        connect(action, &QAction::triggered, this, [this, key] { ab_ToolClick(key); });
        tools_.emplace(key, action);
    }

    std::map<std::string_view, QMenu*> menus;
    for (const CommandBand& band : CommandBands()) {
        if (band.parent.empty())
            continue;
        QMenu* menu = band.parent == "MnuBand1" ? menuBar()->addMenu(Q(band.caption))
                                                : menus.at(band.parent)->addMenu(Q(band.caption));
        menu->setObjectName(Q(band.name));
        menus.emplace(band.name, menu);
    }
    gridmenu_ = new QMenu(this);
    gridmenu_->setObjectName("gridmenu");
    menus.emplace("gridmenu", gridmenu_);

    for (const CommandTool& tool : CommandTable()) {
        QAction* action = tools_.at(std::string(tool.key));
        for (const auto& [name, menu] : menus)
            if (ToolInBand(tool, name))
                menu->addAction(action);
    }

    // The tool bar band in two rows: the list's own tools with the row count and the find box
    // first, then the windows and the telescope.
    toolbar_ = addToolBar("Toolbar");
    toolbar_->setObjectName("Toolbar");
    toolbar_->setToolButtonStyle(Qt::ToolButtonTextOnly);
    for (const char* key : {"refresh", "apply"})
        toolbar_->addAction(tools_.at(key));
    toolbar_->addWidget(new QLabel(" Rows Returned ", toolbar_));
    rowret = new QComboBox(toolbar_);
    rowret->setObjectName("rowret");
    for (const std::string& choice : RowsReturnedChoices())
        rowret->addItem(Q(choice));
    toolbar_->addWidget(rowret);
    connect(rowret, &QComboBox::textActivated, this, [this](const QString& text) {
        state_.prefs.rowret = RowretFromChoice(text.toStdString());
    });
    toolbar_->addWidget(new QLabel(" Find ", toolbar_));
    tolFind = new QLineEdit(toolbar_);
    tolFind->setObjectName("tolFind");
    tolFind->setMaximumWidth(160);
    toolbar_->addWidget(tolFind);
    connect(tolFind, &QLineEdit::returnPressed, this,
            [this] { FilterGridOnTab(tolFind->text().toStdString()); });
    toolbar_->addSeparator();
    addToolBarBreak();
    auto* secondRow = addToolBar("Toolbar 2");
    secondRow->setObjectName("Toolbar2");
    secondRow->setToolButtonStyle(Qt::ToolButtonTextOnly);
    constexpr std::array firstRow = {"refresh",        "apply",     "tolSpread",  "tolLogSpread",
                                     "tolLogbookGrid", "tolQuery",  "findobject", "tolWUW",
                                     "tolResetFilter", "printlist", "pol",        "closeplan"};
    for (const char* key : firstRow)
        if (std::string_view(key) != "refresh" && std::string_view(key) != "apply")
            toolbar_->addAction(tools_.at(key));
    for (const CommandTool& tool : CommandTable())
        if (ToolInBand(tool, "Toolbar") &&
            std::find(firstRow.begin(), firstRow.end(), tool.key) == firstRow.end())
            secondRow->addAction(tools_.at(std::string(tool.key)));

    shortCuts_ = new QToolBar("Short Cuts", this);
    shortCuts_->setObjectName("barShortCuts");
    shortCuts_->setToolButtonStyle(Qt::ToolButtonTextOnly);
    addToolBar(Qt::LeftToolBarArea, shortCuts_);
    SetShortCuts({}, {});

    const QString layout = QString::fromStdString((programDir_ / LayoutFileName).string());
    QFile file(layout);
    if (file.open(QIODevice::ReadOnly))
        restoreState(file.readAll());
}

void frmMainScreen::BuildStatusBand()
{
    auto label = [this](const char* name, const char* text) {
        auto* l = new QLabel(text, this);
        l->setObjectName(name);
        l->setFrameShape(QFrame::Panel);
        l->setFrameShadow(QFrame::Sunken);
        statusBar()->addPermanentWidget(l);
        return l;
    };
    lblDate = label("lblDate", "Date: ");
    lblTime = label("lblTime", "Time: ");
    lblLat = label("lblLat", "Lat: ");
    lblLong = label("lblLong", "Lon: ");
    lblMisc = label("lblMisc", "");
    lblNOM = label("lblNOM", "");
    tolProgress = new QProgressBar(this);
    tolProgress->setObjectName("tolProgress");
    tolProgress->setMaximumWidth(200);
    tolProgress->hide();
    statusBar()->addPermanentWidget(tolProgress);
}

void frmMainScreen::FillActions()
{
    auto give = [this](const char* key, std::function<void()> action) {
        dispatcher_->SetAction(key, std::move(action));
    };
    give("tolSpread", [this] { SwitchToSpread(); });
    give("tolResetFilter", [this] { ResetFilterOnTab(); });
    give("redmode", [this] { ToggleNightVision(); });
    give("exit", [this] { CloseApplication(); });
    give("rtool", [this] { RebuildToolbarIcons(); });
    for (const char* key : {"date", "geographic", "Spreadsheet", "misc"})
        give(key, [this, key] { ShowPreferenceWindow(key); });
    give("setupwizard", [this] { ShowSetupWizard(); });
    for (const char* key : {"wiz1", "tolWUW"})
        give(key, [this] { ShowWhatsUpWizard(); });
    give("wiz2", [this] { ShowWhatsUpList(false); });
    give("wiz3", [this] { ShowWhatsUpList(true); });
    give("rpref", [this] {
        ui_.ShowMessage("Please run the RESET PREFERENCES from the WINDOWS START ---> PROGRAMS "
                        "---> Selvane2000 menu",
                        "Reset Preferences", "I");
    });
    FillPlanActions();
    FillListActions();
    FillExportActions();
}

void frmMainScreen::FillPlanActions()
{
    auto give = [this](const char* key, std::function<void()> action) {
        dispatcher_->SetAction(key, std::move(action));
    };
    give("record", [this] {
        if (TabPlan* plan = CurrentPlan())
            StartPlan(*plan, ui_, MakePlanHooks());
    });
    for (const char* key : {"close", "closeplan", "mnustoprp"})
        give(key, [this] {
            if (TabPlan* plan = CurrentPlan())
                StopPlan(*plan, ui_, MakePlanHooks());
        });
    give("show", [this] {
        TabPlan* plan = CurrentPlan();
        if (plan && (plan->PlanCount() == 0 || DatabaseOpen()))
            ShowPlan(CurrTab(), *plan, ui_, MakePlanHooks());
    });
    give("mnuaddtoplan", [this] { GridCellClicked(CurrTab(), SelectedRow(), kPlanCol); });
    give("mnusaveps", [this] {
        // A plan saved in the program folder joins the short-cut band at once.
        if (const TabPlan* plan = CurrentPlan(); plan && mnuSavePs_Click(CurrTab(), *plan, ui_))
            ShowShortCutTools(LoadTPlan(programDir_));
    });
    give("mnuopenps", [this] {
        TabPlan* plan = CurrentPlan();
        if (!plan || !DatabaseOpen())
            return;
        mnuOpenPS_Click(*plan, ui_, ShippedIdLookup(*state_.objectDb), MakePlanHooks());
        ShowCurrentTab();
    });
}

void frmMainScreen::FillListActions()
{
    using Kind = data::FixedListKind;
    const std::tuple<const char*, Kind, std::function<data::FixedList()>> lists[] = {
        {"messier", Kind::ShowMessierList, data::ShowMessierList},
        {"observed", Kind::ShowObservedList,
         [this] { return data::ShowObservedList(state_.prefs.UseCd); }},
        {"image", Kind::ShowImageList, data::ShowImageList},
        {"mnueight", Kind::mnuEight,
         [this] {
             return data::mnuEight(filter_->lblCatDes->text().toStdString(), filter_->Lookups());
         }},
        {"messier2", Kind::Messier2, data::Messier2},
        {"messier3", Kind::Messier3, data::Messier3},
        {"herschelobs", Kind::Herschel1, data::Herschel1},
        {"herschelnotobs", Kind::Herschel2, data::Herschel2},
        {"herschelshow", Kind::Herschel3, data::Herschel3},
    };
    for (const auto& [key, kind, list] : lists)
        dispatcher_->SetAction(key,
                               [this, kind = kind, list = list] { ShowFixedList(kind, list); });
    dispatcher_->SetAction("refresh", [this] {
        RunLoad([this] {
            GridLoad load;
            RefreshIt(state_, load, ComputerClock());
        });
    });
    dispatcher_->SetAction("apply", [this] {
        RunLoad([this] { ApplyFromPanel(state_, *filter_, ComputerClock()); });
    });
}

// The exports of the current tab's list, and of the logbook.
void frmMainScreen::FillExportActions()
{
    const auto onTab = [this](std::function<void()> action) {
        return [this, action = std::move(action)] {
            state_.CurrTab = CurrTab();
            if (state_.CurrTab < 0 || state_.CurrTab >= kGridTabs)
                ui_.ShowMessage(NeedsTabText, NeedsTabTitle, "I");
            else
                action();
        };
    };
    dispatcher_->SetAction("exso", onTab([this] { IDN2(state_); }));
    dispatcher_->SetAction("eed",
                           onTab([this] { Export(state_, "aa", "Select * From SelvaneTable"); }));
    dispatcher_->SetAction("exportexcel", onTab([this] { Export(state_, "EXCEL", ""); }));
    dispatcher_->SetAction("exporthtml", onTab([this] { Export(state_, "HTML", ""); }));
    dispatcher_->SetAction("exportsoxml", onTab([this] { IDN3(state_); }));
    dispatcher_->SetAction("skylist", onTab([this] { ExportSkyList(state_); }));
    dispatcher_->SetAction("obslist",
                           onTab([this] { ExportObservingList(state_, ComputerClock()); }));
    dispatcher_->SetAction("exportlogxml", [this] {
        state_.CurrTab = CurrTab();
        Export(state_, "XMLLOG", LogExportSql);
    });
    dispatcher_->SetAction("mnuepld", [this] {
        state_.CurrTab = CurrTab();
        mnuEpld_Click(state_);
    });
}

void frmMainScreen::ShowFixedList(data::FixedListKind kind,
                                  const std::function<data::FixedList()>& make)
{
    if (const auto refusal = data::CheckFixedList(kind, CurrTab(), state_.prefs.UseCd)) {
        ui_.ShowMessage(refusal->Text, refusal->Title, refusal->Kind);
        return;
    }
    if (!DatabaseOpen())
        return;
    const data::FixedList list = make();
    state_.grids[static_cast<std::size_t>(CurrTab())].SetTag(list.Tag);
    state_.SQL = list.SQL;
    state_.UseLogDatabase = list.UseLogDatabase;
    LoadCurrentTab("NOBUILD");
    state_.UseLogDatabase = false;
}

bool frmMainScreen::DatabaseOpen()
{
    if (state_.objectDb)
        return true;
    ui_.ShowMessage(ChooseDatabaseText, ObjectDatabaseFailedTitle, "I");
    return false;
}

void frmMainScreen::RunLoad(const std::function<void()>& routine)
{
    state_.CurrTab = CurrTab();
    if (state_.CurrTab < kGridTabs && !DatabaseOpen())
        return;
    StopTimers();
    routine();
    StartTimers();
    ShowCurrentTab();
}

void frmMainScreen::LoadCurrentTab(const std::string& mode)
{
    RunLoad([this, &mode] {
        if (state_.CurrTab >= kGridTabs)
            return;
        GridLoad load;
        load.BuildSQLSelectString = [this] { return filter_->BuildSQLSelectString(); };
        LoadTheGrid(state_, state_.grids[static_cast<std::size_t>(state_.CurrTab)],
                    ParseLoadMode(mode), load, ComputerClock());
    });
}

void frmMainScreen::ShowCurrentTab()
{
    const int tab = CurrTab();
    if (tab < kGridTabs)
        RefreshGrid(tab);
    ShowStatusBand();
}

TabPlan* frmMainScreen::CurrentPlan()
{
    const int tab = CurrTab();
    state_.CurrTab = tab;
    if (tab < 0 || tab >= kPlanTabs) {
        ui_.ShowMessage(NeedsTabText, NeedsTabTitle, "I");
        return nullptr;
    }
    return &state_.plans[static_cast<std::size_t>(tab)];
}

void frmMainScreen::GridCellClicked(int tab, int row, int col)
{
    if (tab < 0 || tab >= kGridTabs)
        return;
    lastCol_[tab] = col;
    if (col == kPlanCol && grids_[tab]) {
        state_.CurrTab = tab;
        Grid& grid = *grids_[tab];
        const int rowsBefore = grid.MaxRows();
        mnuaddtoplan_Click(state_.plans[static_cast<std::size_t>(tab)], grid, row, ui_,
                           MakePlanHooks());
        if (grid.MaxRows() != rowsBefore)
            RefreshGrid(tab);
        else
            models_[tab]->RowChanged(row);
    }
    if (hooks_.GridClick)
        hooks_.GridClick(tab, row, col);
}

int frmMainScreen::SelectedRow() const
{
    const int tab = CurrTab();
    if (tab < 0 || tab >= kGridTabs)
        return 0;
    const QModelIndex index = views_[tab]->currentIndex();
    return index.isValid() ? index.row() + 1 : 0;
}

void frmMainScreen::OpenPlan(const std::string& name)
{
    TabPlan* plan = CurrentPlan();
    if (!plan || !DatabaseOpen())
        return;
    cboPlan_Click(*plan, programDir_, name, ui_, ShippedIdLookup(*state_.objectDb),
                  MakePlanHooks());
    ShowCurrentTab();
}

PlanHooks frmMainScreen::MakePlanHooks()
{
    PlanHooks hooks;
    hooks.UpdateStatusBar = [this] {
        UpdateStatusBar(state_, ComputerClock());
        ShowStatusBand();
    };
    hooks.mnuRfsh_Click = [this] {
        UpdateStatusBar(state_, ComputerClock());
        filter_->RefreshPref();
    };
    hooks.LoadTheGrid = [this](const std::string& mode) { LoadCurrentTab(mode); };
    hooks.SetMisc = [this](const std::string& text) {
        state_.status.lblMisc = text;
        lblMisc->setText(Q(text));
    };
    hooks.FormatSpreadsheet = [this] { RefreshGrid(CurrTab()); };
    hooks.LoadPlan = [this] {
        const int tab = CurrTab();
        state_.CurrTab = tab;
        StopTimers();
        LoadPlan(state_, state_.grids[static_cast<std::size_t>(tab)],
                 state_.plans[static_cast<std::size_t>(tab)], ComputerClock());
        StartTimers();
        ShowCurrentTab();
    };
    return hooks;
}

const astro::Clock& frmMainScreen::ComputerClock() const
{
    return hooks_.computerClock ? *hooks_.computerClock : systemClock_;
}

void frmMainScreen::Form_Load(const std::string& version, int minimumSplashMs)
{
    QElapsedTimer clock;
    clock.start();
    splash_ = new QSplashScreen(StartupImage(version));
    splash_->setObjectName("frmStartupimage");
    splash_->show();
    QApplication::processEvents();
    // Deliberate: the splash stays up for its minimum time even when the start is quicker.
    while (clock.elapsed() < minimumSplashMs) {
        QApplication::processEvents();
        QThread::msleep(10);
    }
    services::DeleteErrorLog(programDir_ / services::ErrorLogFileName);
    if (hooks_.LoadForm)
        services::Trap(ui_, "frmMainScreen.Form_Load", hooks_.LoadForm);
    // The pickers list the catalogues and types of the database the start opened.
    if (state_.objectDb)
        filter_->ReloadLookups();
    filter_->RefreshPref();
    rowret->setCurrentText(QString::fromStdString(RowretText(state_.prefs.rowret)));
    GetTabCaptions();
    for (int tab = 0; tab < kGridTabs; ++tab)
        RefreshGrid(tab);
    ShowStatusBand();
    show();
    UnloadStartupImage();
    StartTimers();
}

void frmMainScreen::UnloadStartupImage()
{
    if (!splash_)
        return;
    splash_->close();
    splash_->deleteLater();
    splash_ = nullptr;
}

void frmMainScreen::ab_ToolClick(const std::string& key)
{
    dispatcher_->ab_ToolClick(key);
}

int frmMainScreen::CurrTab() const
{
    return sstab1_->currentIndex();
}

void frmMainScreen::SetCurrTab(int tab)
{
    sstab1_->setCurrentIndex(tab);
}

void frmMainScreen::SetGrid(int tab, Grid* grid)
{
    grids_.at(tab) = grid;
    models_.at(tab)->SetGrid(grid);
    RefreshGrid(tab);
}

void frmMainScreen::RefreshGrid(int tab)
{
    GridModel& model = *models_.at(tab);
    model.Reset();
    FrozenTableView& view = *views_.at(tab);
    if (const Grid* grid = grids_.at(tab)) {
        for (int row = 1; row <= grid->MaxRows(); ++row)
            if (grid->RowHidden(row))
                view.SetRowHidden(row - 1, true);
        for (int col = 1; col <= kGridCols; ++col) {
            const double width = grid->ColWidth(col);
            view.setColumnHidden(col - 1, width == 0);
            if (width > 0)
                view.setColumnWidth(
                    col - 1,
                    static_cast<int>(width * view.fontMetrics().horizontalAdvance('0')) + 8);
        }
        view.SyncFrozenColumns();
    }
    if (tab == CurrTab())
        ShowRowCount(tab);
}

void frmMainScreen::ShowRowCount(int tab)
{
    const Grid* grid = grids_.at(tab);
    lblNOM->setText(QString("%1 Objects").arg(grid ? grid->MaxRows() : 0));
}

void frmMainScreen::TabChanged(int tab)
{
    state_.CurrTab = tab;
    if (tab >= 0 && tab < kGridTabs) {
        ShowRowCount(tab);
        state_.status.lblMisc =
            std::to_string(state_.plans[static_cast<std::size_t>(tab)].PlanCount()) +
            InPlanSuffix;
        lblMisc->setText(Q(state_.status.lblMisc));
    }
}

void frmMainScreen::ShowStatusBand()
{
    const StatusBand& band = state_.status;
    const std::pair<QLabel*, const std::string*> labels[] = {
        {lblDate, &band.lblDate}, {lblTime, &band.lblTime}, {lblLat, &band.lblLat},
        {lblLong, &band.lblLong}, {lblMisc, &band.lblMisc}, {lblNOM, &band.lblNOM}};
    for (const auto& [label, text] : labels)
        if (!text->empty())
            label->setText(QString::fromStdString(*text));
}

LoadFormHooks frmMainScreen::MakeLoadFormHooks()
{
    LoadFormHooks hooks;
    hooks.SetToolVisible = [this](std::string_view key, bool visible) {
        if (QAction* tool = Tool(std::string(key)))
            tool->setVisible(visible);
    };
    hooks.SetToolEnabled = [this](std::string_view key, bool enabled) {
        if (QAction* tool = Tool(std::string(key)))
            tool->setEnabled(enabled);
    };
    hooks.SetToolCaption = [this](std::string_view key, std::string_view caption) {
        if (QAction* tool = Tool(std::string(key)))
            tool->setText(Q(caption));
    };
    hooks.ShowShortCuts = [this](const ShortCutTools& tools) { ShowShortCutTools(tools); };
    hooks.ShowSetupWizard = [this] { return ShowSetupWizard(); };
    hooks.HideGrids = [this](bool hidden) {
        for (QTableView* view : views_)
            view->setVisible(!hidden);
    };
    hooks.UnloadStartupImage = [this] { UnloadStartupImage(); };
    hooks.GetTabCaptions = [this] { GetTabCaptions(); };
    hooks.SelectFilterPage = [this](int page) { filter_->SetCurrentPage(page); };
    return hooks;
}

void frmMainScreen::SwitchToSpread()
{
    if (CurrTab() >= FirstImageTab) {
        ui_.ShowMessage(SwitchNeedsTabText, NeedsTabTitle, "I");
        return;
    }
    views4_->setCurrentIndex(0);
    ShowRowCount(CurrTab());
}

void frmMainScreen::ResetFilterOnTab()
{
    const int tab = CurrTab();
    if (tab >= kGridTabs || !grids_[tab])
        return;
    ResetFilter(*grids_[tab]);
    for (int row = 0; row < grids_[tab]->MaxRows(); ++row)
        views_[tab]->SetRowHidden(row, false);
}

void frmMainScreen::FilterGridOnTab(const std::string& text)
{
    const int tab = CurrTab();
    if (tab >= kGridTabs || !grids_[tab])
        return;
    Grid& grid = *grids_[tab];
    services::Trap(ui_, "ctlSpread.FilterGrid", [&] {
        FilterGrid(grid, lastCol_[tab] > 0 ? lastCol_[tab] : 4, text);
        for (int row = 1; row <= grid.MaxRows(); ++row)
            views_[tab]->SetRowHidden(row - 1, grid.RowHidden(row));
    });
}

void frmMainScreen::GetTabCaptions()
{
    for (int tab = 0; tab < kGridTabs; ++tab) {
        const std::string fallback = DefaultTabCaption(tab);
        const std::string caption = state_.settings.Get(TabCaptionKey(tab), fallback);
        sstab1_->setTabText(tab, Q(caption));
    }
    for (int image = 0; image < kImageTabs; ++image)
        sstab1_->setTabText(kGridTabs + image, ImageTabCaptions[image]);
}

void frmMainScreen::RenameTab(int tab)
{
    if (tab < 0 || tab >= kGridTabs)
        return;
    const std::string caption =
        ui_.InputBox(TabCaptionPrompt, TabCaptionTitle, TabCaptionProposal(tab));
    if (caption.empty())
        return;
    sstab1_->setTabText(tab, Q(caption));
    services::Trap(ui_, "ctlSpread.sstab1_MouseUp", [&] {
        state_.settings.Save(TabCaptionKey(tab), caption);
        state_.settings.Sync();
    });
}

bool frmMainScreen::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == sstab1_->tabBar() && event->type() == QEvent::MouseButtonRelease) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::RightButton) {
            RenameTab(sstab1_->tabBar()->tabAt(mouse->position().toPoint()));
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmMainScreen::ShowGridMenu(int tab, const QPoint& pos)
{
    QTableView& view = *views_.at(tab);
    const QModelIndex index = view.indexAt(pos);
    if (index.isValid())
        view.selectRow(index.row());
    const Grid* grid = grids_.at(tab);
    const bool planned =
        index.isValid() && grid && grid->Text(index.row() + 1, kPlanCol).starts_with("X");
    tools_.at("toladdnotes")->setEnabled(planned);
    tools_.at("OFinder")->setEnabled(index.isValid());
    gridmenu_->popup(view.viewport()->mapToGlobal(pos));
}

void frmMainScreen::ToggleNightVision()
{
    night_.Toggle();
    for (GridModel* model : models_) {
        GridColours colours = model->Colours();
        colours.night = night_.NightMode();
        model->SetColours(colours);
    }
}

void frmMainScreen::ShowShortCutTools(const ShortCutTools& tools)
{
    std::vector<std::string> plans;
    std::vector<std::string> queries;
    for (const ShortCutTool& tool : tools.plans)
        plans.push_back(tool.key);
    for (const ShortCutTool& tool : tools.queries)
        queries.push_back(tool.key);
    SetShortCuts(plans, queries);
}

void frmMainScreen::SetShortCuts(const std::vector<std::string>& plans,
                                 const std::vector<std::string>& queries)
{
    shortCuts_->clear();
    auto group = [this](const char* heading, const std::vector<std::string>& files) {
        auto* title = new QLabel(heading, shortCuts_);
        QFont bold = title->font();
        bold.setBold(true);
        title->setFont(bold);
        shortCuts_->addWidget(title);
        for (const std::string& file : files)
            shortCuts_->addAction(Q(file), this, [this, file] { ab_ToolClick(file); });
    };
    group("My Plans", plans);
    shortCuts_->addSeparator();
    group("My Queries", queries);
}

void frmMainScreen::RebuildToolbarIcons()
{
    std::error_code ignored;
    std::filesystem::remove(programDir_ / LayoutFileName, ignored);
    std::filesystem::remove(programDir_ / ShortCutLayoutFileName, ignored);
    resetLayout_ = true;
    if (hooks_.SaveTheColumns)
        hooks_.SaveTheColumns();
    data::SavePreferences(state_.prefs, state_.settings);
    state_.settings.Sync();
    ui_.ShowMessage("Please restart Selvane 2003", "Toolbar Icons have been reset", "I");
}

void frmMainScreen::StopTimers()
{
    Timer1_->stop();
    Timer2_->stop();
    Timer3_->stop();
}

void frmMainScreen::StartTimers()
{
    Timer2_->start();
    Timer3_->start();
    // Timer1 stays idle until Timer2 arms it.
    if (realTime_.timer1IntervalMs > 0)
        Timer1_->start(realTime_.timer1IntervalMs);
}

void frmMainScreen::Timer2_Timer()
{
    realTime_.RealTimeRearm = state_.RealTimeRearm;
    if (Timer2Tick(realTime_, state_.prefs.RefreshTime))
        Timer1_->start(realTime_.timer1IntervalMs);
    state_.RealTimeRearm = realTime_.RealTimeRearm;
}

void frmMainScreen::Timer1_Timer()
{
    const astro::Clock& clock = hooks_.computerClock ? *hooks_.computerClock : systemClock_;
    const auto moment =
        Timer1Tick(realTime_, state_.prefs.UseRealTime, state_.prefs.RefreshTime, clock.Now());
    if (!moment)
        return;
    state_.RealTimeRearm = realTime_.RealTimeRearm;
    lblTime->setText(QString::fromStdString("Time: " + moment->Ptime));
    state_.prefs.PDate = moment->PDate;
    state_.prefs.Ptime = moment->Ptime;
    services::Trap(ui_, "ctlSpread.Timer1_Timer", [&] {
        if (hooks_.LoadTheGrid)
            hooks_.LoadTheGrid("NO BUILD");
        else
            LoadCurrentTab("NO BUILD");
    });
}

void frmMainScreen::Timer3_Timer()
{
    if (state_.prefs.UseRealTime != "Y")
        return;
    const astro::Clock& clock = hooks_.computerClock ? *hooks_.computerClock : systemClock_;
    const astro::LocalDateTime now = clock.Now();
    const services::vb::Regional regional{state_.prefs.dateformat, state_.prefs.datesep,
                                          state_.prefs.decimalchar};
    const std::string date = services::vb::ShortDate(QDate(now.year, now.month, now.day), regional);
    const std::string time =
        services::vb::FormatTime(QTime(now.hour, now.minute, now.second),
                                 state_.prefs.timesAMPM ? "hh:mm:ss AM/PM" : "hh:mm:ss");
    lblDate->setText(QString::fromStdString("Date: " + date));
    lblTime->setText(QString::fromStdString("Time: " + time));
}

bool frmMainScreen::ShowPreferenceWindow(const std::string& key)
{
    std::unique_ptr<PreferenceWindow> window;
    if (key == "date") {
        window = std::make_unique<frmPref>(state_.prefs, state_.settings, ui_, this);
    } else if (key == "geographic") {
        std::vector<data::Place> locations;
        std::vector<data::Place> sites;
        if (state_.logbookDb) {
            locations = data::LoadLocationList(*state_.logbookDb);
            sites = data::LoadObservingSites(*state_.logbookDb);
        }
        window =
            std::make_unique<frmPref2>(state_.prefs, state_.settings, ui_, locations, sites, this);
    } else if (key == "Spreadsheet") {
        window = std::make_unique<frmPref7>(state_.prefs, state_.settings, ui_, this);
    } else if (key == "misc") {
        window = std::make_unique<frmPref6>(state_.prefs, state_.settings, ui_, this);
    } else {
        return false;
    }
    const bool kept = window->exec() == QDialog::Accepted;
    if (kept)
        rowret->setCurrentText(QString::fromStdString(RowretText(state_.prefs.rowret)));
    return kept;
}

bool frmMainScreen::ShowSetupWizard()
{
    std::vector<data::Place> locations;
    if (state_.logbookDb)
        services::Trap(ui_, "frmSetupWizard.Form_Load",
                       [&] { locations = data::LoadLocationList(*state_.logbookDb); });
    frmSetupWizard wizard(state_.prefs, state_.settings, ui_, locations, this);
    return wizard.exec() == QDialog::Accepted;
}

void frmMainScreen::ShowWhatsUpWizard()
{
    state_.CurrTab = CurrTab();
    if (state_.CurrTab < 0 || state_.CurrTab >= kGridTabs) {
        ui_.ShowMessage(data::NotSpreadsheetTabText, data::NotSpreadsheetTabTitle, "I");
        return;
    }
    if (!DatabaseOpen())
        return;
    WizardHooks hooks;
    hooks.LoadTheGrid = [this] { LoadCurrentTab("NO BUILD"); };
    hooks.RefreshPref = [this] { filter_->RefreshPref(); };
    frmWhatsUpWizard wizard(state_, ComputerClock(), std::move(hooks), this);
    wizard.exec();
    // Cancel keeps what the pages took before it, so the panel shows that too.
    filter_->RefreshPref();
    UpdateStatusBar(state_, ComputerClock());
    ShowStatusBand();
}

void frmMainScreen::ShowWhatsUpList(bool herschel)
{
    state_.CurrTab = CurrTab();
    if (state_.CurrTab < kGridTabs && !DatabaseOpen())
        return;
    const auto load = [this] { LoadCurrentTab("NOBUILD"); };
    herschel ? Wiz3(state_, load) : Wiz2(state_, load);
}

void frmMainScreen::CloseApplication()
{
    shutDown_->CloseApplication();
}

void frmMainScreen::closeEvent(QCloseEvent* event)
{
    CloseApplication();
    event->accept();
}

void frmMainScreen::AutoBackupLogbook()
{
    if (autoBackup_)
        autoBackup_();
}

// Telescope links arrive with the telescope drivers; until then no link can be open.
void frmMainScreen::DisconnectTelescope() {}

void frmMainScreen::SaveCommandBarLayout()
{
    if (resetLayout_)
        return;
    QFile file(QString::fromStdString((programDir_ / LayoutFileName).string()));
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(saveState());
}

QAction* frmMainScreen::Tool(const std::string& key) const
{
    const auto it = tools_.find(key);
    return it == tools_.end() ? nullptr : it->second;
}

} // namespace spread
