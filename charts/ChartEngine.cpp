#include "charts/ChartEngine.h"

#include "charts/Projection.h"

#include <QFont>
#include <QFontMetricsF>
#include <QLineF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <unordered_map>

namespace charts {

namespace {

constexpr double kDeg = std::numbers::pi / 180.0;
constexpr int kMinSize = 16;
constexpr int kMaxSize = 8192;
constexpr double kStarRadiusPerMag = 0.55;
constexpr double kFaintestStarRadius = 1.0;
constexpr double kLargestStarRadius = 7.0;
constexpr double kMinSymbolDiameter = 8.0;
constexpr double kSymbolPenWidth = 1.2;
constexpr double kCirclePenWidth = 1.5;

struct Palette
{
    QColor background, milkyWay, grid, bounds, lines, stars, starNames, coNames;
    QColor galaxy, cluster, globular, nebula, planetary, star, solar, other, observed, circle;
};

Palette DayPalette()
{
    return {QColor(255, 255, 255), QColor(170, 190, 225), QColor(205, 205, 205),
            QColor(210, 170, 110), QColor(90, 140, 200),  QColor(0, 0, 0),
            QColor(60, 60, 60),    QColor(0, 80, 200),    QColor(255, 0, 0),
            QColor(255, 155, 0),   QColor(255, 155, 0),   QColor(0, 150, 20),
            QColor(0, 150, 20),    QColor(30, 10, 80),    QColor(0, 0, 255),
            QColor(120, 120, 120), QColor(0, 200, 0),     QColor(255, 0, 255)};
}

Palette NightPalette()
{
    const QColor bright(255, 40, 40);
    const QColor mid(190, 20, 20);
    const QColor dim(110, 0, 0);
    const QColor faint(70, 0, 0);
    return {QColor(0, 0, 0),
            faint,
            faint,
            dim,
            dim,
            bright,
            mid,
            mid,
            bright,
            bright,
            bright,
            bright,
            bright,
            bright,
            bright,
            mid,
            QColor(255, 110, 110),
            bright};
}

std::string Lower(std::string_view text)
{
    std::string out;
    for (char c : text)
        out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

std::string Trim(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    const auto last = text.find_last_not_of(" \t");
    return std::string(text.substr(first, last - first + 1));
}

// Draws the segments of polylines whose two ends are drawn and come near the image.
void DrawPolylines(QPainter& painter, const Projection& proj,
                   const std::vector<PolylinePoint>& points)
{
    const QRectF near(-proj.Width(), -proj.Height(), 3.0 * proj.Width(), 3.0 * proj.Height());
    std::vector<QLineF> segments;
    ChartPoint last;
    for (const auto& p : points) {
        const ChartPoint here = proj.Project(p.raHours, p.decDeg);
        if (p.draw && last.drawn && here.drawn) {
            const QLineF line(last.x, last.y, here.x, here.y);
            if (near.contains(line.p1()) || near.contains(line.p2()))
                segments.push_back(line);
        }
        last = here;
    }
    painter.drawLines(segments.data(), static_cast<int>(segments.size()));
}

double NiceStep(double wanted, std::initializer_list<double> steps)
{
    for (double s : steps)
        if (s >= wanted)
            return s;
    return *(steps.end() - 1);
}

// The angle in degrees from the centre to the farthest image corner.
double CornerDistanceDeg(const Projection& proj, double raCentre, double decCentre)
{
    const SkyPosition corner = proj.Unproject(0, 0);
    double a[3];
    double b[3];
    UnitVector(raCentre, decCentre, a);
    UnitVector(corner.raHours, corner.decDeg, b);
    const double cosC = std::clamp(a[0] * b[0] + a[1] * b[1] + a[2] * b[2], -1.0, 1.0);
    return std::acos(cosC) / kDeg;
}

// Hour circles and parallels over the part of the sky the image shows, so that narrow fields
// sample no more than wide ones.
void DrawGrid(QPainter& painter, const Projection& proj, double raCentre, double decCentre)
{
    const double field = proj.FieldDeg();
    const double reach = std::min(CornerDistanceDeg(proj, raCentre, decCentre) + 1.0, 180.0);
    const double decStep = NiceStep(field / 6.0, {0.25, 0.5, 1, 2, 5, 10, 15, 30});
    const double cosDec = std::max(std::cos(decCentre * kDeg), 0.1);
    // Right ascension steps in hours: 1, 2, 5, 10, 20, 30 minutes, 1 and 2 hours.
    const double raStep = NiceStep(decStep / 15.0 / cosDec,
                                   {1.0 / 60, 2.0 / 60, 5.0 / 60, 10.0 / 60, 20.0 / 60, 0.5, 1, 2});
    const double sample = std::min(decStep, field / 40.0);

    // The declinations and right ascensions in reach of the image.
    const double decLow = std::max(-90.0, decCentre - reach);
    const double decHigh = std::min(90.0, decCentre + reach);
    double raFrom = 0;
    double raSpan = 24;
    if (decHigh < 90 && decLow > -90) {
        const double halfSpan = std::asin(std::min(1.0, std::sin(std::min(reach, 90.0) * kDeg) /
                                                            std::cos(decCentre * kDeg))) /
                                kDeg / 15.0;
        if (reach < 90 && halfSpan < 12) {
            raFrom = std::floor((raCentre - halfSpan) / raStep) * raStep;
            raSpan = 2 * halfSpan + 2 * raStep;
        }
    }

    std::vector<PolylinePoint> points;
    // Hour circles, short of the poles where they all meet.
    const double poleGap = decStep / 2.0;
    const double dFrom = std::max(decLow, -90 + poleGap);
    const double dTo = std::min(decHigh, 90 - poleGap);
    for (double ra = raFrom; ra < raFrom + raSpan - 1e-9; ra += raStep) {
        bool first = true;
        for (double dec = dFrom; dec < dTo + sample; dec += sample) {
            points.push_back({ra, std::min(dec, dTo), !first});
            first = false;
        }
    }
    const double raSample = std::min(raStep, sample / 15.0 / cosDec);
    for (double dec = std::ceil(decLow / decStep) * decStep; dec <= decHigh; dec += decStep) {
        if (std::abs(dec) >= 90 - 1e-9)
            continue;
        bool first = true;
        for (double ra = raFrom; ra < raFrom + raSpan + raSample; ra += raSample) {
            points.push_back({std::min(ra, raFrom + raSpan), dec, !first});
            first = false;
        }
    }
    DrawPolylines(painter, proj, points);
}

bool Inside(const Projection& proj, const ChartPoint& p)
{
    return p.drawn && p.x >= 0 && p.y >= 0 && p.x < proj.Width() && p.y < proj.Height();
}

QColor SymbolColour(const Palette& pal, int code)
{
    switch (code) {
    case 1:
        return pal.galaxy;
    case 2:
        return pal.cluster;
    case 3:
        return pal.globular;
    case 4:
        return pal.nebula;
    case 5:
        return pal.planetary;
    case 6:
    case 7:
        return pal.star;
    default:
        return code >= 11 && code <= 23 ? pal.solar : pal.other;
    }
}

// Small symbols are drawn once per look into a transparent image and then stamped: stamping is
// many times faster than stroking an antialiased outline, which matters with tens of thousands
// of objects. The stamp lands within half a pixel of the exact position.
class SymbolStamps
{
public:
    static constexpr int kLargest = 64;

    // The stamp of a symbol of diameter (pixels, at most kLargest) in colour.
    const QImage& Stamp(int code, QColor colour, int diameter)
    {
        const std::uint64_t key = (static_cast<std::uint64_t>(colour.rgba()) << 24) |
                                  (static_cast<std::uint64_t>(code & 0xff) << 16) |
                                  static_cast<std::uint64_t>(diameter);
        auto found = stamps_.find(key);
        if (found != stamps_.end())
            return found->second;
        const int side = diameter + 6 + (code == 23 ? diameter : 0);
        QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        DrawObjectSymbol(painter, code, QPointF(side / 2.0, side / 2.0), diameter / 2.0, colour);
        painter.end();
        return stamps_.emplace(key, std::move(image)).first->second;
    }

private:
    std::unordered_map<std::uint64_t, QImage> stamps_;
};

// Star dots, one stamp per tenth of a pixel of radius.
class StarStamps
{
public:
    explicit StarStamps(QColor colour) : colour_(colour) {}

    const QImage& Stamp(double radius)
    {
        const int tenths = static_cast<int>(std::lround(radius * 10));
        auto found = stamps_.find(tenths);
        if (found != stamps_.end())
            return found->second;
        // An odd side puts the dot's centre on the middle pixel's centre, so that a small dot
        // inks the pixel it stands on instead of greying the four around a corner.
        const int side = (static_cast<int>(std::ceil(tenths / 10.0)) + 2) * 2 + 1;
        QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        DrawStarDot(painter, QPointF(side / 2.0, side / 2.0), tenths / 10.0, colour_);
        painter.end();
        return stamps_.emplace(tenths, std::move(image)).first->second;
    }

private:
    QColor colour_;
    std::unordered_map<int, QImage> stamps_;
};

// The stamp's middle pixel on the pixel holding (x, y).
void DrawStamp(QPainter& painter, const QImage& stamp, double x, double y)
{
    painter.drawImage(
        QPointF(std::floor(x) - (stamp.width() - 1) / 2, std::floor(y) - (stamp.height() - 1) / 2),
        stamp);
}

} // namespace

void DrawObjectSymbol(QPainter& painter, int typeCode, QPointF c, double r, const QColor& colour)
{
    const double d = 2.0 * r;
    painter.setPen(QPen(colour, kSymbolPenWidth));
    painter.setBrush(Qt::NoBrush);
    switch (typeCode) {
    case 1: // galaxy: an ellipse
        painter.drawEllipse(c, r, r * 0.5);
        break;
    case 2: { // open cluster: a dotted circle
        QPen pen = painter.pen();
        pen.setStyle(Qt::DotLine);
        painter.setPen(pen);
        painter.drawEllipse(c, r, r);
        pen.setStyle(Qt::SolidLine);
        painter.setPen(pen);
        break;
    }
    case 3: // globular cluster: a circle with a cross
        painter.drawEllipse(c, r, r);
        painter.drawLine(QPointF(c.x() - r, c.y()), QPointF(c.x() + r, c.y()));
        painter.drawLine(QPointF(c.x(), c.y() - r), QPointF(c.x(), c.y() + r));
        break;
    case 4: // nebula: a square
        painter.drawRect(QRectF(c.x() - r, c.y() - r, d, d));
        break;
    case 5: // planetary nebula: a circle with four ticks
        painter.drawEllipse(c, r * 0.6, r * 0.6);
        painter.drawLine(QPointF(c.x() - r, c.y()), QPointF(c.x() - r * 0.6, c.y()));
        painter.drawLine(QPointF(c.x() + r * 0.6, c.y()), QPointF(c.x() + r, c.y()));
        painter.drawLine(QPointF(c.x(), c.y() - r), QPointF(c.x(), c.y() - r * 0.6));
        painter.drawLine(QPointF(c.x(), c.y() + r * 0.6), QPointF(c.x(), c.y() + r));
        break;
    case 6: // variable star: two rings
        painter.drawEllipse(c, r, r);
        painter.drawEllipse(c, r * 0.5, r * 0.5);
        break;
    case 7: // double star or asterism: a ring on a bar
        painter.drawEllipse(c, r * 0.5, r * 0.5);
        painter.drawLine(QPointF(c.x() - r, c.y()), QPointF(c.x() + r, c.y()));
        break;
    case 22: { // asteroid: a diamond
        const QPointF diamond[] = {
            {c.x(), c.y() - r}, {c.x() + r, c.y()}, {c.x(), c.y() + r}, {c.x() - r, c.y()}};
        painter.drawPolygon(diamond, 4);
        break;
    }
    case 23: // comet: a disc with a tail
        painter.drawEllipse(c, r * 0.4, r * 0.4);
        painter.drawLine(QPointF(c.x() + r * 0.4, c.y() - r * 0.4),
                         QPointF(c.x() + r * 1.5, c.y() - r * 1.5));
        break;
    default:
        if (typeCode >= 11 && typeCode <= 20) { // the Sun, the Moon and the planets: a disc
            painter.setBrush(colour);
            painter.drawEllipse(c, r, r);
            painter.setBrush(Qt::NoBrush);
        } else { // anything else: a cross
            painter.drawLine(QPointF(c.x() - r, c.y() - r), QPointF(c.x() + r, c.y() + r));
            painter.drawLine(QPointF(c.x() - r, c.y() + r), QPointF(c.x() + r, c.y() - r));
        }
    }
}

void DrawFinderCircle(QPainter& painter, QPointF centre, double radius, const QColor& colour)
{
    painter.setPen(QPen(colour, kCirclePenWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(centre, radius, radius);
}

void DrawStarDot(QPainter& painter, QPointF centre, double radius, const QColor& colour)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(centre, radius, radius);
}

double StarDotRadius(double mag, double limitMag)
{
    return std::min(kFaintestStarRadius + kStarRadiusPerMag * (limitMag - mag), kLargestStarRadius);
}

QColor StarColour(bool nightMode)
{
    return (nightMode ? NightPalette() : DayPalette()).stars;
}

QColor ObjectSymbolColour(int typeCode, bool nightMode)
{
    return SymbolColour(nightMode ? NightPalette() : DayPalette(), typeCode);
}

QColor FinderCircleColour(bool nightMode)
{
    return (nightMode ? NightPalette() : DayPalette()).circle;
}

ParsedChartLayers ParseChartLayers(std::string_view text)
{
    ParsedChartLayers out;
    if (Trim(text).empty())
        text = kDefaultChartLayers;
    out.layers = ChartLayers{false, false, false, false, false, false, false, false};
    ChartLayers& l = out.layers;
    std::size_t start = 0;
    while (start <= text.size()) {
        const auto comma = text.find(',', start);
        const std::string_view item =
            text.substr(start, comma == std::string_view::npos ? text.npos : comma - start);
        const std::string name = Lower(Trim(item));
        if (name == "stars")
            l.stars = true;
        else if (name == "names")
            l.names = true;
        else if (name == "dso")
            l.dso = true;
        else if (name == "lines")
            l.lines = true;
        else if (name == "bounds")
            l.bounds = true;
        else if (name == "conames")
            l.conames = true;
        else if (name == "milkyway")
            l.milkyway = true;
        else if (name == "grid")
            l.grid = true;
        else if (!name.empty())
            out.unknown.push_back(Trim(item));
        if (comma == std::string_view::npos)
            break;
        start = comma + 1;
    }
    return out;
}

double DefaultLimitMagnitude(double fieldDeg)
{
    const double field = ClampField(fieldDeg);
    return std::clamp(9.0 - 2.5 * std::log10(field / 10.0), 5.5, 9.0);
}

std::string DsoLabel(const std::string& extraId, const std::string& objectId)
{
    const std::string extra = Trim(extraId);
    if (!extra.empty() && extra.size() < 9 && std::all_of(extra.begin(), extra.end(), [](char c) {
            return std::isdigit(static_cast<unsigned char>(c));
        }))
        return "M" + std::to_string(std::stoi(extra));
    if (!extra.empty())
        return extra;
    return Trim(objectId);
}

ChartImage RenderChart(const ChartSky& sky, const ChartRequest& request,
                       const std::vector<PlotObject>& objects)
{
    ChartImage out;
    const double raCentre = std::isfinite(request.raHours) ? request.raHours : 0.0;
    const double decCentre =
        std::clamp(std::isfinite(request.decDeg) ? request.decDeg : 0.0, -90.0, 90.0);
    const int width = std::clamp(request.width, kMinSize, kMaxSize);
    const int height = std::clamp(request.height, kMinSize, kMaxSize);
    const Projection proj(raCentre, decCentre, request.fieldDeg, width, height);
    out.fieldDeg = proj.FieldDeg();
    out.limitMag = request.limitMag && std::isfinite(*request.limitMag)
                       ? *request.limitMag
                       : DefaultLimitMagnitude(out.fieldDeg);

    out.image = QImage(width, height, QImage::Format_RGB32);
    if (out.image.isNull())
        return out;
    const Palette pal = request.nightMode ? NightPalette() : DayPalette();
    const ChartLayers& layers = request.layers;
    out.image.fill(pal.background);
    QPainter painter(&out.image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double pixelsPerDeg = proj.Scale() * kDeg;

    if (layers.milkyway) {
        painter.setPen(QPen(pal.milkyWay, 1.2));
        DrawPolylines(painter, proj, sky.milkyWay);
    }
    if (layers.grid) {
        painter.setPen(QPen(pal.grid, 0.8));
        DrawGrid(painter, proj, raCentre, decCentre);
    }
    if (layers.bounds) {
        painter.setPen(QPen(pal.bounds, 0.8, Qt::DashLine));
        DrawPolylines(painter, proj, sky.boundaries);
    }
    if (layers.lines) {
        painter.setPen(QPen(pal.lines, 1.3));
        DrawPolylines(painter, proj, sky.figures);
    }

    QFont font = painter.font();
    font.setPixelSize(std::clamp(height / 70, 9, 16));
    painter.setFont(font);

    if (layers.stars) {
        const double nameLimit = std::min(out.limitMag - 3.5, 4.0);
        StarStamps stamps(pal.stars);
        std::vector<const ChartStar*> named;
        for (const auto& s : sky.stars) {
            if (s.mag > out.limitMag)
                break;
            const ChartPoint p = proj.ProjectVector(s.v[0], s.v[1], s.v[2]);
            if (!Inside(proj, p))
                continue;
            const double r = StarDotRadius(s.mag, out.limitMag);
            DrawStamp(painter, stamps.Stamp(r), p.x, p.y);
            DrawnObject d;
            d.kind = DrawnKind::Star;
            d.id = "S" + std::to_string(s.id);
            d.name = s.name;
            d.raHours = s.raHours;
            d.decDeg = s.decDeg;
            d.mag = s.mag;
            d.x = p.x;
            d.y = p.y;
            d.r = r;
            if (layers.names && s.mag <= nameLimit && !s.name.empty())
                named.push_back(&s);
            out.drawn.push_back(std::move(d));
        }
        if (layers.names) {
            painter.setPen(pal.starNames);
            for (const ChartStar* s : named) {
                const ChartPoint p = proj.ProjectVector(s->v[0], s->v[1], s->v[2]);
                painter.drawText(QPointF(p.x + 4, p.y - 3), QString::fromStdString(s->name));
            }
        }
    }

    if (layers.conames) {
        QFont big = font;
        big.setPixelSize(font.pixelSize() + 2);
        painter.setFont(big);
        painter.setPen(pal.coNames);
        const QFontMetricsF metrics(big);
        for (const auto& label : sky.labels) {
            const ChartPoint p = proj.Project(label.raHours, label.decDeg);
            if (!Inside(proj, p))
                continue;
            const QString text = QString::fromStdString(label.name).toUpper();
            painter.drawText(QPointF(p.x - metrics.horizontalAdvance(text) / 2, p.y), text);
        }
        painter.setFont(font);
    }

    if (layers.dso) {
        painter.setBrush(Qt::NoBrush);
        SymbolStamps symbols;
        for (const auto& o : objects) {
            if (!std::isfinite(o.raHours) || !std::isfinite(o.decDeg))
                continue;
            const ChartPoint p = proj.Project(o.raHours, o.decDeg);
            if (!Inside(proj, p))
                continue;
            const double size = std::isfinite(o.sizeArcmin) ? std::max(o.sizeArcmin, 0.0) : 1.0;
            const double across = size / 60.0 * pixelsPerDeg * p.k;
            DrawnObject d;
            d.id = o.objectId;
            d.code = o.typeCode;
            d.raHours = o.raHours;
            d.decDeg = o.decDeg;
            d.x = p.x;
            d.y = p.y;
            const QPointF c(p.x, p.y);
            if (o.flag == 1) {
                d.kind = DrawnKind::Circle;
                d.r = across / 2.0;
                d.name = o.label.empty() ? DsoLabel(o.extraId, o.objectId) : o.label;
                DrawFinderCircle(painter, c, d.r, pal.circle);
            } else {
                d.kind = DrawnKind::Dso;
                const double diameter = std::max(across, kMinSymbolDiameter);
                d.r = diameter / 2.0;
                d.name = o.label.empty() ? DsoLabel(o.extraId, o.objectId) : o.label;
                const QColor colour = o.observed ? pal.observed : SymbolColour(pal, o.typeCode);
                if (diameter <= SymbolStamps::kLargest) {
                    DrawStamp(
                        painter,
                        symbols.Stamp(o.typeCode, colour, static_cast<int>(std::lround(diameter))),
                        p.x, p.y);
                } else {
                    DrawObjectSymbol(painter, o.typeCode, c, d.r, colour);
                }
                painter.setPen(colour);
                painter.drawText(QPointF(p.x + d.r + 2, p.y + d.r + 2),
                                 QString::fromStdString(d.name));
            }
            out.drawn.push_back(std::move(d));
        }
    }
    return out;
}

} // namespace charts
