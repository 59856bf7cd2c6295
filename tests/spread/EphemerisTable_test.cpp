#include "spread/EphemerisTable.h"

#include "spread/ElementUpdate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// Cutting reads the value's 15-digit decimal form, so a value stored just below its decimal
// form (12.346 is 12.345999...) keeps its last digit; the sign stays on values that cut to 0.
TEST(CutText, CutsTheDecimalFormWithoutRounding)
{
    struct Row
    {
        double x;
        int decimals;
        bool plus;
        const char* text;
    };
    const Row rows[] = {
        {12.346, 3, false, "12.346"},
        {12.34599, 3, false, "12.345"},
        {12.3459999999999, 3, false, "12.345"},
        {23.9999999, 3, false, "23.999"},
        {5.2, 3, false, "5.200"},
        {0, 3, false, "0.000"},
        {1e-20, 3, false, "0.000"},
        {23.45, 2, true, "+23.45"},
        {-23.459, 2, true, "-23.45"},
        {-0.004, 2, true, "-0.00"},
        {0, 2, true, "+0.00"},
        {89.999999, 2, true, "+89.99"},
        {-90, 2, true, "-90.00"},
        {7.9, 0, false, "7"},
        {std::numeric_limits<double>::quiet_NaN(), 3, false, ""},
        {INFINITY, 2, true, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(spread::CutText(row.x, row.decimals, row.plus), row.text);
    }
}

TEST(EphemerisRowOf, TextsOfOneStep)
{
    class NoFaults : public astro::FaultSink
    {
        void ReportFault(std::string_view message, std::string_view location) override
        {
            ADD_FAILURE() << message << " @ " << location;
        }
        void EndProcess(int) override {}
    } faults;
    astro::EphemStep step;
    step.jd = 2460370.5 + 0.25; // 2024-03-01 06:00 UT
    step.ra = 23.9999999;
    step.dec = -5.5;
    step.delta = 1.23456789;
    step.r = 0.5;
    step.elongation = 45;
    const spread::EphemerisRow row = spread::EphemerisRowOf(step, 46.5, 90.2, faults);
    EXPECT_EQ(row[0], "2024-03-01 06:00");
    EXPECT_EQ(row[1], "23.999");
    EXPECT_EQ(row[2], "00h 00m 00.0s"); // the seconds' rounding carries past 24h, which wraps
    EXPECT_EQ(row[3], "-5.50");
    EXPECT_EQ(row[4], "-5\u00b030'00.0\"");
    EXPECT_EQ(row[5], "1.234568");
    EXPECT_EQ(row[6], "0.500000");
    EXPECT_EQ(row[7], "45");
    EXPECT_EQ(row[8], ""); // no magnitude in this step
    step.mag = -1.005;
    EXPECT_EQ(spread::EphemerisRowOf(step, 46.5, 90.2, faults)[8], "-1.01");
}

TEST(ImportedText, CountsInWords)
{
    data::ImportResult result;
    result.lines = 8;
    result.added = 7;
    result.replaced = 1;
    EXPECT_EQ(spread::ImportedText("CometEls.txt", data::MinorBodyKind::Comet, result),
              "CometEls.txt: 8 element lines read, 7 comets added, 1 replaced.");
    result = {1, 1, 0, ""};
    EXPECT_EQ(spread::ImportedText("MPCORB.DAT", data::MinorBodyKind::Asteroid, result),
              "MPCORB.DAT: 1 element line read, 1 asteroid added, 0 replaced.");
}

TEST(ElementFileKind, FromTheFileName)
{
    struct Row
    {
        const char* name;
        std::optional<data::MinorBodyKind> kind;
    };
    const Row rows[] = {
        {"CometEls.txt", data::MinorBodyKind::Comet},
        {"COMETS.DAT", data::MinorBodyKind::Comet},
        {"MPCORB.DAT", data::MinorBodyKind::Asteroid},
        {"mpcorb_extended.dat", data::MinorBodyKind::Asteroid},
        {"NEA.txt", std::nullopt},
        {"", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(spread::ElementFileKind(row.name), row.kind);
    }
}

} // namespace
