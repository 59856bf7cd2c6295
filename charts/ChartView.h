#pragma once
// The rules of the chart windows, apart from their widgets: the zoom steps, what a click picks,
// where a drag moves the centre, the finder's zoom list and the texts a click shows.
// Positions are J2000, right ascension in hours, declination in degrees; pixels as
// charts/Projection.h counts them, (0,0) the top-left corner. Pure functions; nothing throws.

#include "charts/ChartCalls.h"
#include "charts/ChartEngine.h"
#include "charts/Projection.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace charts {

// One zoom step multiplies or divides the field by this.
inline constexpr double kZoomFactor = 1.5;
// A click picks a drawn thing whose centre lies within its drawn radius plus this, in pixels.
inline constexpr double kPickSlackPx = 4.0;

// The field after one step in (narrower) or out (wider), clamped to 1..180 degrees.
double ZoomIn(double fieldDeg);
double ZoomOut(double fieldDeg);

// PickDrawnObject: the drawn thing a click at (x, y) pixels hits.
// Returned: the index into drawn of the nearest thing whose centre is within its reach (its
//   drawn radius plus kPickSlackPx) of the click; nothing when none is.
// Notes: "nearest" is the distance as a share of the reach, so a click on a nebula's centre
//   picks the nebula rather than the star drawn there a pixel off (M 42 and theta-1 Orionis),
//   while a click right on a star inside a large outline picks the star. On equal shares an
//   object wins over a star, and the first drawn over a later one.
std::optional<std::size_t> PickDrawnObject(const std::vector<DrawnObject>& drawn, double x,
                                           double y);

// The object of the document that a drawn object shows.
// Returned: the index into document.objects of the object with the drawn one's ObjectID at its
//   position (within 1e-6 hours and degrees), else the first with that ObjectID; nothing for a
//   star or an ObjectID the document does not hold.
std::optional<std::size_t> DocumentObjectIndex(const ChartDocument& document,
                                               const DrawnObject& drawn);

// The centre after the picture was dragged by (dx, dy) pixels: the sky that was under the
// pixel (W/2 - dx, H/2 - dy) comes to the middle.
// Given: the chart's centre, field and size, as its projection takes them.
SkyPosition PanCentre(double raHours, double decDeg, double fieldDeg, int width, int height,
                      double dx, double dy);

// The text of a clicked star: its name (or "S<line>" without one), then its magnitude to two
// places: "Betelgeuse  mag 0.45". Plain text.
std::string StarCaption(const DrawnObject& star);

// The slew target of a drawn thing: its ObjectID, or the star's name (else "S<line>").
std::string DrawnTarget(const DrawnObject& drawn);

// The zoom factor of a finder zoom entry ("01x", "07x") or of a typed factor ("2.5", "3x").
// Returned: nothing for a text that is no positive number.
std::optional<double> FinderZoomFactor(std::string_view text);

// The field of a finder panel zoomed by factor from its first field: first / factor, clamped
// to 1..180 degrees.
double FinderZoomField(double firstFieldDeg, double factor);

} // namespace charts
