// The painted print surface. Every length is twips of the paper; fonts are made with a pixel
// size of 20 per point and measured against a device of 1440 dots to the inch, so a page is laid
// out once and then painted on any device by scaling the painter (device dpi / 1440).
//
// A page is a display list: text runs, boxes, circles, pictures and slices of rich-text
// documents, in the order they were made. Header and footer are added to every page at EndDoc.

#include "reports/PainterSurface.h"

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QFontMetricsF>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <system_error>
#include <variant>

namespace reports {

namespace {

constexpr double kCellPadding = 60;  // twips left and right of a table cell's text
constexpr double kCellPaddingV = 20; // twips above and below it
constexpr double kHairline = 10;     // the pen of widths 0 and 1
constexpr double kBoxPen = 30;       // the box of a hand-writing cell
constexpr double kTwipsPerMeter = kTwipsPerInch / 0.0254;

// The device that fonts and rich text are measured against: 1440 dots to the inch.
const QPaintDevice& TwipDevice()
{
    static const QImage device = [] {
        QImage image(1, 1, QImage::Format_RGB32);
        image.setDotsPerMeterX(static_cast<int>(std::lround(kTwipsPerMeter)));
        image.setDotsPerMeterY(static_cast<int>(std::lround(kTwipsPerMeter)));
        return image;
    }();
    return device;
}

QFont MakeFont(const FontSpec& wanted)
{
    QFont font(QString::fromStdString(wanted.name));
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(wanted.size * kTwipsPerPoint))));
    font.setBold(wanted.bold);
    font.setItalic(wanted.italic);
    font.setUnderline(wanted.underline);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QStringList SplitLines(const QString& text)
{
    QString unified = text;
    unified.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    unified.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return unified.split(QLatin1Char('\n'));
}

// The lines of one hard line of text wrapped to width twips (at least one, maybe empty).
QStringList WrapLine(const QString& line, const QFont& font, double width)
{
    if (line.isEmpty())
        return {QString()};
    QTextLayout layout(line, font, const_cast<QPaintDevice*>(&TwipDevice()));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine tl = layout.createLine(); tl.isValid(); tl = layout.createLine()) {
        tl.setLineWidth(std::max(1.0, width));
        lines.push_back(line.mid(tl.textStart(), tl.textLength()));
    }
    layout.endLayout();
    if (lines.isEmpty())
        lines.push_back(QString());
    return lines;
}

QColor ToColour(Rgb rgb)
{
    return QColor(rgb.r, rgb.g, rgb.b);
}

double PenOf(int twips)
{
    return twips <= 1 ? kHairline : twips;
}

struct TextRun
{
    QString text;
    QFont font;
    QPointF topLeft;
};
struct Box
{
    QRectF rect;
    std::optional<QColor> fill;
    double pen = 0; // 0: no border
};
struct Ring
{
    QPointF centre;
    double radius = 0;
    double pen = kHairline;
};
struct Picture
{
    QImage image;
    QRectF box;
};
struct DocSlice
{
    std::shared_ptr<QTextDocument> doc;
    QPointF topLeft; // where the slice's top stands on the page
    double from = 0, to = 0;
};
using Item = std::variant<TextRun, Box, Ring, Picture, DocSlice>;

QRectF Fit(const QSize& size, const QRectF& box)
{
    if (size.isEmpty())
        return box;
    const double scale = std::min(box.width() / size.width(), box.height() / size.height());
    const QSizeF fitted(size.width() * scale, size.height() * scale);
    return QRectF(box.center() - QPointF(fitted.width() / 2, fitted.height() / 2), fitted);
}

