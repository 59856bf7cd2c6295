// The table of report numbers: Command9_Click runs the routine of ReportWindow::ReportNumber.

#include "reports/Certificates.h"
#include "reports/LogReports.h"
#include "reports/PlanReports.h"
#include "reports/ReportWindow.h"
#include "reports/TextReports.h"

#include "services/Fault.h"
#include "spread/AppState.h"

#include <algorithm>

namespace reports {

namespace {

struct ReportRoutine
{
    const char* name; // the routine, for fault locations
    void (*run)(ReportWindow& window);
};

bool HasCurrentRow(const ReportContext& context)
{
    const int tab = context.TMM.CurrTab;
    return tab >= 0 && tab < spread::kSpreadTabs && context.row >= 1 &&
           context.row <= context.TMM.grids[static_cast<std::size_t>(tab)].MaxRows();
}

std::optional<ReportRoutine> RoutineOf(int number)
{
    switch (number) {
    case 1:
    case 5:
    case 6:
        return ReportRoutine{"Command9_Click", PrintTextDocument};
    case 2:
        return ReportRoutine{"Printdatabasereport", Printdatabasereport};
    case 3:
    case 30:
        return ReportRoutine{"Printlogreport", Printlogreport};
    case 4:
        return ReportRoutine{"Printmessierreport2", Printmessierreport2};
    case 7:
        return ReportRoutine{"Printherschel", Printherschel};
    case 8:
        return ReportRoutine{"Printstat", Printstat};
    case 10:
    case 11:
        return ReportRoutine{"Command9_Click", PrintWindowText};
    case 12:
        return ReportRoutine{"printAtScopeLog", [](ReportWindow& w) { printAtScopeLog(w, false); }};
    case 13:
        return ReportRoutine{"printAtScopeLog", [](ReportWindow& w) { printAtScopeLog(w, true); }};
    case 14:
        return ReportRoutine{"printbatchscopelog", printbatchscopelog};
    case 15:
        return ReportRoutine{"printplanreport", printplanreport};
    case 16:
        return ReportRoutine{"printchartreport", printchartreport};
    case 17:
    case 18:
    case 19:
    case 20:
        return ReportRoutine{"Command9_Click", PrintEntryNotes};
    case 77:
        return ReportRoutine{"Printherschel2", Printherschel2};
    case 88:
        return ReportRoutine{"PrintLogSingle", PrintLogSingle};
    case 133:
        return ReportRoutine{"Printmessierreport1", Printmessierreport1};
    case 134:
        return ReportRoutine{"PrintLogSummary", PrintLogSummary};
    case 150:
        return ReportRoutine{"calcfullmoon", calcfullmoon};
    case 151:
        return ReportRoutine{"PrintPlanObjectsObserved", PrintPlanObjectsObserved};
    case 1111:
    case 1112:
        return ReportRoutine{"PrintNotes", PrintNotes};
    default:
        return std::nullopt;
    }
}

} // namespace

bool ReportWindow::Known(int number)
{
    return RoutineOf(number) || number == 90 ||
           (number >= 900 && number <= 903);
}

bool ReportWindow::ReadsCurrentRow(int number)
{
    return number == 12 || number == 15 || number == 16;
}

void ReportWindow::Command9_Click()
{
    spread::AppState& TMM = context_.TMM;
    page_ = 1;
    zoom_ = 0;
    surface_.SetMargins({});
    if (ReportNumber == 90 || (ReportNumber >= 900 && ReportNumber <= 903)) {
        PrintNewChart(ReportNumber);
        return;
    }
    const std::optional<ReportRoutine> routine = RoutineOf(ReportNumber);
    if (!routine)
        return;
    if (ReadsCurrentRow(ReportNumber) && !HasCurrentRow(context_)) {
        TMM.ui.ShowMessage(kNoRowText, kNoRowTitle, "I");
        return;
    }
    TMM.ui.Busy(services::BusyKind::Printing);
    Build(routine->name, [&] { routine->run(*this); });
    TMM.ui.EndBusy();
}

void ReportWindow::Build(const char* routine, const std::function<void()>& body)
{
    services::Trap(context_.TMM.ui, std::string("frmUserM.") + routine, body);
    if (surface_.DocumentOpen())
        surface_.EndDoc();
}

void ReportWindow::PrintNewChart(int number)
{
    spread::AppState& TMM = context_.TMM;
    page_ = 1;
    zoom_ = 0;
    const std::optional<QImage> picture =
        context_.capture ? context_.capture(number) : std::optional<QImage>();
    if (!picture || picture->isNull()) {
        TMM.ui.ShowMessage("Please open the chart first", "Invalid Usage", "I");
        return;
    }
    Build("PrintNewChart", [&] {
        surface_.StartDoc();
        surface_.SetHeaderFont("Arial", 10);
        surface_.SetFooter(DataFooter(context_));
        surface_.SetFont({"Arial", 20, true});
        surface_.Paragraph(number == 90 ? "Selvane 2003 3-Panel Finder Chart"
                                        : "Selvane 2003 Quick Chart");
        surface_.Paragraph("");
        const int width = surface_.PageWidth() - 2 * 1440;
        const int height = picture->width() > 0 ? width * picture->height() / picture->width() : 0;
        surface_.Pictures({*picture}, width, std::min(height, surface_.PageHeight() - 4 * 1440), 0);
        surface_.EndDoc();
    });
}

} // namespace reports
