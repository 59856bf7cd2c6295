#include "astro/Time.h"

#include "astro/DataTables.h"
#include "tests/astro/RecordingFaults.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using astro::CalcJulian;
using astro_test::ProcessEnded;
using astro_test::RecordingFaults;

constexpr double kSecond = 1.0 / 3600.0;

// A fresh folder under the system's temporary directory, removed afterwards.
class TempFolder
{
public:
    TempFolder()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "astro_test_XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("mkdtemp failed");
        path_ = pattern;
    }
    ~TempFolder() { std::filesystem::remove_all(path_); }
    const std::filesystem::path& path() const { return path_; }
    void Write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path_ / name, std::ios::binary) << text;
    }

private:
    std::filesystem::path path_;
};

TEST(CalcJulian, DayNumbersAndCalendarSwitches)
{
    struct Row
    {
        const char* what;
        double day;
        int month;
        int year;
        double expected; // day number from 1900 January 0.5
    };
    // Expected values are Julian Days of the almanac minus 2415020.0.
    const Row rows[] = {
        {"epoch 1900 January 0.5", 0.5, 1, 1900, 0.0},
        {"1900 January 1.0", 1.0, 1, 1900, 0.5},
        {"J2000.0", 1.5, 1, 2000, 2451545.0 - 2415020.0},
        {"last Julian day 1582 October 4", 4.0, 10, 1582, 2299159.5 - 2415020.0},
        {"first Gregorian day 1582 October 15", 15.0, 10, 1582, 2299160.5 - 2415020.0},
        {"1 AD January 1 (Julian)", 1.0, 1, 1, 1721423.5 - 2415020.0},
        {"1 BC January 1, year -1: there is no year 0", 1.0, 1, -1, 1721057.5 - 2415020.0},
        {"4713 BC January 1.5, Julian Day 0", 1.5, 1, -4713, -2415020.0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_DOUBLE_EQ(CalcJulian(row.day, static_cast<std::int16_t>(row.month),
                                    static_cast<std::int16_t>(row.year)),
                         row.expected);
    }
    EXPECT_EQ(CalcJulian(15, 10, 1582) - CalcJulian(4, 10, 1582), 1.0);
    EXPECT_EQ(CalcJulian(1, 3, 1900) - CalcJulian(28, 2, 1900), 1.0); // 1900 not leap
    EXPECT_EQ(CalcJulian(1, 3, 2000) - CalcJulian(28, 2, 2000), 2.0); // 2000 leap
}

TEST(CalcCalendarDate, RoundTripsFrom1900)
{
    RecordingFaults faults;
    for (int year = 1900; year <= 2100; year += 7) {
        for (int month = 1; month <= 12; ++month) {
            for (double day : {1.0, 1.25, 15.5, 28.999}) {
                SCOPED_TRACE(std::to_string(year) + "-" + std::to_string(month) + "-" +
                             std::to_string(day));
                const double dj = CalcJulian(day, static_cast<std::int16_t>(month),
                                             static_cast<std::int16_t>(year));
                const astro::CalendarDate date = astro::CalcCalendarDate(dj, faults);
                EXPECT_EQ(date.year, year);
                EXPECT_EQ(date.month, month);
                EXPECT_NEAR(date.day, day, 1e-6);
            }
        }
    }
    EXPECT_TRUE(faults.reports.empty());
}

TEST(CalcCalendarDate, YearBeyond16BitsIsAnOverflow)
{
    RecordingFaults faults;
    const astro::CalendarDate date = astro::CalcCalendarDate(2e7, faults);
    EXPECT_EQ(faults.Texts(), std::vector<std::string>{"Overflow @ Module1.CalcCalendarDate"});
    EXPECT_EQ(date.year, 0);
}

TEST(TruncatingHelpers, KeepTheirOddValues)
{
    struct Row
    {
        double w;
        double lif;
        double itg0;
        double itg1;
    };
    const Row rows[] = {
        {2.5, 2, 2, 2},     {3.0, 3, 3, 3}, {0.0, -1, 0, 0}, // CalcLif(0) is -1
        {-2.5, -4, -3, -2},                                  // S = 1 truncates toward zero
        {-3.0, -4, -3, -3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.w);
        EXPECT_EQ(astro::CalcLif(row.w), row.lif);
        EXPECT_EQ(astro::CalcITG(row.w, 0), row.itg0);
        EXPECT_EQ(astro::CalcITG(row.w, 1), row.itg1);
    }
}

TEST(ConvertFromDecimal, RoundsSecondsAndCarries)
{
    struct Row
    {
        double x;
        double d, m, s;
        char sign;
    };
    const Row rows[] = {
        {59.99999, 60, 0, 0, '+'}, // carry reaches degrees, which are not wrapped
        {-0.5, 0, 30, 0, '-'},     {0.999999, 1, 0, 0, '+'}, {12.5125, 12, 30, 45, '+'},
        {-23.25, 23, 15, 0, '-'},  {0.0, 0, 0, 0, '+'},      {1.0 + 59.94 / 3600, 1, 0, 59.9, '+'},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.x);
        const astro::Sexagesimal s = astro::ConvertFromDecimal(row.x);
        EXPECT_EQ(s.degrees, row.d);
        EXPECT_EQ(s.minutes, row.m);
        EXPECT_NEAR(s.seconds, row.s, 1e-9);
        EXPECT_EQ(s.sign, row.sign);
    }
}