void Paint(QPainter& painter, const Item& item)
{
    if (const auto* run = std::get_if<TextRun>(&item)) {
        painter.setFont(run->font);
        painter.setPen(Qt::black);
        const QFontMetricsF metrics(run->font, &TwipDevice());
        painter.drawText(run->topLeft + QPointF(0, metrics.ascent()), run->text);
    } else if (const auto* box = std::get_if<Box>(&item)) {
        if (box->fill)
            painter.fillRect(box->rect, *box->fill);
        if (box->pen > 0) {
            painter.setPen(QPen(Qt::black, box->pen));
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(box->rect);
        }
    } else if (const auto* ring = std::get_if<Ring>(&item)) {
        painter.setPen(QPen(Qt::black, ring->pen));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(ring->centre, ring->radius, ring->radius);
    } else if (const auto* picture = std::get_if<Picture>(&item)) {
        painter.drawImage(Fit(picture->image.size(), picture->box), picture->image);
    } else if (const auto* slice = std::get_if<DocSlice>(&item)) {
        painter.save();
        painter.translate(slice->topLeft - QPointF(0, slice->from));
        const QRectF clip(0, slice->from, slice->doc->textWidth(), slice->to - slice->from);
        painter.setClipRect(clip, Qt::IntersectClip);
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = clip;
        context.palette.setColor(QPalette::Text, Qt::black);
        slice->doc->documentLayout()->draw(&painter, context);
        painter.restore();
    }
}

} // namespace

struct PainterSurface::Impl
{
    // The format the next StartDoc takes, and the one of the document made.
    Orientation orientation = Orientation::Portrait, docOrientation = Orientation::Portrait;
    Paper paper = Paper::Letter, docPaper = Paper::Letter;
    Margins margins, docMargins;
    bool started = false;
    bool ended = false; // header and footer painted

    std::string header, footer;
    FontSpec headerFont{"Arial", 8};
    FontSpec font;
    double spacing = 1; // the line distance as a multiple of the font's
    int penWidth = 1;

    std::vector<std::vector<Item>> pages;
    double y = 0; // the flow's cursor on the last page

    double Width() const { return PaperWidth(docPaper, docOrientation); }
    double Height() const { return PaperHeight(docPaper, docOrientation); }
    double Bottom() const { return Height() - docMargins.bottom; }
    double TextWidth() const { return Width() - docMargins.left - docMargins.right; }
    bool AtTop() const { return y <= docMargins.top; }

    std::vector<Item>& Page()
    {
        if (pages.empty())
            NewPage();
        return pages.back();
    }
    void NewPage()
    {
        pages.emplace_back();
        y = docMargins.top;
    }
    // Makes room for height twips below the cursor: a new page unless it fits or the page is
    // still empty.
    void Room(double height)
    {
        if (pages.empty() || (y + height > Bottom() && !AtTop()))
            NewPage();
    }

    // Lines of text from top down, each aligned within [left, left + width]; lines that would
    // reach below clipBottom are left out.
    void Lines(std::vector<Item>& page, const QStringList& lines, const QFont& qfont, double left,
               double width, double top, Align align, double clipBottom, double spacing = 1)
    {
        const QFontMetricsF metrics(qfont, &TwipDevice());
        const double step = metrics.lineSpacing() * spacing;
        for (const QString& line : lines) {
            if (top + step > clipBottom + 0.5)
                break;
            double x = left;
            if (align != Align::Left) {
                const double used = metrics.horizontalAdvance(line.trimmed());
                x = align == Align::Centre ? left + (width - used) / 2 : left + width - used;
            }
            const QString text = align == Align::Left ? line : line.trimmed();
            if (!text.isEmpty())
                page.push_back(TextRun{text, qfont, QPointF(x, top)});
            top += step;
        }
    }

    void HeaderAndFooter(std::vector<Item>& page, int number)
    {
        const QFont qfont = MakeFont(headerFont);
        const double step = QFontMetricsF(qfont, &TwipDevice()).lineSpacing();
        const auto band = [&](const std::string& text, double middle) {
            if (text.empty())
                return;
            QString filled = QString::fromStdString(text);
            filled.replace(QStringLiteral("%d"), QString::number(number));
            QStringList parts = filled.split(QLatin1Char('|'));
            while (parts.size() < 3)
                parts.push_back(QString());
            const Align aligns[3] = {Align::Left, Align::Centre, Align::Right};
            for (int i = 0; i < 3; ++i) {
                const QStringList lines = SplitLines(parts[i]);
                const double top = middle - step * lines.size() / 2;
                Lines(page, lines, qfont, docMargins.left, TextWidth(), top, aligns[i], Height());
            }
        };
        band(header, docMargins.top / 2.0);
        band(footer, Height() - docMargins.bottom / 2.0);
    }
};

