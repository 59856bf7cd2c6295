#include "services/Vb.h"

// Numbers are turned into text through their first 15 significant decimal digits, as Visual
// Basic does, and Format then rounds that decimal text half away from zero: 2.675 through
// "0.00" gives "2.68" although the nearest double lies just below 2.675.
// Dates use the proleptic Gregorian calendar of QDate; two-digit years read 00-29 as 2000-2029
// and 30-99 as 1930-1999. Month and day names are English.

#include <QString>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace services::vb {

namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

char Lower(char c)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix)
{
    if (text.size() < prefix.size())
        return false;
    for (size_t i = 0; i < prefix.size(); ++i)
        if (Lower(text[i]) != Lower(prefix[i]))
            return false;
    return true;
}

bool EqualsNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && StartsWithNoCase(a, b);
}

// ---------------------------------------------------------------------------------------------
// Decimal digits of a double

// |value| as up to 15 significant digits: value = 0.digits x 10^(exponent + 1).
struct Decimal
{
    std::string digits; // no leading zero; empty for zero
    int exponent = 0;   // decimal exponent of the first digit
};

Decimal ToDecimal(double magnitude)
{
    Decimal d;
    if (magnitude == 0.0 || !std::isfinite(magnitude))
        return d;
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.14e", magnitude);
    const std::string_view text(buf);
    const size_t e = text.find('e');
    d.digits.push_back(text[0]);
    d.digits.append(text.substr(2, e - 2));
    d.exponent = std::atoi(buf + e + 1);
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
    return d;
}

// Rounds to `kept` leading digits, half away from zero; a carry may add a digit in front.
void RoundDigits(Decimal& d, int kept)
{
    if (d.digits.empty())
        return;
    if (kept < 0) {
        d.digits.clear();
        return;
    }
    if (kept >= static_cast<int>(d.digits.size()))
        return;
    const bool up = d.digits[static_cast<size_t>(kept)] >= '5';
    d.digits.resize(static_cast<size_t>(kept));
    if (up) {
        int i = kept - 1;
        while (i >= 0 && d.digits[static_cast<size_t>(i)] == '9') {
            d.digits[static_cast<size_t>(i)] = '0';
            --i;
        }
        if (i >= 0) {
            ++d.digits[static_cast<size_t>(i)];
        } else {
            d.digits.insert(d.digits.begin(), '1');
            ++d.exponent;
        }
    }
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
}

// The integer digits ("" for none) and exactly `decimals` fraction digits of a rounded value.
void SplitFixed(const Decimal& d, int decimals, std::string& integer, std::string& fraction)
{
    integer.clear();
    fraction.assign(static_cast<size_t>(decimals), '0');
    const int n = static_cast<int>(d.digits.size());
    for (int i = 0; i < n; ++i) {
        const int power = d.exponent - i; // 10^power
        if (power >= 0) {
            integer.push_back(d.digits[static_cast<size_t>(i)]);
        } else if (-power <= decimals) {
            fraction[static_cast<size_t>(-power - 1)] = d.digits[static_cast<size_t>(i)];
        }
    }
    if (!integer.empty() && d.exponent + 1 > n)
        integer.append(static_cast<size_t>(d.exponent + 1 - n), '0');
}

// The text of a number without a pattern: 15 significant digits, exponent form outside
// 1E-5 .. 1E15 ("1E+15", "1E-05").
std::string GeneralNumber(double value)
{
    if (value == 0.0)
        return "0";
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.15g", value);
    std::string text(buf);
    for (char& c : text)
        if (c == 'e')
            c = 'E';
    return text;
}

// ---------------------------------------------------------------------------------------------
// Numeric patterns

enum class Tok {
    Zero,     // "0"
    Hash,     // "#"
    Point,    // "."
    Comma,    // ","
    Percent,  // "%"
    Exponent, // "E+", "E-", "e+", "e-"
    Literal,
};

struct Token
{
    Tok kind;
    std::string text; // literal text, or the exponent's letter and sign
};

std::vector<std::string> SplitSections(std::string_view pattern)
{
    std::vector<std::string> sections(1);
    bool quoted = false;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        if (c == '"')
            quoted = !quoted;
        if (!quoted && c == '\\' && i + 1 < pattern.size()) {
            sections.back() += c;
            sections.back() += pattern[++i];
            continue;
        }
        if (!quoted && c == ';') {
            sections.emplace_back();
            continue;
        }
        sections.back() += c;
    }
    return sections;
}