TEST(ConvertToDecimal, AnyNegativeFieldMakesTheValueNegative)
{
    struct Row
    {
        double s, m, d;
        double expected;
    };
    const Row rows[] = {
        {0, -30, 0, -0.5},
        {0, 30, 0, 0.5},
        {-36, 0, 0, -0.01},
        {1, 2, -3, -(3 + 2 / 60.0 + 1 / 3600.0)},
        {-1, -2, -3, -(3 + 2 / 60.0 + 1 / 3600.0)},
        {45, 30, 12, 12.5125},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_NEAR(astro::ConvertToDecimal(row.s, row.m, row.d), row.expected, 1e-12);
    }
}

TEST(SignPush, NegatesTheFirstNonZeroField)
{
    struct Row
    {
        astro::Sexagesimal in;
        double d, m, s;
    };
    const Row rows[] = {
        {{0, 30, 0, '-'}, 0, -30, 0}, {{12, 0, 5, '-'}, -5, 0, 12}, {{12, 0, 0, '-'}, 0, 0, -12},
        {{0, 0, 0, '-'}, 0, 0, 0},    {{1, 2, 3, '+'}, 3, 2, 1},
    };
    for (const Row& row : rows) {
        const astro::Dms t = astro::SignPush(row.in);
        EXPECT_EQ(t.degrees, row.d);
        EXPECT_EQ(t.minutes, row.m);
        EXPECT_EQ(t.seconds, row.s);
        // The pushed triple reads back as the signed value.
        const double value = row.in.degrees + row.in.minutes / 60 + row.in.seconds / 3600;
        EXPECT_DOUBLE_EQ(astro::ConvertToDecimal(t.seconds, t.minutes, t.degrees),
                         row.in.sign == '-' ? -value : value);
    }
}

TEST(Gtime, AlmanacExampleBothWays)
{
    // Almanac-style worked example: 1980 April 22, UT 14h36m51.67s is GST 4h40m5.23s (the IAU
    // 1982 value). This method keeps Newcomb's 1900 polynomial, on the old FK4 equinox, which
    // differs by 0.0775 + 0.085 T seconds (0.06 s in 1980), so 0.1 s is its tolerance.
    const double ut = 14 + 36 / 60.0 + 51.67 / 3600;
    const double gst = 4 + 40 / 60.0 + 5.23 / 3600;
    const astro::GtimeResult toSidereal = astro::Gtime(ut, 1980, 4, 22, 1.0);
    EXPECT_NEAR(toSidereal.result, gst, 0.1 * kSecond);
    EXPECT_EQ(toSidereal.hours, 0); // the triple is left alone in this mode
    const astro::GtimeResult toUniversal = astro::Gtime(gst, 1980, 4, 22, 0.0);
    EXPECT_NEAR(toUniversal.result, ut, 0.1 * kSecond);
    EXPECT_EQ(toUniversal.hours, 14);
    EXPECT_EQ(toUniversal.minutes, 36);
    EXPECT_NEAR(toUniversal.seconds, 51.7, 0.15);
}

