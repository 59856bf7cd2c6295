#include "charts/ChartPage.h"

#include "astro/SolarCommon.h"
#include "astro/Time.h"
#include "services/Fault.h"
#include "services/OutputFile.h"
#include "services/Vb.h"

#include <QBuffer>
#include <QFont>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPen>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <system_error>

namespace charts {

namespace {

constexpr const char* kLocation = "charts.WriteChartPdf";
constexpr const char* kDegreeSign = "\xC2\xB0";
constexpr double kMarginMm = 12.7;

// Layout lengths in hundredths of the page's shorter side.
constexpr double kHeadingSize = 3.4;
constexpr double kLegendSize = 1.9;
constexpr double kKeySize = 1.6;
constexpr double kLegendHeight = 20.0;
constexpr double kGap = 1.5;
// Key symbols are drawn as a symbol this many chart pixels across would be.
constexpr double kKeySymbolRadiusPx = 6.0;
constexpr double kKeySymbolRadius = 1.1;
// Beyond this many magnitudes above the limit every star has the largest dot.
constexpr int kMostMagnitudes = 12;

struct KeyEntry
{
    int typeCode; // 0: the eyepiece circle
    const char* label;
};

// One entry for each kind of mark the engine draws; 15 stands for the Sun, Moon and planets.
constexpr KeyEntry kSymbolKey[] = {
    {1, "Galaxy"},         {2, "Open cluster"},     {3, "Globular cluster"},
    {4, "Nebula"},         {5, "Planetary nebula"}, {6, "Variable star"},
    {7, "Double star"},    {9, "Other object"},     {15, "Solar system body"},
    {0, "Eyepiece field"},
};

QString Text(const std::string& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QFont PageFont(double pixels, bool bold = false)
{
    QFont font;
    font.setStyleHint(QFont::SansSerif);
    font.setFamily("DejaVu Sans");
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(pixels))));
    font.setBold(bold);
    // No ligatures: a "fi" drawn as one glyph reads as U+FB01, and searching the PDF for the
    // words fails.
    font.setStyleStrategy(QFont::PreferNoShaping);
    return font;
}

// One decimal, or none when it is 0: 35 gives "35", 7.55 gives "7.6".
std::string ShortNumber(double value)
{
    const std::string one = services::vb::Format(value, "0.0");
    if (one.size() > 2 && one.compare(one.size() - 2, 2, ".0") == 0)
        return one.substr(0, one.size() - 2);
    return one;
}

// The magnitudes of the key: whole magnitudes from the brightest star drawn to the limit.
std::vector<int> KeyMagnitudes(const ChartImage& chart)
{
    const int faintest = static_cast<int>(std::floor(chart.limitMag));
    double brightest = chart.limitMag;
    for (const DrawnObject& d : chart.drawn)
        if (d.kind == DrawnKind::Star && d.mag)
            brightest = std::min(brightest, *d.mag);
    int first = brightest < chart.limitMag ? static_cast<int>(std::lround(brightest)) : 0;
    first = std::clamp(first, faintest - kMostMagnitudes + 1, faintest);
    std::vector<int> out;
    for (int m = first; m <= faintest; ++m)
        out.push_back(m);
    return out;
}

// A key's title at the top of its area. Returned: the title's height.
double DrawKeyTitle(QPainter& painter, const QRectF& area, double unit, const char* text)
{
    const QFont title = PageFont(kKeySize * unit, true);
    painter.setFont(title);
    painter.setPen(Qt::black);
    const double titleHeight = QFontMetricsF(title).height();
    painter.drawText(QRectF(area.left(), area.top(), area.width(), titleHeight),
                     Qt::AlignLeft | Qt::AlignVCenter, text);
    return titleHeight;
}

