#include "spread/Grid.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using spread::CellType;
using spread::Grid;
using spread::SortKey;

namespace {

// A row whose cells are given by column; the rest blank.
std::string Row(std::initializer_list<std::pair<int, std::string>> cells)
{
    std::vector<std::string> cols(spread::kGridCols);
    for (const auto& [col, text] : cells)
        cols[static_cast<std::size_t>(col - 1)] = text;
    std::string row;
    for (std::size_t i = 0; i < cols.size(); ++i) {
        if (i > 0)
            row += '\t';
        row += cols[i];
    }
    return row;
}

std::vector<std::string> Column(const Grid& grid, int col)
{
    std::vector<std::string> texts;
    for (int row = 1; row <= grid.MaxRows(); ++row)
        texts.emplace_back(grid.Text(row, col));
    return texts;
}

TEST(Grid, ClipSplitsCellsAtTabs)
{
    struct Case
    {
        const char* name;
        std::string clip;
        int col;
        std::string expected;
    };
    const std::string full = Row({{1, " "}, {4, "M 31"}, {31, "vB, vL"}});
    const Case cases[] = {
        {"first cell", full, 1, " "},
        {"middle cell", full, 4, "M 31"},
        {"last cell", full, 31, "vB, vL"},
        {"blank cell between tabs", full, 5, ""},
        {"missing trailing cells are blank", "a\tb", 30, ""},
        {"short row keeps its last cell", "a\tb", 2, "b"},
        {"cells beyond 31 are dropped", full + "\textra", 31, "vB, vL"},
        {"empty row", "", 1, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Grid grid;
        grid.AppendRow(c.clip);
        EXPECT_EQ(grid.Text(1, c.col), c.expected);
        EXPECT_EQ(grid.RowText(1).find("extra"), std::string_view::npos);
    }
}

TEST(Grid, OutOfRangeCellsAreBlankAndHeaderIsRowZero)
{
    Grid grid;
    grid.AppendRow("a");
    grid.SetHeader(4, "ObjectID");
    EXPECT_EQ(grid.Text(0, 4), "ObjectID");
    EXPECT_EQ(grid.Text(2, 1), "");
    EXPECT_EQ(grid.Text(1, 32), "");
    EXPECT_EQ(grid.Text(1, 0), "");
    EXPECT_THROW(grid.Clip(2, "x"), std::out_of_range);
}

TEST(Grid, SetTextRewritesOneCellAndKeepsTheRest)
{
    for (int col : {1, 3, 16, 31}) {
        SCOPED_TRACE(col);
        Grid grid;
        grid.AppendRow(Row({{1, " "}, {3, " "}, {4, "NGC 224"}, {16, "177.83"}, {31, "desc"}}));
        grid.AppendRow(Row({{4, "next"}}));
        grid.SetRowHidden(1, true);
        const std::vector<std::string> before = [&] {
            std::vector<std::string> cells;
            for (int c = 1; c <= spread::kGridCols; ++c)
                cells.emplace_back(grid.Text(1, c));
            return cells;
        }();
        grid.SetText(1, col, "X*");
        for (int c = 1; c <= spread::kGridCols; ++c)
            EXPECT_EQ(grid.Text(1, c), c == col ? "X*" : before[static_cast<std::size_t>(c - 1)]);
        EXPECT_TRUE(grid.RowHidden(1));
        EXPECT_EQ(grid.Text(2, 4), "next");
    }
}

TEST(Grid, MaxRowsGrowsWithBlankRowsAndZeroEmpties)
{
    Grid grid;
    grid.AppendRow("a\tb");
    grid.SetMaxRows(3);
    EXPECT_EQ(grid.Text(1, 2), "b");
    EXPECT_EQ(grid.Text(3, 1), "");
    grid.Clip(3, "c");
    EXPECT_EQ(grid.Text(3, 1), "c");
    grid.SetMaxRows(1);
    EXPECT_EQ(grid.MaxRows(), 1);
    EXPECT_EQ(grid.Text(1, 1), "a");
    grid.SetMaxRows(0);
    EXPECT_EQ(grid.MaxRows(), 0);
    EXPECT_EQ(grid.MemoryBytes(), 0u);
}

// Rows written across the 4 MB chunk boundary, and one row longer than a chunk.
TEST(Grid, RowsSurviveChunkBoundaries)
{
    Grid grid;
    const int rows = 30000; // about 6 MB of text
    for (int i = 0; i < rows; ++i)
        grid.AppendRow(Row({{4, "NGC " + std::to_string(i)}, {31, std::string(180, 'x')}}));
    const std::string huge(5u << 20, 'y');
    grid.AppendRow(Row({{4, "huge"}, {31, huge}}));
    for (int i = 0; i < rows; i += 997) {
        SCOPED_TRACE(i);
        EXPECT_EQ(grid.Text(i + 1, 4), "NGC " + std::to_string(i));
        EXPECT_EQ(grid.Text(i + 1, 31).size(), 180u);
    }
    EXPECT_EQ(grid.Text(rows, 4), "NGC " + std::to_string(rows - 1));
    EXPECT_EQ(grid.Text(rows + 1, 31).size(), huge.size());
}

// The store must stay compact: a row costs its text plus a small fixed overhead, not a string
// per cell.
TEST(Grid, RowCostsItsTextPlusSixteenBytes)
{
    Grid grid;
    const std::string row = Row({{4, "NGC 1234"}, {5, "UGC 5678"}, {7, "12 34 56.7"},
                                 {8, "+12 34 56.7"}, {10, "+45.67"}, {31, std::string(120, 'd')}});
    const int rows = 100000;
    for (int i = 0; i < rows; ++i)
        grid.AppendRow(row);
    const double perRow = static_cast<double>(grid.MemoryBytes()) / rows;
    EXPECT_LT(perRow, static_cast<double>(row.size()) + 16 + 64);
}

TEST(Grid, SortByNumericAndTextColumns)
{
    struct Case
    {
        const char* name;
        std::array<SortKey, 3> keys;
        std::vector<std::string> expectedIds;
    };
    // Alt is a float column: "+9.50" sorts below "+10.00", which text order gets wrong; a blank
    // counts as 0. Sky# is a text column: "17" sorts before "2".
    const Case cases[] = {
        {"float ascending", {SortKey{10, false}}, {"neg", "blank", "zero", "nine", "ten", "ten2"}},
        {"float descending keeps ties in order",
         {SortKey{10, true}},
         {"ten", "ten2", "nine", "blank", "zero", "neg"}},
        {"text ascending", {SortKey{28, false}}, {"blank", "ten", "zero", "nine", "neg", "ten2"}},
        {"second level breaks ties",
         {SortKey{10, true}, SortKey{28, true}},
         {"ten2", "ten", "nine", "zero", "blank", "neg"}},
        {"unused levels are skipped",
         {SortKey{0, false}, SortKey{10, false}},
         {"neg", "blank", "zero", "nine", "ten", "ten2"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Grid grid;
        grid.SetCellType(10, CellType::Float, 2);
        grid.AppendRow(Row({{4, "ten"}, {10, "+10.00"}, {28, "17"}}));
        grid.AppendRow(Row({{4, "blank"}, {10, ""}, {28, ""}}));
        grid.AppendRow(Row({{4, "nine"}, {10, "+9.50"}, {28, "2"}}));
        grid.AppendRow(Row({{4, "zero"}, {10, "00.00"}, {28, "17"}}));
        grid.AppendRow(Row({{4, "neg"}, {10, "-05.25"}, {28, "3"}}));
        grid.AppendRow(Row({{4, "ten2"}, {10, "10,00"}, {28, "4"}}));
        grid.SetRowHidden(3, true); // "nine"
        grid.Sort(c.keys);
        EXPECT_EQ(Column(grid, 4), c.expectedIds);
        for (int row = 1; row <= grid.MaxRows(); ++row)
            EXPECT_EQ(grid.RowHidden(row), grid.Text(row, 4) == "nine");
    }
}

TEST(Grid, ZeroSuppressionIsADisplayAttribute)
{
    struct Case
    {
        std::string text;
        bool suppressed;
    };
    const Case cases[] = {
        {"0.00", true}, {"00.00", true},  {"+00.00", true}, {"  0", true},  {"-0.0", true},
        {"0.01", false}, {"", false},     {"n/a", false},   {"  ", false}, {"12", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        Grid grid;
        grid.AppendRow(Row({{10, c.text}, {12, "0"}}));
        grid.SetZeroSuppression(Grid::ColumnBit(10));
        EXPECT_EQ(grid.CellSuppressed(1, 10), c.suppressed);
        EXPECT_EQ(grid.Text(1, 10), c.text); // the value stays in the cell
        EXPECT_FALSE(grid.CellSuppressed(1, 12));
    }
}

TEST(Grid, MaxTextColWidthCountsCharactersAndHeader)
{
    Grid grid;
    grid.SetHeader(31, "Desc");
    grid.AppendRow(Row({{31, "ab"}, {15, "Ori"}}));
    EXPECT_EQ(grid.MaxTextColWidth(31), 4.0);
    grid.AppendRow(Row({{31, "Nébuleuse"}}));
    EXPECT_EQ(std::pair(grid.MaxTextColWidth(31), grid.MaxTextColWidth(15)), std::pair(9.0, 3.0));
}

// The all-columns pass reads rows eight bytes at a time, with a fast path for plain ASCII; it
// must agree with the column-by-column count for characters of every length, tabs at every
// offset within a word, rows of more and fewer than 31 cells and tails of any length.
TEST(Grid, MaxTextColWidthsAgreeWithTheColumnByColumnCount)
{
    const char* pieces[] = {"a", "\t", "\t", "\t", "\xC3\xA9" /* é */, "\xE2\x82\xAC" /* € */,
                            "\xF0\x9F\x94\xAD" /* telescope */, "  ", "12.5"};
    std::mt19937 random(7);
    std::uniform_int_distribution<int> piece(0, static_cast<int>(std::size(pieces)) - 1);
    std::uniform_int_distribution<int> length(0, 90);
    std::uniform_int_distribution<int> asciiOnly(0, 1);
    for (int sample = 0; sample < 200; ++sample) {
        SCOPED_TRACE(sample);
        Grid grid;
        grid.SetHeader(3, "Wide header");
        spread::CellWidths measured{};
        for (int r = 0; r < 5; ++r) {
            std::string row;
            const bool ascii = asciiOnly(random) == 1;
            for (int n = length(random); n > 0; --n) {
                const int k = piece(random);
                row += ascii && k >= 4 && k <= 6 ? "b" : pieces[k];
            }
            grid.AppendRow(row);
            spread::WidenCellWidths(row, measured);
        }
        const std::array<double, spread::kGridCols + 1> all = grid.MaxTextColWidths();
        const std::array<double, spread::kGridCols + 1> fromRows = grid.MaxTextColWidths(measured);
        for (int col = 0; col <= spread::kGridCols; ++col) {
            SCOPED_TRACE(col);
            EXPECT_EQ(all[static_cast<std::size_t>(col)], grid.MaxTextColWidth(col));
            EXPECT_EQ(fromRows[static_cast<std::size_t>(col)], grid.MaxTextColWidth(col));
        }
        if (::testing::Test::HasFailure())
            return;
    }
}

} // namespace
