#include "spread/GridRow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace spread;

namespace {

std::vector<std::string> Cells(const std::string& row)
{
    std::vector<std::string> cells(1); // cells[0] stands for the row header
    cells.emplace_back();
    for (char ch : row) {
        if (ch == '\t')
            cells.emplace_back();
        else
            cells.back() += ch;
    }
    return cells;
}

// The given cells of a row, joined by "|".
std::string Pick(const std::vector<std::string>& cells, std::initializer_list<std::size_t> cols)
{
    std::string out;
    for (std::size_t col : cols)
        out += (out.empty() ? "" : "|") + cells.at(col);
    return out;
}

ObjectRecord M31()
{
    ObjectRecord r;
    r.ObjectID = "NGC 224";
    r.OtherID = "M 31;Andromeda Galaxy";
    r.ObjectType = "Gx";
    r.RAhours = NumberField::Of(0);
    r.RAminutes = NumberField::Of(42.7);
    r.DeclinationDegrees = NumberField::Of(41);
    r.DeclinationMinutes = NumberField::Of(16.0);
    r.constellation = "And";
    r.ObjectSize = NumberField::Of(177.83);
    r.Magnitude = NumberField::Of(4.36);
    r.MCode = "Sb";
    r.Description = "eB;vL;vmE";
    r.Catalog = "2000";
    r.ImageFile = "m31.jpg";
    r.HObject = "  ";
    r.EPOCH = NumberField::Of(2000);
    r.GalacticLongitude = NumberField::Of(121.17);
    r.GalacticLatitude = NumberField::Of(-21.57);
    r.PositionAngle = NumberField::Of(35);
    r.Separation = NumberField::Of(0);
    r.ID = 4711;
    r.Observed = true;
    r.planMark = "X*";
    return r;
}

ComputedColumns Computed(double alt, double azm)
{
    ComputedColumns c;
    c.alt = alt;
    c.azm = azm;
    c.rise.Assign("06:12 PM");
    c.transit.Assign("11:41 PM");
    c.set.Assign("03:02 PM");
    c.skyAtlas.Assign("4");
    c.uranometria.Assign("60");
    c.millennium.Assign("105 Vol I");
    return c;
}

std::vector<std::string> Write(const ObjectRecord& record, const ComputedColumns& computed,
                               const RowOptions& options, bool* kept = nullptr)
{
    Position shown;
    const bool hasPosition = StoredPosition(record, shown);
    std::string row;
    const RowVerdict verdict = WriteGridRow(record, !hasPosition, shown, computed, options, row);
    if (kept)
        *kept = verdict.kept;
    return Cells(row);
}

TEST(WriteGridRow, AllThirtyOneColumnsInOrder)
{
    const std::vector<std::string> expected = {
        "",        "X*",       "X",       "X",        "NGC 224",   "M 31 Andromeda Galaxy",
        "Gx",      "00 42 42.0", "+41 16 00.0", "2000", "+52.30",   "95.00",
        "06:12 PM", "11:41 PM", "03:02 PM", "And",    "177.83",    "4.36",
        "",        "Sb",       "121.2",   "-21.6",    "35.0",      "0.0",
        "2000",    "m31.jpg",  "  ",      "4711",     "4",         "60",
        "105 Vol I", "eB vL vmE"};
    const std::vector<std::string> cells = Write(M31(), Computed(52.3, 95), RowOptions{});
    ASSERT_EQ(cells.size(), 32u);
    for (int col = 1; col <= 31; ++col) {
        SCOPED_TRACE(col);
        EXPECT_EQ(cells[static_cast<std::size_t>(col)], expected[static_cast<std::size_t>(col)]);
    }
}

// The row is gathered in a buffer of its own before it reaches the string: long texts, and
// semicolons on either side of the buffer's end, come through whole, and a reused string holds
// only the last row.
TEST(WriteGridRow, LongTextsAndReusedRows)
{
    struct Case
    {
        std::size_t otherLength;
        std::size_t descriptionLength;
    };
    const Case cases[] = {{0, 0}, {20, 430}, {400, 111}, {100, 600}, {3, 5000}, {1500, 1500}};
    std::string row = std::string(9000, 'z'); // left from an earlier, longer row
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.otherLength) + " " + std::to_string(c.descriptionLength));
        std::string other;
        std::string description;
        for (std::size_t i = 0; i < c.otherLength; ++i)
            other += i % 7 == 3 ? ';' : static_cast<char>('a' + i % 26);
        for (std::size_t i = 0; i < c.descriptionLength; ++i)
            description += i % 5 == 0 ? ';' : static_cast<char>('A' + i % 26);
        ObjectRecord record = M31();
        record.OtherID = other;
        record.Description = description;
        Position shown;
        StoredPosition(record, shown);
        WriteGridRow(record, false, shown, Computed(52.3, 95), RowOptions{}, row);
        const std::vector<std::string> cells = Cells(row);
        ASSERT_EQ(cells.size(), 32u);
        std::replace(other.begin(), other.end(), ';', ' ');
        std::replace(description.begin(), description.end(), ';', ' ');
        EXPECT_EQ(cells[5], other);
        EXPECT_EQ(cells[31], description);
        EXPECT_EQ(Pick(cells, {8, 27}), "+41 16 00.0|4711");
    }
}

