#include "data/JetSql.h"

#include "services/Fault.h"
#include "services/Vb.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <regex>
#include <string>
#include <vector>

namespace data {

namespace {

bool IsWordChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$';
}

// The numbers of a date or time text split at any of the separators given.
std::vector<int> Numbers(std::string_view text, std::string_view separators, bool& ok)
{
    std::vector<int> out;
    size_t i = 0;
    ok = true;
    while (i <= text.size()) {
        size_t j = text.find_first_of(separators, i);
        if (j == std::string_view::npos)
            j = text.size();
        std::string_view piece = text.substr(i, j - i);
        int value = 0;
        auto [end, ec] = std::from_chars(piece.data(), piece.data() + piece.size(), value);
        if (piece.empty() || ec != std::errc() || end != piece.data() + piece.size()) {
            ok = false;
            return out;
        }
        out.push_back(value);
        i = j + 1;
    }
    return out;
}

bool IsValidDate(int y, int m, int d)
{
    static constexpr int days[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (m < 1 || m > 12 || d < 1 || d > days[m - 1])
        return false;
    const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    return !(m == 2 && d == 29 && !leap);
}

// The ISO text of a Jet date literal's contents: month/day/year (Jet reads a literal in the
// United States order whatever the locale, and swaps day and month when the month cannot be
// one), or year-month-day; an optional time "h:mm[:ss] [AM|PM]" follows a blank.
bool JetDateToIso(std::string_view text, std::string& iso)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    std::string_view datePart = text;
    std::string_view timePart;
    if (size_t blank = text.find(' '); blank != std::string_view::npos) {
        datePart = text.substr(0, blank);
        timePart = text.substr(blank + 1);
    }
    bool ok = false;
    std::vector<int> n = Numbers(datePart, "/-.", ok);
    if (!ok || n.size() != 3)
        return false;
    int y = 0, m = 0, d = 0;
    if (datePart.find('-') == 4 && n[0] > 31) {
        y = n[0], m = n[1], d = n[2];
    } else {
        m = n[0], d = n[1], y = n[2];
        if (m > 12 && d <= 12)
            std::swap(m, d);
        // Deliberate: two-digit years follow Jet's window, 30..99 in the 1900s, else 2000s.
        if (datePart.size() - datePart.find_last_of("/-.") <= 3)
            y += y < 30 ? 2000 : 1900;
    }
    if (!IsValidDate(y, m, d))
        return false;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", y, m, d);
    iso = buffer;
    if (timePart.empty())
        return true;
    bool pm = false, am = false;
    std::string t(timePart);
    for (auto& c : t)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (t.size() > 2 && (t.ends_with("PM") || t.ends_with("AM"))) {
        pm = t.ends_with("PM");
        am = !pm;
        t.resize(t.size() - 2);
        while (!t.empty() && t.back() == ' ')
            t.pop_back();
    }
    std::vector<int> h = Numbers(t, ":", ok);
    if (!ok || h.size() < 2 || h.size() > 3)
        return false;
    int hour = h[0];
    if (pm && hour < 12)
        hour += 12;
    if (am && hour == 12)
        hour = 0;
    const int second = h.size() == 3 ? h[2] : 0;
    if (hour > 23 || h[1] > 59 || second > 59)
        return false;
    std::snprintf(buffer, sizeof buffer, " %02d:%02d:%02d", hour, h[1], second);
    iso += buffer;
    return true;
}

// A Like pattern's text (inside the quotes) with Jet's wildcards made SQLite's.
std::string LikePattern(std::string_view body, bool& escaped)
{
    std::string out;
    escaped = false;
    for (char c : body) {
        if (c == '*')
            out += '%';
        else if (c == '?')
            out += '_';
        else if (c == '%' || c == '_' || c == '\\') {
            out += '\\';
            out += c;
            escaped = true;
        } else
            out += c;
    }
    return out;
}

// "(A RIGHT JOIN B ON cond)" of two tables becomes "(B LEFT JOIN A ON cond)": the same rows,
// but SQLite plans a right join with its left table outermost, so a further join on B (the
// logbook's search by an object's constellation) would be probed once per row of B.
std::string SwapRightJoins(std::string sql)
{
    static const std::regex rightJoin(R"(\(\s*(\w+)\s+RIGHT\s+(?:OUTER\s+)?JOIN\s+(\w+)\s+ON\s)",
                                      std::regex::icase);
    size_t from = 0;
    std::smatch m;
    while (std::regex_search(sql.cbegin() + static_cast<long>(from), sql.cend(), m, rightJoin)) {
        const size_t open = from + static_cast<size_t>(m.position(0));
        from = open + 1;
        // Inside a quoted text (an odd number of quotes before it): a text, not a join.
        if (std::count(sql.cbegin(), sql.cbegin() + static_cast<long>(open), '\'') % 2 != 0)
            continue;
        const size_t condition = open + static_cast<size_t>(m.length(0));
        sql.replace(open, condition - open, "(" + m.str(2) + " LEFT JOIN " + m.str(1) + " ON ");
    }
    return sql;
}

} // namespace