PainterSurface::PainterSurface() : d_(std::make_unique<Impl>()) {}
PainterSurface::~PainterSurface() = default;

void PainterSurface::StartDoc()
{
    d_->docOrientation = d_->orientation;
    d_->docPaper = d_->paper;
    d_->docMargins = d_->margins;
    d_->started = true;
    d_->ended = false;
    d_->spacing = 1;
    d_->pages.clear();
    d_->NewPage();
}

void PainterSurface::EndDoc()
{
    if (d_->ended)
        return;
    d_->ended = true;
    if (d_->pages.empty())
        d_->NewPage();
    for (size_t i = 0; i < d_->pages.size(); ++i)
        d_->HeaderAndFooter(d_->pages[i], static_cast<int>(i) + 1);
}

bool PainterSurface::DocumentOpen() const
{
    return d_->started && !d_->ended;
}

bool PainterSurface::Finished() const
{
    return d_->ended;
}

void PainterSurface::NewPage()
{
    d_->NewPage();
}

void PainterSurface::SetOrientation(Orientation orientation)
{
    d_->orientation = orientation;
}

void PainterSurface::SetPaper(Paper paper)
{
    d_->paper = paper;
}

void PainterSurface::SetMargins(const Margins& margins)
{
    // Margins set inside a document hold from where the text stands.
    d_->margins = margins;
    if (d_->started && !d_->ended) {
        const bool atTop = d_->AtTop();
        d_->docMargins = margins;
        if (atTop)
            d_->y = margins.top;
    }
}

void PainterSurface::SetHeader(std::string_view text)
{
    d_->header = text;
}

void PainterSurface::SetFooter(std::string_view text)
{
    d_->footer = text;
}

void PainterSurface::SetHeaderFont(std::string_view name, double size)
{
    d_->headerFont = FontSpec{std::string(name), size};
}

void PainterSurface::SetFont(const FontSpec& font)
{
    d_->font = font;
}

void PainterSurface::SetLineSpacing(int percent)
{
    d_->spacing = std::clamp(percent, 50, 500) / 100.0;
}

void PainterSurface::Paragraph(std::string_view text)
{
    const QFont qfont = MakeFont(d_->font);
    const double step = QFontMetricsF(qfont, &TwipDevice()).lineSpacing() * d_->spacing;
    const double left = d_->docMargins.left;
    for (const QString& hard : SplitLines(QString::fromUtf8(text.data(), text.size()))) {
        for (const QString& line : WrapLine(hard, qfont, d_->TextWidth())) {
            d_->Room(step);
            d_->Lines(d_->Page(), {line}, qfont, left, d_->TextWidth(), d_->y, Align::Left,
                      d_->Height());
            d_->y += step;
        }
    }
}

