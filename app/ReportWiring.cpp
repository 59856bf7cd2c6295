#include "app/ReportWiring.h"

#include "logbook/LogSpread.h"
#include "reports/PlanReports.h"
#include "reports/ui/frmPlanObs.h"
#include "reports/ui/frmPrintout.h"
#include "reports/ui/frmRSU.h"
#include "reports/ui/frmSortSelection.h"
#include "reports/ui/frmUserM.h"
#include "spread/AppState.h"
#include "spread/StarCharts.h"
#include "spread/ui/frmMainScreen.h"

#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>

#include <optional>

namespace app {

namespace {

constexpr int kCatalogCol = 24;

// What one open report window reads; a child of the window, so it outlives the window's
// members.
class ReportHolder : public QObject
{
public:
    ReportHolder(spread::AppState& state, const astro::Clock& clock, int row,
                 std::optional<spread::ChartContext> charts)
        : charts_(std::move(charts)), context(state, clock, row, charts_ ? &*charts_ : nullptr)
    {
    }

private:
    std::optional<spread::ChartContext> charts_;

public:
    reports::ReportContext context;
};

class ReportCommands : public QObject
{
public:
    ReportCommands(spread::frmMainScreen& window, spread::AppState& state,
                   const astro::Clock& clock, ChartContextSource charts)
        : QObject(&window), window_(window), state_(state), clock_(clock),
          charts_(std::move(charts))
    {
    }

    // Opens the report window on a number, after prepare has handed it its values.
    void Open(int number, const std::function<void(reports::ReportWindow&)>& prepare = {})
    {
        const int tab = window_.CurrTab();
        if (tab >= 0 && tab < spread::kSpreadTabs)
            state_.CurrTab = tab;
        const int row = std::max(1, window_.SelectedRow());
        std::optional<spread::ChartContext> charts;
        if (charts_)
            charts.emplace(charts_());
        auto* holder = new ReportHolder(state_, clock_, row, std::move(charts));
        auto* dialog = new reports::frmUserM(holder->context, &window_);
        holder->setParent(dialog);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        reports::ReportWindow& report = dialog->Window();
        report.ReportNumber = number;
        if (prepare)
            prepare(report);
        dialog->onReportSetup = [this, dialog](int reportNumber) {
            OpenReportSetup(*dialog, reportNumber);
        };
        dialog->show();
        dialog->Form_Load();
    }

    // ReportS: the settings window of the column reports; after Apply the report is built
    // again with the new columns.
    void OpenReportSetup(reports::frmUserM& report, int number)
    {
        if (number != 2 && number != 3 && number != 30)
            return;
        reports::frmRSU setup(number == 2 ? reports::SettingsKind::Database
                                          : reports::SettingsKind::Log,
                              state_, &report);
        setup.Form_Load();
        if (setup.exec() == QDialog::Accepted)
            report.Command9->click();
    }

    // mnuopd: the plan details, refused for a solar-system row.
    void PlanDetails()
    {
        const int tab = window_.CurrTab();
        const int row = window_.SelectedRow();
        if (tab >= 0 && tab < spread::kSpreadTabs && row >= 1) {
            const spread::Grid& grid = state_.grids[static_cast<std::size_t>(tab)];
            const std::string catalog(grid.Text(row, kCatalogCol));
            if (catalog == "PLANETS" || catalog == "COMET" || catalog == "ASTEROID") {
                state_.ui.ShowMessage("This option is currently not supported for Solar System "
                                      "objects in the observing plan.",
                                      "Operation Not Supported", "I");
                return;
            }
        }
        Open(15);
    }

    // popo: the plan and its order, then report 151.
    void PlanObjectsObserved()
    {
        reports::ui::frmPlanObs choice(state_.dir.path, &window_);
        if (choice.exec() != QDialog::Accepted || choice.Plan().empty())
            return;
        Open(151, [&](reports::ReportWindow& report) {
            report.ObsPlan(choice.Plan());
            report.ObsPlanSort(choice.Sort());
        });
    }

    // plogone: the order and filter, then report 88.
    void LogSingle()
    {
        reports::ui::frmSortSelection choice(&window_);
        const std::optional<reports::SortSelection> selection = choice.Ask();
        if (!selection)
            return;
        Open(88, [&](reports::ReportWindow& report) { report.sortSelection = *selection; });
    }

    // frmPrintout for a caller: "C" (classic) or "N" (quick), kept in printpref; empty when
    // cancelled.
    std::string AskPrintout(const char* caller)
    {
        reports::ui::frmPrintout choice(caller, state_.prefs.printpref, &window_);
        const std::string answer = choice.Ask();
        if (!answer.empty()) {
            state_.prefs.printpref = answer;
            state_.settings.Save("printpref", answer);
        }
        return answer;
    }

