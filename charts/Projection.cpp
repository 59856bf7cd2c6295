#include "charts/Projection.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace charts {

namespace {
constexpr double kDeg = std::numbers::pi / 180.0;
constexpr double kHour = std::numbers::pi / 12.0;
} // namespace

double ClampField(double fieldDeg)
{
    if (std::isnan(fieldDeg))
        return kMaxFieldDeg;
    return std::clamp(fieldDeg, kMinFieldDeg, kMaxFieldDeg);
}

double ProjectionScale(double fieldDeg, int width, int height)
{
    const int shorter = std::max(1, std::min(width, height));
    return shorter / (4.0 * std::tan(ClampField(fieldDeg) * kDeg / 4.0));
}

void UnitVector(double raHours, double decDeg, double out[3])
{
    const double a = raHours * kHour;
    const double d = decDeg * kDeg;
    out[0] = std::cos(d) * std::cos(a);
    out[1] = std::cos(d) * std::sin(a);
    out[2] = std::sin(d);
}

Projection::Projection(double raHours, double decDeg, double fieldDeg, int width, int height)
    : ra0_((std::isfinite(raHours) ? raHours : 0.0) * kHour), field_(ClampField(fieldDeg)),
      width_(std::max(1, width)), height_(std::max(1, height)),
      scale_(ProjectionScale(field_, width_, height_))
{
    const double dec0 = std::clamp(std::isfinite(decDeg) ? decDeg : 0.0, -90.0, 90.0) * kDeg;
    sinDec0_ = std::sin(dec0);
    cosDec0_ = std::cos(dec0);
    const double sinA = std::sin(ra0_);
    const double cosA = std::cos(ra0_);
    centre_[0] = cosDec0_ * cosA;
    centre_[1] = cosDec0_ * sinA;
    centre_[2] = sinDec0_;
    // cos d sin(a - a0) and cos d0 sin d - sin d0 cos d cos(a - a0) as dot products.
    east_[0] = -sinA;
    east_[1] = cosA;
    east_[2] = 0;
    north_[0] = -sinDec0_ * cosA;
    north_[1] = -sinDec0_ * sinA;
    north_[2] = cosDec0_;
}

ChartPoint Projection::ProjectVector(double x, double y, double z) const
{
    ChartPoint p;
    const double cosC = centre_[0] * x + centre_[1] * y + centre_[2] * z;
    p.k = 2.0 / (1.0 + cosC);
    const double e = east_[0] * x + east_[1] * y;
    const double n = north_[0] * x + north_[1] * y + north_[2] * z;
    p.x = width_ / 2.0 - scale_ * p.k * e;
    p.y = height_ / 2.0 - scale_ * p.k * n;
    p.drawn = p.k > 0 && p.k <= kMaxDrawnK && std::isfinite(p.x) && std::isfinite(p.y);
    return p;
}

ChartPoint Projection::Project(double raHours, double decDeg) const
{
    double v[3];
    UnitVector(raHours, decDeg, v);
    return ProjectVector(v[0], v[1], v[2]);
}

SkyPosition Projection::Unproject(double x, double y) const
{
    SkyPosition out;
    const double u = (width_ / 2.0 - x) / scale_;  // towards the east
    const double v = (height_ / 2.0 - y) / scale_; // towards the north
    if (!std::isfinite(u) || !std::isfinite(v))
        return out;
    const double rho = std::hypot(u, v);
    double dec = std::asin(sinDec0_);
    double ra = ra0_;
    if (rho > 0) {
        const double c = 2.0 * std::atan(rho / 2.0);
        const double sinC = std::sin(c);
        const double cosC = std::cos(c);
        dec = std::asin(std::clamp(cosC * sinDec0_ + v * sinC * cosDec0_ / rho, -1.0, 1.0));
        ra = ra0_ + std::atan2(u * sinC, rho * cosDec0_ * cosC - v * sinDec0_ * sinC);
    }
    double raHours = std::fmod(ra / kHour, 24.0);
    if (raHours < 0)
        raHours += 24.0;
    if (raHours >= 24.0)
        raHours = 0;
    out.raHours = raHours;
    out.decDeg = dec / kDeg;
    out.valid = true;
    return out;
}

} // namespace charts
