#pragma once
// The chart protocol: one DrawChart (or CenterOnConst) opens a chart on a centre, then one
// PlotDSO per object marks it, and CloseChart ends a chart that a report printed. Two engines
// answer it: the program's own chart (ChartTarget "D"; OwnChart below, drawn by ChartEngine in a
// chart window) and the outside planetarium (ChartTarget "C"; the CDC_ calls, sent through
// charts/Planetarium.h when the chart is complete).
//
// Positions travel as the callers split them: right ascension hours and minutes, declination
// degrees and minutes, J2000. A southern declination under one degree travels as degrees 0 with
// negative minutes, and PlotDSO adds a north flag of 0: both carry the sign of "-00".
//
// ChartLink is the one door to both engines: it sets nothing itself, writes every call to the
// call log when one is kept, and forwards it to the engine of ChartTarget.

#include "charts/ChartEngine.h"
#include "charts/ChartSky.h"
#include "charts/Planetarium.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace charts {

inline constexpr const char* kProgramTitle = "Selvane 2003";
// The own chart's working file in the program folder: it exists while a "D" chart is open.
inline constexpr const char* kChartWorkFile = "DSO.DAT";
inline constexpr int kMaxPlottedObjects = 50000;

// The chart type code of an ObjectType or of a solar-system name ("MARS", "COMET"): 1 galaxy,
// 2 open cluster, 3 globular, 4 nebula, 5 planetary nebula, 6 variable, 7 double or asterism,
// 11..19 the planets, 20 the Sun and Moon, 22 asteroid, 23 comet, 9 anything else.
std::uint8_t ChartTypeCode(std::string_view typeOrBody);

// The arguments of DrawChart, in their order.
struct DrawChartCall
{
    double raHours = 0;
    double raMinutes = 0;
    double decDegrees = 0;
    double decMinutes = 0; // negative for a "-00" centre
    std::int16_t field = 35;
    std::string heading; // TCaption
    std::string title = kProgramTitle;
    std::string guideStarPath;  // HGCPath
    std::string superTychoPath; // STychoPath
    std::string driver;         // telescopetype when the telescope is enabled, else ""
    std::uint8_t flag11 = 0;
    std::uint8_t flag12 = 1;
    std::uint8_t delay = 0; // ScopeDelay1 when the telescope is enabled, else 0
    bool telescope = false; // argument 14: the connected handle rather than an empty object
};

// The arguments of CenterOnConst: the constellation's first three characters, then DrawChart's
// from the heading on (its centre fields are not used).
struct CenterOnConstCall
{
    std::string constellation;
    DrawChartCall chart;
};

// The arguments of PlotDSO, in their order.
struct PlotDsoCall
{
    double raHours = 0;
    double raMinutes = 0;
    double decDegrees = 0;
    double decMinutes = 0;
    std::uint8_t north = 1; // 1 when the declination degrees are 0 or more
    std::uint8_t type = 9;
    std::int16_t size = 1; // arc minutes
    std::string objectId;
    std::string extraId; // Messier number or other name for the label
    std::string info;    // the info text, with its layout codes
    std::string imageFile;
    std::uint8_t observed = 0;
    std::uint8_t flag = 0; // 1: a circle `size` arc minutes across at the position
};

// The arguments of CDC_DrawChart, in their order.
struct CdcDrawChartCall
{
    double raHours = 0;
    double raMinutes = 0;
    double decDegrees = 0;
    double decMinutes = 0;
    std::int16_t field = 35;
    std::int16_t port = 0;  // Comport, or 10 / 11 when speech is registered
    std::int16_t delay = 0; // LX200Delay
    std::string heading;
    std::string title = kProgramTitle;
    std::string guideStarPath;
    std::string superTychoPath;
    std::string driver;
    std::uint8_t flag13 = 0;
    std::uint8_t flag14 = 1;
};

// Decimal degrees of a split declination: south when the degrees or the minutes are negative,
// or when north is 0.
double SplitDeclination(double degrees, double minutes, int north = 1);

// One chart of the own engine: what DrawChart and the PlotDSO calls after it gave.
struct ChartDocument
{
    double raHours = 0; // centre, J2000
    double decDeg = 0;
    double fieldDeg = 35;
    std::string heading;
    std::string constellation; // set by CenterOnConst
    std::string driver;        // the telescope's identifier when one goes with the chart
    int crosshairDelay = 0;    // seconds between telescope readings; 0 for none
    std::vector<PlotObject> objects;
    std::vector<std::string> infos;      // the info text of each object
    std::vector<std::string> imageFiles; // the image file of each object
};