TEST(Gtime, RoundTripOverTheDay)
{
    for (double ut = 0.05; ut < 24; ut += 0.7) {
        SCOPED_TRACE(ut);
        const double gst = astro::Gtime(ut, 2024, 11, 3, 1.0).result;
        EXPECT_NEAR(astro::Gtime(gst, 2024, 11, 3, 2.0).result, ut, 1e-6);
    }
}

TEST(ConvertToGMT, StepsTheDateAndDropsTheZoneFraction)
{
    struct Row
    {
        const char* what;
        const char* pdate;
        const char* ptime;
        double ptz;
        const char* pstd;
        int year, month;
        double day; // with the fraction of the day
        double hour;
    };
    const Row rows[] = {
        {"December 31 passes midnight into the next year", "12/31/2024", "22:30", 6, "S", 2025, 1,
         1 + 4.5 / 24, 4},
        {"a zone of 5.5 counts as 5", "12/31/2024", "22:00", 5.5, "S", 2025, 1, 1 + 3 / 24.0, 3},
        {"daylight time is ignored here", "06/15/2024", "10:15", 6, "D", 2024, 6, 15 + 16.25 / 24,
         16},
        {"east of Greenwich steps back into the old year", "1/1/2024", "05:00", -10, "S", 2023, 12,
         31 + 19 / 24.0, 19},
        {"a negative fraction is dropped too", "1/1/2024", "05:00", -5.5, "S", 2024, 1,
         1 + 0 / 24.0, 0},
        {"February 28 of a leap year", "2/28/2024", "22:00", 6, "S", 2024, 2, 29 + 4 / 24.0, 4},
        {"February 28 of 1900, not a leap year", "2/28/1900", "22:00", 6, "S", 1900, 3,
         1 + 4 / 24.0, 4},
        {"February 28 of 2000, a leap year", "2000-02-28", "22:00", 6, "S", 2000, 2, 29 + 4 / 24.0,
         4},
        {"zone 0", "7/4/2024", "00:07", 0, "S", 2024, 7, 4 + (7 / 60.0) / 24, 0},
    };
    const astro::FixedClock computer({1999, 9, 9, 9, 9, 9});
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        astro::ObservingClock clock;
        clock.PDate = row.pdate;
        clock.Ptime = row.ptime;
        clock.PTz = row.ptz;
        clock.PStd = row.pstd;
        RecordingFaults faults;
        const astro::UTInstant ut = astro::ConvertToGMT(clock, computer, faults);
        EXPECT_TRUE(faults.reports.empty());
        EXPECT_EQ(std::tuple(ut.year, ut.month, ut.hour),
                  std::tuple(row.year, row.month, row.hour));
        EXPECT_NEAR(ut.day, row.day, 1e-9);
    }
}

TEST(ConvertToGMT, ComputerClockAndBadDates)
{
    const astro::FixedClock computer({2024, 6, 15, 21, 45, 30});
    RecordingFaults faults;
    astro::ObservingClock clock;
    clock.UseRealTime = "Y";
    clock.PDate = "not a date"; // not read under real time
    astro::UTInstant ut = astro::ConvertToGMT(clock, computer, faults);
    EXPECT_EQ(std::tuple(ut.year, ut.month, ut.minute), std::tuple(2024, 6, 45));
    EXPECT_NEAR(ut.day, 16 + (3 + 45 / 60.0) / 24, 1e-9); // 21h + 6h passes midnight
    EXPECT_TRUE(faults.reports.empty());

    clock.UseRealTime = "N";
    clock.PDate = "  "; // blank means today
    clock.Ptime = "01:00";
    ut = astro::ConvertToGMT(clock, computer, faults);
    EXPECT_EQ(ut.month, 6);
    EXPECT_NEAR(ut.day, 15 + 7 / 24.0, 1e-9);

    clock.PDate = "31.12.2024";
    ut = astro::ConvertToGMT(clock, computer, faults);
    EXPECT_EQ(faults.Texts(), std::vector<std::string>{"Type mismatch @ Module1.ConvertToGMT"});
    EXPECT_EQ(ut.year, 0);
}