void DrawMagnitudeKey(QPainter& painter, const QRectF& area, double unit, double chartScale,
                      const ChartImage& chart)
{
    const double titleHeight = DrawKeyTitle(painter, area, unit, "Star magnitudes");
    const QFont label = PageFont(kKeySize * unit);

    const std::vector<int> mags = KeyMagnitudes(chart);
    if (mags.empty())
        return;
    const double cell = std::min(area.width() / static_cast<double>(mags.size()), 5.0 * unit);
    const double dotY = area.top() + titleHeight + 1.4 * unit;
    const QColor ink = StarColour(false);
    painter.setFont(label);
    for (std::size_t k = 0; k < mags.size(); ++k) {
        const double x = area.left() + (static_cast<double>(k) + 0.5) * cell;
        // The dot at the chart's own scale, so it matches the stars in the picture.
        painter.save();
        painter.translate(x, dotY);
        painter.scale(chartScale, chartScale);
        DrawStarDot(painter, QPointF(0, 0), StarDotRadius(mags[k], chart.limitMag), ink);
        painter.restore();
        painter.setPen(Qt::black);
        painter.drawText(QRectF(x - cell / 2, dotY + 1.0 * unit, cell, 2.2 * unit),
                         Qt::AlignHCenter | Qt::AlignTop, QString::number(mags[k]));
    }
}

void DrawSymbolKey(QPainter& painter, const QRectF& area, double unit)
{
    const double titleHeight = DrawKeyTitle(painter, area, unit, "Symbols");
    const QFont label = PageFont(kKeySize * unit);

    constexpr int kRows = 5;
    const double rowHeight = (area.height() - titleHeight) / kRows;
    const double columnWidth = area.width() / 2;
    // Symbols are drawn in chart pixels, scaled so one is kKeySymbolRadius units in radius.
    const double scale = kKeySymbolRadius * unit / kKeySymbolRadiusPx;
    painter.setFont(label);
    int k = 0;
    for (const KeyEntry& entry : kSymbolKey) {
        const double left = area.left() + (k / kRows) * columnWidth;
        const double middle = area.top() + titleHeight + (k % kRows + 0.5) * rowHeight;
        painter.save();
        painter.translate(left + kKeySymbolRadius * unit + 0.3 * unit, middle);
        painter.scale(scale, scale);
        if (entry.typeCode == 0)
            DrawFinderCircle(painter, QPointF(0, 0), kKeySymbolRadiusPx, FinderCircleColour(false));
        else
            DrawObjectSymbol(painter, entry.typeCode, QPointF(0, 0), kKeySymbolRadiusPx,
                             ObjectSymbolColour(entry.typeCode, false));
        painter.restore();
        painter.setPen(Qt::black);
        const double textLeft = left + 2 * kKeySymbolRadius * unit + 1.3 * unit;
        painter.drawText(
            QRectF(textLeft, middle - rowHeight / 2, left + columnWidth - textLeft, rowHeight),
            Qt::AlignLeft | Qt::AlignVCenter, entry.label);
        ++k;
    }
}

} // namespace

std::string ChartCentreText(double raHours, double decDeg)
{
    // Rounded to the tenth of a second shown first, so that 23h 59m 59.97s reads 0h, not 24h.
    double ra = std::fmod(std::round(raHours * 36000.0) / 36000.0, 24.0);
    if (ra < 0)
        ra += 24.0;
    std::string raText = astro::RaText(ra);
    if (!raText.empty() && raText.back() == ' ')
        raText.pop_back();
    // Whole seconds of arc, carried into minutes and degrees.
    const double arcSeconds = std::round(std::abs(decDeg) * 3600.0);
    const astro::Sexagesimal dec = astro::ConvertFromDecimal(arcSeconds / 3600.0);
    std::string out = "RA " + raText + "  Dec ";
    out += decDeg < 0 && arcSeconds > 0 ? "-" : "+";
    out += services::vb::Format(dec.degrees, "0") + kDegreeSign + " " +
           services::vb::Format(dec.minutes, "0") + "' " + services::vb::Format(dec.seconds, "0") +
           "\"";
    return out;
}

std::string ChartFieldText(double fieldDeg)
{
    return "Field " + ShortNumber(fieldDeg) + kDegreeSign;
}

std::string ChartLimitText(double limitMag)
{
    return "Stars to mag " + ShortNumber(limitMag);
}