std::vector<Token> Tokenize(std::string_view section)
{
    std::vector<Token> tokens;
    auto literal = [&](std::string_view text) {
        if (!tokens.empty() && tokens.back().kind == Tok::Literal)
            tokens.back().text += text;
        else
            tokens.push_back({Tok::Literal, std::string(text)});
    };
    for (size_t i = 0; i < section.size(); ++i) {
        const char c = section[i];
        switch (c) {
        case '0':
            tokens.push_back({Tok::Zero, {}});
            break;
        case '#':
            tokens.push_back({Tok::Hash, {}});
            break;
        case '.':
            tokens.push_back({Tok::Point, {}});
            break;
        case ',':
            tokens.push_back({Tok::Comma, {}});
            break;
        case '%':
            tokens.push_back({Tok::Percent, {}});
            break;
        case '\\':
            if (i + 1 < section.size())
                literal(section.substr(++i, 1));
            break;
        case '"': {
            const size_t end = section.find('"', i + 1);
            const size_t stop = end == std::string_view::npos ? section.size() : end;
            literal(section.substr(i + 1, stop - i - 1));
            i = stop;
            break;
        }
        case 'E':
        case 'e':
            if (i + 1 < section.size() && (section[i + 1] == '+' || section[i + 1] == '-')) {
                tokens.push_back({Tok::Exponent, std::string(section.substr(i, 2))});
                ++i;
            } else {
                literal(section.substr(i, 1));
            }
            break;
        default:
            literal(section.substr(i, 1));
        }
    }
    return tokens;
}

bool IsPlaceholder(const Token& t)
{
    return t.kind == Tok::Zero || t.kind == Tok::Hash;
}

struct NumberSigns
{
    std::string point = ".";
    std::string group = ",";
};

