#include "services/Vb.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <cmath>

namespace vb = services::vb;

namespace {

const vb::Regional Defaults{};
// A day-first locale with a comma as decimal sign.
const vb::Regional German{"dd.MM.yy", ".", ","};

struct FormatRow
{
    double value;
    const char* pattern;
    const char* expected;
};

TEST(Format, NumericPatterns)
{
    const FormatRow rows[] = {
        // Two-digit fields of times and angles.
        {5, "00", "05"},
        {123, "00", "123"},
        {-5, "00", "-05"},
        // Half away from zero, never to even.
        {2.5, "0", "3"},
        {-2.5, "0", "-3"},
        {0.49, "0", "0"},
        // Rounding works on the 15-digit decimal text, not on the binary value below it.
        {2.675, "0.00", "2.68"},
        {1.005, "0.00", "1.01"},
        // Altitude and azimuth columns.
        {5.5, "#00.00", "05.50"},
        {123.456, "#00.00", "123.46"},
        {-0.5, "#00.00", "-00.50"},
        {0.5, "##0.00", "0.50"},
        {359.999, "##0.00", "360.00"},
        // Optional decimals: trailing zeros dropped, the point stays.
        {0.5, "###.#####", ".5"},
        {1.23456789, "###.#####", "1.23457"},
        {5, "###.#####", "5."},
        {0, "###.####", "."},
        {0.05, "###.0", ".1"},
        // Fixed-width fields of the equipment files and image lists.
        {8, "00.0", "08.0"},
        {99.96, "00.0", "100.0"},
        {42, "000000", "000042"},
        {5, " 00", " 05"},
        {3.5, "00.000000", "03.500000"},
        // Whole-number "#".
        {1.5, "#", "2"},
        {0, "#", ""},
        {1e20, "0", "100000000000000000000"},
        // Deliberate sign of a negative that rounds to zero.
        {-0.004, "0.00", "-0.00"},
        // Thousands, percent, scaling and literals.
        {1234567.891, "#,##0.00", "1,234,567.89"},
        {999.5, "#,##0", "1,000"},
        {0.256, "0.0%", "25.6%"},
        {1234567, "0,", "1235"},
        {5551234, "###-####", "555-1234"},
        {5, "\"Mag \"0.0", "Mag 5.0"},
        {5, "0\\h", "5h"},
        {-5, "$0.00", "-$5.00"},
        // Sections: positive; negative; zero.
        {-5, "0;(0)", "(5)"},
        {5, "0;(0)", "5"},
        {0, "0.0;-0.0;\"zero\"", "zero"},
        {-2, "0.0;;\"zero\"", "-2.0"},
        // Scientific.
        {12345, "0.00E+00", "1.23E+04"},
        {0.00012, "0.0E+00", "1.2E-04"},
        {12, "0.0E-00", "1.2E01"},
        {99999, "0.0E+0", "1.0E+5"},
        {0, "0.00E+00", "0.00E+00"},
        // Named formats and no pattern.
        {3.14159, "Fixed", "3.14"},
        {1234.5, "Standard", "1,234.50"},
        {0.5, "Percent", "50.00%"},
        {-3, "Yes/No", "Yes"},
        {0.25, ".00", ".25"},
        {5, "\"none\"", "none"},
        {0, "True/False", "False"},
        {3.5, "", "3.5"},
        {1e15, "", "1E+15"},
        {123456789012345.0, "", "123456789012345"},
    };
    for (const FormatRow& row : rows) {
        SCOPED_TRACE(std::string(row.pattern) + " with " + std::to_string(row.value));
        EXPECT_EQ(vb::Format(row.value, row.pattern), row.expected);
    }
}

TEST(Format, RegionalDecimalSign)
{
    const FormatRow rows[] = {
        {8, "00.0", "08,0"},      {1234.5, "#,##0.00", "1.234,50"},
        {0.5, "###.#####", ",5"}, {2.25, "", "2,25"},
        {7, "000", "007"},
    };
    for (const FormatRow& row : rows) {
        SCOPED_TRACE(row.pattern);
        EXPECT_EQ(vb::Format(row.value, row.pattern, German), row.expected);
        // Files and settings keep the full stop whatever the machine uses.
        EXPECT_EQ(vb::Format(row.value, row.pattern, Defaults), vb::Format(row.value, row.pattern));
    }
}

struct DateRow
{
    const char* pattern;
    const char* expected;
};

TEST(FormatDate, Letters)
{
    const QDate date(2003, 2, 14); // a Friday
    const DateRow rows[] = {
        {"mm/dd/yyyy", "02/14/2003"},
        {"MM/DD/YYYY", "02/14/2003"},
        {"m/d/yy", "2/14/03"},
        {"yyyymmdd", "20030214"},
        {"dd-mmm-yy", "14-Feb-03"},
        {"Long Date", "Friday, February 14, 2003"},
        {"dddd, mmmm d, yyyy", "Friday, February 14, 2003"},
        {"ddd", "Fri"},
        {"Short Date", "02/14/03"},
        {"", "02/14/03"},
        {"y", "45"},
        {"q", "1"},
        {"w", "6"},
        {"ww", "7"},
        {"\"B\"yyyymmdd\".mdb\"", "B20030214.mdb"},
    };
    for (const DateRow& row : rows) {
        SCOPED_TRACE(row.pattern);
        EXPECT_EQ(vb::FormatDate(date, row.pattern), row.expected);
    }
    // "/" stands for the regional date separator.
    EXPECT_EQ(vb::FormatDate(date, "mm/dd/yyyy", German), "02.14.2003");
    EXPECT_EQ(vb::FormatDate(date, "Short Date", German), "14.02.03");
    EXPECT_EQ(vb::FormatDate(QDate(1999, 12, 31), "yy"), "99");
    EXPECT_EQ(vb::FormatDate(QDate(2000, 1, 1), "yy"), "00");
}

TEST(FormatTime, Letters)
{
    struct Row
    {
        QTime time;
        const char* pattern;
        const char* expected;
    };
    const Row rows[] = {
        {QTime(18, 5, 9), "hh:mm", "18:05"},
        {QTime(18, 5, 9), "hh:mm AM/PM", "06:05 PM"},
        {QTime(18, 5, 9), "h:nn:ss am/pm", "6:05:09 pm"},
        {QTime(18, 5, 9), "hh:mm A/P", "06:05 P"},
        {QTime(18, 5, 9), "mm:ss", "05:09"},
        {QTime(0, 30), "hh:mm AM/PM", "12:30 AM"},
        {QTime(12, 0), "hh:mm AM/PM", "12:00 PM"},
        {QTime(11, 59), "h:mm AMPM", "11:59 AM"},
        {QTime(23, 59, 59), "Long Time", "23:59:59"},
        {QTime(23, 59, 59), "", "23:59:59"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pattern);
        EXPECT_EQ(vb::FormatTime(row.time, row.pattern), row.expected);
    }
    EXPECT_EQ(vb::LongTime(QTime(6, 5, 9)), "06:05:09");
    EXPECT_EQ(vb::FormatDateTime(QDate(2003, 2, 14), QTime(18, 5), "mm/dd/yyyy hh:mm"),
              "02/14/2003 18:05");
}

TEST(RegionalFromLocale, LocalesGiveTheirShortDate)
{
    struct Row
    {
        const char* locale;
        const char* dateformat;
        const char* datesep;
        const char* decimalchar;
        const char* shortDate; // of 2003-02-14
    };
    const Row rows[] = {
        // The C/POSIX locale gives the program's own defaults.
        {"C", "mm/dd/yy", "/", ".", "02/14/03"},
        {"en_US", "M/d/yy", "/", ".", "2/14/03"},
        {"de_DE", "dd.MM.yy", ".", ",", "14.02.03"},
        {"en_GB", "dd/MM/yyyy", "/", ".", "14/02/2003"},
        {"sv_SE", "yyyy-MM-dd", "-", ",", "2003-02-14"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.locale);
        const vb::Regional r = vb::RegionalFromLocale(QLocale(QString::fromUtf8(row.locale)));
        EXPECT_EQ(r.dateformat, row.dateformat);
        EXPECT_EQ(r.datesep, row.datesep);
        EXPECT_EQ(r.decimalchar, row.decimalchar);
        EXPECT_EQ(vb::ShortDate(QDate(2003, 2, 14), r), row.shortDate);
    }
}

TEST(ParseDate, RegionalPatternThenIso)
{
    struct Row
    {
        const char* text;
        const vb::Regional* regional;
        QDate expected; // invalid: not a date
    };
    const Row rows[] = {
        {"2/14/2003", &Defaults, QDate(2003, 2, 14)},
        {"02/14/03", &Defaults, QDate(2003, 2, 14)},
        {" 2-14-2003 ", &Defaults, QDate(2003, 2, 14)},
        {"2003-02-14", &Defaults, QDate(2003, 2, 14)},
        {"2/14/2003 22:30", &Defaults, QDate(2003, 2, 14)},
        // Two-digit years: 00-29 this century, 30-99 the last.
        {"1/1/29", &Defaults, QDate(2029, 1, 1)},
        {"1/1/30", &Defaults, QDate(1930, 1, 1)},
        {"2/29/2000", &Defaults, QDate(2000, 2, 29)},
        {"2/29/1900", &Defaults, QDate()},
        {"2/30/2003", &Defaults, QDate()},
        // Day first is not guessed when the pattern is month first.
        {"14/2/2003", &Defaults, QDate()},
        {"2/14", &Defaults, QDate()},
        {"2/14/203", &Defaults, QDate(203, 2, 14)}, // three digits are the year itself
        {"2/14/2003 25:00", &Defaults, QDate()},
        {"2/14/2003x", &Defaults, QDate()},
        {"", &Defaults, QDate()},
        {"abc", &Defaults, QDate()},
        {"14.02.2003", &German, QDate(2003, 2, 14)},
        {"14.2.03", &German, QDate(2003, 2, 14)},
        {"2003-02-14", &German, QDate(2003, 2, 14)},
        {"02/14/2003", &German, QDate()},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const std::optional<QDate> parsed = vb::ParseDate(row.text, *row.regional);
        EXPECT_EQ(parsed.has_value(), row.expected.isValid());
        if (parsed && row.expected.isValid()) {
            EXPECT_EQ(*parsed, row.expected);
        }
        EXPECT_EQ(vb::IsDate(row.text, *row.regional), row.expected.isValid());
    }
}

TEST(ParseDate, ShortDateReadsBack)
{
    for (const vb::Regional* r : {&Defaults, &German}) {
        for (const QDate d : {QDate(2003, 2, 14), QDate(1999, 12, 31), QDate(2000, 2, 29)}) {
            SCOPED_TRACE(vb::ShortDate(d, *r));
            EXPECT_EQ(vb::ParseDate(vb::ShortDate(d, *r), *r), d);
        }
    }
}

TEST(ParseTime, Forms)
{
    struct Row
    {
        const char* text;
        QTime expected;
    };
    const Row rows[] = {
        {"18:05", QTime(18, 5)},   {"6:05", QTime(6, 5)},     {"10:30:15", QTime(10, 30, 15)},
        {"6:05 PM", QTime(18, 5)}, {"12:00 AM", QTime(0, 0)}, {"12:30 pm", QTime(12, 30)},
        {"24:00", QTime()},        {"10:60", QTime()},        {"13:00 PM", QTime()},
        {"10", QTime()},           {"10:30 XM", QTime()},     {"", QTime()},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const std::optional<QTime> parsed = vb::ParseTime(row.text);
        ASSERT_EQ(parsed.has_value(), row.expected.isValid());
        if (parsed) {
            EXPECT_EQ(*parsed, row.expected);
        }
    }
}

TEST(Val, LeadingNumber)
{
    struct Row
    {
        const char* text;
        double expected;
    };
    const Row rows[] = {
        {"12abc", 12},
        {" -3.5e2x", -350},
        {"abc", 0},
        {"", 0},
        {"1 2", 12},
        {".5", 0.5},
        {"+7", 7},
        {"- 5", -5},
        {"1,000", 1},
        {"1.2.3", 1.2},
        {"12:30", 12},
        {"1e", 1},
        {"2E-2", 0.02},
        {"3d2", 300},
        {"5.", 5},
        {"-", 0},
        {"0x10", 0},
        {"&H10", 0},
        {"\t9\n", 9},
        // Out of the double's range: tiny reads as 0, huge as infinity, never garbage.
        {"1e-400", 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_DOUBLE_EQ(vb::Val(row.text), row.expected);
    }
}

TEST(IsNumeric, Texts)
{
    struct Row
    {
        const char* text;
        bool plain;  // under the full stop
        bool german; // under the decimal comma
    };
    const Row rows[] = {
        {"12", true, true},       {" 12 ", true, true},
        {"-1.5", true, true}, // "." groups thousands under the comma
        {"1,5", true, true},  // "," groups thousands under the full stop
        {"1e5", true, true},      {"1.5e-3", true, true},
        {"1,000.5", true, false}, {"1.000,5", false, true},
        {"(5)", true, true},      {"5-", true, true},
        {"&H1F", true, true},     {"", false, false},
        {"   ", false, false},    {".", false, false},
        {",5", false, true},      {"abc", false, false},
        {"12abc", false, false},  {"1.2.3", false, true},
        {"--1", false, false},    {"-(5)", false, false},
        {"1e", false, false},     {"&HXY", false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(vb::IsNumeric(row.text), row.plain);
        EXPECT_EQ(vb::IsNumeric(row.text, German), row.german);
    }
}

TEST(IntFix, Negatives)
{
    struct Row
    {
        double value, intValue, fixValue;
    };
    const Row rows[] = {
        {2.5, 2, 2}, {-2.5, -3, -2}, {-0.1, -1, 0}, {3, 3, 3}, {-3, -3, -3}, {-8.9999, -9, -8},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(vb::Int(row.value), row.intValue);
        EXPECT_EQ(vb::Fix(row.value), row.fixValue);
    }
}

TEST(Trim, OnlyBlanks)
{
    EXPECT_EQ(vb::Trim("  a b  "), "a b");
    EXPECT_EQ(vb::LTrim("  a "), "a ");
    EXPECT_EQ(vb::RTrim("  a "), "  a");
    EXPECT_EQ(vb::Trim("   "), "");
    EXPECT_EQ(vb::Trim(""), "");
    // Tabs are not blanks to Trim.
    EXPECT_EQ(vb::Trim("\ta\t"), "\ta\t");
    EXPECT_EQ(vb::UCase("ngc 7000 \xC3\xA4"), "NGC 7000 \xC3\x84");
    EXPECT_EQ(vb::LCase("M31"), "m31");
}

TEST(WriteRecord, FieldForms)
{
    using F = vb::RecordField;
    struct Row
    {
        std::vector<F> fields;
        const char* expected;
    };
    const Row rows[] = {
        {{F{std::string("M 31")}, F{std::string("Messier")}, F{31LL}, F{std::string("a, b")}},
         "\"M 31\",\"Messier\",31,\"a, b\"\r\n"},
        {{F{1LL}, F{std::string("1.5")}}, "1,\"1.5\"\r\n"},
        {{F{true}, F{false}}, "#TRUE#,#FALSE#\r\n"},
        {{F{2.5}, F{-0.25}, F{0.0}}, "2.5,-0.25,0\r\n"},
        {{F{std::string()}}, "\"\"\r\n"},
        {{F{std::string("say \"hi\"")}}, "\"say \"\"hi\"\"\"\r\n"},
        {{}, "\r\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(vb::WriteRecord(row.fields), row.expected);
    }
}

TEST(ReadRecord, RoundTripsWrittenRecords)
{
    using F = vb::RecordField;
    const std::vector<std::vector<F>> records = {
        {F{std::string("NGC 224")}, F{std::string("NGC")}, F{224LL}, F{std::string("")}},
        {F{std::string("x, y, z")}, F{std::string("a \"quoted\" word")}, F{12.5}},
        {F{std::string("  padded  ")}, F{std::string(",")}, F{std::string("\"")}},
        {F{std::string("O'Brien's, \"best\"")}, F{-7LL}, F{true}},
    };
    for (const auto& record : records) {
        const std::string line = vb::WriteRecord(record);
        SCOPED_TRACE(line);
        const std::vector<std::string> read = vb::ReadRecord(line);
        ASSERT_EQ(read.size(), record.size());
        for (size_t i = 0; i < record.size(); ++i) {
            if (const auto* text = std::get_if<std::string>(&record[i]))
                EXPECT_EQ(read[i], *text);
            else if (const auto* number = std::get_if<double>(&record[i]))
                EXPECT_DOUBLE_EQ(vb::Val(read[i]), *number);
            else if (const auto* whole = std::get_if<long long>(&record[i]))
                EXPECT_EQ(vb::Val(read[i]), static_cast<double>(*whole));
            else
                EXPECT_EQ(read[i], std::get<bool>(record[i]) ? "True" : "False");
        }
    }
}

TEST(ReadRecord, HandWrittenLines)
{
    struct Row
    {
        const char* line;
        std::vector<std::string> expected;
    };
    const Row rows[] = {
        {"  12 , abc ,\"x,y\"", {"12", "abc", "x,y"}},
        {"\"a\"junk,b", {"a", "b"}},
        {"1,,3", {"1", "", "3"}},
        {"\"a\",", {"a", ""}},
        {"\"unterminated, still", {"unterminated, still"}},
        {"#TRUE#,#FALSE#,#NULL#", {"True", "False", ""}},
        {"a,b\r\n", {"a", "b"}},
        {"", {}},
        {"   ", {}},
        // A record of the older plan format: three fields.
        {"\"M 1\",\"Messier\",1", {"M 1", "Messier", "1"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(vb::ReadRecord(row.line), row.expected);
    }
}

TEST(SplitLines, LineEnds)
{
    struct Row
    {
        const char* text;
        std::vector<std::string> expected;
    };
    const Row rows[] = {
        {"a\r\nb\nc\rd", {"a", "b", "c", "d"}},
        {"a\r\n", {"a"}},
        {"", {}},
        {"\r\n\r\n", {"", ""}},
        {"a\n\nb", {"a", "", "b"}},
        {"no end", {"no end"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(vb::SplitLines(row.text), row.expected);
    }
}

TEST(QuoteForSql, DoublesSingleQuotes)
{
    EXPECT_EQ(vb::QuoteForSql("O'Brien's"), "O''Brien''s");
    EXPECT_EQ(vb::QuoteForSql("''"), "''''");
    EXPECT_EQ(vb::QuoteForSql(""), "");
    EXPECT_EQ(vb::QuoteForSql("say \"x\""), "say \"x\"");
}

TEST(DateForSql, MonthDayYear)
{
    struct Row
    {
        QDate date;
        const vb::Regional* regional;
        const char* expected;
    };
    const Row rows[] = {
        {QDate(2003, 2, 14), &Defaults, "02/14/2003"},
        // The separator is "/" for a given date whatever the machine uses.
        {QDate(2003, 2, 14), &German, "02/14/2003"},
        {QDate(2000, 12, 1), &Defaults, "12/01/2000"},
        {QDate(99, 1, 5), &Defaults, "01/05/99"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(vb::DateForSql(row.date, *row.regional), row.expected);
    }
}

TEST(DateForSql, BlankGivesTodayWithRegionalSeparator)
{
    for (const vb::Regional* r : {&Defaults, &German}) {
        SCOPED_TRACE(r->datesep);
        const QDate before = QDate::currentDate();
        const std::string text = vb::DateForSql(QDate(), *r);
        const QDate after = QDate::currentDate();
        const auto expect = [&](QDate d) {
            return vb::FormatDate(d, "mm") + r->datesep + vb::FormatDate(d, "dd") + r->datesep +
                   vb::FormatDate(d, "yyyy");
        };
        EXPECT_TRUE(text == expect(before) || text == expect(after)) << text;
    }
}

} // namespace