void PaintChartPage(QPainter& painter, const QRectF& page, const ChartImage& chart,
                    const ChartPageInfo& info)
{
    const double unit = std::min(page.width(), page.height()) / 100.0;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(page, Qt::white);

    // Heading.
    const QFont heading = PageFont(kHeadingSize * unit, true);
    const QFontMetricsF headingMetrics(heading);
    painter.setFont(heading);
    painter.setPen(Qt::black);
    const double headingHeight = headingMetrics.height();
    painter.drawText(QRectF(page.left(), page.top(), page.width(), headingHeight),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     headingMetrics.elidedText(Text(info.heading), Qt::ElideRight, page.width()));

    // The picture: the full width, or less when the page is too short for it and the legend.
    const double top = page.top() + headingHeight + unit;
    const double room = std::max(page.bottom() - top - kGap * unit - kLegendHeight * unit, unit);
    const QImage& image = chart.image;
    QRectF picture(page.left(), top, page.width(), 0);
    if (!image.isNull()) {
        const double aspect = static_cast<double>(image.height()) / image.width();
        picture.setHeight(page.width() * aspect);
        if (picture.height() > room) {
            picture.setHeight(room);
            picture.setWidth(room / aspect);
            picture.moveLeft(page.left() + (page.width() - picture.width()) / 2);
        }
        painter.drawImage(picture, image);
    } else {
        picture.setHeight(std::min(page.width() * 0.75, room));
    }
    painter.setPen(QPen(Qt::black, 0.12 * unit));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(picture);
    const double chartScale = image.isNull() ? 1.0 : picture.width() / image.width();

    // Legend: the chart's numbers and the magnitude key on the left, the symbols on the right.
    const double legendTop = picture.bottom() + kGap * unit;
    const double half = page.width() / 2;
    const QFont legend = PageFont(kLegendSize * unit);
    const double line = QFontMetricsF(legend).height() * 1.15;
    painter.setFont(legend);
    painter.setPen(Qt::black);
    const std::string lines[] = {ChartCentreText(info.raHours, info.decDeg) + "  (J2000)",
                                 ChartFieldText(info.fieldDeg), ChartLimitText(info.limitMag),
                                 info.date};
    double y = legendTop;
    for (const std::string& text : lines) {
        painter.drawText(QRectF(page.left(), y, half - unit, line),
                         Qt::AlignLeft | Qt::AlignVCenter, Text(text));
        y += line;
    }
    DrawMagnitudeKey(painter, QRectF(page.left(), y + unit, half - 2 * unit, 8 * unit), unit,
                     chartScale, chart);
    DrawSymbolKey(painter,
                  QRectF(page.left() + half + unit, legendTop, half - unit, kLegendHeight * unit),
                  unit);
    painter.restore();
}

std::string ChartPageDate(const astro::LocalDateTime& moment)
{
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d", moment.year, moment.month,
                  moment.day, moment.hour, moment.minute);
    return text;
}

void WriteChartPdf(const std::filesystem::path& path, const ChartImage& chart,
                   const ChartPageInfo& info, PagePaper paper)
{
    const std::string cannot = "Cannot write " + path.string();
    QByteArray bytes;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QPdfWriter writer(&buffer);
        writer.setTitle(Text(info.heading));
        writer.setCreator("Selvane");
        writer.setPageLayout(QPageLayout(
            QPageSize(paper == PagePaper::A4 ? QPageSize::A4 : QPageSize::Letter),
            info.landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
            QMarginsF(kMarginMm, kMarginMm, kMarginMm, kMarginMm), QPageLayout::Millimeter));
        QPainter painter;
        if (!painter.begin(&writer))
            throw services::Fault(cannot, kLocation);
        PaintChartPage(painter, QRectF(0, 0, writer.width(), writer.height()), chart, info);
        if (!painter.end())
            throw services::Fault(cannot, kLocation);
    }
    if (bytes.isEmpty())
        throw services::Fault(cannot, kLocation);

    try {
        services::OutputFile file(path);
        try {
            file.Write(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
            file.Close();
        } catch (const services::Fault&) {
            std::error_code ignored;
            std::filesystem::remove(path, ignored);
            throw;
        }
    } catch (const services::Fault& fault) {
        throw services::Fault(fault.what(), kLocation);
    }
}

} // namespace charts
