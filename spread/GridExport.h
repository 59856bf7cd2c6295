#pragma once
// The grid's own exports: the visible rows and columns of an object list as an Excel workbook
// and as an HTML page, and as the observing lists of the planetarium programs observers carry
// to the telescope.
//
// Visible: rows not hidden, columns 1 to 31 whose width is not 0; the header row first.
// Failures throw services::Fault with the cause and an empty location.

#include "spread/Grid.h"

#include <filesystem>
#include <string>

namespace spread {

// Grid columns whose cells go into the workbook as numbers when their text is one.
bool IsNumericExportColumn(int col);

// A workbook of one sheet "sheet1": the header row bold and frozen, then the rows; cells of
// the numeric columns as numbers shown "0.00" when their text is a number, all else as text.
// One line per export is added to logFile. Written in constant memory: a row at a time.
void WriteGridExcel(const Grid& grid, const std::filesystem::path& file,
                    const std::filesystem::path& logFile);

// An HTML5 page titled with the grid's tag: one table, the header cells in <thead>, the rows in
// <tbody>, text escaped, each column aligned as the grid aligns it. One line per export is
// added to logFile.
void WriteGridHtml(const Grid& grid, const std::filesystem::path& file,
                   const std::filesystem::path& logFile);

// A SkySafari observing list: per row the ObjectID, and the OtherID when there is one, as
// catalogue numbers.
void WriteSkyList(const Grid& grid, const std::filesystem::path& file);

// The site and night of a KStars observing list.
struct ObservingListSite
{
    std::string name;
    std::string date; // ddMMyyyy
};

// A KStars observing list (the OAL document its observing planner opens): the site and date,
// then one target per row, named by its ObjectID, at the R.A. and Dec. of columns 7 and 8.
void WriteObservingList(const Grid& grid, const ObservingListSite& site,
                        const std::filesystem::path& file);

} // namespace spread