    // The log view's printout: report 3 over that view, or its grid as it stands.
    void LogGrid(logbook::LogSpread& view)
    {
        const std::string answer = AskPrintout("frmNewLogGrid");
        if (answer.empty())
            return;
        if (answer == "C") {
            Open(3, [&view](reports::ReportWindow& report) { report.Context().logSpread = &view; });
            return;
        }
        reports::ReportContext context(state_, clock_);
        reports::PainterSurface surface;
        reports::QuickPrintout(LogGridOf(view), surface, context);
        Print(surface);
    }

    // printlist: the quick printout of the current tab, or the classic database report.
    void Printout()
    {
        const std::string answer = AskPrintout("frmDSM");
        if (answer.empty())
            return;
        if (answer == "C") {
            Open(2);
            return;
        }
        const int tab = std::clamp(window_.CurrTab(), 0, spread::kSpreadTabs - 1);
        reports::ReportContext context(state_, clock_);
        reports::PainterSurface surface;
        reports::QuickPrintout(state_.grids[static_cast<std::size_t>(tab)], surface, context);
        Print(surface);
    }

private:
    // The log spreadsheet as a grid of the quick printout: its captions, widths and cells.
    static spread::Grid LogGridOf(const logbook::LogSpread& view)
    {
        spread::Grid grid;
        for (int col = 1; col <= spread::kGridCols; ++col) {
            const bool used = col <= logbook::kLogSpreadCols;
            grid.SetHeader(col, used ? logbook::LogSpreadCaptions[col - 1] : "");
            grid.SetColWidth(col, used ? view.widths[static_cast<std::size_t>(col)] : 0);
        }
        for (const logbook::LogSpreadRow& row : view.grdObjectLog) {
            std::string text;
            for (std::size_t i = 0; i < row.cells.size(); ++i)
                text += (i ? "\t" : "") + row.cells[i];
            grid.AppendRow(text);
        }
        return grid;
    }

    void Print(reports::PainterSurface& surface)
    {
        QPrinter printer(QPrinter::HighResolution);
        printer.setPageOrientation(QPageLayout::Landscape);
        QPrintDialog dialog(&printer, &window_);
        if (dialog.exec() == QDialog::Accepted)
            surface.PaintTo(printer, 1, surface.PageCount());
    }

    spread::frmMainScreen& window_;
    spread::AppState& state_;
    const astro::Clock& clock_;
    ChartContextSource charts_;
};

} // namespace

void WireReports(spread::frmMainScreen& window, spread::AppState& state, const astro::Clock& clock,
                 ChartContextSource charts)
{
    auto* commands = new ReportCommands(window, state, clock, std::move(charts));
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    const auto open = [&dispatcher, commands](const char* key, int number) {
        dispatcher.SetAction(key, [commands, number] { commands->Open(number); });
    };
    open("atscope", 12);
    open("atscopeb", 13);
    open("atscopec", 14);
    open("OFinder", 16);
    open("fullmoon", 150);
    open("logreport", 3);
    open("messiercert", 133);
    open("messiercert2", 4);
    open("herschelcert", 7);
    open("herschelcert2", 77);
    open("stat", 8);
    dispatcher.SetAction("plogone", [commands] { commands->LogSingle(); });
    dispatcher.SetAction("mnuopd", [commands] { commands->PlanDetails(); });
    dispatcher.SetAction("popo", [commands] { commands->PlanObjectsObserved(); });
    dispatcher.SetAction("printlist", [commands] { commands->Printout(); });
    dispatcher.SetAction("tollogreportnew", [commands] {
        commands->Open(1112, [](reports::ReportWindow& report) {
            report.NotesSQL(logbook::LogSpreadSql(logbook::ShowAllTypes));
        });
    });
}

LogbookPrinting ReportsOfTheLogbook(spread::frmMainScreen& window, spread::AppState& state,
                                    const astro::Clock& clock)
{
    auto* commands = new ReportCommands(window, state, clock, {});
    LogbookPrinting printing;
    printing.entryReport = [commands](int number, logbook::LogEntryForm& entry) {
        commands->Open(
            number, [&entry](reports::ReportWindow& report) { report.Context().entry = &entry; });
    };
    printing.logGrid = [commands](logbook::LogSpread& view) { commands->LogGrid(view); };
    printing.logNotes = [commands](logbook::LogSpread& view, const std::string& title,
                                   const std::string& notes) {
        commands->Open(1111, [&view, &title, &notes](reports::ReportWindow& report) {
            report.ObjectIDToPrint(title);
            report.RichTextToPrint(notes);
            report.NotesSQL(logbook::LogSpreadSql(
                view.cboLogTypeFilter == logbook::LogTypeDesignText ? logbook::ShowAllTypes
                                                                    : view.cboLogTypeFilter));
        });
    };
    return printing;
}

} // namespace app
