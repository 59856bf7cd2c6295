#include "charts/ChartView.h"

#include "charts/Projection.h"
#include "services/Vb.h"

#include <algorithm>
#include <cmath>

namespace charts {

double ZoomIn(double fieldDeg)
{
    return ClampField(ClampField(fieldDeg) / kZoomFactor);
}

double ZoomOut(double fieldDeg)
{
    return ClampField(ClampField(fieldDeg) * kZoomFactor);
}

std::optional<std::size_t> PickDrawnObject(const std::vector<DrawnObject>& drawn, double x,
                                           double y)
{
    std::optional<std::size_t> best;
    double bestShare = 0;
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        const DrawnObject& d = drawn[i];
        const double reach = std::max(d.r, 0.0) + kPickSlackPx;
        const double share = std::hypot(d.x - x, d.y - y) / reach;
        if (!(share <= 1))
            continue;
        const bool nearer = !best || share < bestShare ||
                            (share == bestShare && drawn[*best].kind == DrawnKind::Star &&
                             d.kind != DrawnKind::Star);
        if (nearer) {
            best = i;
            bestShare = share;
        }
    }
    return best;
}

std::optional<std::size_t> DocumentObjectIndex(const ChartDocument& document,
                                               const DrawnObject& drawn)
{
    if (drawn.kind == DrawnKind::Star)
        return std::nullopt;
    std::optional<std::size_t> first;
    for (std::size_t i = 0; i < document.objects.size(); ++i) {
        const PlotObject& o = document.objects[i];
        if (o.objectId != drawn.id)
            continue;
        if (std::abs(o.raHours - drawn.raHours) < 1e-6 && std::abs(o.decDeg - drawn.decDeg) < 1e-6)
            return i;
        if (!first)
            first = i;
    }
    return first;
}

SkyPosition PanCentre(double raHours, double decDeg, double fieldDeg, int width, int height,
                      double dx, double dy)
{
    const Projection projection(raHours, decDeg, fieldDeg, width, height);
    return projection.Unproject(projection.Width() / 2.0 - dx, projection.Height() / 2.0 - dy);
}

std::string StarCaption(const DrawnObject& star)
{
    std::string text = DrawnTarget(star);
    if (star.mag)
        text += "  mag " + services::vb::Format(*star.mag, "0.00");
    return text;
}

std::string DrawnTarget(const DrawnObject& drawn)
{
    if (drawn.kind == DrawnKind::Star)
        return drawn.name.empty() ? drawn.id : drawn.name;
    return drawn.id;
}

std::optional<double> FinderZoomFactor(std::string_view text)
{
    const double factor = services::vb::Val(text);
    if (!(factor > 0) || !std::isfinite(factor))
        return std::nullopt;
    return factor;
}

double FinderZoomField(double firstFieldDeg, double factor)
{
    if (!(factor > 0))
        return ClampField(firstFieldDeg);
    return ClampField(firstFieldDeg / factor);
}

} // namespace charts