void PainterSurface::RichText(std::string_view html)
{
    auto doc = std::make_shared<QTextDocument>();
    doc->documentLayout()->setPaintDevice(const_cast<QPaintDevice*>(&TwipDevice()));
    doc->setDefaultFont(MakeFont(d_->font));
    doc->setDocumentMargin(0);
    doc->setTextWidth(d_->TextWidth());
    const QString text = QString::fromUtf8(html.data(), html.size());
    if (Qt::mightBeRichText(text))
        doc->setHtml(text);
    else
        doc->setPlainText(text);

    // The places where a page may break: the tops of the laid-out lines, nested tables' too.
    std::vector<std::pair<double, double>> lines; // top, bottom in document units
    QAbstractTextDocumentLayout* layout = doc->documentLayout();
    for (QTextBlock block = doc->begin(); block.isValid(); block = block.next()) {
        const QRectF rect = layout->blockBoundingRect(block);
        const QTextLayout* tl = block.layout();
        for (int i = 0; tl && i < tl->lineCount(); ++i) {
            const QRectF line = tl->lineAt(i).rect();
            lines.emplace_back(rect.top() + line.top(), rect.top() + line.bottom());
        }
    }
    std::sort(lines.begin(), lines.end());
    const double total =
        std::max(layout->documentSize().height(), lines.empty() ? 0.0 : lines.back().second);

    double from = 0;
    d_->Room(lines.empty() ? total : lines.front().second);
    for (const auto& [top, bottom] : lines) {
        if (top > from && d_->y + (bottom - from) > d_->Bottom()) {
            d_->Page().push_back(DocSlice{doc, QPointF(d_->docMargins.left, d_->y), from, top});
            d_->NewPage();
            from = top;
        }
    }
    d_->Page().push_back(DocSlice{doc, QPointF(d_->docMargins.left, d_->y), from, total});
    d_->y += total - from;
}

void PainterSurface::Table(std::string_view format, std::string_view header, const TableRows& body,
                           Rgb headerColour, Rgb bodyColour)
{
    const std::vector<TableColumn> columns = ParseTableFormat(format);
    if (columns.empty())
        return;
    const QFont qfont = MakeFont(d_->font);
    const double spacing = d_->spacing;
    const double step = QFontMetricsF(qfont, &TwipDevice()).lineSpacing() * spacing;

    struct Row
    {
        std::vector<QStringList> cells;
        double height = 0;
    };
    const auto makeRow = [&](const std::vector<std::string>& texts) {
        Row row;
        for (size_t c = 0; c < columns.size(); ++c) {
            const QString text = c < texts.size() ? QString::fromStdString(texts[c]) : QString();
            QStringList lines;
            for (const QString& hard : SplitLines(text))
                lines += WrapLine(hard, qfont, columns[c].width - 2 * kCellPadding);
            const int count = std::max<int>(lines.size(), columns[c].box ? 2 : 1);
            row.height = std::max(row.height, count * step + 2 * kCellPaddingV);
            row.cells.push_back(lines);
        }
        return row;
    };
    const std::vector<std::string> titles = SplitHeader(header);
    const bool hasHeader = !titles.empty() && !(titles.size() == 1 && titles[0].empty());
    const Row headRow = hasHeader ? makeRow(titles) : Row{};

    const auto draw = [&](const Row& row, const QColor& fill) {
        std::vector<Item>& page = d_->Page();
        const double bottom = std::min(d_->y + row.height, d_->Bottom());
        double x = d_->docMargins.left;
        for (size_t c = 0; c < columns.size(); ++c) {
            const QRectF cell(x, d_->y, columns[c].width, bottom - d_->y);
            page.push_back(Box{cell, fill, columns[c].box ? kBoxPen : kHairline});
            d_->Lines(page, row.cells[c], qfont, x + kCellPadding,
                      columns[c].width - 2 * kCellPadding, d_->y + kCellPaddingV, columns[c].align,
                      bottom, spacing);
            x += columns[c].width;
        }
        d_->y = bottom;
    };

    d_->Room(headRow.height + (body.empty() ? 0 : makeRow(body.front()).height));
    // No row yet below the header on this page: a row too tall for any page stays here, clipped.
    bool fresh = d_->AtTop();
    if (hasHeader)
        draw(headRow, ToColour(headerColour));
    for (const std::vector<std::string>& texts : body) {
        const Row row = makeRow(texts);
        if (d_->y + row.height > d_->Bottom() && !fresh) {
            d_->NewPage();
            if (hasHeader)
                draw(headRow, ToColour(headerColour));
        }
        draw(row, ToColour(bodyColour));
        fresh = false;
    }
}

void PainterSurface::SetPenWidth(int twips)
{
    d_->penWidth = twips;
}

void PainterSurface::Circle(int x, int y, int radius)
{
    d_->Page().push_back(Ring{QPointF(x, y), static_cast<double>(radius), PenOf(d_->penWidth)});
}

