#include "reports/PrintSurface.h"

#include "services/Vb.h"

#include <algorithm>
#include <cstdio>

namespace reports {

namespace {

std::string_view WithoutEnd(std::string_view text)
{
    if (!text.empty() && text.back() == ';')
        text.remove_suffix(1);
    return text;
}

std::vector<std::string_view> SplitBars(std::string_view text)
{
    std::vector<std::string_view> items;
    std::size_t start = 0;
    for (;;) {
        const std::size_t bar = text.find('|', start);
        items.push_back(text.substr(start, bar == std::string_view::npos ? bar : bar - start));
        if (bar == std::string_view::npos)
            return items;
        start = bar + 1;
    }
}

std::string Number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

std::string Ints(std::initializer_list<int> values)
{
    std::string text;
    for (const int v : values)
        text += ' ' + std::to_string(v);
    return text;
}

std::string Rgbs(Rgb c)
{
    return std::to_string(c.r) + ',' + std::to_string(c.g) + ',' + std::to_string(c.b);
}

} // namespace

std::vector<TableColumn> ParseTableFormat(std::string_view format)
{
    std::vector<TableColumn> columns;
    format = WithoutEnd(format);
    if (format.empty())
        return columns;
    for (std::string_view item : SplitBars(format)) {
        TableColumn column;
        if (!item.empty() && item.front() == '+') {
            column.box = true;
            item.remove_prefix(1);
        }
        if (!item.empty()) {
            switch (item.front()) {
            case '^':
                column.align = Align::Centre;
                item.remove_prefix(1);
                break;
            case '<':
                item.remove_prefix(1);
                break;
            case '>':
                column.align = Align::Right;
                item.remove_prefix(1);
                break;
            default:
                break;
            }
        }
        column.width = std::max(0, static_cast<int>(services::vb::Val(std::string(item))));
        columns.push_back(column);
    }
    return columns;
}

std::vector<std::string> SplitHeader(std::string_view header)
{
    std::vector<std::string> cells;
    header = WithoutEnd(header);
    if (header.empty())
        return cells;
    for (const std::string_view cell : SplitBars(header))
        cells.emplace_back(cell);
    return cells;
}

std::string BodyString(const TableRows& rows)
{
    std::string body;
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (i > 0)
                body += '|';
            body += row[i];
        }
        body += ';';
    }
    return body;
}

int PaperWidth(Paper paper, Orientation orientation)
{
    const int w = paper == Paper::A4 ? 11906 : 12240;
    const int h = paper == Paper::A4 ? 16838 : 15840;
    return orientation == Orientation::Portrait ? w : h;
}

int PaperHeight(Paper paper, Orientation orientation)
{
    return PaperWidth(paper, orientation == Orientation::Portrait ? Orientation::Landscape
                                                                  : Orientation::Portrait);
}

std::vector<std::string> RecordingSurface::Paragraphs() const
{
    std::vector<std::string> texts;
    for (const std::string& call : calls) {
        if (call.starts_with("Paragraph "))
            texts.push_back(call.substr(10));
    }
    return texts;
}

std::vector<std::string> RecordingSurface::Tables() const
{
    std::vector<std::string> tables;
    for (const std::string& call : calls) {
        if (call.starts_with("Table "))
            tables.push_back(call.substr(6));
    }
    return tables;
}

bool RecordingSurface::Has(std::string_view line) const
{
    return std::find(calls.begin(), calls.end(), line) != calls.end();
}

void RecordingSurface::StartDoc()
{
    pages_ = 1;
    open_ = true;
    calls.emplace_back("StartDoc");
}

void RecordingSurface::EndDoc()
{
    open_ = false;
    calls.emplace_back("EndDoc");
}

void RecordingSurface::NewPage()
{
    ++pages_;
    calls.emplace_back("NewPage");
}

void RecordingSurface::SetOrientation(Orientation orientation)
{
    orientation_ = orientation;
    calls.push_back("Orientation" + Ints({static_cast<int>(orientation)}));
}

void RecordingSurface::SetPaper(Paper paper)
{
    paper_ = paper;
    calls.emplace_back(paper == Paper::A4 ? "Paper A4" : "Paper Letter");
}

void RecordingSurface::SetMargins(const Margins& m)
{
    calls.push_back("Margins" + Ints({m.left, m.top, m.right, m.bottom}));
}

void RecordingSurface::SetHeader(std::string_view text)
{
    calls.push_back("Header " + std::string(text));
}

void RecordingSurface::SetFooter(std::string_view text)
{
    calls.push_back("Footer " + std::string(text));
}

void RecordingSurface::SetHeaderFont(std::string_view name, double size)
{
    calls.push_back("HeaderFont " + std::string(name) + ' ' + Number(size));
}

void RecordingSurface::SetLineSpacing(int percent)
{
    calls.push_back("LineSpacing " + std::to_string(percent));
}

void RecordingSurface::SetFont(const FontSpec& font)
{
    std::string line = "Font " + font.name + ' ' + Number(font.size);
    if (font.bold)
        line += " B";
    if (font.italic)
        line += " I";
    if (font.underline)
        line += " U";
    calls.push_back(std::move(line));
}

void RecordingSurface::Paragraph(std::string_view text)
{
    calls.push_back("Paragraph " + std::string(text));
}

void RecordingSurface::RichText(std::string_view html)
{
    calls.push_back("RichText " + std::string(html));
}

void RecordingSurface::Table(std::string_view format, std::string_view header,
                             const TableRows& body, Rgb headerColour, Rgb bodyColour)
{
    std::string line =
        "Table " + std::string(format) + ' ' + std::string(header) + ' ' + BodyString(body);
    if (headerColour != kHeaderColour || bodyColour != kBodyColour)
        line += " h " + Rgbs(headerColour) + " b " + Rgbs(bodyColour);
    calls.push_back(std::move(line));
}

void RecordingSurface::SetPenWidth(int twips)
{
    calls.push_back("PenWidth" + Ints({twips}));
}

void RecordingSurface::Circle(int x, int y, int radius)
{
    calls.push_back("Circle" + Ints({x, y, radius}));
}

void RecordingSurface::DrawPicture(const QImage& image, int left, int top, int right, int bottom)
{
    calls.push_back("DrawPicture " + std::to_string(image.width()) + 'x' +
                    std::to_string(image.height()) + Ints({left, top, right, bottom}));
}

void RecordingSurface::Pictures(const std::vector<QImage>& images, int width, int height, int gap)
{
    const QImage first = images.empty() ? QImage() : images.front();
    calls.push_back("Pictures " + std::to_string(images.size()) + ' ' +
                    std::to_string(first.width()) + 'x' + std::to_string(first.height()) +
                    Ints({width, height, gap}));
}

int RecordingSurface::PageWidth() const
{
    return PaperWidth(paper_, orientation_);
}

int RecordingSurface::PageHeight() const
{
    return PaperHeight(paper_, orientation_);
}

} // namespace reports
