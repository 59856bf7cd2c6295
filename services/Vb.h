#pragma once
// Visual Basic's value and format behaviour that the routines depend on, in one place:
// Format patterns, Val, IsNumeric, IsDate, Trim, Int and Fix, the sequential-file records of
// Write # and Input #, the regional short date, and the SQL literal helpers.
// Every number or date text of the system is made here. Texts are UTF-8.

#include <QDate>
#include <QLocale>
#include <QTime>

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace services::vb {

// The machine's regional formats (GetLocalization). The C/POSIX locale counts as the program's
// own defaults: "mm/dd/yy", "/", ".".
struct Regional
{
    std::string dateformat = "mm/dd/yy"; // short date pattern, VB letters (mm month, dd, yy/yyyy)
    std::string datesep = "/";
    std::string decimalchar = ".";
};
Regional RegionalFromLocale(const QLocale& locale);

// Format(value, pattern) for numeric patterns: "0" digit placeholders pad with zeros, "#" ones
// do not, "." the decimal point; rounding half away from zero as VB does.
std::string Format(double value, std::string_view pattern);
// Format for dates and times with VB letters: "mm/dd/yyyy", "hh:mm:ss", "hh:mm AM/PM", ...
std::string FormatDate(const QDate& date, std::string_view pattern);
std::string FormatTime(const QTime& time, std::string_view pattern);
// The same under regional formats: "." in a numeric pattern gives the regional decimal sign
// (and "," then groups with the other one of "," and "."); "/" in a date pattern gives the
// regional date separator and "Short Date" the regional short date pattern.
std::string Format(double value, std::string_view pattern, const Regional& regional);
std::string FormatDate(const QDate& date, std::string_view pattern, const Regional& regional);
std::string FormatDateTime(const QDate& date, const QTime& time, std::string_view pattern,
                           const Regional& regional = {});

// The date as the regional short date; the time as VB's Time text ("hh:mm:ss").
std::string ShortDate(const QDate& date, const Regional& regional = {});
std::string LongTime(const QTime& time);

// Val: the leading number of the text (blanks skipped, "&H" not supported), else 0.
double Val(std::string_view text);
bool IsNumeric(std::string_view text);
// IsNumeric for text typed by the user: the regional decimal sign, and the other one of ","
// and "." as the thousands separator.
bool IsNumeric(std::string_view text, const Regional& regional);
// The platform's date parser: the regional short pattern (two- or four-digit years), then ISO
// 8601 YYYY-MM-DD; under the program's defaults month/day/year.
std::optional<QDate> ParseDate(std::string_view text, const Regional& regional = {});
bool IsDate(std::string_view text, const Regional& regional = {});
std::optional<QTime> ParseTime(std::string_view text);

std::string Trim(std::string_view text);
// Mid(text, start, length) with a 1-based start, counted in bytes; past the end gives what
// there is, a start beyond it nothing.
std::string Mid(std::string_view text, std::size_t start,
                std::size_t length = std::string_view::npos);
std::string LTrim(std::string_view text);
std::string RTrim(std::string_view text);
std::string UCase(std::string_view text);
std::string LCase(std::string_view text);
// Equal without regard to case (ASCII letters), as Jet compares names and text.
bool SameText(std::string_view a, std::string_view b);
// A number as the runtime turns it into text: up to 15 significant digits, the exponent form
// outside 1E-5 .. 1E15 ("34.5333333333333", "1.5E-05", "1E+15").
std::string CStr(double value);

// Int rounds toward minus infinity, Fix toward zero.
double Int(double value);
double Fix(double value);

// One field of a sequential-file record: text is written quoted, numbers bare, booleans as
// #TRUE# / #FALSE#.
using RecordField = std::variant<std::string, double, long long, bool>;
// Write #: fields separated by commas, line ended by CR LF.
std::string WriteRecord(const std::vector<RecordField>& fields);
// Input #: splits one line into its field texts (quotes removed, unquoted fields trimmed).
std::vector<std::string> ReadRecord(std::string_view line);
// Line Input: splits a file's text into lines at CR LF, LF or CR.
std::vector<std::string> SplitLines(std::string_view text);

// Every ' doubled, for a quoted SQL literal.
std::string QuoteForSql(std::string_view text);
// Month, day and year through "00", joined by "/", for a #...# literal; an invalid date gives
// today's date joined by the regional date separator.
std::string DateForSql(const QDate& date, const Regional& regional = {});

} // namespace services::vb
