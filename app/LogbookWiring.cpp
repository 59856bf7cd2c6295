#include "app/LogbookWiring.h"

#include "logbook/LogEntryForm.h"
#include "logbook/ObservedFlag.h"
#include "logbook/ui/ctlLogSpread.h"
#include "logbook/ui/frmEditEquipment.h"
#include "logbook/ui/frmLogEntryNew.h"
#include "logbook/ui/frmOutsideMain.h"
#include "data/Preferences.h"
#include "services/Vb.h"
#include "spread/AppState.h"
#include "spread/Plans.h"
#include "spread/ui/GridModel.h"
#include "spread/ui/frmMainScreen.h"

#include <QModelIndex>
#include <QLabel>
#include <QPointer>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QTableView>

namespace app {

namespace {

// The entry window's context and the window, made on first use. A child of the main window, so
// that both go with it; the entry window goes first, as its form refers to the context.
class LogbookLink : public QObject
{
public:
    LogbookLink(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                const astro::Clock& clock, data::CurrentObject& current, LogbookPrinting printing)
        : QObject(&window), window_(window),
          state_(state), context_{ui, nullptr, nullptr, state.prefs, state.dir, current, clock},
          printing_(std::move(printing))
    {
    }
    ~LogbookLink() override
    {
        delete entry_;
        delete outside_;
    }

    bool DatabasesOpen() const { return state_.logbookDb && state_.objectDb; }

    void Open(const std::string& mode)
    {
        if (!DatabasesOpen())
            return;
        context_.logbook = state_.logbookDb.get();
        context_.objectDb = state_.objectDb.get();
        context_.dir = state_.dir;
        if (!entry_) {
            entry_ = new logbook::ui::frmLogEntryNew(context_, &window_);
            entry_->printReport = [this](int number) {
                if (printing_.entryReport)
                    printing_.entryReport(number, entry_->Model());
            };
        }
        entry_->Open(mode);
    }

    // tolOutside: the outside window, on a new entry of the spreadsheet's current object.
    void OpenOutside()
    {
        if (!DatabasesOpen())
            return;
        context_.logbook = state_.logbookDb.get();
        context_.objectDb = state_.objectDb.get();
        context_.dir = state_.dir;
        if (!outside_)
            outside_ = new logbook::ui::frmOutsideMain(context_, state_.settings, &window_);
        outside_->Open(-1);
    }

    // "el": the entry window on the object of the current tab's selected row.
    void OpenOnSelectedRow()
    {
        const int tab = window_.CurrTab();
        const int row = window_.SelectedRow();
        const spread::Grid* grid = tab < spread::kSpreadTabs ? window_.GetGrid(tab) : nullptr;
        if (!grid || row < 1 || row > grid->MaxRows())
            return;
        context_.current.id = std::string(grid->Text(row, spread::kObjectIdCol));
        context_.current.catalogId = std::string(grid->Text(row, spread::kCatalogCol));
        context_.current.key =
            static_cast<long long>(services::vb::Val(grid->Text(row, spread::kRecordIdCol)));
        Open("R");
    }

    // A click in the obs column logs the row's object; the row shows "X" once it is logged.
    void GridClick(int tab, int row, int col)
    {
        if (col != kObsCol || !DatabasesOpen())
            return;
        spread::Grid* grid = window_.GetGrid(tab);
        if (!grid || row < 1 || row > grid->MaxRows())
            return;
        const std::string id(grid->Text(row, spread::kObjectIdCol));
        const std::string catalog(grid->Text(row, spread::kCatalogCol));
        const auto key =
            static_cast<long long>(services::vb::Val(grid->Text(row, spread::kRecordIdCol)));
        const bool logged =
            logbook::AddToLogbook(context_.ui, *state_.logbookDb, *state_.objectDb, state_.prefs,
                                  context_.clock, id, catalog, key, [this](long long number) {
                                      context_.current.observationNumber = number;
                                      Open("N");
                                  });
        if (!logged)
            return;
        grid->SetText(row, kObsCol, "X");
        window_.Model(tab).RowChanged(row);
    }

    // The equipment lists of the program folder, and the logbook's pick list with them.
    void EditEquipment()
    {
        logbook::ui::frmEditEquipment editor(context_.ui, state_.dir,
                                             data::RegionalOf(state_.prefs), state_.logbookDb.get(),
                                             &window_);
        editor.exec();
    }

    // The log view in the client area, made on first use in the page kept for it.
    void ShowLogSpread()
    {
        if (!DatabasesOpen())
            return;
        context_.logbook = state_.logbookDb.get();
        context_.objectDb = state_.objectDb.get();
        context_.dir = state_.dir;
        QStackedWidget& views = window_.ClientViews();
        auto* page = views.findChild<QWidget*>("ctlLogSpread1");
        if (!page)
            return;
        if (!logView_) {
            auto* layout = new QVBoxLayout(page);
            layout->setContentsMargins(0, 0, 0, 0);
            logView_ = new logbook::ui::ctlLogSpread(context_, page);
            layout->addWidget(logView_);
            logView_->openEntry = [this] { Open("R"); };
            logView_->printLog = [this] {
                if (printing_.logGrid)
                    printing_.logGrid(logView_->Model());
            };
            logView_->printNotes = [this](const std::string& title, const std::string& notes) {
                if (printing_.logNotes)
                    printing_.logNotes(logView_->Model(), title, notes);
            };
            logView_->showCount = [this](const std::string& text) {
                window_.lblNOM->setText(QString::fromStdString(text));
            };
        }
        views.setCurrentWidget(page);
        logView_->Show();
    }

    void FixObservations()
    {
        if (!DatabasesOpen())
            return;
        if (logbook::fixObs_Click(context_.ui, *state_.logbookDb, *state_.objectDb, state_.prefs) &&
            window_.CurrTab() < spread::kSpreadTabs && !state_.lastLoadSql.empty())
            window_.ab_ToolClick("refresh");
    }

private:
    spread::frmMainScreen& window_;
    spread::AppState& state_;
    logbook::LogContext context_;
    LogbookPrinting printing_;
    QPointer<logbook::ui::frmLogEntryNew> entry_;
    QPointer<logbook::ui::frmOutsideMain> outside_;
    QPointer<logbook::ui::ctlLogSpread> logView_;
};

} // namespace

void WireLogbook(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                 const astro::Clock& clock, data::CurrentObject& current, LogbookPrinting printing)
{
    auto* link = new LogbookLink(window, state, ui, clock, current, std::move(printing));
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    dispatcher.SetAction("tolLogbook", [link] { link->Open("N"); });
    dispatcher.SetAction("mnueditlog", [link] { link->Open("N"); });
    dispatcher.SetAction("el", [link] { link->OpenOnSelectedRow(); });
    dispatcher.SetAction("tolOutside", [link] { link->OpenOutside(); });
    dispatcher.SetAction("fixobs", [link] { link->FixObservations(); });
    dispatcher.SetAction("equipment", [link] { link->EditEquipment(); });
    for (const char* key : {"tolLogSpread", "vlassp", "tolLogbookGrid"})
        dispatcher.SetAction(key, [link] { link->ShowLogSpread(); });
    // The window's own handler of a click (the plan column) is connected first and runs first.
    for (int tab = 0; tab < spread::kSpreadTabs; ++tab)
        QObject::connect(&window.grdObject(tab), &QTableView::clicked, link,
                         [link, tab](const QModelIndex& index) {
                             link->GridClick(tab, index.row() + 1, index.column() + 1);
                         });
}

} // namespace app
