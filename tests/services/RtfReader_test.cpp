#include "services/RtfReader.h"

#include <gtest/gtest.h>

namespace {

const std::string P = "<p style=\"white-space:pre-wrap\">";
const std::string Empty = "<p style=\"-qt-paragraph-type:empty; white-space:pre-wrap\"><br /></p>";

// Notes as the rich text box of an earlier logbook wrote them: font table, colour table,
// \viewkind4\uc1, \fs17, CR LF between lines, a paragraph mark at the end of every line.
TEST(RtfToHtml, RichTextBoxNotes)
{
    struct Case
    {
        const char* name;
        std::string rtf;
        std::string html;
    };
    const Case cases[] = {
        {"note of the sample logbook (observation 1)",
         "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang1033{\\fonttbl{\\f0\\fnil\\fcharset0 MS Sans "
         "Serif;}}\r\n\\pard\\f0\\fs17 Bright \\b blue\\b0  disc\\par\r\n}\r\n",
         P + "Bright <b>blue</b> disc</p>"},
        {"colours, underline, italic, code page bytes, a blank line and a tab",
         "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang1033{\\fonttbl{\\f0\\fnil\\fcharset0 MS Sans "
         "Serif;}{\\f1\\fswiss\\fcharset0 Arial;}}\r\n{\\colortbl ;\\red0\\green128\\blue64;}\r\n"
         "\\viewkind4\\uc1\\pard\\cf1\\f0\\fs17 Seeing \\ul poor\\ulnone , \\i averted\\i0  "
         "vision\\par\r\nM\\'e9lotte 111 \\'96 \\b\\i both\\b0\\i0\\par\r\n\\par\r\n\\tab "
         "end\\par\r\n}\r\n",
         P + "Seeing <u>poor</u>, <i>averted</i> vision</p>\n" + P +
             "M\xC3\xA9lotte 111 \xE2\x80\x93 <b><i>both</i></b></p>\n" + Empty + "\n" + P +
             "\tend</p>"},
        {"blank lines typed after the text are dropped",
         "{\\rtf1\\ansi\\pard\\f0\\fs17 one\\par\r\n\\par\r\n\\par\r\n}\r\n", P + "one</p>"},
        {"a box left empty", "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 x;}}\\pard\\f0\\fs17\\par\r\n}",
         ""},
        {"Unicode with fallback characters, a surrogate pair, \\uc2",
         "{\\rtf1\\uc1 Ce\\u269?ko {\\uc2\\u8364\\'80\\'80 }\\u-10179?\\u-8704?}",
         P + "Ce\xC4\x8Dko \xE2\x82\xAC \xF0\x9F\x98\x80</p>"},
        {"escaped braces and backslash; HTML characters; hard space; optional hyphen",
         "{\\rtf1 a\\{b\\}c\\\\d <x> & \"q\" \\~e\\-f}",
         P + "a{b}c\\d &lt;x&gt; &amp; &quot;q&quot; \xC2\xA0"
             "ef</p>"},
        {"skipped destinations, known and unknown",
         "{\\rtf1{\\*\\generator Msftedit 5.41.21.2510;}{\\info{\\title T}{\\author A}}"
         "{\\*\\unknownthing junk}x{\\field{\\*\\fldinst HYPERLINK}{\\fldrslt link}}}",
         P + "xlink</p>"},
        {"groups scope formatting; \\plain resets; \\line breaks inside a paragraph",
         "{\\rtf1 a{\\b b\\i c}d\\ul\\i e\\plain f\\line g\\par}",
         P + "a<b>b</b><b><i>c</i></b>d<i><u>e</u></i>f<br />g</p>"},
        {"text after the closing brace is no note; a missing brace ends at the input's end",
         "{\\rtf1 a}\r\nxyz{\\rtf1 b}", P + "a</p>"},
        {"unterminated document", "{\\rtf1 a\\b b", P + "a<b>b</b></p>"},
        {"binary data and picture skipped", "{\\rtf1 a{\\pict\\bin4 {}\\x}b\\bin2 }}c}",
         P + "abc</p>"},
        {"control word parameters and delimiters", "{\\rtf1\\fs-20 x\\b1 y\\b0\\li720 z}",
         P + "x<b>y</b>z</p>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.html, services::RtfToHtml(c.rtf));
    }
}

TEST(IsRtf, DocumentStart)
{
    EXPECT_TRUE(services::IsRtf("{\\rtf1\\ansi x}"));
    EXPECT_TRUE(services::IsRtf("\r\n  {\\rtf1 x}"));
    EXPECT_FALSE(services::IsRtf("Two bright eyes"));
    EXPECT_FALSE(services::IsRtf("{\\rt"));
    EXPECT_FALSE(services::IsRtf("<p>{\\rtf1</p>"));
    EXPECT_FALSE(services::IsRtf(""));
}

} // namespace
