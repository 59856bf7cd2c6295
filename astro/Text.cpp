#include "astro/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

// Conversions use <charconv>, never strtod or printf: those follow the process locale, which the
// application sets from the environment, and would then read or write a decimal comma.

namespace astro {

namespace {

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string_view TrimBlanks(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Reads 1 to maxDigits digits at pos; the count read is returned in digits.
int ReadDigits(std::string_view text, std::size_t& pos, int maxDigits, int& digits)
{
    int value = 0;
    digits = 0;
    while (pos < text.size() && IsDigit(text[pos]) && digits < maxDigits) {
        value = value * 10 + (text[pos] - '0');
        ++pos;
        ++digits;
    }
    return value;
}

bool IsLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int year, int month)
{
    static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

std::optional<CivilDate> Checked(CivilDate date)
{
    if (date.month < 1 || date.month > 12 || date.day < 1 ||
        date.day > DaysInMonth(date.year, date.month))
        return std::nullopt;
    return date;
}

} // namespace

std::optional<CivilDate> ParseObservingDate(std::string_view text)
{
    text = TrimBlanks(text);
    std::size_t pos = 0;
    int n = 0;
    const int first = ReadDigits(text, pos, 4, n);
    if (n == 4) {
        // YYYY-MM-DD
        CivilDate date;
        date.year = first;
        int d = 0;
        if (pos >= text.size() || text[pos++] != '-')
            return std::nullopt;
        date.month = ReadDigits(text, pos, 2, d);
        if (d == 0 || pos >= text.size() || text[pos++] != '-')
            return std::nullopt;
        date.day = ReadDigits(text, pos, 2, d);
        if (d == 0 || pos != text.size())
            return std::nullopt;
        return Checked(date);
    }
    if (n == 0 || n > 2)
        return std::nullopt;
    // month/day/year
    CivilDate date;
    date.month = first;
    int d = 0;
    if (pos >= text.size() || text[pos++] != '/')
        return std::nullopt;
    date.day = ReadDigits(text, pos, 2, d);
    if (d == 0 || pos >= text.size() || text[pos++] != '/')
        return std::nullopt;
    date.year = ReadDigits(text, pos, 4, d);
    if ((d != 2 && d != 4) || pos != text.size())
        return std::nullopt;
    if (d == 2)
        date.year += date.year < 30 ? 2000 : 1900;
    return Checked(date);
}

double LeadingNumber(std::string_view text)
{
    // Gather the number's characters with the blanks left out, then convert them.
    char buffer[64];
    std::size_t n = 0;
    bool digits = false;
    bool point = false;
    bool exponent = false;
    std::size_t mantissaEnd = 0;
    for (char c : text) {
        if (IsBlank(c))
            continue;
        if (n + 1 >= sizeof buffer)
            break;
        const bool signAllowed = n == 0 || (exponent && (buffer[n - 1] == 'e'));
        if ((c == '-' || c == '+') && signAllowed) {
            buffer[n++] = c;
        } else if (IsDigit(c)) {
            buffer[n++] = c;
            if (!exponent)
                digits = true;
        } else if (c == '.' && !point && !exponent) {
            buffer[n++] = c;
            point = true;
        } else if ((c == 'e' || c == 'E' || c == 'd' || c == 'D') && digits && !exponent) {
            mantissaEnd = n;
            buffer[n++] = 'e';
            exponent = true;
        } else {
            break;
        }
    }
    if (!digits)
        return 0.0;
    // An exponent marker with no digits after it does not belong to the number.
    if (exponent && !IsDigit(buffer[n - 1]))
        n = mantissaEnd;
    const char* begin = buffer;
    if (*begin == '+')
        ++begin;
    double value = 0.0;
    std::from_chars(begin, buffer + n, value);
    return value;
}

std::optional<double> ParseNumber(std::string_view text)
{
    text = TrimBlanks(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    if (text.empty())
        return std::nullopt;
    double value = 0.0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::size_t NumberText(double x, char* buffer)
{
    if (x == 0.0)
        x = 0.0; // -0 reads "0"
    const auto result =
        std::to_chars(buffer, buffer + kNumberTextSize - 1, x, std::chars_format::general, 15);
    std::size_t n = static_cast<std::size_t>(result.ptr - buffer);
    for (std::size_t i = 0; i < n; ++i) {
        if (buffer[i] == 'e')
            buffer[i] = 'E';
    }
    buffer[n] = '\0';
    return n;
}

double ThroughText(double x)
{
    char buffer[kNumberTextSize];
    const std::size_t n = NumberText(x, buffer);
    double value = 0.0;
    std::from_chars(buffer, buffer + n, value);
    return value;
}

double RoundPlaces(double x, int places)
{
    if (x == 0.0 || x != x)
        return x;
    // The 15 significant digits, d.dddddddddddddde+XX.
    char sci[kNumberTextSize];
    const auto result = std::to_chars(sci, sci + sizeof sci, x, std::chars_format::scientific, 14);
    const std::string_view text(sci, static_cast<std::size_t>(result.ptr - sci));
    const bool negative = text.front() == '-';
    const std::size_t start = negative ? 1 : 0;
    char digits[16];
    int count = 0;
    std::size_t pos = start;
    for (; pos < text.size() && text[pos] != 'e'; ++pos) {
        if (IsDigit(text[pos]))
            digits[count++] = text[pos];
    }
    int exponent = 0;
    {
        const char* begin = text.data() + pos + 1;
        if (*begin == '+')
            ++begin;
        std::from_chars(begin, text.data() + text.size(), exponent);
    }
    // Digits kept: those down to the last decimal place shown.
    const int keep = exponent + 1 + places;
    if (keep >= count)
        return x;
    if (keep < 0)
        return negative ? -0.0 : 0.0;
    // Integer of the kept digits, rounded on the first dropped one; value = it x 10^-places.
    long long kept = 0;
    for (int i = 0; i < keep; ++i)
        kept = kept * 10 + (digits[i] - '0');
    if (digits[keep] >= '5')
        ++kept;
    char out[kNumberTextSize];
    char* p = out;
    if (negative)
        *p++ = '-';
    // kept has at most 16 digits, so the exponent always has room after it.
    p = std::to_chars(p, out + 20, kept).ptr;
    *p++ = 'e';
    p = std::to_chars(p, out + sizeof out, -places).ptr;
    double value = 0.0;
    std::from_chars(out, p, value);
    return value;
}

std::size_t TwoDigits(int n, char* buffer)
{
    std::size_t len = 0;
    if (n >= 0 && n < 10)
        buffer[len++] = '0';
    len = static_cast<std::size_t>(std::to_chars(buffer + len, buffer + len + 12, n).ptr - buffer);
    return len;
}

std::string FixedText(double x, int intDigits, int decimals)
{
    const bool negative = x < 0;
    const double r = std::fabs(RoundPlaces(x, decimals));
    char digits[400];
    const auto result =
        std::to_chars(digits, digits + sizeof digits, r, std::chars_format::fixed, decimals);
    const std::string_view text(digits, static_cast<std::size_t>(result.ptr - digits));
    const std::size_t point = text.find('.');
    const int integerDigits =
        static_cast<int>(point == std::string_view::npos ? text.size() : point);
    std::string out;
    if (negative)
        out += '-';
    out.append(static_cast<std::size_t>(std::max(0, intDigits - integerDigits)), '0');
    // A pattern with no "0" before the point writes no leading zero (".5").
    if (intDigits == 0 && text.substr(0, integerDigits) == "0")
        out.append(text.substr(1));
    else
        out.append(text);
    return out;
}

std::string OptionalDigitsText(double x, int decimals)
{
    std::string text = FixedText(x, 0, decimals);
    if (decimals == 0)
        text += '.';
    while (text.back() == '0')
        text.pop_back();
    return text;
}

} // namespace astro
