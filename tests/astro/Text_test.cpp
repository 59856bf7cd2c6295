#include "astro/Text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <optional>
#include <string>

namespace {

using astro::CivilDate;

TEST(ParseObservingDate, AcceptsTheProgramsFormsOnly)
{
    struct Row
    {
        const char* text;
        std::optional<CivilDate> expected;
    };
    const Row rows[] = {
        {"12/31/2024", CivilDate{2024, 12, 31}},
        {" 3/4/2024 ", CivilDate{2024, 3, 4}},
        {"1/5/99", CivilDate{1999, 1, 5}},
        {"1/5/29", CivilDate{2029, 1, 5}},
        {"1/5/30", CivilDate{1930, 1, 5}},
        {"2024-01-05", CivilDate{2024, 1, 5}},
        {"2024-1-5", CivilDate{2024, 1, 5}},
        {"2000-02-29", CivilDate{2000, 2, 29}}, // divisible by 400: leap
        {"2/29/2024", CivilDate{2024, 2, 29}},
        {"1900-02-29", std::nullopt}, // divisible by 100 only: not leap
        {"2/29/2023", std::nullopt},
        {"4/31/2024", std::nullopt},
        {"13/01/2024", std::nullopt},
        {"0/10/2024", std::nullopt},
        {"31.12.2024", std::nullopt}, // another region's form: not read here
        {"12/31/2024x", std::nullopt},
        {"12/31/202", std::nullopt},
        {"12/31", std::nullopt},
        {"", std::nullopt},
        {"abc", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const std::optional<CivilDate> got = astro::ParseObservingDate(row.text);
        ASSERT_EQ(got.has_value(), row.expected.has_value());
        if (got) {
            EXPECT_EQ(got->year, row.expected->year);
            EXPECT_EQ(got->month, row.expected->month);
            EXPECT_EQ(got->day, row.expected->day);
        }
    }
}

TEST(LeadingNumber, ReadsLikeTheTimeFields)
{
    struct Row
    {
        const char* text;
        double expected;
    };
    const Row rows[] = {
        {"22", 22},  {"9:", 9},    {"", 0},   {":3", 0},   {" 7", 7}, {"1 2", 12},
        {"-3x", -3}, {"1e2", 100}, {"2e", 2}, {".5", 0.5}, {"+4", 4}, {"--1", 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(astro::LeadingNumber(row.text), row.expected);
    }
}

TEST(ParseNumber, WholeTextOnly)
{
    EXPECT_EQ(astro::ParseNumber(" 2024 "), 2024.0);
    EXPECT_EQ(astro::ParseNumber("+1.5"), 1.5);
    EXPECT_EQ(astro::ParseNumber("-7"), -7.0);
    EXPECT_FALSE(astro::ParseNumber(""));
    EXPECT_FALSE(astro::ParseNumber("12a"));
    EXPECT_FALSE(astro::ParseNumber("1,5"));
}

TEST(NumberText, FifteenSignificantDigits)
{
    struct Row
    {
        double value;
        const char* expected;
    };
    const Row rows[] = {
        {1.0000001, "1.0000001"},
        {-1.5, "-1.5"},
        {0.1 + 0.2, "0.3"},        // 0.30000000000000004 has more than 15 digits
        {1.0000000000000002, "1"}, // just above 1: reads 1
        {1e-20, "1E-20"},
        {-0.0, "0"},
        {123456789012345678.0, "1.23456789012346E+17"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        char buffer[astro::kNumberTextSize];
        const std::size_t n = astro::NumberText(row.value, buffer);
        EXPECT_EQ(std::string(buffer, n), row.expected);
    }
}

TEST(NumberText, IgnoresTheProcessLocale)
{
    // The application sets the C library locale from the environment; a decimal comma there
    // must not leak into the texts read back by the routines.
    const char* set = std::setlocale(LC_ALL, "de_DE.UTF-8");
    char buffer[astro::kNumberTextSize];
    const std::size_t n = astro::NumberText(2.5, buffer);
    const double back = astro::ThroughText(2.5);
    const std::optional<double> parsed = astro::ParseNumber("2.5");
    std::setlocale(LC_ALL, "C");
    if (set == nullptr)
        GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    EXPECT_EQ(std::string(buffer, n), "2.5");
    EXPECT_EQ(back, 2.5);
    EXPECT_EQ(parsed, 2.5);
}

TEST(RoundPlaces, HalvesAwayFromZeroAsTheNumberReads)
{
    struct Row
    {
        double value;
        int places;
        double expected;
    };
    const Row rows[] = {
        {1.005, 2, 1.01}, // stored as 1.00499999999999989...
        {2.675, 2, 2.68},    {-0.005, 2, -0.01},    {45.124999, 2, 45.12},
        {359.995, 2, 360.0}, {-12.3449, 2, -12.34}, {0.004, 2, 0.0},
        {0.0, 2, 0.0},       {87.5, 0, 88.0},       {12.25, 5, 12.25},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(astro::RoundPlaces(row.value, row.places), row.expected);
    }
}

} // namespace