TEST(CalcASN, GuardedAtOneFatalBeyond)
{
    RecordingFaults faults;
    EXPECT_NEAR(astro::CalcASN(1.0, faults), M_PI / 2, 1e-12);
    EXPECT_NEAR(astro::CalcASN(-1.0, faults), -M_PI / 2, 1e-12);
    EXPECT_NEAR(astro::CalcACS(1.0, faults), 0.0, 1e-9);
    EXPECT_NEAR(astro::CalcACS(0.5, faults), M_PI / 3, 1e-9);
    // Rounding just past 1, as an object exactly on the meridian gives: once the fatal fault.
    EXPECT_NEAR(astro::CalcASN(1 + 1e-13, faults), M_PI / 2, 1e-12);
    EXPECT_NEAR(astro::CalcASN(-1 - 1e-13, faults), -M_PI / 2, 1e-12);
    EXPECT_NEAR(astro::CalcASN(1.00000000000002, faults), M_PI / 2, 1e-12);
    EXPECT_NEAR(astro::CalcACS(1 + 1e-12, faults), 0.0, 1e-9);
    astro::CheckASN(-1 - 1e-12, faults);
    EXPECT_TRUE(faults.reports.empty());

    struct Row
    {
        double w;
        const char* shown;
    };
    for (const Row& row : {Row{1.0000001, "1.0000001"}, Row{-1.5, "-1.5"},
                          Row{1.00000000001, "1.00000000001"}}) {
        SCOPED_TRACE(row.shown);
        RecordingFaults fatal;
        try {
            astro::CalcACS(row.w, fatal);
            ADD_FAILURE() << "the process should have ended";
        } catch (const ProcessEnded& end) {
            EXPECT_EQ(end.exitCode, 1);
        }
        ASSERT_EQ(fatal.reports.size(), 1u);
        EXPECT_EQ(fatal.reports[0].message,
                  std::string("Invalid procedure call or argument\nAn internal error has "
                              "occurred. Selvane will now exit at which point you can re-run "
                              "the software.  Variable W = ") +
                      row.shown);
        EXPECT_EQ(fatal.reports[0].location, "Module1.CalcASN");
    }
}

TEST(JulianDayFamily, CalendarConversionsAndSwitch)
{
    struct Row
    {
        const char* what;
        astro::CalendarDate date;
        double jd;
    };
    const Row rows[] = {
        {"J2000.0", {2000, 1, 1.5}, 2451545.0},
        {"1582 October 4, Julian", {1582, 10, 4.0}, 2299159.5},
        {"1582 October 15, Gregorian", {1582, 10, 15.0}, 2299160.5},
        {"-4712 January 1.5 (astronomical year), Julian Day 0", {-4712, 1, 1.5}, 0.0},
        {"1900 March 1", {1900, 3, 1.0}, 2415079.5},
        {"2024 February 29.75", {2024, 2, 29.75}, 2460370.25},
    };
    RecordingFaults faults;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_DOUBLE_EQ(astro::CalendarToJD(row.date), row.jd);
        for (const astro::CalendarDate back :
             {astro::JDToCalendar(row.jd, faults), astro::JDToCalendar1(row.jd, faults)}) {
            EXPECT_EQ(back.year, row.date.year);
            EXPECT_EQ(back.month, row.date.month);
            EXPECT_NEAR(back.day, row.date.day, 1e-9);
        }
    }
    EXPECT_TRUE(faults.reports.empty());
    // The two families switch calendars at different days: 1582 October 10 is Gregorian here
    // and Julian for CalcJulian, ten days apart.
    EXPECT_EQ(CalcJulian(10, 10, 1582) + 2415020.0 - astro::CalendarToJD({1582, 10, 10.0}), 10);
}

