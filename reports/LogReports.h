#pragma once
// The column reports over the grids and the single-observation reports: Printdatabasereport
// (report 2, the current tab of the object list), Printlogreport (3 and 30, the log
// spreadsheet), PrintLogSummary (134, the open entry) and PrintLogSingle (88, the logbook one
// block per observation, in frmSortSelection's order).

#include <string>
#include <vector>

namespace reports {

class ReportWindow;
struct SortSelection;

void Printdatabasereport(ReportWindow& window);
// Report 30 refreshes the log spreadsheet first.
void Printlogreport(ReportWindow& window);
void PrintLogSummary(ReportWindow& window);
void PrintLogSingle(ReportWindow& window);

// Report 88's order clause: "<col> Desc," or "<col>," per key in box order, a box without a
// column dropped, the last comma cut; empty when no box names a column.
std::string LogSingleOrder(const SortSelection& selection);
// The keys frmSortSelection offers: a blank first, then the columns of Logbook and CCDLog (the
// number both hold named by its Logbook column).
const std::vector<std::string>& LogSingleSortColumns();
// Report 88's query: the entries of log type ltype with their CCD rows, the objects matching
// selection.like (Jet's Like) when it is not blank, in LogSingleOrder's order.
std::string LogSingleSql(const SortSelection& selection, const std::string& ltype);

// The font size the column reports print their tables in: the forms' size, or 10 when it is
// too small or too large to print.
double TableFontSize(double size);

} // namespace reports
