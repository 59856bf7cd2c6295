#pragma once
// The chart projection: stereographic, north up, east left, centred on a J2000 position.
// Right ascension in hours, declination in degrees, pixels with (0,0) the top-left corner and
// Y growing downwards. The field is the angle in degrees across the shorter side of the image.
//   s = min(W,H) / (4 tan(F/4)),  k = 2 / (1 + sin d0 sin d + cos d0 cos d cos(a - a0)),
//   X = W/2 - s k cos d sin(a - a0),  Y = H/2 - s k (cos d0 sin d - sin d0 cos d cos(a - a0)).
// Pure functions; nothing here fails or throws.

namespace charts {

inline constexpr double kMinFieldDeg = 1.0;
inline constexpr double kMaxFieldDeg = 180.0;
// Points whose k exceeds this (more than about 143 degrees from the centre) are not drawn: near
// the antipode the projection runs off to infinity. No part of an image of aspect up to 3:1
// lies that far from the centre, even at the widest field.
inline constexpr double kMaxDrawnK = 10.0;

// The field clamped to 1..180 degrees; a field that is not a number becomes the widest.
double ClampField(double fieldDeg);

// The scale s in pixels per unit of 2 tan(c/2), c the angle from the centre; at the centre one
// radian spans s pixels. The field is clamped first; sizes below 1 count as 1.
double ProjectionScale(double fieldDeg, int width, int height);

struct ChartPoint
{
    double x = 0;
    double y = 0;
    double k = 0;       // the local scale factor: 1 at the centre, 2 at 90 degrees
    bool drawn = false; // false behind the observer (k above kMaxDrawnK or not a number)
};

struct SkyPosition
{
    double raHours = 0; // 0 <= raHours < 24
    double decDeg = 0;
    bool valid = false; // false for a pixel outside the projected sphere (never here)
};

// One chart's projection, with the centre's trigonometry worked out once.
class Projection
{
public:
    // Given: centre raHours, decDeg (J2000), fieldDeg (clamped to 1..180), width and height in
    // pixels (at least 1). A centre declination beyond +-90 is clamped.
    Projection(double raHours, double decDeg, double fieldDeg, int width, int height);

    double Scale() const { return scale_; }
    double FieldDeg() const { return field_; }
    int Width() const { return width_; }
    int Height() const { return height_; }

    // The pixel of a sky position.
    ChartPoint Project(double raHours, double decDeg) const;
    // The pixel of a unit vector (x towards RA 0 h, z towards the north pole).
    ChartPoint ProjectVector(double x, double y, double z) const;
    // The sky position of a pixel; every pixel has one (the antipode lies at infinity).
    SkyPosition Unproject(double x, double y) const;

private:
    double ra0_ = 0; // radians
    double field_ = 0;
    int width_ = 1;
    int height_ = 1;
    double scale_ = 1;
    double sinDec0_ = 0;
    double cosDec0_ = 1;
    double centre_[3] = {1, 0, 0};
    double east_[3] = {0, 1, 0};
    double north_[3] = {0, 0, 1};
};

// The unit vector of a position (x towards RA 0 h, z towards the north pole).
void UnitVector(double raHours, double decDeg, double out[3]);

} // namespace charts