// Writes the integer digits into the integer part's tokens: digits fill the placeholders from
// the right, digits beyond the placeholders go in front of the leftmost one, an unfilled "0"
// shows 0 and an unfilled "#" nothing. Literals stay where they stand.
std::string FillInteger(const std::vector<Token>& tokens, std::string digits, bool grouping,
                        bool wholeDigitsWithoutPlaceholder, const NumberSigns& signs)
{
    int lastZeroFromRight = -1;
    int placeholders = 0;
    for (auto it = tokens.rbegin(); it != tokens.rend(); ++it) {
        if (!IsPlaceholder(*it))
            continue;
        if (it->kind == Tok::Zero)
            lastZeroFromRight = placeholders;
        ++placeholders;
    }
    // A "0" left of a "#" forces the "#" positions to its right to show digits too.
    if (lastZeroFromRight >= 0 && static_cast<int>(digits.size()) < lastZeroFromRight + 1)
        digits.insert(0, static_cast<size_t>(lastZeroFromRight + 1) - digits.size(), '0');

    std::string reversed;
    int digitIndex = 0; // 10^digitIndex of the next digit written
    auto putDigit = [&](char d) {
        if (grouping && digitIndex > 0 && digitIndex % 3 == 0) {
            std::string g = signs.group;
            std::reverse(g.begin(), g.end());
            reversed += g;
        }
        reversed += d;
        ++digitIndex;
    };
    int next = static_cast<int>(digits.size()) - 1;
    int seen = 0;
    for (auto it = tokens.rbegin(); it != tokens.rend(); ++it) {
        if (it->kind == Tok::Literal) {
            std::string text = it->text;
            std::reverse(text.begin(), text.end());
            reversed += text;
            continue;
        }
        if (!IsPlaceholder(*it))
            continue;
        ++seen;
        if (seen == placeholders) {
            // The leftmost placeholder takes every digit still left.
            if (next < 0 && it->kind == Tok::Zero)
                putDigit('0');
            for (; next >= 0; --next)
                putDigit(digits[static_cast<size_t>(next)]);
        } else if (next >= 0) {
            putDigit(digits[static_cast<size_t>(next--)]);
        } else if (it->kind == Tok::Zero) {
            putDigit('0');
        }
    }
    // With no integer placeholder the digits show only if the pattern has a point (".00");
    // a pattern of literals alone shows just the literals.
    if (placeholders == 0 && wholeDigitsWithoutPlaceholder)
        for (; next >= 0; --next)
            putDigit(digits[static_cast<size_t>(next)]);
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

// Writes the fraction digits into the fraction part's tokens: "0" always shows its digit, "#"
// only when a digit that is not a trailing zero, or a "0" placeholder, follows.
std::string FillFraction(const std::vector<Token>& tokens, const std::string& digits)
{
    int lastNeeded = -1;
    int index = 0;
    for (const Token& t : tokens) {
        if (!IsPlaceholder(t))
            continue;
        if (t.kind == Tok::Zero || digits[static_cast<size_t>(index)] != '0')
            lastNeeded = index;
        ++index;
    }
    std::string out;
    index = 0;
    for (const Token& t : tokens) {
        if (t.kind == Tok::Literal) {
            out += t.text;
        } else if (t.kind == Tok::Percent) {
            out += '%';
        } else if (IsPlaceholder(t)) {
            if (index <= lastNeeded)
                out += digits[static_cast<size_t>(index)];
            ++index;
        }
    }
    return out;
}

std::string FormatSection(double magnitude, const std::vector<Token>& tokens,
                          const NumberSigns& signs)
{
    // Parts: integer tokens up to the point (or exponent), fraction tokens after the point,
    // exponent tokens after the exponent mark.
    std::vector<Token> integerPart, fractionPart, exponentPart;
    std::string exponentMark;
    bool hasPoint = false;
    bool hasPercent = false;
    int stage = 0; // 0 integer, 1 fraction, 2 exponent
    for (const Token& t : tokens) {
        if (t.kind == Tok::Percent)
            hasPercent = true;
        if (stage < 2 && t.kind == Tok::Exponent) {
            exponentMark = t.text;
            stage = 2;
            continue;
        }
        if (stage == 0 && t.kind == Tok::Point) {
            hasPoint = true;
            stage = 1;
            continue;
        }
        if (stage == 0)
            integerPart.push_back(t);
        else if (stage == 1)
            fractionPart.push_back(t);
        else
            exponentPart.push_back(t);
    }

    // Commas: between placeholders they group thousands; right of the last integer
    // placeholder each one divides by 1000. Elsewhere they are literal.
    bool grouping = false;
    int scale = 0;
    {
        int firstPh = -1, lastPh = -1;
        for (int i = 0; i < static_cast<int>(integerPart.size()); ++i)
            if (IsPlaceholder(integerPart[static_cast<size_t>(i)])) {
                if (firstPh < 0)
                    firstPh = i;
                lastPh = i;
            }
        std::vector<Token> kept;
        for (int i = 0; i < static_cast<int>(integerPart.size()); ++i) {
            const Token& t = integerPart[static_cast<size_t>(i)];
            if (t.kind == Tok::Comma) {
                if (firstPh >= 0 && i > firstPh && i < lastPh) {
                    grouping = true;
                    continue;
                }
                if (lastPh >= 0 && i > lastPh && exponentMark.empty()) {
                    ++scale;
                    continue;
                }
                kept.push_back({Tok::Literal, ","});
                continue;
            }
            if (t.kind == Tok::Percent) {
                kept.push_back({Tok::Literal, "%"});
                continue;
            }
            kept.push_back(t);
        }
        integerPart = std::move(kept);
        for (Token& t : fractionPart)
            if (t.kind == Tok::Comma || t.kind == Tok::Point)
                t = {Tok::Literal, t.kind == Tok::Comma ? "," : "."};
    }

    if (hasPercent)
        magnitude *= 100.0;
    for (int i = 0; i < scale; ++i)
        magnitude /= 1000.0;

    int decimals = 0;
    for (const Token& t : fractionPart)
        if (IsPlaceholder(t))
            ++decimals;

    Decimal d = ToDecimal(magnitude);
    std::string integer, fraction;
    std::string exponentText;
    if (exponentMark.empty()) {
        RoundDigits(d, d.exponent + 1 + decimals);
        SplitFixed(d, decimals, integer, fraction);
    } else {
        int integerPlaces = 0;
        for (const Token& t : integerPart)
            if (IsPlaceholder(t))
                ++integerPlaces;
        integerPlaces = std::max(integerPlaces, 1);
        int power = 0;
        if (!d.digits.empty()) {
            RoundDigits(d, integerPlaces + decimals);
            power = d.exponent - (integerPlaces - 1);
            d.exponent = integerPlaces - 1;
        }
        SplitFixed(d, decimals, integer, fraction);
        int minDigits = 0;
        for (const Token& t : exponentPart)
            if (t.kind == Tok::Zero)
                ++minDigits;
        std::string powerDigits = std::to_string(std::abs(power));
        if (static_cast<int>(powerDigits.size()) < minDigits)
            powerDigits.insert(0, static_cast<size_t>(minDigits) - powerDigits.size(), '0');
        exponentText = std::string(1, exponentMark[0]);
        if (power < 0)
            exponentText += '-';
        else if (exponentMark[1] == '+')
            exponentText += '+';
        exponentText += powerDigits;
        for (const Token& t : exponentPart)
            if (t.kind == Tok::Literal)
                exponentText += t.text;
    }

    std::string out = FillInteger(integerPart, integer, grouping, hasPoint, signs);
    if (hasPoint)
        out += signs.point; // Deliberate: the point shows even with no digit after it ("5.").
    out += FillFraction(fractionPart, fraction);
    out += exponentText;
    return out;
}

std::string FormatNumber(double value, std::string_view pattern, const NumberSigns& signs)
{
    if (std::isnan(value))
        return "NaN";
    struct Named
    {
        const char* name;
        const char* pattern;
    };
    static constexpr std::array<Named, 9> named{{
        {"Fixed", "0.00"},
        {"Standard", "#,##0.00"},
        {"Percent", "0.00%"},
        {"Scientific", "0.00E+00"},
        {"Currency", "$#,##0.00;($#,##0.00)"},
        {"Yes/No", "\"Yes\";\"Yes\";\"No\""},
        {"True/False", "\"True\";\"True\";\"False\""},
        {"On/Off", "\"On\";\"On\";\"Off\""},
        {"General Number", ""},
    }};
    for (const Named& n : named)
        if (EqualsNoCase(pattern, n.name)) {
            pattern = n.pattern;
            break;
        }
    if (pattern.empty()) {
        std::string text = GeneralNumber(value);
        if (signs.point != ".") {
            const size_t p = text.find('.');
            if (p != std::string::npos)
                text.replace(p, 1, signs.point);
        }
        return text;
    }

    const std::vector<std::string> sections = SplitSections(pattern);
    if (value < 0 && sections.size() >= 2 && !sections[1].empty())
        return FormatSection(-value, Tokenize(sections[1]), signs);
    if (value == 0 && sections.size() >= 3 && !sections[2].empty())
        return FormatSection(0, Tokenize(sections[2]), signs);
    // Deliberate: a negative value that rounds to zero keeps its sign ("-0.00"), as before.
    const std::string body = FormatSection(std::fabs(value), Tokenize(sections[0]), signs);
    return value < 0 ? "-" + body : body;
}

NumberSigns SignsOf(const Regional& regional)
{
    // Each sign is built whole rather than assigned over the default, which GCC 12 at -O3
    // misreads as an overlapping copy (-Wrestrict).
    std::string point = regional.decimalchar.empty() ? std::string(".") : regional.decimalchar;
    std::string group(1, point == "," ? '.' : ',');
    return NumberSigns{std::move(point), std::move(group)};
}

// ---------------------------------------------------------------------------------------------
// Date and time patterns

constexpr std::array<const char*, 12> MonthNames{"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
constexpr std::array<const char*, 7> DayNames{"Monday", "Tuesday",  "Wednesday", "Thursday",
                                              "Friday", "Saturday", "Sunday"};

std::string Two(int n)
{
    char buf[16];
    std::snprintf(buf, sizeof buf, "%02d", n);
    return buf;
}

std::string Four(int n)
{
    char buf[16];
    std::snprintf(buf, sizeof buf, "%04d", n);
    return buf;
}

enum class DateTok {
    Literal,
    Day,   // d dd ddd dddd ddddd dddddd (count)
    Week,  // w ww
    Month, // m mm mmm mmmm; or minutes when next to hours or seconds
    Quarter,
    Year, // y (day of year), yy, yyyy
    Hour,
    Minute, // n nn
    Second,
    AmPm, // text: the marker as written
    DateSep,
    TimeSep,
    GeneralDate, // c
    LongTimeTok, // ttttt
};

struct DTok
{
    DateTok kind;
    int count = 0;
    std::string text;
};

std::vector<DTok> TokenizeDate(std::string_view p)
{
    std::vector<DTok> out;
    auto literal = [&](std::string_view text) {
        if (!out.empty() && out.back().kind == DateTok::Literal)
            out.back().text += text;
        else
            out.push_back({DateTok::Literal, 0, std::string(text)});
    };
    size_t i = 0;
    while (i < p.size()) {
        const std::string_view rest = p.substr(i);
        if (StartsWithNoCase(rest, "am/pm")) {
            out.push_back({DateTok::AmPm, 0, std::string(rest.substr(0, 5))});
            i += 5;
            continue;
        }
        if (StartsWithNoCase(rest, "a/p")) {
            out.push_back({DateTok::AmPm, 0, std::string(rest.substr(0, 3))});
            i += 3;
            continue;
        }
        if (StartsWithNoCase(rest, "ampm")) {
            out.push_back({DateTok::AmPm, 0, "AM/PM"});
            i += 4;
            continue;
        }
        const char c = Lower(p[i]);
        size_t run = 1;
        while (i + run < p.size() && Lower(p[i + run]) == c)
            ++run;
        const int n = static_cast<int>(run);
        switch (c) {
        case 'd':
            out.push_back({DateTok::Day, std::min(n, 6), {}});
            break;
        case 'w':
            out.push_back({DateTok::Week, std::min(n, 2), {}});
            break;
        case 'm':
            out.push_back({DateTok::Month, std::min(n, 4), {}});
            break;
        case 'q':
            out.push_back({DateTok::Quarter, 1, {}});
            break;
        case 'y':
            out.push_back({DateTok::Year, n == 1 ? 1 : (n < 4 ? 2 : 4), {}});
            break;
        case 'h':
            out.push_back({DateTok::Hour, std::min(n, 2), {}});
            break;
        case 'n':
            out.push_back({DateTok::Minute, std::min(n, 2), {}});
            break;
        case 's':
            out.push_back({DateTok::Second, std::min(n, 2), {}});
            break;
        case 'c':
            out.push_back({DateTok::GeneralDate, 1, {}});
            break;
        case 't':
            if (n >= 5) {
                out.push_back({DateTok::LongTimeTok, 1, {}});
                run = 5;
            } else {
                literal(p.substr(i, run));
            }
            break;
        case '/':
            out.push_back({DateTok::DateSep, 1, {}});
            run = 1;
            break;
        case ':':
            out.push_back({DateTok::TimeSep, 1, {}});
            run = 1;
            break;
        case '\\':
            if (i + 1 < p.size())
                literal(p.substr(i + 1, 1));
            run = 2;
            break;
        case '"': {
            const size_t end = p.find('"', i + 1);
            const size_t stop = end == std::string_view::npos ? p.size() : end;
            literal(p.substr(i + 1, stop - i - 1));
            run = stop - i + 1;
            break;
        }
        default:
            literal(p.substr(i, 1));
            run = 1;
        }
        i += run;
    }
    // "m" right after an hour or right before a second means minutes.
    int previous = -1;
    for (size_t k = 0; k < out.size(); ++k) {
        if (out[k].kind == DateTok::Literal || out[k].kind == DateTok::DateSep ||
            out[k].kind == DateTok::TimeSep)
            continue;
        if (out[k].kind == DateTok::Month && out[k].count <= 2) {
            bool minute = previous >= 0 && out[static_cast<size_t>(previous)].kind == DateTok::Hour;
            for (size_t j = k + 1; j < out.size() && !minute; ++j) {
                if (out[j].kind == DateTok::Literal || out[j].kind == DateTok::DateSep ||
                    out[j].kind == DateTok::TimeSep)
                    continue;
                minute = out[j].kind == DateTok::Second;
                break;
            }
            if (minute)
                out[k].kind = DateTok::Minute;
        }
        previous = static_cast<int>(k);
    }
    return out;
}

std::string NamedDatePattern(std::string_view pattern, const Regional& regional, bool hasTime)
{
    if (EqualsNoCase(pattern, "Short Date"))
        return regional.dateformat;
    if (EqualsNoCase(pattern, "Long Date"))
        return "dddd, mmmm d, yyyy";
    if (EqualsNoCase(pattern, "Medium Date"))
        return "dd-mmm-yy";
    if (EqualsNoCase(pattern, "Long Time"))
        return "hh:mm:ss";
    if (EqualsNoCase(pattern, "Medium Time"))
        return "hh:mm AM/PM";
    if (EqualsNoCase(pattern, "Short Time"))
        return "hh:mm";
    if (EqualsNoCase(pattern, "General Date") || pattern.empty())
        return hasTime ? regional.dateformat + " hh:mm:ss" : regional.dateformat;
    return std::string(pattern);
}

std::string FormatDateTimeImpl(const QDate& date, const QTime& time, std::string_view pattern,
                               const Regional& regional, bool hasTime)
{
    const std::string resolved = NamedDatePattern(pattern, regional, hasTime);
    const std::vector<DTok> tokens = TokenizeDate(resolved);
    bool twelveHour = false;
    for (const DTok& t : tokens)
        if (t.kind == DateTok::AmPm)
            twelveHour = true;
    const int hour = time.isValid() ? time.hour() : 0;
    const int minute = time.isValid() ? time.minute() : 0;
    const int second = time.isValid() ? time.second() : 0;
    const bool dateOk = date.isValid();

    std::string out;
    for (const DTok& t : tokens) {
        switch (t.kind) {
        case DateTok::Literal:
            out += t.text;
            break;
        case DateTok::DateSep:
            out += regional.datesep;
            break;
        case DateTok::TimeSep:
            out += ':';
            break;
        case DateTok::Day:
            if (!dateOk)
                break;
            if (t.count == 1)
                out += std::to_string(date.day());
            else if (t.count == 2)
                out += Two(date.day());
            else if (t.count == 3)
                out += std::string(DayNames[static_cast<size_t>(date.dayOfWeek() - 1)], 3);
            else if (t.count == 4)
                out += DayNames[static_cast<size_t>(date.dayOfWeek() - 1)];
            else if (t.count == 5)
                out += FormatDateTimeImpl(date, {}, regional.dateformat, regional, false);
            else
                out += FormatDateTimeImpl(date, {}, "Long Date", regional, false);
            break;
        case DateTok::Week:
            if (!dateOk)
                break;
            if (t.count == 1) {
                out += std::to_string(date.dayOfWeek() % 7 + 1); // Sunday is 1
            } else {
                // Weeks start on Sunday; the week holding January 1 is week 1.
                const int firstWeekday = QDate(date.year(), 1, 1).dayOfWeek() % 7;
                out += std::to_string((date.dayOfYear() - 1 + firstWeekday) / 7 + 1);
            }
            break;
        case DateTok::Month:
            if (!dateOk)
                break;
            if (t.count == 1)
                out += std::to_string(date.month());
            else if (t.count == 2)
                out += Two(date.month());
            else if (t.count == 3)
                out += std::string(MonthNames[static_cast<size_t>(date.month() - 1)], 3);
            else
                out += MonthNames[static_cast<size_t>(date.month() - 1)];
            break;
        case DateTok::Quarter:
            if (dateOk)
                out += std::to_string((date.month() - 1) / 3 + 1);
            break;
        case DateTok::Year:
            if (!dateOk)
                break;
            if (t.count == 1)
                out += std::to_string(date.dayOfYear());
            else if (t.count == 2)
                out += Two(((date.year() % 100) + 100) % 100);
            else
                out += Four(date.year());
            break;
        case DateTok::Hour: {
            int h = hour;
            if (twelveHour) {
                h = hour % 12;
                if (h == 0)
                    h = 12;
            }
            out += t.count == 1 ? std::to_string(h) : Two(h);
            break;
        }
        case DateTok::Minute:
            out += t.count == 1 ? std::to_string(minute) : Two(minute);
            break;
        case DateTok::Second:
            out += t.count == 1 ? std::to_string(second) : Two(second);
            break;
        case DateTok::AmPm: {
            const bool pm = hour >= 12;
            const bool lower = t.text[0] == 'a' || t.text[0] == 'p';
            const bool shortForm = t.text.size() == 3;
            std::string marker = shortForm ? (pm ? "P" : "A") : (pm ? "PM" : "AM");
            if (lower)
                for (char& c : marker)
                    c = Lower(c);
            out += marker;
            break;
        }
        case DateTok::GeneralDate:
            out += FormatDateTimeImpl(date, time, "General Date", regional, hasTime);
            break;
        case DateTok::LongTimeTok:
            out += FormatDateTimeImpl(date, time, "Long Time", regional, true);
            break;
        }
    }
    return out;
}

// ---------------------------------------------------------------------------------------------
// Reading dates and times

int WindowYear(int year, size_t digits)
{
    if (digits > 2)
        return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

// The order of day, month and year in a short date pattern, as 'd', 'm', 'y'.
std::string FieldOrder(const std::string& pattern)
{
    std::string order;
    for (char c : pattern) {
        const char l = Lower(c);
        if ((l == 'd' || l == 'm' || l == 'y') && order.find(l) == std::string::npos)
            order += l;
    }
    return order.size() == 3 ? order : "mdy";
}

struct DateFields
{
    std::array<std::string, 3> groups;
    std::string_view rest; // what follows the third group
};

std::optional<DateFields> SplitDateFields(std::string_view text, const Regional& regional)
{
    DateFields f;
    size_t i = 0;
    for (int g = 0; g < 3; ++g) {
        if (g > 0) {
            const size_t start = i;
            while (i < text.size() && !IsDigit(text[i]) &&
                   (std::string_view("/-. ").find(text[i]) != std::string_view::npos ||
                    regional.datesep.find(text[i]) != std::string::npos))
                ++i;
            if (i == start)
                return std::nullopt;
        }
        const size_t start = i;
        while (i < text.size() && IsDigit(text[i]))
            ++i;
        if (i == start || i - start > 4)
            return std::nullopt;
        f.groups[static_cast<size_t>(g)] = std::string(text.substr(start, i - start));
    }
    f.rest = text.substr(i);
    return f;
}

std::optional<QDate> DateFromGroups(const DateFields& f, const std::string& order)
{
    int day = 0, month = 0, year = 0;
    for (size_t k = 0; k < 3; ++k) {
        const std::string& g = f.groups[k];
        const int v = std::atoi(g.c_str());
        switch (order[k]) {
        case 'd':
            if (g.size() > 2)
                return std::nullopt;
            day = v;
            break;
        case 'm':
            if (g.size() > 2)
                return std::nullopt;
            month = v;
            break;
        default:
            // Two digits are windowed; three or four are the year itself (1/1/100 is year 100).
            year = WindowYear(v, g.size());
        }
    }
    const QDate date(year, month, day);
    if (!date.isValid())
        return std::nullopt;
    return date;
}

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string_view TrimBlanks(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// ---------------------------------------------------------------------------------------------
// Numbers in text

// A number in IsNumeric's sense: blanks around, one sign in front or behind or parentheses,
// digits with thousands separators, one decimal sign, an exponent; or &H / &O.
bool IsNumericWith(std::string_view text, char point, char group)
{
    text = TrimBlanks(text);
    if (text.empty())
        return false;
    if (text[0] == '&' && text.size() > 2) {
        const char base = Lower(text[1]);
        const std::string_view digits = text.substr(2);
        if (base == 'h')
            return std::all_of(digits.begin(), digits.end(),
                               [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); });
        if (base == 'o')
            return std::all_of(digits.begin(), digits.end(),
                               [](char c) { return c >= '0' && c <= '7'; });
        return false;
    }
    bool signSeen = false;
    if (text.front() == '(' && text.back() == ')') {
        text = TrimBlanks(text.substr(1, text.size() - 2));
        signSeen = true;
    }
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        if (signSeen)
            return false;
        signSeen = true;
        text = TrimBlanks(text.substr(1));
    }
    if (!text.empty() && (text.back() == '+' || text.back() == '-')) {
        if (signSeen)
            return false;
        text = TrimBlanks(text.substr(0, text.size() - 1));
    }
    size_t i = 0;
    int digits = 0;
    while (i < text.size() && (IsDigit(text[i]) || (text[i] == group && digits > 0))) {
        if (IsDigit(text[i]))
            ++digits;
        ++i;
    }
    if (i < text.size() && text[i] == point) {
        ++i;
        while (i < text.size() && IsDigit(text[i])) {
            ++digits;
            ++i;
        }
    }
    if (digits == 0)
        return false;
    if (i < text.size() && (Lower(text[i]) == 'e' || Lower(text[i]) == 'd')) {
        ++i;
        if (i < text.size() && (text[i] == '+' || text[i] == '-'))
            ++i;
        const size_t start = i;
        while (i < text.size() && IsDigit(text[i]))
            ++i;
        if (i == start)
            return false;
    }
    return i == text.size();
}

} // namespace

// =============================================================================================

Regional RegionalFromLocale(const QLocale& locale)
{
    Regional r;
    if (locale.language() == QLocale::C)
        return r;
    const std::string pattern = locale.dateFormat(QLocale::ShortFormat).toStdString();
    if (pattern.empty())
        return r;
    r.dateformat = pattern;
    r.datesep = "/";
    for (char c : pattern)
        if (!std::isalpha(static_cast<unsigned char>(c)) && c != '\'') {
            r.datesep = std::string(1, c);
            break;
        }
    const std::string point = locale.decimalPoint().toStdString();
    if (!point.empty())
        r.decimalchar = point;
    return r;
}

std::string Format(double value, std::string_view pattern)
{
    return FormatNumber(value, pattern, NumberSigns{});
}

std::string Format(double value, std::string_view pattern, const Regional& regional)
{
    return FormatNumber(value, pattern, SignsOf(regional));
}

std::string FormatDate(const QDate& date, std::string_view pattern)
{
    return FormatDateTimeImpl(date, QTime(), pattern, Regional{}, false);
}

std::string FormatDate(const QDate& date, std::string_view pattern, const Regional& regional)
{
    return FormatDateTimeImpl(date, QTime(), pattern, regional, false);
}

std::string FormatTime(const QTime& time, std::string_view pattern)
{
    return FormatDateTimeImpl(QDate(), time, pattern.empty() ? "Long Time" : pattern, Regional{},
                              true);
}

std::string FormatDateTime(const QDate& date, const QTime& time, std::string_view pattern,
                           const Regional& regional)
{
    return FormatDateTimeImpl(date, time, pattern, regional, time.isValid());
}

std::string ShortDate(const QDate& date, const Regional& regional)
{
    return FormatDateTimeImpl(date, QTime(), regional.dateformat, regional, false);
}

std::string LongTime(const QTime& time)
{
    return FormatDateTimeImpl(QDate(), time, "hh:mm:ss", Regional{}, true);
}

double Val(std::string_view text)
{
    // Blanks, tabs and line feeds are skipped anywhere, even inside the number.
    std::string number;
    size_t i = 0;
    auto skip = [&] {
        while (i < text.size() &&
               (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r'))
            ++i;
    };
    skip();
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        if (text[i] == '-')
            number += '-';
        ++i;
    }
    bool digits = false;
    bool point = false;
    for (skip(); i < text.size(); skip()) {
        const char c = text[i];
        if (IsDigit(c)) {
            number += c;
            digits = true;
        } else if (c == '.' && !point) {
            number += c;
            point = true;
        } else {
            break;
        }
        ++i;
    }
    if (!digits)
        return 0.0;
    if (i < text.size() && (Lower(text[i]) == 'e' || Lower(text[i]) == 'd')) {
        std::string exponent = "e";
        size_t j = i + 1;
        auto skipAt = [&] {
            while (j < text.size() && (text[j] == ' ' || text[j] == '\t'))
                ++j;
        };
        skipAt();
        if (j < text.size() && (text[j] == '-' || text[j] == '+'))
            exponent += text[j++];
        bool expDigits = false;
        for (skipAt(); j < text.size() && IsDigit(text[j]); skipAt()) {
            exponent += text[j++];
            expDigits = true;
        }
        if (expDigits)
            number += exponent;
    }
    if (number.back() == '.')
        number.pop_back();
    double value = 0.0;
    const char* first = number.data();
    if (*first == '-')
        ++first; // the sign is put back below, so that "-.5" reads like ".5"
    const auto [end, ec] = std::from_chars(first, number.data() + number.size(), value);
    (void)end;
    if (ec == std::errc::result_out_of_range)
        value = number.find("e-") != std::string::npos ? 0.0 : HUGE_VAL;
    return number[0] == '-' ? -value : value;
}

bool IsNumeric(std::string_view text)
{
    return IsNumericWith(text, '.', ',');
}

bool IsNumeric(std::string_view text, const Regional& regional)
{
    const char point = regional.decimalchar.empty() ? '.' : regional.decimalchar[0];
    return IsNumericWith(text, point, point == ',' ? '.' : ',');
}

std::optional<QDate> ParseDate(std::string_view text, const Regional& regional)
{
    text = TrimBlanks(text);
    const std::optional<DateFields> fields = SplitDateFields(text, regional);
    if (!fields)
        return std::nullopt;
    // A time of day may follow the date; it must be a valid one.
    const std::string_view rest = TrimBlanks(fields->rest);
    if (!rest.empty() && (fields->rest.front() != ' ' || !ParseTime(rest)))
        return std::nullopt;
    if (auto date = DateFromGroups(*fields, FieldOrder(regional.dateformat)))
        return date;
    if (fields->groups[0].size() == 4)
        return DateFromGroups(*fields, "ymd");
    return std::nullopt;
}

bool IsDate(std::string_view text, const Regional& regional)
{
    return ParseDate(text, regional).has_value();
}

std::optional<QTime> ParseTime(std::string_view text)
{
    text = TrimBlanks(text);
    std::array<int, 3> parts{0, 0, 0};
    int count = 0;
    size_t i = 0;
    while (count < 3) {
        const size_t start = i;
        while (i < text.size() && IsDigit(text[i]))
            ++i;
        if (i == start || i - start > 2)
            return std::nullopt;
        parts[static_cast<size_t>(count++)] =
            std::atoi(std::string(text.substr(start, i - start)).c_str());
        if (i < text.size() && text[i] == ':')
            ++i;
        else
            break;
    }
    if (count < 2)
        return std::nullopt;
    std::string_view marker = TrimBlanks(text.substr(i));
    int hour = parts[0];
    if (!marker.empty()) {
        const bool am = EqualsNoCase(marker, "AM") || EqualsNoCase(marker, "A");
        const bool pm = EqualsNoCase(marker, "PM") || EqualsNoCase(marker, "P");
        if (!am && !pm)
            return std::nullopt;
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (pm ? 12 : 0);
    }
    const QTime time(hour, parts[1], parts[2]);
    if (!time.isValid())
        return std::nullopt;
    return time;
}

std::string Mid(std::string_view text, std::size_t start, std::size_t length)
{
    if (start < 1 || start > text.size())
        return {};
    return std::string(text.substr(start - 1, length));
}

std::string Trim(std::string_view text)
{
    return LTrim(RTrim(text));
}

std::string LTrim(std::string_view text)
{
    const size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string() : std::string(text.substr(first));
}

std::string RTrim(std::string_view text)
{
    const size_t last = text.find_last_not_of(' ');
    return last == std::string_view::npos ? std::string() : std::string(text.substr(0, last + 1));
}

std::string UCase(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
        .toUpper()
        .toStdString();
}

std::string LCase(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
        .toLower()
        .toStdString();
}

bool SameText(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

double Int(double value)
{
    return std::floor(value);
}

double Fix(double value)
{
    return std::trunc(value);
}

std::string WriteRecord(const std::vector<RecordField>& fields)
{
    std::string line;
    for (size_t i = 0; i < fields.size(); ++i) {
        if (i > 0)
            line += ',';
        const RecordField& f = fields[i];
        if (const auto* text = std::get_if<std::string>(&f)) {
            line += '"';
            for (char c : *text) {
                // Deliberate: a quote inside text is doubled so that the field reads back
                // whole; the record format has no other escape.
                if (c == '"')
                    line += '"';
                line += c;
            }
            line += '"';
        } else if (const auto* number = std::get_if<double>(&f)) {
            line += GeneralNumber(*number);
        } else if (const auto* whole = std::get_if<long long>(&f)) {
            line += std::to_string(*whole);
        } else {
            line += std::get<bool>(f) ? "#TRUE#" : "#FALSE#";
        }
    }
    line += "\r\n";
    return line;
}

std::vector<std::string> ReadRecord(std::string_view line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.remove_suffix(1);
    std::vector<std::string> fields;
    size_t i = 0;
    if (line.find_first_not_of(" \t") == std::string_view::npos)
        return fields;
    while (true) {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t'))
            ++i;
        std::string field;
        if (i < line.size() && line[i] == '"') {
            ++i;
            while (i < line.size()) {
                if (line[i] == '"') {
                    if (i + 1 < line.size() && line[i + 1] == '"') {
                        field += '"';
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                field += line[i++];
            }
            // Anything between the closing quote and the next comma is dropped.
            const size_t comma = line.find(',', i);
            i = comma == std::string_view::npos ? line.size() : comma;
        } else {
            const size_t comma = line.find(',', i);
            const size_t end = comma == std::string_view::npos ? line.size() : comma;
            std::string_view raw = line.substr(i, end - i);
            while (!raw.empty() && (raw.back() == ' ' || raw.back() == '\t'))
                raw.remove_suffix(1);
            if (EqualsNoCase(raw, "#TRUE#"))
                field = "True";
            else if (EqualsNoCase(raw, "#FALSE#"))
                field = "False";
            else if (EqualsNoCase(raw, "#NULL#"))
                field.clear();
            else
                field = std::string(raw);
            i = end;
        }
        fields.push_back(std::move(field));
        if (i >= line.size())
            break;
        ++i; // the comma
    }
    return fields;
}

std::vector<std::string> SplitLines(std::string_view text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (c == '\r' || c == '\n') {
            lines.emplace_back(text.substr(start, i - start));
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
            start = i + 1;
        }
        ++i;
    }
    if (start < text.size())
        lines.emplace_back(text.substr(start));
    return lines;
}

std::string QuoteForSql(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        out += c;
        if (c == '\'')
            out += '\'';
    }
    return out;
}

std::string DateForSql(const QDate& date, const Regional& regional)
{
    if (date.isValid())
        return Format(date.month(), "00") + "/" + Format(date.day(), "00") + "/" +
               Format(date.year(), "00");
    const QDate today = QDate::currentDate();
    return Format(today.month(), "00") + regional.datesep + Format(today.day(), "00") +
           regional.datesep + Format(today.year(), "00");
}

std::string CStr(double value)
{
    return GeneralNumber(value);
}

} // namespace services::vb
