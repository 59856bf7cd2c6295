#pragma once
// The grid store behind each object list: rows of 31 text cells, the header row, hidden rows,
// column widths, alignments and cell types, the tag, client-side sorts and the display
// attributes the list's formatting sets.
//
// Numbering follows the grid's own: rows from 1 (row 0 is the header row), columns 1 to 31
// (column 0 is the row header). A row is kept as the one tab-separated text that Clip wrote,
// in a chunked character arena, so that 708,000 rows cost their text plus 16 bytes each.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace spread {

inline constexpr int kGridCols = 31;
// The first columns (plan mark, image, observed, ObjectID) stay in view while a grid scrolls
// sideways.
inline constexpr int kFrozenCols = 4;

// The widest cell of each column (index 1 to 31) over some rows, in characters.
using CellWidths = std::array<std::size_t, kGridCols + 1>;

// Widens widest to the cells of one tab-separated row as the grid keeps it: cells beyond 31
// do not count, a UTF-8 continuation byte is no character.
void WidenCellWidths(std::string_view tabSeparated, CellWidths& widest);

enum class HAlign
{
    General,
    Left,
    Center,
    Right,
};

// How a column's cells compare in a sort: text byte by byte, or by their numeric value.
enum class CellType
{
    StaticText,
    Float,
};

// One level of a client-side sort.
struct SortKey
{
    int col = 0;           // 1 to 31; 0 means the level is unused
    bool descending = false;
};

class Grid
{
public:
    Grid();
    Grid(Grid&&) noexcept;
    Grid& operator=(Grid&&) noexcept;
    ~Grid();

    // Rows. Setting MaxRows to 0 empties the grid and frees its text; a larger value adds
    // blank rows, a smaller one drops the rows beyond it.
    int MaxRows() const { return static_cast<int>(rows_.size()); }
    void SetMaxRows(int rows);

    // Writes one row from tab-separated text: cell 1 is the text before the first tab. Cells
    // beyond 31 are dropped, missing ones are blank. Row must be 1 to MaxRows.
    void Clip(int row, std::string_view tabSeparated);
    // Adds one row at the end and clips the text into it; returns its number.
    int AppendRow(std::string_view tabSeparated);

    // A cell's text; row 0 gives the header. Out-of-range cells are blank.
    std::string_view Text(int row, int col) const;
    // Rewrites one cell of a row (a plan mark, the observed mark).
    void SetText(int row, int col, std::string_view text);
    // The whole row as written, tab-separated.
    std::string_view RowText(int row) const;

    // Header row texts, columns 0 to 31.
    void SetHeader(int col, std::string_view text);
    const std::string& Header(int col) const { return headers_.at(col); }

    bool RowHidden(int row) const;
    void SetRowHidden(int row, bool hidden);

    // Widths in the grid's character units; a width of 0 hides the column.
    double ColWidth(int col) const { return widths_.at(col); }
    void SetColWidth(int col, double width) { widths_.at(col) = width; }
    // The width the widest text of the column needs, header included, in characters.
    double MaxTextColWidth(int col) const;
    // The same for every column at once (index 0 to 31), in one pass over the rows.
    std::array<double, kGridCols + 1> MaxTextColWidths() const;
    // The same from the widest cells of every row, measured as the rows were written.
    std::array<double, kGridCols + 1> MaxTextColWidths(const CellWidths& rows) const;

    HAlign TypeHAlign(int col) const { return aligns_.at(col); }
    void SetTypeHAlign(int col, HAlign align) { aligns_.at(col) = align; }
    CellType ColCellType(int col) const { return types_.at(col); }
    int TypeFloatDecimalPlaces(int col) const { return decimals_.at(col); }
    void SetCellType(int col, CellType type, int decimalPlaces = 0);

    // The caption of what the grid shows ("All Messier Objects").
    const std::string& Tag() const { return tag_; }
    void SetTag(std::string tag) { tag_ = std::move(tag); }

    // Redraw off while a list loads; the view repaints when it is turned back on.
    bool ReDraw() const { return redraw_; }
    void SetReDraw(bool redraw) { redraw_ = redraw; }

    // Sorts all rows by up to three keys (level 1 first); Float columns compare by value, a
    // blank or non-numeric cell counting as 0, other columns by their text. Rows that compare
    // equal keep their order. Hidden flags travel with their rows.
    void Sort(const std::array<SortKey, 3>& keys);

    // Zero suppression is a display attribute: the cell keeps its 0 (sorts stay numeric) and
    // the view paints it in the background colour.
    void SetZeroSuppression(std::uint32_t columnMask) { zeroSuppressed_ = columnMask; }
    std::uint32_t ZeroSuppression() const { return zeroSuppressed_; }
    // True when the cell is painted invisible: its column is suppressed and its value is 0.
    bool CellSuppressed(int row, int col) const;

    // With zero suppression a "pln" cell of "X*" is painted red.
    bool RedPlanStars() const { return redPlanStars_; }
    void SetRedPlanStars(bool red) { redPlanStars_ = red; }

    // A column painted in the highlight colour (the distance to the home target); 0 for none.
    int HighlightCol() const { return highlightCol_; }
    void SetHighlightCol(int col) { highlightCol_ = col; }

    // Bytes held by the rows and their text (capacity, not just use).
    std::size_t MemoryBytes() const;

    static constexpr std::uint32_t ColumnBit(int col) { return std::uint32_t{1} << col; }

private:
    struct RowRef
    {
        std::uint32_t chunk = 0;
        std::uint32_t offset = 0;
        std::uint32_t length = 0;
        std::uint32_t hidden = 0;
    };

    std::string_view View(const RowRef& ref) const;
    RowRef Store(std::string_view text);

    std::vector<RowRef> rows_;
    std::vector<std::unique_ptr<char[]>> chunks_;
    std::vector<std::uint32_t> chunkSizes_;
    std::uint32_t chunkUsed_ = 0;

    std::array<std::string, kGridCols + 1> headers_;
    std::array<double, kGridCols + 1> widths_;
    std::array<HAlign, kGridCols + 1> aligns_;
    std::array<CellType, kGridCols + 1> types_;
    std::array<int, kGridCols + 1> decimals_;
    std::string tag_;
    bool redraw_ = true;
    std::uint32_t zeroSuppressed_ = 0;
    int highlightCol_ = 0;
    bool redPlanStars_ = false;
};

// The numeric value of a cell text as a Float cell reads it: leading blanks and a "+" skipped,
// "." or "," as the decimal sign; anything else gives 0.
double CellValue(std::string_view text);

} // namespace spread
