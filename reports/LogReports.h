#pragma once
// The column reports over the grids and the single-observation reports: Printdatabasereport
// (report 2, the current tab of the object list), Printlogreport (3 and 30, the log
// spreadsheet), PrintLogSummary (134, the open entry) and PrintLogSingle (88, the logbook one
// block per observation, in frmSortSelection's order).

namespace reports {

class ReportWindow;

void Printdatabasereport(ReportWindow& window);
// Report 30 refreshes the log spreadsheet first.
void Printlogreport(ReportWindow& window);
void PrintLogSummary(ReportWindow& window);
void PrintLogSingle(ReportWindow& window);

} // namespace reports
