#pragma once
// The print surface: what the reports ask of a page-description engine, in twips (1440 to the
// inch, 20 to the point). A report is a plain sequence of these calls between StartDoc and
// EndDoc; nothing in a report depends on where the pages go. PainterSurface lays the calls out
// into pages and paints them (preview, PDF, printer); RecordingSurface keeps the calls for tests.
//
// Text flows from the top margin down; a line that does not fit goes to a new page. Tables are
// given by three strings (see ParseTableFormat) and rows of cells; a table that runs over a page
// goes on with its header row repeated, and a row is never split. Header and footer texts have
// three parts, "left|centre|right", in which "%d" stands for the page number; they are painted
// on every page when the document ends, so a footer set after the body stands on every page.

#include <QImage>

#include <string>
#include <string_view>
#include <vector>

namespace reports {

inline constexpr int kTwipsPerInch = 1440;
inline constexpr int kTwipsPerPoint = 20;

struct Rgb
{
    int r = 255, g = 255, b = 255;
    bool operator==(const Rgb&) const = default;
};
// The background of a table's header row and of its body rows.
inline constexpr Rgb kHeaderColour{241, 255, 64};
inline constexpr Rgb kBodyColour{255, 255, 255};

enum class Align {
    Left,
    Centre,
    Right,
};

// One column of a table format: "+" (a cell with a drawn box for hand writing), then an
// optional alignment ("^" centred, "<" left, ">" right; none: left), then the width in twips.
struct TableColumn
{
    bool box = false;
    Align align = Align::Left;
    int width = 0; // twips; text that is no number counts as 0
};

// The columns of a format string such as "^1400|+<2000;": items divided by "|", the whole ended
// by ";" (which may be missing). An empty format gives no columns.
std::vector<TableColumn> ParseTableFormat(std::string_view format);
// The cells of a header string: the titles divided by "|", an ending ";" dropped.
std::vector<std::string> SplitHeader(std::string_view header);

// The rows of a table body, each a list of cell texts. A cell text may hold CR LF (or LF) to
// make the cell taller; "|" and ";" inside a cell are text.
using TableRows = std::vector<std::vector<std::string>>;
// The body string of rows: cells divided by "|", each row ended by ";".
std::string BodyString(const TableRows& rows);

enum class Orientation {
    Portrait = 0,
    Landscape = 1,
};

enum class Paper {
    Letter,
    A4,
};

struct Margins
{
    int left = 1440, top = 1440, right = 1440, bottom = 1440; // twips
};

struct FontSpec
{
    std::string name = "Arial";
    double size = 10; // points
    bool bold = false, italic = false, underline = false;
    bool operator==(const FontSpec&) const = default;
};

class PrintSurface
{
public:
    virtual ~PrintSurface() = default;

    // StartDoc discards what was there and begins page 1 (page numbers restart); EndDoc paints
    // the header and footer on every page and makes the document final.
    virtual void StartDoc() = 0;
    virtual void EndDoc() = 0;
    virtual void NewPage() = 0;

    // Page format; orientation and paper take effect at the next StartDoc, margins also inside
    // the open document from where the text stands.
    virtual void SetOrientation(Orientation orientation) = 0;
    virtual void SetPaper(Paper paper) = 0;
    virtual void SetMargins(const Margins& margins) = 0;

    // Header and footer: "left|centre|right" with "%d"; the font of both.
    virtual void SetHeader(std::string_view text) = 0;
    virtual void SetFooter(std::string_view text) = 0;
    virtual void SetHeaderFont(std::string_view name, double size) = 0;

    // The font of the text that follows.
    virtual void SetFont(const FontSpec& font) = 0;
    // The distance of the lines that follow, paragraphs' and table rows', in percent of the
    // font's own (100: single; StartDoc sets it back to 100).
    virtual void SetLineSpacing(int percent) = 0;

