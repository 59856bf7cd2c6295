#pragma once
// Text written into HTML.

#include <string>
#include <string_view>

namespace services {

// Appends text with &, <, > and " as their character references.
inline void AppendHtmlEscaped(std::string& out, std::string_view text)
{
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
}

} // namespace services