TEST(JulianDayFamily, GuardedFunctionsReportAtTheirLocation)
{
    struct Row
    {
        const char* what;
        double (*call)(double, astro::FaultSink&);
        double x;
        double expected;
        const char* message; // empty: no fault
        const char* location;
    };
    const Row rows[] = {
        {"asin 0", astro::asin, 0.0, 0.0, "", ""},
        {"asin 0.5", astro::asin, 0.5, M_PI / 6, "", ""},
        {"asin 1 divides by zero", astro::asin, 1.0, 0.0, "Division by zero", "Module2.asin"},
        {"asin -1 divides by zero", astro::asin, -1.0, 0.0, "Division by zero", "Module2.asin"},
        {"asin beyond 1", astro::asin, 1.5, 0.0, "Invalid procedure call or argument",
         "Module2.asin"},
        {"acos 1 reports through asin", astro::acos, 1.0, 3.14159265358979 / 2, "Division by zero",
         "Module2.asin"},
        {"log10", astro::log10, 1000.0, 3.0, "", ""},
        {"log10 0", astro::log10, 0.0, 0.0, "Invalid procedure call or argument", "Module2.log10"},
        {"Log10", astro::Log10, 0.01, -2.0, "", ""},
        {"Log10 negative", astro::Log10, -1.0, 0.0, "Invalid procedure call or argument",
         "Module1.Log10"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        RecordingFaults faults;
        EXPECT_NEAR(row.call(row.x, faults), row.expected, 1e-12);
        if (*row.message == '\0') {
            EXPECT_TRUE(faults.reports.empty());
        } else {
            EXPECT_EQ(faults.Texts(),
                      std::vector<std::string>{std::string(row.message) + " @ " + row.location});
        }
    }
}

TEST(JulianDayFamily, AngleHelpers)
{
    const double pi = 3.14159265358979;
    struct Row
    {
        double y, x, expected;
    };
    const Row rows[] = {
        {1, 1, pi / 4},
        {1, -1, 3 * pi / 4},
        {-1, -1, -3 * pi / 4},
        {-1, 1, -pi / 4},
        {2, 0, pi / 2},
        {-2, 0, -pi / 2},
        {0, 0, 0},
        {0, 3, 0},
        {0, -1, -pi}, // the arctangent of -0 is not negative, so pi is subtracted
        {0.5, -3, pi - std::atan(0.5 / 3)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.y) + "," + std::to_string(row.x));
        EXPECT_NEAR(astro::atn2(row.y, row.x), row.expected, 1e-12);
    }
    EXPECT_NEAR(astro::modpi(3 * pi / 2), -pi / 2, 1e-12);
    EXPECT_NEAR(astro::modpi(-7 * pi / 4), pi / 4, 1e-12);
    EXPECT_NEAR(astro::modpi2(-pi / 2), 3 * pi / 2, 1e-12);
    EXPECT_NEAR(astro::modpi2(5 * pi), pi, 1e-12);
}

