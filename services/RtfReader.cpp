#include "services/RtfReader.h"

#include "services/Html.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <vector>

namespace services {

namespace {

// Code page 1252 at 0x80..0x9F; the five unassigned bytes read as U+FFFD.
constexpr std::array<char32_t, 32> kCp1252High{
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

char32_t FromCp1252(unsigned char byte)
{
    return byte >= 0x80 && byte < 0xA0 ? kCp1252High[byte - 0x80] : char32_t(byte);
}

void AppendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

struct Format
{
    bool bold = false, italic = false, underline = false;
    bool operator==(const Format&) const = default;
};

struct Group
{
    Format format;
    int uc = 1;        // characters of fallback text after each \uN
    bool skip = false; // a destination whose text is not part of the document
};

struct Run
{
    Format format;
    std::string text; // UTF-8; '\n' is a line break inside the paragraph
};

using Paragraph = std::vector<Run>;

// Groups whose text is not document text (tables of fonts, colours and styles, document
// information, pictures, objects, headers, footers, footnotes, bookmarks).
bool IsSkippedDestination(std::string_view word)
{
    static constexpr std::array<std::string_view, 28> kSkipped{"fonttbl",
                                                               "colortbl",
                                                               "stylesheet",
                                                               "info",
                                                               "pict",
                                                               "object",
                                                               "header",
                                                               "headerl",
                                                               "headerr",
                                                               "headerf",
                                                               "footer",
                                                               "footerl",
                                                               "footerr",
                                                               "footerf",
                                                               "footnote",
                                                               "listtable",
                                                               "listoverridetable",
                                                               "rsidtbl",
                                                               "generator",
                                                               "xmlnstbl",
                                                               "themedata",
                                                               "latentstyles",
                                                               "datastore",
                                                               "filetbl",
                                                               "revtbl",
                                                               "pntext",
                                                               "fldinst",
                                                               "nonshppict"};
    for (std::string_view skipped : kSkipped)
        if (word == skipped)
            return true;
    return false;
}

class Reader
{
public:
    explicit Reader(std::string_view in) : in_(in) {}

    std::vector<Paragraph> Read()
    {
        while (pos_ < in_.size()) {
            const char c = in_[pos_++];
            if (c == '{') {
                stack_.push_back(stack_.back());
                groupStart_ = true;
                continue;
            }
            const bool wasGroupStart = groupStart_;
            groupStart_ = false;
            if (c == '}') {
                pendingSkip_ = 0;
                if (stack_.size() > 1)
                    stack_.pop_back();
                // Whatever follows the document's closing brace is not part of it.
                if (stack_.size() == 1 && !Top().skip) {
                    if (!current_.empty())
                        EndParagraph();
                    Top().skip = true;
                }
            } else if (c == '\\') {
                Control(wasGroupStart);
            } else if (c == '\r' || c == '\n') {
                // Line ends in RTF source only wrap the markup.
            } else if (c == '\t') {
                Text(U'\t');
            } else if (static_cast<unsigned char>(c) >= 0x20) {
                Text(FromCp1252(static_cast<unsigned char>(c)));
            }
        }
        if (!current_.empty())
            EndParagraph();
        // The box ends its text with a paragraph mark of its own; blank lines at the end carry
        // nothing.
        while (!paragraphs_.empty() && paragraphs_.back().empty())
            paragraphs_.pop_back();
        return std::move(paragraphs_);
    }

private:
    std::string_view in_;
    std::size_t pos_ = 0;
    std::vector<Group> stack_{Group{}};
    std::vector<Paragraph> paragraphs_;
    Paragraph current_;
    int pendingSkip_ = 0;        // fallback characters of a \uN still to drop
    char32_t highSurrogate_ = 0; // the first half of a \uN pair
    bool groupStart_ = false;    // the next token is the first of its group

    Group& Top() { return stack_.back(); }

    void Text(char32_t c)
    {
        if (pendingSkip_ > 0) {
            --pendingSkip_;
            return;
        }
        Emit(c);
    }

    void Emit(char32_t c)
    {
        if (Top().skip)
            return;
        if (current_.empty() || !(current_.back().format == Top().format))
            current_.push_back({Top().format, {}});
        AppendUtf8(current_.back().text, c);
    }

    void EndParagraph()
    {
        if (Top().skip)
            return;
        paragraphs_.push_back(std::move(current_));
        current_.clear();
    }

    void Control(bool groupStart)
    {
        if (pos_ >= in_.size())
            return;
        const char c = in_[pos_];
        if (!std::isalpha(static_cast<unsigned char>(c))) {
            ++pos_;
            Symbol(c, groupStart);
            return;
        }
        const std::size_t start = pos_;
        while (pos_ < in_.size() && std::isalpha(static_cast<unsigned char>(in_[pos_])))
            ++pos_;
        const std::string_view word = in_.substr(start, pos_ - start);
        std::optional<long> param;
        const std::size_t digits = pos_;
        if (pos_ < in_.size() && in_[pos_] == '-')
            ++pos_;
        long value = 0;
        bool any = false;
        while (pos_ < in_.size() && std::isdigit(static_cast<unsigned char>(in_[pos_]))) {
            if (value < 100000000)
                value = value * 10 + (in_[pos_] - '0');
            ++pos_;
            any = true;
        }
        if (any)
            param = in_[digits] == '-' ? -value : value;
        else
            pos_ = digits;
        if (pos_ < in_.size() && in_[pos_] == ' ')
            ++pos_;
        Word(word, param, groupStart);
    }

    void Symbol(char c, bool groupStart)
    {
        switch (c) {
        case '\\':
        case '{':
        case '}':
            Text(static_cast<unsigned char>(c));
            break;
        case '\'': {
            const auto hex = [&](std::size_t at) -> int {
                if (at >= in_.size() || !std::isxdigit(static_cast<unsigned char>(in_[at])))
                    return -1;
                const char h = static_cast<char>(std::tolower(static_cast<unsigned char>(in_[at])));
                return h <= '9' ? h - '0' : h - 'a' + 10;
            };
            const int high = hex(pos_), low = hex(pos_ + 1);
            if (high < 0 || low < 0)
                break;
            pos_ += 2;
            Text(FromCp1252(static_cast<unsigned char>(high * 16 + low)));
            break;
        }
        case '~':
            Text(0x00A0);
            break;
        case '_':
            Text(0x2011);
            break;
        case '*':
            if (groupStart)
                Top().skip = true;
            break;
        case '\r':
        case '\n':
            EndParagraph();
            break;
        default: // \- (optional hyphen), \| and others: nothing to show
            break;
        }
    }

    void Word(std::string_view word, std::optional<long> param, bool groupStart)
    {
        if (groupStart && IsSkippedDestination(word)) {
            Top().skip = true;
            return;
        }
        const bool on = !param || *param != 0;
        Format& format = Top().format;
        if (word == "par" || word == "row" || word == "page" || word == "sect") {
            EndParagraph();
        } else if (word == "line") {
            Emit(U'\n');
        } else if (word == "tab" || word == "cell") {
            Emit(U'\t');
        } else if (word == "b") {
            format.bold = on;
        } else if (word == "i") {
            format.italic = on;
        } else if (word == "ul" || word == "uld" || word == "uldb" || word == "ulw" ||
                   word == "uldash" || word == "ulwave" || word == "ulth") {
            format.underline = on;
        } else if (word == "ulnone") {
            format.underline = false;
        } else if (word == "plain") {
            format = Format{};
        } else if (word == "uc" && param) {
            Top().uc = static_cast<int>(*param < 0 ? 0 : *param);
        } else if (word == "u" && param) {
            Unicode(static_cast<char32_t>(*param < 0 ? *param + 65536 : *param));
        } else if (word == "bin" && param && *param > 0) {
            pos_ += std::min<std::size_t>(static_cast<std::size_t>(*param), in_.size() - pos_);
        } else if (const char32_t special = Special(word)) {
            Emit(special);
        }
    }

    void Unicode(char32_t unit)
    {
        if (unit >= 0xD800 && unit < 0xDC00) {
            highSurrogate_ = unit;
        } else if (unit >= 0xDC00 && unit < 0xE000) {
            if (highSurrogate_)
                Emit(0x10000 + ((highSurrogate_ - 0xD800) << 10) + (unit - 0xDC00));
            highSurrogate_ = 0;
        } else {
            highSurrogate_ = 0;
            Emit(unit);
        }
        pendingSkip_ = Top().uc;
    }

    static char32_t Special(std::string_view word)
    {
        struct Named
        {
            std::string_view word;
            char32_t c;
        };
        static constexpr std::array<Named, 10> kNamed{{{"emdash", 0x2014},
                                                       {"endash", 0x2013},
                                                       {"lquote", 0x2018},
                                                       {"rquote", 0x2019},
                                                       {"ldblquote", 0x201C},
                                                       {"rdblquote", 0x201D},
                                                       {"bullet", 0x2022},
                                                       {"emspace", U' '},
                                                       {"enspace", U' '},
                                                       {"qmspace", U' '}}};
        for (const Named& named : kNamed)
            if (named.word == word)
                return named.c;
        return 0;
    }
};

// Escaped, each line break a <br />.
void AppendEscaped(std::string& out, std::string_view text)
{
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find('\n', start);
        AppendHtmlEscaped(out, text.substr(start, end - start));
        if (end == std::string_view::npos)
            return;
        out += "<br />";
        start = end + 1;
    }
}

} // namespace

bool IsRtf(std::string_view text)
{
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    return start != std::string_view::npos && text.substr(start, 5) == "{\\rtf";
}

std::string RtfToHtml(std::string_view rtf)
{
    std::string html;
    for (const Paragraph& paragraph : Reader(rtf).Read()) {
        if (!html.empty())
            html += '\n';
        // pre-wrap keeps the box's runs of blanks and its tabs. An empty paragraph holds a
        // line break for any reader of HTML, and is marked as empty for the note editor, which
        // would otherwise count the break as a second line.
        if (paragraph.empty()) {
            html += "<p style=\"-qt-paragraph-type:empty; white-space:pre-wrap\"><br /></p>";
            continue;
        }
        html += "<p style=\"white-space:pre-wrap\">";
        for (const Run& run : paragraph) {
            const Format& f = run.format;
            html += std::string(f.bold ? "<b>" : "") + (f.italic ? "<i>" : "") +
                    (f.underline ? "<u>" : "");
            AppendEscaped(html, run.text);
            html += std::string(f.underline ? "</u>" : "") + (f.italic ? "</i>" : "") +
                    (f.bold ? "</b>" : "");
        }
        html += "</p>";
    }
    return html;
}

} // namespace services