std::string TranslateJetSql(std::string_view jet)
{
    std::string out;
    out.reserve(jet.size() + 16);
    // One entry per open parenthesis: true when its closing one ends an isnull( call.
    std::vector<bool> parens;
    bool afterLike = false;
    bool pendingIsNull = false;
    const size_t n = jet.size();
    size_t i = 0;
    while (i < n) {
        const char c = jet[i];
        if (c == '\'' || c == '"') {
            // A quoted text up to its closing quote; a doubled quote stands for one.
            std::string body;
            size_t j = i + 1;
            bool closed = false;
            while (j < n) {
                if (jet[j] == c) {
                    if (j + 1 < n && jet[j + 1] == c) {
                        body += c;
                        j += 2;
                        continue;
                    }
                    closed = true;
                    break;
                }
                body += jet[j++];
            }
            if (!closed) {
                // Left for SQLite to refuse with its own message.
                out.append(jet.substr(i));
                break;
            }
            bool escaped = false;
            if (afterLike)
                body = LikePattern(body, escaped);
            out += '\'';
            for (char b : body) {
                if (b == '\'')
                    out += '\'';
                out += b;
            }
            out += '\'';
            if (escaped)
                out += " ESCAPE '\\'";
            afterLike = false;
            i = j + 1;
            continue;
        }
        if (c == '[') {
            size_t j = jet.find(']', i + 1);
            if (j == std::string_view::npos) {
                out.append(jet.substr(i));
                break;
            }
            out += '"';
            for (char b : jet.substr(i + 1, j - i - 1)) {
                if (b == '"')
                    out += '"';
                out += b;
            }
            out += '"';
            i = j + 1;
            continue;
        }
        if (c == '#') {
            size_t j = jet.find('#', i + 1);
            std::string iso;
            if (j == std::string_view::npos || !JetDateToIso(jet.substr(i + 1, j - i - 1), iso)) {
                std::string literal(jet.substr(i, j == std::string_view::npos ? n - i : j - i + 1));
                throw services::Fault("Syntax error in date in query expression '" + literal + "'.",
                                      "");
            }
            out += '\'' + iso + '\'';
            afterLike = false;
            i = j + 1;
            continue;
        }
        if (c == ';') {
            for (size_t j = i + 1; j < n; ++j)
                if (!std::isspace(static_cast<unsigned char>(jet[j])))
                    throw services::Fault(SecondStatementMessage, "");
            break;
        }
        if (c == '(') {
            parens.push_back(pendingIsNull);
            out += pendingIsNull ? "((" : "(";
            pendingIsNull = false;
            ++i;
            continue;
        }
        if (c == ')') {
            const bool closesIsNull = !parens.empty() && parens.back();
            if (!parens.empty())
                parens.pop_back();
            out += closesIsNull ? ") IS NULL)" : ")";
            ++i;
            continue;
        }
        if (c == '&') {
            out += "||";
            ++i;
            continue;
        }
        if (IsWordChar(c)) {
            size_t j = i;
            while (j < n && IsWordChar(jet[j]))
                ++j;
            const std::string_view word = jet.substr(i, j - i);
            const bool qualified = i > 0 && jet[i - 1] == '.';
            size_t k = j;
            while (k < n && std::isspace(static_cast<unsigned char>(jet[k])))
                ++k;
            const bool call = k < n && jet[k] == '(';
            if (!qualified && services::vb::SameText(word, "true"))
                out += "-1";
            else if (!qualified && services::vb::SameText(word, "false"))
                out += "0";
            else if (call && services::vb::SameText(word, "isnull")) {
                pendingIsNull = true;
                i = k; // the '(' comes next
                continue;
            } else if (call && services::vb::SameText(word, "ucase"))
                out += "upper";
            else if (call && services::vb::SameText(word, "lcase"))
                out += "lower";
            else if (call && services::vb::SameText(word, "len"))
                out += "length";
            else if (call && services::vb::SameText(word, "mid"))
                out += "substr";
            else
                out.append(word);
            afterLike = services::vb::SameText(word, "like");
            i = j;
            continue;
        }
        if (!std::isspace(static_cast<unsigned char>(c)))
            afterLike = false;
        out += c;
        ++i;
    }
    return SwapRightJoins(std::move(out));
}

} // namespace data
