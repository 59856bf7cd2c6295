#include "spread/ComputedColumns.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using namespace spread;

namespace {

class RecordingSink : public astro::FaultSink
{
public:
    void ReportFault(std::string_view message, std::string_view location) override
    {
        faults.push_back(std::string(location) + ": " + std::string(message));
    }
    void EndProcess(int) override { throw std::runtime_error("fatal fault"); }
    std::vector<std::string> faults;
};

astro::ObservingClock Site(double lat)
{
    astro::ObservingClock clock;
    clock.PDate = "03/15/2024";
    clock.Ptime = "22:00";
    clock.Plat = lat;
    clock.Plon = 90;
    clock.PTz = 6;
    clock.PStd = "S";
    clock.timesAMPM = false;
    return clock;
}

// RiseSet's status values reach the rise and set columns as fixed words.
TEST(ComputeColumns, RiseSetStatusTexts)
{
    struct Case
    {
        const char* name;
        double lat;
        double decDeg;
        const char* rise;
        const char* set;
    };
    const Case cases[] = {
        {"circumpolar at 40 N", 40, 89, "CPolar", ""},
        {"never rises at 40 N", 40, -80, "*Never", "Rises*"},
        {"site on the pole", 90, 10, "*Can't", "Calc*"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RowOptions options;
        options.Prise = true;
        Position position{6, 0, 0, c.decDeg, 0, 0};
        ComputedColumns computed;
        RecordingSink faults;
        ComputeColumns(options, Site(c.lat), astro::FixedClock{}, 2000, position, computed,
                       faults);
        EXPECT_EQ(computed.rise.View(), c.rise);
        EXPECT_EQ(computed.set.View(), c.set);
        EXPECT_TRUE(faults.faults.empty());
    }
}

TEST(ComputeColumns, SwitchesSkipTheirRoutines)
{
    RowOptions all;
    all.Palt = all.Prise = all.optimum = all.ShowCharts = true;
    SetPrecessionDate(all, "01/01/2050", services::vb::Regional{});
    RowOptions turbo = all;
    turbo.speed1 = true;
    RowOptions masked = all;
    SetPrecessionDate(masked, "__/__/____", services::vb::Regional{});

    const Position stored{0, 0, 0, 0, 0, 0};
    RecordingSink faults;
    {
        SCOPED_TRACE("all on");
        Position position = stored;
        ComputedColumns computed;
        ComputeColumns(all, Site(40), astro::FixedClock{}, 2000, position, computed, faults);
        // The pages come from the stored position, before precession.
        EXPECT_EQ(std::string(computed.skyAtlas.View()) + "|" +
                      std::string(computed.uranometria.View()) + "|" +
                      std::string(computed.millennium.View()),
                  "17|215|270 Vol I");
        EXPECT_TRUE(computed.precessed);
        EXPECT_GT(position.raMinutes + position.raSeconds, 0); // moved by 50 years
        EXPECT_FALSE(computed.transit.Empty() || computed.rise.Empty());
        EXPECT_NE(computed.azm, 0);
    }
    {
        SCOPED_TRACE("turbo mode");
        Position position = stored;
        ComputedColumns computed;
        ComputeColumns(turbo, Site(40), astro::FixedClock{}, 2000, position, computed, faults);
        EXPECT_TRUE(computed.skyAtlas.Empty() && computed.transit.Empty() && computed.rise.Empty());
        EXPECT_FALSE(computed.precessed);
        EXPECT_EQ(computed.alt, 0);
        EXPECT_EQ(position.raSeconds, 0);
    }
    {
        SCOPED_TRACE("empty precession mask");
        Position position = stored;
        ComputedColumns computed;
        ComputeColumns(masked, Site(40), astro::FixedClock{}, 2000, position, computed, faults);
        EXPECT_FALSE(computed.precessed);
        EXPECT_EQ(position.raMinutes + position.raSeconds, 0);
    }
    EXPECT_TRUE(faults.faults.empty());
}

// After a fault trapped in a row (a date the calendar does not have, which no rule lets through
// any more), nothing the fault left behind reaches the arcsine: the row's later columns stay
// empty and the load goes on. Before, CalcAltAzm was fed the faulted hour angle and ended the
// program with "Variable W = -1.00000000000002".
TEST(ComputeColumns, AFaultedRowLeavesItsLaterColumnsEmpty)
{
    RowOptions all;
    all.Palt = all.Prise = all.optimum = all.ShowCharts = true;
    all.plans = nullptr;
    for (const char* date : {"02/29/2025", "11/31/2026", "13/45/2026", "tomorrow"}) {
        SCOPED_TRACE(date);
        for (double dec : {-89.5, -40.0, 0.0, 39.9, 40.0, 55.6, 89.9}) {
            astro::ObservingClock clock = Site(40);
            clock.PDate = date;
            Position position{13, 43, 48, dec, 34, 4};
            ComputedColumns computed;
            RecordingSink faults;
            EXPECT_NO_THROW(ComputeColumns(all, clock, astro::FixedClock{}, 2000, position,
                                           computed, faults));
            ASSERT_FALSE(faults.faults.empty());
            EXPECT_EQ(faults.faults[0], "Module1.CalcHourAngle: Type mismatch");
            EXPECT_TRUE(computed.cutShort && computed.rise.Empty() && computed.set.Empty());
            EXPECT_FALSE(computed.skyAtlas.Empty()); // the pages come from the stored position
            std::string row;
            WriteGridRow({}, false, position, computed, all, row);
            std::vector<std::string> cells(1); // cells[1] is grid column 1
            for (const char c : row + "\t") {
                if (c == '\t')
                    cells.emplace_back();
                else
                    cells.back().push_back(c);
            }
            ASSERT_GT(cells.size(), 14u) << row;
            for (int col : {10, 11, 12, 13, 14})
                EXPECT_EQ(cells[static_cast<std::size_t>(col)], "") << "column " << col;
        }
    }
}

// Altitude and azimuth come back rounded to hundredths, as the filters compare them.
TEST(ComputeColumns, AltitudeAndAzimuthAreRoundedToHundredths)
{
    RowOptions options;
    options.Palt = true;
    for (double dec : {-30.0, 0.0, 45.5, 80.0}) {
        SCOPED_TRACE(dec);
        Position position{5, 35, 17.3, dec, 23, 28};
        ComputedColumns computed;
        RecordingSink faults;
        ComputeColumns(options, Site(40), astro::FixedClock{}, 2000, position, computed, faults);
        EXPECT_DOUBLE_EQ(computed.alt * 100, std::round(computed.alt * 100));
        EXPECT_DOUBLE_EQ(computed.azm * 100, std::round(computed.azm * 100));
        EXPECT_GE(computed.azm, 0);
        EXPECT_LT(computed.azm, 360);
    }
}

} // namespace
