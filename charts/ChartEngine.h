#pragma once
// The chart engine: draws a star chart into an image with QPainter, no widgets.
// Positions are J2000: right ascension in hours, declination in degrees. The projection is
// charts/Projection.h (stereographic, north up, east left); sizes are in arc minutes.
// Besides the picture, the engine lists every star, object and circle it drew whose centre lies
// in the image, with its pixel position, for the object listings of the callers.

#include "charts/ChartSky.h"

#include <QColor>
#include <QImage>
#include <QPointF>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QPainter;

namespace charts {

// The chart layers, by their names in the `chartlayers` setting.
struct ChartLayers
{
    bool stars = true;
    bool names = true;   // star names
    bool dso = true;     // the objects handed in by the caller
    bool lines = true;   // constellation figures
    bool bounds = true;  // constellation boundaries
    bool conames = true; // constellation names
    bool milkyway = true;
    bool grid = true; // right ascension and declination lines
};

inline constexpr std::string_view kDefaultChartLayers =
    "stars,names,dso,lines,bounds,conames,milkyway,grid";
// The layers of `chartstarsonly`.
inline constexpr std::string_view kStarsOnlyChartLayers = "stars,dso";

struct ParsedChartLayers
{
    ChartLayers layers;
    std::vector<std::string> unknown; // names that are no layer, as written
};

// The layers named in a comma-separated list (blanks around names and case ignored). A blank
// list means the default layers. Unknown names are returned for the caller's message.
ParsedChartLayers ParseChartLayers(std::string_view text);

// The faintest star magnitude drawn when `chartmag` is blank:
//   9.0 - 2.5 log10(F / 10) for a field F in degrees, clamped to 5.5..9.0,
// so a 10 degree field shows the whole star list (9.0), 35 degrees 7.6, 60 degrees 7.1 and the
// whole sky 6.1 (about what the eye sees). Fields are clamped to 1..180 first.
double DefaultLimitMagnitude(double fieldDeg);

// One object handed in by the caller (one `PlotDSO`).
struct PlotObject
{
    double raHours = 0;
    double decDeg = 0;
    int typeCode = 9;      // 1..23, the chart type codes; others draw as 9 (other)
    double sizeArcmin = 1; // 1 when unknown
    std::string objectId;  // `ObjectID`
    std::string extraId;   // Messier number or other name
    std::string label;     // drawn instead of DsoLabel() when not empty
    bool observed = false;
    int flag = 0; // 1: a circle sizeArcmin across, not an object symbol
};

// The label of an object: "M<n>" for a numeric extra identifier, else the extra identifier,
// else the object identifier. "031" gives "M31"; " 42 " gives "M42".
std::string DsoLabel(const std::string& extraId, const std::string& objectId);

struct ChartRequest
{
    double raHours = 0;
    double decDeg = 0;
    double fieldDeg = 35; // clamped to 1..180
    int width = 800;      // pixels, clamped to 16..8192
    int height = 600;
    ChartLayers layers;
    std::optional<double> limitMag; // blank: DefaultLimitMagnitude(field)
    bool nightMode = false;         // red on black
};

enum class DrawnKind { Star, Dso, Circle };

struct DrawnObject
{
    DrawnKind kind = DrawnKind::Star;
    std::string id;   // "S<line>" for stars, `ObjectID` for objects
    std::string name; // star name, object label
    int code = 0;     // type code of objects; 0 for stars
    double raHours = 0;
    double decDeg = 0;
    std::optional<double> mag; // stars only
    double x = 0;              // pixels, centre
    double y = 0;
    double r = 0; // drawn radius, pixels
};

struct ChartImage
{
    QImage image; // null only when the image could not be allocated
    std::vector<DrawnObject> drawn;
    double fieldDeg = 0; // the field used, after clamping
    double limitMag = 0; // the faintest magnitude drawn
};

// The drawing of single chart marks, shared by the engine and by keys printed beside a chart so
// that a key always shows what the chart shows. Lengths are in the painter's units (pixels of
// the chart image when the painter is not scaled); each routine sets the pen and brush it needs
// and leaves them set.

// DrawObjectSymbol: the symbol of an object of typeCode (the chart type codes 1..23; others
// draw as 9, a cross) of the given radius around centre, outlined in colour.
// Notes: galaxy an ellipse, open cluster a dotted circle, globular a circle with a cross, nebula
//   a square, planetary nebula a small circle with four ticks, variable star two rings, double
//   star a ring on a bar, the Sun, Moon and planets (11..20) a disc, asteroid a diamond, comet a
//   disc with a tail reaching 1.5 radii up and to the right.
void DrawObjectSymbol(QPainter& painter, int typeCode, QPointF centre, double radius,
                      const QColor& colour);
// The eyepiece or finder circle of a plotted circle (PlotObject::flag 1).
void DrawFinderCircle(QPainter& painter, QPointF centre, double radius, const QColor& colour);
// A star dot: a filled disc without outline.
void DrawStarDot(QPainter& painter, QPointF centre, double radius, const QColor& colour);
// The radius in pixels of the dot of a star of magnitude mag on a chart to limitMag:
//   0.6 + 0.55 (limitMag - mag), at most 7.
double StarDotRadius(double mag, double limitMag);
// The colours the engine draws stars, the objects of typeCode and finder circles with.
QColor StarColour(bool nightMode);
QColor ObjectSymbolColour(int typeCode, bool nightMode);
QColor FinderCircleColour(bool nightMode);

// RenderChart: draws the chart of request with the sky's data and the caller's objects.
// Status: never throws on bad input: fields, sizes and a centre declination out of range are
//   clamped, a centre that is not a number becomes 0 h / 0 deg, objects with positions that
//   are not numbers are skipped.
// Notes: stars are dots whose radius grows 0.55 pixel per magnitude brighter than the limit;
//   star names are written to 3.5 magnitudes brighter than the limit, at most to 4.0;
//   objects draw with a symbol per type code, at least 8 pixels across, otherwise their size;
//   points more than about 143 degrees from the centre are not drawn.
ChartImage RenderChart(const ChartSky& sky, const ChartRequest& request,
                       const std::vector<PlotObject>& objects);

} // namespace charts