// The program's own chart engine. DrawChart opens a chart (writing DSO.DAT) and hands it to the
// viewer; PlotDSO adds an object to it; CloseChart, or the viewer's Closed, ends it and deletes
// DSO.DAT. The viewer sees the document grow: it repaints when it next gets to it.
class OwnChart
{
public:
    // programDir: where DSO.DAT goes. sky: the chart data, for CenterOnConst's centres.
    OwnChart(std::filesystem::path programDir, std::function<const ChartSky&()> sky);

    // Called with each chart opened: the chart window (or the command line) takes it.
    std::function<void(std::shared_ptr<ChartDocument>)> Opened;

    // Status: throws services::Fault when DSO.DAT cannot be written.
    void DrawChart(const DrawChartCall& call);
    // Status: throws services::Fault "Unknown constellation: <abbr>" for an abbreviation that
    // has no label position.
    void CenterOnConst(const CenterOnConstCall& call);
    // Adds an object to the open chart; without one, nothing happens.
    void PlotDSO(const PlotDsoCall& call);
    // Ends the open chart: DSO.DAT is deleted, errors ignored.
    void CloseChart();
    // The window of document closed: when it is the open chart, that chart ends.
    void Closed(const ChartDocument* document);

    const std::shared_ptr<ChartDocument>& Current() const { return current_; }
    // The chart data, loaded on first use.
    const ChartSky& Sky() const { return sky_(); }
    std::filesystem::path WorkFile() const { return programDir_ / kChartWorkFile; }

private:
    void Open(std::shared_ptr<ChartDocument> document);

    std::filesystem::path programDir_;
    std::function<const ChartSky&()> sky_;
    std::shared_ptr<ChartDocument> current_;
};

// The constellation label of an abbreviation, as CenterOnConst centres on it: "Ser" is Serpens
// Caput's label "SCp". Compared without regard to case.
const ConstellationLabel* FindConstellationLabel(const ChartSky& sky, std::string_view abbr);

// The bridge to the outside planetarium: the CDC_ calls, gathered and sent at EndChart.
class CdcBridge
{
public:
    // make: the planetarium of the setting, made when a chart starts.
    explicit CdcBridge(std::function<std::unique_ptr<Planetarium>()> make,
                       std::function<const ChartSky&()> sky);

    void CDC_SetObservatory(const PlanetariumSite& site);
    void CDC_SetDate(const astro::LocalDateTime& moment);
    void CDC_DrawChart(const CdcDrawChartCall& call);
    void CDC_CenterOnConst(const CenterOnConstCall& call);
    void CDC_PlotDSO(const PlotDsoCall& call);
    // Sends the chart. Throws PlanetariumError.
    void EndChart();
    // The chart gathered last, sent or not; nothing before the first.
    const PlanetariumChart* LastChart() const
    {
        return planetarium_ ? &planetarium_->Chart() : nullptr;
    }

private:
    Planetarium& Current();

    std::function<std::unique_ptr<Planetarium>()> make_;
    std::function<const ChartSky&()> sky_;
    std::unique_ptr<Planetarium> planetarium_;
    std::optional<PlanetariumSite> site_;
    std::optional<astro::LocalDateTime> moment_;
};

// The calls as the call log writes them: the name, then the arguments in their order, tab
// separated; numbers "%.10g", texts with backslash, tab, line feed and carriage return escaped
// as \\ \t \n \r; argument 14 of DrawChart "Scope" for a handle, empty for an empty object.
std::string CallLine(const DrawChartCall& call);
std::string CallLine(const CenterOnConstCall& call);
std::string CallLine(const PlotDsoCall& call);
std::string CallLine(const CdcDrawChartCall& call);
std::string CdcCallLine(const CenterOnConstCall& call);
std::string CdcCallLine(const PlotDsoCall& call);

// The one door to the chart engines.
class ChartLink
{
public:
    ChartLink(OwnChart& own, CdcBridge& cdc) : own_(own), cdc_(cdc) {}

    // "D": the own chart, "C": the planetarium. Every chart command sets it first.
    std::string ChartTarget = "D";
    // When set, every call adds its line (CallLine) here.
    std::vector<std::string>* callLog = nullptr;

    void DrawChart(const DrawChartCall& call);
    void CenterOnConst(const CenterOnConstCall& call);
    void PlotDSO(const PlotDsoCall& call);
    void CloseChart();
    void CDC_SetObservatory(const PlanetariumSite& site);
    void CDC_SetDate(const astro::LocalDateTime& moment);
    void CDC_DrawChart(const CdcDrawChartCall& call);
    void CDC_CenterOnConst(const CenterOnConstCall& call);
    void CDC_PlotDSO(const PlotDsoCall& call);
    void CDC_EndChart();

    OwnChart& Own() { return own_; }

private:
    void Log(std::string line);

    OwnChart& own_;
    CdcBridge& cdc_;
};

// The info text's layout codes turned into HTML for the chart window: \O a line's label, \D its
// data, \L\U toggles the heading style.
std::string InfoTextHtml(std::string_view info);

} // namespace charts