TEST(WriteGridRow, TurboModeLeavesComputedColumnsEmpty)
{
    RowOptions options;
    options.speed1 = true;
    const std::vector<std::string> cells = Write(M31(), ComputedColumns{}, options);
    for (int col : {10, 11, 12, 13, 14, 28, 29, 30}) {
        SCOPED_TRACE(col);
        EXPECT_EQ(cells[static_cast<std::size_t>(col)], "");
    }
    EXPECT_EQ(cells[7], "00 42 42.0");
}

TEST(WriteGridRow, PositionAndNumberTexts)
{
    struct Case
    {
        const char* name;
        double raH, raM, decD, decM;
        double alt;
        const char* ra;
        const char* dec;
        const char* altText;
    };
    const Case cases[] = {
        {"south on the degrees", 5, 35.3, -5, 23.0, -3.2, "05 35 18.0", "-05 23 00.0", "-03.20"},
        {"south carried by minutes", 12, 0, 0, -30.5, 0, "12 00 00.0", "-00 30 30.0", "00.00"},
        {"stored -0 degrees", 12, 0, -0.0, 30, 0.01, "12 00 00.0", "-00 30 00.0", "+00.01"},
        {"north", 23, 59.9, 89, 59.5, 123.46, "23 59 54.0", "+89 59 30.0", "+123.46"},
        // Seconds that round up to 60 stay "60.0": the minutes are not carried.
        {"seconds round to 60", 1, 12.99999, 10, 0, 5.12, "01 12 60.0", "+10 00 00.0", "+05.12"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ObjectRecord r = M31();
        r.RAhours = NumberField::Of(c.raH);
        r.RAminutes = NumberField::Of(c.raM);
        r.DeclinationDegrees = NumberField::Of(c.decD);
        r.DeclinationMinutes = NumberField::Of(c.decM);
        const std::vector<std::string> cells = Write(r, Computed(c.alt, 0), RowOptions{});
        EXPECT_EQ(Pick(cells, {7, 8, 10}), std::string(c.ra) + "|" + c.dec + "|" + c.altText);
        EXPECT_EQ(cells[8].size(), 11u);
    }
}

TEST(WriteGridRow, NullFieldsGiveBlankCellsAndNoPositionGivesNa)
{
    ObjectRecord r = M31();
    r.RAhours = {};
    r.ObjectSize = {};
    r.Magnitude2 = {};
    r.EPOCH = {};
    r.ImageFile = " ";
    const std::vector<std::string> cells = Write(r, ComputedColumns{}, RowOptions{});
    EXPECT_EQ(Pick(cells, {2, 7, 8, 9, 10, 11, 16, 18}), " |n/a|n/a||00.00|0.00||");
}

TEST(WriteGridRow, EpochColumn)
{
    ObjectRecord r = M31();
    r.EPOCH = NumberField::Of(1950.5);
    EXPECT_EQ(Write(r, ComputedColumns{}, RowOptions{})[9], "1950.5");

    RowOptions options;
    SetPrecessionDate(options, "12/31/2025", services::vb::Regional{});
    ComputedColumns computed;
    computed.precessed = true;
    EXPECT_EQ(Write(r, computed, options)[9], "2025 p");
}

TEST(WriteGridRow, RowFilters)
{
    struct Case
    {
        const char* name;
        RowOptions options;
        ObjectRecord record;
        double alt, azm;
        bool kept;
    };
    auto with = [](auto change) {
        RowOptions o;
        change(o);
        return o;
    };
    ObjectRecord noPosition = M31();
    noPosition.RAhours = {};
    ObjectRecord herschel = M31();
    herschel.HObject = "H 1";
    ObjectRecord unobserved = M31();
    unobserved.Observed = false;
    const RowOptions minAlt10 = with([](RowOptions& o) { o.hasMinAlt = true; o.Pminalt = 10; });
    const RowOptions horizon = with([](RowOptions& o) { o.hasMinAlt = true; o.Pminalt = 0; });
    const RowOptions exclude = with([](RowOptions& o) { o.PAzm1 = 90; o.PAzm2 = 180; });
    const RowOptions include = with([](RowOptions& o) { o.PAzm3 = 90; o.PAzm4 = 180; });
    const RowOptions psupo = with([](RowOptions& o) { o.Psupo = true; });
    const RowOptions shers = with([](RowOptions& o) { o.Shers = true; });
    const Case cases[] = {
        {"below minimum altitude", minAlt10, M31(), 9.99, 0, false},
        {"at minimum altitude", minAlt10, M31(), 10, 0, true},
        {"Pminalt 0 drops below the horizon", horizon, M31(), -0.01, 0, false},
        {"turbo mode ignores Pminalt", with([](RowOptions& o) {
             o.hasMinAlt = true; o.Pminalt = 10; o.speed1 = true; }), M31(), 0, 0, true},
        {"no position is not filtered by altitude", minAlt10, noPosition, 0, 0, true},
        {"alt 0 when Palt is off drops every row", minAlt10, M31(), 0, 0, false},
        {"exclusion lower edge", exclude, M31(), 50, 90, false},
        {"exclusion upper edge", exclude, M31(), 50, 180, false},
        {"outside exclusion", exclude, M31(), 50, 180.01, true},
        {"inclusion edge", include, M31(), 50, 90, true},
        {"outside inclusion", include, M31(), 50, 89.99, false},
        {"observed suppressed", psupo, M31(), 50, 0, false},
        {"unobserved kept", psupo, unobserved, 50, 0, true},
        {"Herschel only drops a blank HObject", shers, M31(), 50, 0, false},
        {"Herschel only keeps a Herschel object", shers, herschel, 50, 0, true},
        {"a plan load skips every filter", with([](RowOptions& o) {
             o.PlanLoad = true; o.hasMinAlt = true; o.Pminalt = 80; o.Psupo = true; }),
         M31(), 0, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        bool kept = false;
        const std::vector<std::string> cells = Write(c.record, Computed(c.alt, c.azm), c.options,
                                                     &kept);
        EXPECT_EQ(kept, c.kept);
        EXPECT_EQ(cells.size(), c.kept ? 32u : 2u); // a dropped row writes nothing
    }
}

TEST(SetPrecessionDate, BlankAndMasksLeavePrecessionOff)
{
    struct Case
    {
        const char* text;
        bool precess;
        const char* year;
        const char* month;
        const char* day;
    };
    const Case cases[] = {
        {"", false, "", "", ""},           {"   ", false, "", "", ""},
        {"__/__/____", false, "", "", ""}, {"__.__.____", false, "", "", ""},
        {"no date", false, "", "", ""},    {"12/31/2025", true, "2025", "12", "31"},
        {"2000-02-29", true, "2000", "2", "29"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        RowOptions options;
        SetPrecessionDate(options, c.text, services::vb::Regional{});
        EXPECT_EQ(options.precess, c.precess);
        EXPECT_EQ(options.ppreYear + "/" + options.ppreMonth + "/" + options.ppreDay,
                  std::string(c.year) + "/" + c.month + "/" + c.day);
    }
}

} // namespace
