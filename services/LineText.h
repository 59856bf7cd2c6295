#pragma once
// A text made safe for one tab-separated line of the command line's output: backslash, tab,
// line feed and carriage return written as \\ \t \n \r.

#include <string>
#include <string_view>

namespace services {

inline std::string EscapedForLine(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\n':
            out += "\\n";
            break;
        default:
            out += c;
        }
    }
    return out;
}

} // namespace services