TEST(ApproxDeltaT, TableAndPolynomials)
{
    astro::DataTables tables;
    RecordingFaults faults;
    const std::filesystem::path folder = SELVANE_SHIPPED_RESOURCES;
    struct Row
    {
        const char* what;
        double year;
        double expected; // seconds
    };
    const Row rows[] = {
        {"2000 still uses the table: 1990's interval stretched to f = 5", 2000,
         (569 + (583 - 569) * 5) / 10.0},
        {"1992 exactly", 1992, 58.3},
        {"1620, first value", 1620, 121.0},
        {"1621, halfway to 1622", 1621, (1210 + (1120 - 1210) * 0.5) / 10},
        {"1500, medieval polynomial", 1500, 275.6},
        {"948, medieval polynomial's first year", 948, (22.5 * -10.52 + 67.5) * -10.52 + 50.6},
        {"900, ancient polynomial", 900, 2035.14},
        {"2100, modern polynomial", 2100, (32.5 + 123.5) + 102.3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const double T = (row.year - 2000) / 100;
        EXPECT_NEAR(astro::ApproxDeltaT(T, folder, faults, tables), row.expected, 1e-9);
    }
    // Just after 2000 the polynomial takes over and the value jumps.
    EXPECT_NEAR(astro::ApproxDeltaT(1e-9, folder, faults, tables), 102.3, 1e-6);
    EXPECT_TRUE(faults.reports.empty());
}

TEST(DataTables, MissingOrBadFilesAreReportedAndRetried)
{
    struct Row
    {
        const char* what;
        const char* content; // nullptr: no file
        const char* message;
    };
    const Row rows[] = {
        {"missing", nullptr, "File not found"},
        {"truncated", "1210\n1120\n1030\n", "Input past end of file"},
        {"not a number", "1210,abc\n", "Type mismatch"},
        {"beyond 16 bits", "1210\n40000\n", "Overflow"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        TempFolder folder;
        if (row.content != nullptr)
            folder.Write("DeltaTTableLabel.txt", row.content);
        astro::DataTables tables;
        RecordingFaults faults;
        EXPECT_EQ(astro::ApproxDeltaT(-1, folder.path(), faults, tables), 0.0);
        EXPECT_EQ(faults.Texts(),
                  std::vector<std::string>{std::string(row.message) + " @ Module2.ApproxDeltaT"});
        // Even a year that needs no table reports, and the next call tries again.
        EXPECT_EQ(astro::ApproxDeltaT(1, folder.path(), faults, tables), 0.0);
        EXPECT_EQ(faults.reports.size(), 2u);

        std::filesystem::copy_file(std::filesystem::path(SELVANE_SHIPPED_RESOURCES) /
                                       "DeltaTTableLabel.txt",
                                   folder.path() / "DeltaTTableLabel.txt",
                                   std::filesystem::copy_options::overwrite_existing);
        EXPECT_NEAR(astro::ApproxDeltaT(-1, folder.path(), faults, tables), -2.8, 1e-9);
        EXPECT_EQ(faults.reports.size(), 2u);
    }
}

TEST(DataTables, ShippedFilesLoadOnceAcrossThreads)
{
    // Several grid threads start at once on fresh tables: each must see the whole table.
    const std::filesystem::path folder = SELVANE_SHIPPED_RESOURCES;
    const double year1975 = (445 + (465 - 445) * 0.5) / 10; // between 1974 and 1976
    astro::DataTables tables;
    std::vector<double> results(8);
    std::vector<std::size_t> faultCounts(results.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < results.size(); ++i) {
        threads.emplace_back([&, i] {
            RecordingFaults faults;
            results[i] = astro::ApproxDeltaT(-0.25, folder, faults, tables) +
                         astro::WriteDMS(0.0, 3, folder, faults, tables);
            faultCounts[i] = faults.reports.size();
        });
    }
    for (std::thread& t : threads)
        t.join();
    for (std::size_t i = 0; i < results.size(); ++i) {
        EXPECT_NEAR(results[i], year1975 + 0.0005, 1e-12);
        EXPECT_EQ(faultCounts[i], 0u);
    }
}

TEST(WriteDMS, OffsetsAndIndexBounds)
{
    astro::DataTables tables;
    const std::filesystem::path folder = SELVANE_SHIPPED_RESOURCES;
    const double radians = 45.123456 / 57.29577951308238;
    struct Row
    {
        const char* what;
        bool hours;
        double x;
        int places;
        double expected;
        const char* fault;
    };
    const Row rows[] = {
        {"degrees, 2 places", false, radians, 2, 45.123456 + 0.005, ""},
        {"negative degrees keep their sign", false, -radians, 0, -(45.123456 + 0.5), ""},
        {"degrees, 7 places", false, radians, 7, 45.123456 + 0.00000005, ""},
        {"hours carry no sign", true, -radians, 1, 45.123456 / 15 + 0.05, ""},
        {"index 8", false, radians, 8, 0, "Module2.WriteDMS"},
        {"index -1", true, radians, -1, 0, "Module2.WriteHMS"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        RecordingFaults faults;
        const double got = row.hours ? astro::WriteHMS(row.x, row.places, folder, faults, tables)
                                     : astro::WriteDMS(row.x, row.places, folder, faults, tables);
        EXPECT_NEAR(got, row.expected, 1e-12);
        if (*row.fault == '\0') {
            EXPECT_TRUE(faults.reports.empty());
        } else {
            EXPECT_EQ(faults.Texts(),
                      std::vector<std::string>{std::string("Subscript out of range") + " @ " +
                                               row.fault});
        }
    }
    TempFolder empty;
    astro::DataTables fresh;
    RecordingFaults faults;
    EXPECT_EQ(astro::WriteHMS(1.0, 2, empty.path(), faults, fresh), 0.0);
    EXPECT_EQ(faults.Texts(), std::vector<std::string>{"File not found @ Module2.WriteHMS"});
}

} // namespace
