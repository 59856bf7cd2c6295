#pragma once
// Translation of the Jet SQL dialect, in which the routines and the users' saved queries are
// written, into SQLite's. Only what differs is rewritten:
//   #m/d/yyyy# date literals      -> 'yyyy-mm-dd' (dates are stored as ISO text)
//   Like '*x?'                     -> LIKE '%x_' (a literal % or _ is escaped)
//   True, False                    -> -1, 0
//   isnull(x)                      -> ((x) IS NULL)
//   [bracketed name]               -> "bracketed name"
//   "text" (a Jet string literal)  -> 'text'
//   a & b (concatenation)          -> a || b
//   ucase, lcase, len, mid          -> upper, lower, length, substr
//   (A RIGHT JOIN B ON c)          -> (B LEFT JOIN A ON c) (the same rows; SQLite plans it better)
// distinct(x), names in any case, Between, abs and the other joins need no change. Quoted texts are
// copied untouched.

#include <string>
#include <string_view>

namespace data {

// The message given when text follows the first statement.
inline constexpr const char* SecondStatementMessage =
    "Characters found after end of SQL statement.";

// Translates one Jet statement.
// Status: throws services::Fault with SecondStatementMessage when anything but blanks follows a
// ';' outside quotes, and "Syntax error in date in query expression '#...#'." for a date
// literal that is not a date.
std::string TranslateJetSql(std::string_view jet);

} // namespace data