    // A paragraph in the current font, word-wrapped to the margins; CR LF (or LF) break lines.
    // An empty text is one blank line.
    virtual void Paragraph(std::string_view text) = 0;
    // Rich text (HTML, or plain text when it is no HTML), laid out to the margins.
    virtual void RichText(std::string_view html) = 0;

    // A table at the left margin, in the current font.
    virtual void Table(std::string_view format, std::string_view header, const TableRows& body,
                       Rgb headerColour = kHeaderColour, Rgb bodyColour = kBodyColour) = 0;

    // Drawing in page coordinates (twips from the paper's top left corner); the flow of text is
    // left where it stands.
    virtual void SetPenWidth(int twips) = 0;
    virtual void Circle(int x, int y, int radius) = 0;
    virtual void DrawPicture(const QImage& image, int left, int top, int right, int bottom) = 0;

    // Pictures in the flow: one row of pictures of width x height twips each at the left
    // margin, side by side with gap twips between them, on a new page when the row does not fit
    // below the text; the flow goes on below them.
    virtual void Pictures(const std::vector<QImage>& images, int width, int height, int gap) = 0;

    // True from StartDoc until EndDoc.
    virtual bool DocumentOpen() const = 0;
    // Pages made so far (after EndDoc: the document's pages).
    virtual int PageCount() const = 0;
    // The paper's size in twips in the current orientation.
    virtual int PageWidth() const = 0;
    virtual int PageHeight() const = 0;
};

// A surface that lays nothing out: it keeps every call as one line of text, for tests that
// assert what a report asked for. Page count is one page plus one per NewPage.
class RecordingSurface : public PrintSurface
{
public:
    // "StartDoc", "EndDoc", "NewPage", "Orientation 1", "Paper A4", "Margins 1140 1440 200 500",
    // "Header <text>", "Footer <text>", "HeaderFont Arial 8", "Font Arial 12 B I U" (flags as
    // set), "LineSpacing 200", "Paragraph <text>", "RichText <html>", "Table <format> <header>
    // <body string>" (colours other than the defaults follow as "h r,g,b b r,g,b"), "PenWidth 1",
    // "Circle 4000 12350 2000", "DrawPicture WxH left top right bottom" (the image's pixel
    // size), "Pictures n WxH width height gap".
    std::vector<std::string> calls;

    // The texts of the Paragraph calls, in order.
    std::vector<std::string> Paragraphs() const;
    // The Table calls (the text after "Table "), in order.
    std::vector<std::string> Tables() const;
    // Whether some call equals line.
    bool Has(std::string_view line) const;

    void StartDoc() override;
    void EndDoc() override;
    void NewPage() override;
    void SetOrientation(Orientation orientation) override;
    void SetPaper(Paper paper) override;
    void SetMargins(const Margins& margins) override;
    void SetHeader(std::string_view text) override;
    void SetFooter(std::string_view text) override;
    void SetHeaderFont(std::string_view name, double size) override;
    void SetFont(const FontSpec& font) override;
    void SetLineSpacing(int percent) override;
    void Paragraph(std::string_view text) override;
    void RichText(std::string_view html) override;
    void Table(std::string_view format, std::string_view header, const TableRows& body,
               Rgb headerColour = kHeaderColour, Rgb bodyColour = kBodyColour) override;
    void SetPenWidth(int twips) override;
    void Circle(int x, int y, int radius) override;
    void DrawPicture(const QImage& image, int left, int top, int right, int bottom) override;
    void Pictures(const std::vector<QImage>& images, int width, int height, int gap) override;
    bool DocumentOpen() const override { return open_; }
    int PageCount() const override { return pages_; }
    int PageWidth() const override;
    int PageHeight() const override;

private:
    int pages_ = 0;
    bool open_ = false;
    Orientation orientation_ = Orientation::Portrait;
    Paper paper_ = Paper::Letter;
};

// The paper's size in twips.
int PaperWidth(Paper paper, Orientation orientation);
int PaperHeight(Paper paper, Orientation orientation);

} // namespace reports
