#pragma once
// A small reader of RTF, the marked-up form in which the rich text box of earlier logbooks kept
// notes. It keeps what an observer writes into such a box: the words, the paragraphs and line
// breaks, tabs, and bold, italic and underline. Fonts, sizes, colours and alignment are dropped;
// tables, pictures and embedded objects are skipped with their text.
//
// Text bytes and \'hh escapes are read in Windows code page 1252 (the code page these boxes
// wrote for western languages); \uN characters are read as Unicode with the \ucN fallback
// skipped. The result is HTML in UTF-8: one <p> per paragraph, <b>, <i>, <u> around runs.

#include <string>
#include <string_view>

namespace services {

// True when text is an RTF document: "{\rtf" after leading white space.
bool IsRtf(std::string_view text);

// The document as HTML.
// Given: rtf, an RTF document (a text that is none is read as RTF all the same: its braces and
//   backslashes are taken as markup).
// Returned: one <p style="white-space:pre-wrap"> per paragraph (an empty paragraph holds a
//   <br /> and is marked -qt-paragraph-type:empty), HTML-escaped text, <b>, <i>, <u> nested in that
//   order around formatted runs, \line as <br />. A document without any text gives an empty
//   string.
// Status: never fails; unbalanced braces end the document where the input ends.
std::string RtfToHtml(std::string_view rtf);

} // namespace services
