#pragma once
// The formatting of a loaded object list: header texts, alignments, widths, numeric cell types,
// the client-side sort by computed columns, the target highlight and zero suppression.
// Fonts and colours belong to the view.

#include <array>
#include <string>
#include <string_view>

#include "spread/Grid.h"

namespace spread {

// The computed pseudo-fields that may be chosen as a sort key, with the grid column each one
// sorts. SQL cannot order by them, so the grid sorts itself.
struct SortColumn
{
    std::string_view name;
    int col;
};
inline constexpr std::array<SortColumn, 8> kSortColumns{{
    {"Altitude", 10},
    {"Azimuth", 11},
    {"Rise", 12},
    {"Optimum", 13},
    {"Set", 14},
    {"Sky#", 28},
    {"Ura#", 29},
    {"Mill#", 30},
}};

// The grid column of a sort name, 0 when it is no computed pseudo-field.
int SortColumnOf(std::string_view sortName);

// The settings the formatting reads.
struct FormatOptions
{
    bool speed1 = false;
    bool autosizespread = false;
    std::array<std::string, 3> sort;       // sort1..sort3
    std::array<bool, 3> descending{};      // Des1..Des3 is "D"
    bool zerosup = false;
    bool targetSet = false;                // a home target is set
    bool allGcvs = false;                  // every row of the list is of the catalogue "GCVS"
    // The widest cells of the grid's rows when the load measured them as it wrote them; else
    // the autosize reads every row.
    const CellWidths* rowWidths = nullptr;
};

// FormatSpreadsheet: formats the grid of a spreadsheet tab.
// Given: tab (0 to 4; any other returns at once), rowHeaderWidth (column 0 becomes 6.25 wide).
// Notes: the sort runs only for levels whose name is a computed pseudo-field; the other levels
//   were ordered by SQL. Zero suppression keeps each 0 in its cell.
void FormatSpreadsheet(Grid& grid, int tab, bool rowHeaderWidth, const FormatOptions& options);

} // namespace spread
