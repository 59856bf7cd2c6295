#include "spread/FormatSpreadsheet.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

using namespace spread;

namespace {

std::string Row(const std::string& id, const std::string& alt, const std::string& azm,
                const std::string& catalog)
{
    std::vector<std::string> cells(kGridCols);
    cells[3] = id;
    cells[9] = alt;
    cells[10] = azm;
    cells[22] = "0.0";
    cells[23] = catalog;
    std::string row;
    for (std::size_t i = 0; i < cells.size(); ++i)
        row += (i ? "\t" : "") + cells[i];
    return row;
}

Grid ThreeRows()
{
    Grid grid;
    grid.AppendRow(Row("a", "+9.50", "200.00", "2000"));
    grid.AppendRow(Row("b", "+10.00", "10.00", "2000"));
    grid.AppendRow(Row("c", "-05.00", "200.00", "2000"));
    return grid;
}

std::string Ids(const Grid& grid)
{
    std::string ids;
    for (int row = 1; row <= grid.MaxRows(); ++row)
        ids += grid.Text(row, 4);
    return ids;
}

TEST(FormatSpreadsheet, TabAboveFourReturnsAtOnce)
{
    Grid grid = ThreeRows();
    FormatOptions options;
    options.sort[0] = "Altitude";
    FormatSpreadsheet(grid, 5, true, options);
    EXPECT_EQ(grid.Header(4), "");
    EXPECT_EQ(grid.ColWidth(0), 8.0);
    EXPECT_EQ(Ids(grid), "abc");
}

TEST(FormatSpreadsheet, SortsOnlyByComputedColumns)
{
    struct Case
    {
        const char* name;
        std::array<std::string, 3> sort;
        std::array<bool, 3> descending;
        const char* ids;
    };
    const Case cases[] = {
        {"altitude ascending, numeric", {"Altitude", "", ""}, {}, "cab"},
        {"altitude descending", {"Altitude", "", ""}, {true, false, false}, "bac"},
        {"a SQL field level is left to SQL", {"Magnitude", "Azimuth", ""}, {}, "bac"},
        {"azimuth then altitude descending",
         {"Azimuth", "Altitude", ""},
         {false, true, false},
         "bac"},
        {"no computed level keeps the order", {"ObjectID", "<none>", ""}, {true, true, true},
         "abc"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Grid grid = ThreeRows();
        FormatOptions options;
        options.sort = c.sort;
        options.descending = c.descending;
        FormatSpreadsheet(grid, 2, false, options);
        EXPECT_EQ(Ids(grid), c.ids);
    }
}

TEST(FormatSpreadsheet, ZeroSuppressionSparesTheTargetColumn)
{
    for (bool target : {false, true}) {
        SCOPED_TRACE(target);
        Grid grid = ThreeRows();
        FormatOptions options;
        options.zerosup = true;
        options.targetSet = target;
        FormatSpreadsheet(grid, 0, false, options);
        EXPECT_EQ(grid.CellSuppressed(1, 23), !target);
        EXPECT_EQ(grid.HighlightCol(), target ? 23 : 0);
        EXPECT_TRUE(grid.RedPlanStars());
        EXPECT_EQ(grid.Text(1, 23), "0.0");
    }
}

TEST(FormatSpreadsheet, CellTypesAndAutosize)
{
    Grid grid = ThreeRows();
    grid.SetColWidth(6, 0); // hidden by the profile
    FormatOptions options;
    options.autosizespread = true;
    FormatSpreadsheet(grid, 0, false, options);
    for (int col : {10, 23})
        EXPECT_EQ(grid.ColCellType(col), CellType::Float) << col;
    for (int col : {20, 21, 12})
        EXPECT_EQ(grid.ColCellType(col), CellType::StaticText) << col;
    EXPECT_EQ(std::tuple(grid.TypeHAlign(4), grid.TypeHAlign(7), grid.TypeHAlign(10)),
              std::tuple(HAlign::Left, HAlign::Center, HAlign::Right));
    EXPECT_EQ(grid.ColWidth(6), 0);
    EXPECT_EQ(grid.ColWidth(10), 7.0);  // "+10.00" and one more
    EXPECT_EQ(grid.ColWidth(4), 9.0);   // the header "ObjectID"

    // Widths measured by the load stand for the rows; the headers still count.
    CellWidths rows{};
    rows[4] = 3;
    rows[31] = 40;
    options.rowWidths = &rows;
    FormatSpreadsheet(grid, 0, false, options);
    EXPECT_EQ(grid.ColWidth(4), 9.0);
    EXPECT_EQ(grid.ColWidth(31), 41.0);
    EXPECT_EQ(grid.ColWidth(6), 0);
}

} // namespace
