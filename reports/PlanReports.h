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

#include <QImage>

#include <string>
#include <vector>

namespace spread {
class Grid;
}
namespace data {
struct ProgramDir;
}

namespace reports {

// The cells of one grid row that these reports print, trimmed; database false for a row of
// catalogue "PLANETS", "COMET" or "ASTEROID".
struct PlanRow
{
    std::string observed, ObjectID, OtherID, Type, RA, Dec, Alt, Azm, Rise, Transit, Set, Const,
        Size, Mag, Catalog, ImagePath, Herschel, RecordID, SkyChart, Uranometria, Millennium, Desc;
    bool database = true;
};
PlanRow PlanRowOf(const spread::Grid& grid, int row);

// The true field of an eyepiece on a telescope.
struct EyepieceField
{
    std::string name;
    double power = 0;        // scope focal length / eyepiece focal length
    double trueFieldDeg = 0; // apparent field / power
};
// The eyepieces of eyepiece.dat (four at most, in file order) with the first telescope of
// scope.dat, whose focal length is its aperture times its F-ratio. Nothing when a file is
// missing or a focal length is 0; eyepieces with a focal length or apparent field of 0 are
// left out.
std::vector<EyepieceField> EyepieceFields(const data::ProgramDir& dir);
// Draws each eyepiece's true field as a circle at the centre of a chart of fieldDeg degrees
// across its shorter side, labelled with its power ("48x").
void DrawEyepieceCircles(QImage& chart, double fieldDeg, const std::vector<EyepieceField>& fields);

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