void PainterSurface::DrawPicture(const QImage& image, int left, int top, int right, int bottom)
{
    d_->Page().push_back(Picture{image, QRectF(QPointF(left, top), QPointF(right, bottom))});
}

void PainterSurface::Pictures(const std::vector<QImage>& images, int width, int height, int gap)
{
    if (images.empty())
        return;
    d_->Room(height);
    double x = d_->docMargins.left;
    for (const QImage& image : images) {
        d_->Page().push_back(Picture{image, QRectF(x, d_->y, width, height)});
        x += width + gap;
    }
    d_->y += height;
}

int PainterSurface::PageCount() const
{
    return static_cast<int>(d_->pages.size());
}

int PainterSurface::PageWidth() const
{
    return d_->started ? PaperWidth(d_->docPaper, d_->docOrientation)
                       : PaperWidth(d_->paper, d_->orientation);
}

int PainterSurface::PageHeight() const
{
    return d_->started ? PaperHeight(d_->docPaper, d_->docOrientation)
                       : PaperHeight(d_->paper, d_->orientation);
}

Orientation PainterSurface::PageOrientation() const
{
    return d_->started ? d_->docOrientation : d_->orientation;
}

Paper PainterSurface::PaperSize() const
{
    return d_->started ? d_->docPaper : d_->paper;
}

std::vector<std::string> PainterSurface::PageTexts(int page) const
{
    std::vector<std::string> texts;
    if (page < 1 || page > PageCount())
        return texts;
    for (const Item& item : d_->pages[page - 1]) {
        if (const auto* run = std::get_if<TextRun>(&item))
            texts.push_back(run->text.toStdString());
    }
    return texts;
}

void PainterSurface::PaintPage(int page, QPainter& painter) const
{
    if (page < 1 || page > PageCount())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(QRectF(0, 0, PageWidth(), PageHeight()), Qt::white);
    for (const Item& item : d_->pages[page - 1])
        Paint(painter, item);
    painter.restore();
}

QImage PainterSurface::PageImage(int page, double dpi) const
{
    const double scale = dpi / kTwipsPerInch;
    const QSize size(std::max(1, static_cast<int>(std::lround(PageWidth() * scale))),
                     std::max(1, static_cast<int>(std::lround(PageHeight() * scale))));
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(scale, scale);
    PaintPage(page, painter);
    return image;
}

bool PainterSurface::PaintTo(QPagedPaintDevice& device, int from, int to) const
{
    from = std::max(1, from);
    to = std::min(PageCount(), to);
    QPainter painter;
    if (!painter.begin(&device))
        return false;
    for (int page = from; page <= to; ++page) {
        if (page > from && !device.newPage())
            return false;
        painter.save();
        painter.scale(device.logicalDpiX() / double(kTwipsPerInch),
                      device.logicalDpiY() / double(kTwipsPerInch));
        PaintPage(page, painter);
        painter.restore();
    }
    return painter.end();
}

bool PainterSurface::WritePdf(const std::filesystem::path& path, std::string& error) const
{
    const std::filesystem::path part = path.string() + ".part~";
    bool written = false;
    {
        QPdfWriter writer(QString::fromStdString(part.string()));
        writer.setPageSize(QPageSize(PaperSize() == Paper::A4 ? QPageSize::A4 : QPageSize::Letter));
        writer.setPageOrientation(PageOrientation() == Orientation::Landscape
                                      ? QPageLayout::Landscape
                                      : QPageLayout::Portrait);
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        writer.setResolution(1200);
        writer.setCreator(QStringLiteral("Selvane 2003"));
        written = PaintTo(writer, 1, std::max(1, PageCount()));
    }
    std::error_code code;
    if (written && std::filesystem::exists(part, code)) {
        std::filesystem::rename(part, path, code);
        if (!code)
            return true;
    }
    std::filesystem::remove(part, code);
    error = "Cannot write " + path.string();
    return false;
}

} // namespace reports
