#pragma once
// The sheets taken out to the telescope, read from the current tab of the spreadsheet as it
// stands on the screen: the at-scope log sheet (filled for the current row, blank, or one page
// per row of the tab), the observing plan details of the current row, the three-chart finder
// page, and the plan objects already observed. Also the quick printout of a grid.
//
// Cells are read by their meaning in the grid's layout: obs 3 ("X": observed), ObjectID 4,
// Other ID 5, Type 6, R.A. 7, Dec. 8, Alt 10, Azm 11, Rise 12, Transit 13, Set 14, Const 15,
// Size 16, Mag 1 17, Catalog 24, Herschel 26, RecordID 27, Sky# 28, Ura# 29, Millennium# 30,
// Desc 31. A row of catalogue "PLANETS", "COMET" or "ASTEROID" is no database object: its texts
// print and nothing is looked up by its id.

#include "reports/ReportWindow.h"

namespace spread {
class Grid;
}

namespace reports {

// printAtScopeLog: report 12 (blank false: the current row) and 13 (blank: empty cells, the
// grid is not read). Location: frmUserM.printAtScopeLog
void printAtScopeLog(ReportWindow& window, bool blank);
// printbatchscopelog (report 14): the sheet for every row of the current tab, a page per row.
void printbatchscopelog(ReportWindow& window);
// printplanreport (report 15).
void printplanreport(ReportWindow& window);
// printchartreport (report 16).
void printchartreport(ReportWindow& window);
// PrintPlanObjectsObserved (report 151): the plan of ObsPlanName, sorted by ObsPlanOrderBy.
void PrintPlanObjectsObserved(ReportWindow& window);

// frmPrintout's quick printout: the grid in landscape with its column headers and borders.
void QuickPrintout(const spread::Grid& grid, PrintSurface& surface, const ReportContext& context);

} // namespace reports
