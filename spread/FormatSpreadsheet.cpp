#include "spread/FormatSpreadsheet.h"

namespace spread {
namespace {

struct ColumnFormat
{
    const char* header;
    HAlign align;
};

constexpr HAlign L = HAlign::Left;
constexpr HAlign C = HAlign::Center;
constexpr HAlign R = HAlign::Right;
constexpr HAlign G = HAlign::General;

// Columns 1 to 31.
constexpr std::array<ColumnFormat, kGridCols> kColumns{{
    {"pln", C},        {"img", C},     {"obs", C},      {"ObjectID", L}, {"OtherID", L},
    {"Type", C},       {"R.A.", C},    {"Dec.", C},     {"Epoch", R},    {"Alt", R},
    {"Azm", R},        {"Rise", R},    {"Transit", R},  {"Set", R},      {"Const", C},
    {"Size", R},       {"Mag1", R},    {"Mag2", R},     {"mcode", C},    {"Gal Lon", R},
    {"Gal Lat", R},    {"Pos Ang", R}, {"Sep", R},      {"Catalog", R},  {"Image Path", R},
    {"Herschel", G},   {"RecordID", G}, {"Sky#", R},    {"Ura#", R},     {"Millennium#", L},
    {"Desc", L},
}};

void AutoSize(Grid& grid, const std::array<double, kGridCols + 1>& widths)
{
    for (int col = 1; col <= kGridCols; ++col)
        if (grid.ColWidth(col) != 0)
            grid.SetColWidth(col, widths[static_cast<std::size_t>(col)] + 1);
}

bool IsFloatColumn(int col)
{
    return col == 10 || col == 11 || (col >= 16 && col <= 23);
}

} // namespace

int SortColumnOf(std::string_view sortName)
{
    for (const SortColumn& column : kSortColumns)
        if (column.name == sortName)
            return column.col;
    return 0;
}

void FormatSpreadsheet(Grid& grid, int tab, bool rowHeaderWidth, const FormatOptions& options)
{
    if (tab < 0 || tab > 4)
        return;

    for (int col = 1; col <= kGridCols; ++col)
        grid.SetHeader(col, kColumns[static_cast<std::size_t>(col - 1)].header);
    if (rowHeaderWidth)
        grid.SetColWidth(0, 6.25);

    for (int col = 1; col <= kGridCols; ++col) {
        const HAlign align = kColumns[static_cast<std::size_t>(col - 1)].align;
        if (align != HAlign::General)
            grid.SetTypeHAlign(col, align);
        if (IsFloatColumn(col))
            grid.SetCellType(col, CellType::Float, 2);
    }
    // The headers and cells are the same at both autosizes below, and so are the widths.
    std::array<double, kGridCols + 1> widths{};
    if (options.autosizespread) {
        widths = options.rowWidths ? grid.MaxTextColWidths(*options.rowWidths)
                                   : grid.MaxTextColWidths();
        AutoSize(grid, widths);
    }

    std::array<SortKey, 3> keys{};
    bool sortOnClient = false;
    for (std::size_t level = 0; level < keys.size(); ++level) {
        const int col = SortColumnOf(options.sort[level]);
        if (col != 0) {
            keys[level] = {col, options.descending[level]};
            sortOnClient = true;
        }
    }
    if (sortOnClient)
        grid.Sort(keys);

    grid.SetHighlightCol(options.targetSet ? 23 : 0);

    if (options.zerosup) {
        std::uint32_t mask = 0;
        for (int col : {10, 11, 16, 17, 18, 20, 21, 22, 28, 29})
            mask |= Grid::ColumnBit(col);
        if (!options.targetSet)
            mask |= Grid::ColumnBit(23);
        grid.SetZeroSuppression(mask);
        grid.SetRedPlanStars(true);
    } else {
        grid.SetZeroSuppression(0);
        grid.SetRedPlanStars(false);
    }

    // "n/a" must be able to stand in the galactic columns.
    grid.SetCellType(20, CellType::StaticText);
    grid.SetCellType(21, CellType::StaticText);
    if (options.autosizespread)
        AutoSize(grid, widths);

    if (options.allGcvs) {
        grid.SetHeader(20, "Epoch Max Light");
        grid.SetHeader(21, "Period");
        grid.SetHeader(5, "Var Type");
        grid.SetHeader(17, "MagMax");
        grid.SetHeader(18, "MagMin");
        grid.SetHeader(23, "Dur Ecl");
    } else {
        grid.SetHeader(20, "Gal Lon");
        grid.SetHeader(21, "Gal Lat");
        grid.SetHeader(5, "Other ID");
        grid.SetHeader(17, "Mag 1");
        grid.SetHeader(18, "Mag 2");
        grid.SetHeader(23, "Sep");
    }
}

} // namespace spread
